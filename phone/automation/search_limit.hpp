// SearchLimit: how long one search for elements may take. A locator that would take for ever ends by it, and the phone goes on. One
// thread at a time.
#pragma once

#include "phone/automation/error.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>

namespace phone {

inline constexpr double kSearchSeconds = 5;   // chosen by us: what testers write takes milliseconds
inline constexpr std::size_t kLongestQuery =
    64 * 1024;   // bytes of a predicate, class chain or XPath; likewise

class SearchLimit {
public:
    explicit SearchLimit(double seconds = kSearchSeconds)
        : m_end(
            Time::now() + std::chrono::duration_cast<Time::duration>(std::chrono::duration<double>(seconds)))
    {
    }

    // Is the time over? Once it is, it stays so, and what was found is not all that there is.
    bool isOver()
    {
        m_wasOver = m_wasOver || Time::now() >= m_end;
        return m_wasOver;
    }
    // Has anybody been told so?
    bool wasOver() const { return m_wasOver; }
    // 0 when it is over.
    double secondsLeft() const
    {
        return std::max(0.0, std::chrono::duration<double>(m_end - Time::now()).count());
    }

    static CommandError error()
    {
        return { ErrorCode::timeout, "this locator takes too long; a simpler one finds elements at once" };
    }

private:
    using Time = std::chrono::steady_clock;
    Time::time_point m_end;
    bool m_wasOver { false };
};

}
