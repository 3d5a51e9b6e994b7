// IdleTimer: when the screen goes dark by itself, and who asks that it stay on. SpringBoard's idle-timer
// provider reports assertions here. Main thread.
#pragma once

#include "phone/kernel/clock.hpp"

#include <functional>
#include <map>
#include <string>

namespace phone {

class IdleTimer {
public:
    // Without a touch the screen dims after this long, as on a phone with the shortest Auto-Lock; a little
    // later the phone locks.
    static constexpr double kSeconds = 30;
    static constexpr double kDimSeconds = 5;

    explicit IdleTimer(Clock&);
    IdleTimer(IdleTimer const&) = delete;
    IdleTimer& operator=(IdleTimer const&) = delete;
    ~IdleTimer();

    // Called when the screen dims, and when a touch or an assertion brings it back.
    void setDimming(std::function<void(bool isDimmed)>);
    // Called when the time is up and no assertion stands: the screen has been dim for a while, and stays so.
    void setExpiry(std::function<void()>);

    // Starts the time anew; every touch and button does.
    void touch();

    // An assertion stands under its reason; a second one with the same reason changes nothing, and one
    // removal lifts it. Removing what does not stand does nothing.
    void add(std::string const& reason);
    void remove(std::string const& reason);
    bool holds(std::string const& reason) const { return m_reasons.contains(reason); }
    bool isDisabled() const { return !m_reasons.empty(); }

private:
    void dim();

    Clock& m_clock;
    std::function<void(bool)> m_dimming;
    std::function<void()> m_expired;
    bool m_isDimmed { false };
    std::map<std::string, int> m_reasons;   // how often asked, for the curious; one removal lifts all
    TimerId m_timer { TimerId::none };
};

}
