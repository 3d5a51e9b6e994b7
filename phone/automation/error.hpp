// Errors as WebDriver tells them, and Answer: a value or such an error. Any thread. Nothing here throws.
// Source of codes and status numbers: W3C WebDriver, "Errors".
#pragma once

#include "phone/kernel/trace.hpp"

#include <cassert>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace phone {

enum class ErrorCode {
    elementClickIntercepted,
    elementNotInteractable,
    invalidArgument,
    invalidElementState,
    invalidSelector,
    invalidSession,
    moveTargetOutOfBounds,
    noSuchAlert,
    noSuchElement,
    noSuchWindow,
    scriptTimeout,
    sessionNotCreated,
    staleElement,
    timeout,
    unableToCaptureScreen,
    unknownCommand,
    unknownError,
    unknownMethod,
    unsupportedOperation,
    // Not in the standard; the connection's own errors, in its shape.
    forbidden,             // a Host or Origin that is not ours: 403
    payloadTooLarge,       // 413
    unsupportedMediaType   // 415
};

// The code on the wire, as `invalid argument`.
char const* errorName(ErrorCode);
int httpStatus(ErrorCode);
// None for a text that is no code.
std::optional<ErrorCode> errorCodeNamed(std::string_view name);

// What a client is told: a code, and one line for a person, without the code's own words in front.
struct CommandError {
    ErrorCode code { ErrorCode::unknownError };
    std::string message;
};

inline CommandError invalidArgument(std::string message)
{
    return { ErrorCode::invalidArgument, std::move(message) };
}
inline CommandError invalidSelector(std::string message)
{
    return { ErrorCode::invalidSelector, std::move(message) };
}

// {"error", "message", "stacktrace"}, all texts. The message begins with the code's own words: two widespread clients look for
// them there.
Json errorValue(CommandError const&);

// A value, or the error that stood in its way. Ask hasValue() before value().
template <class T>
class [[nodiscard]] Answer {
public:
    Answer(T value)
        : m_value(std::move(value))
    {
    }
    Answer(CommandError error)
        : m_error(std::move(error))
    {
    }

    bool hasValue() const { return m_value.has_value(); }
    explicit operator bool() const { return hasValue(); }

    T& operator*() &
    {
        assert(m_value);
        return *m_value;
    }
    T const& operator*() const&
    {
        assert(m_value);
        return *m_value;
    }
    T operator*() &&
    {
        assert(m_value);
        return std::move(*m_value);
    }
    T* operator->()
    {
        assert(m_value);
        return &*m_value;
    }
    T const* operator->() const
    {
        assert(m_value);
        return &*m_value;
    }

    // Valid only without a value.
    CommandError const& error() const
    {
        assert(!m_value);
        return m_error;
    }

private:
    std::optional<T> m_value;
    CommandError m_error;
};

// Done, or the error that stood in the way.
template <>
class [[nodiscard]] Answer<void> {
public:
    Answer() = default;
    Answer(CommandError error)
        : m_error(std::move(error))
    {
    }

    bool hasValue() const { return !m_error; }
    explicit operator bool() const { return hasValue(); }
    CommandError const& error() const
    {
        assert(m_error);
        return *m_error;
    }

private:
    std::optional<CommandError> m_error;
};

}
