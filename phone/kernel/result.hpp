// Result and Error: how the kernel's functions answer when the world may refuse (a file, a library, a
// user's text). Any thread. Nothing here throws.
#pragma once

#include <cassert>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace phone {

// Raw bytes of a file, an image, a data value.
using Bytes = std::vector<std::uint8_t>;

// What went wrong, as one line for a person, without a full stop or line break at the end.
struct Error {
    std::string message;
};

// A value, or the error that stood in its way. Ask hasValue() before value().
template <class T>
class [[nodiscard]] Result {
public:
    Result(T value)
        : m_value(std::move(value))
    {
    }
    Result(Error error)
        : m_error(std::move(error))
    {
    }

    bool hasValue() const { return m_value.has_value(); }
    explicit operator bool() const { return hasValue(); }

    T& value() &
    {
        assert(m_value);
        return *m_value;
    }
    T const& value() const&
    {
        assert(m_value);
        return *m_value;
    }
    T value() &&
    {
        assert(m_value);
        return std::move(*m_value);
    }
    T& operator*() & { return value(); }
    T const& operator*() const& { return value(); }
    T operator*() && { return std::move(*this).value(); }
    T* operator->() { return &value(); }
    T const* operator->() const { return &value(); }

    // Valid only without a value.
    Error const& error() const
    {
        assert(!m_value);
        return m_error;
    }
    std::string const& message() const { return error().message; }

private:
    std::optional<T> m_value;
    Error m_error;
};

// Done, or the error that stood in the way.
template <>
class Result<void> {
public:
    Result() = default;
    Result(Error error)
        : m_error(std::move(error))
    {
    }

    bool hasValue() const { return !m_error; }
    explicit operator bool() const { return hasValue(); }
    Error const& error() const
    {
        assert(m_error);
        return *m_error;
    }
    std::string const& message() const { return error().message; }

private:
    std::optional<Error> m_error;
};

// Done, or why not. Not marked nodiscard: some callers have nothing to do about a refusal.
using Status = Result<void>;

// Prints one line `corvel-phone: MESSAGE` on standard error. For what the user should hear about though
// no caller waits for the answer.
void reportProblem(std::string const& message);

}
