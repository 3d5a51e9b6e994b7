// Clock: the phone's time. Everything timed runs on it: timers, animations, long presses, [NSDate date].
// A test moves it by hand, the window moves it with the display. Main thread, except post().
#pragma once

#include "phone/kernel/date.hpp"
#include "phone/kernel/result.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace phone {

// Names a timer or an observer; 0 names none, and no number is given twice in a process.
enum class TimerId : std::uint64_t { none = 0 };
enum class FrameObserverId : std::uint64_t { none = 0 };

inline constexpr double kFramesPerSecond = 60;
inline constexpr double kFrameSeconds = 1 / kFramesPerSecond;

class Clock {
public:
    struct Start {
        // Wall date at `now` == 0; the default is 09:41 local time of 18 June 2026, so that two runs draw
        // the same picture.
        std::string date { "2026-06-18T09:41:00" };   // ISO 8601; local time when it has no offset
        std::string timezone { "UTC" };               // IANA name; becomes that of the process
        double now { 0 };                             // seconds since boot; a restarted phone counts on
    };

    Clock();
    Clock(Clock const&) = delete;
    Clock& operator=(Clock const&) = delete;

    // Sets the time, and drops every timer, observer and posted function. An error names a date or time
    // zone that cannot be read, and changes nothing.
    Status start(Start const&);

    // The state to hand to start() of the process that takes over after a restart.
    Start state() const;

    double now() const { return m_now; }   // seconds since boot
    Date date() const;                     // wall date: start date + now
    std::string const& timezone() const { return m_start.timezone; }

    // Calls `fire` once at now + delay, or, with repeat > 0, again every `repeat` seconds after that.
    // Timers due at the same moment fire in the order in which they were set, each on a turn after the one that set it. A negative delay, or one that
    // is no number, counts as 0 (the next turn); an infinite one never comes. A repeat below 0.1 ms counts
    // as 0.1 ms, as in Foundation. The clock keeps `fire` until the timer is done or cancelled.
    TimerId at(double delay, double repeat, std::function<void()> fire);

    // A timer that is unknown or done: nothing. A timer may cancel itself while it fires.
    void cancel(TimerId);
    bool isPending(TimerId) const;

    // Calls `work` on the next turn of the main loop, after what was posted before. Any thread.
    void post(std::function<void()> work);

    // One turn of the main loop at this moment: what was posted before the turn, then timers that are due.
    // Time stands still. May be called from a callback (a nested run loop).
    void runLoopTurn();

    // Is anything posted, or a timer due now?
    bool hasWorkNow() const;

    // Calls `frame(now)` on every display frame (multiples of 1/60 s since boot), and once more where
    // advance() ends between two frames, so that what is on screen belongs to `now`. `frame` answers whether
    // it needs further frames; false removes it. While one is active, advance() stops at every frame.
    // Observers are called in the order in which they were added, after the timers of that moment.
    FrameObserverId addFrameObserver(std::function<bool(double now)> frame);
    void removeFrameObserver(FrameObserverId);
    bool isAnimating() const { return !m_frameObservers.empty(); }

    // Moves the clock. Timers fire at their exact time, in order; posted work runs at once, turn by turn;
    // stretches in which nothing is due are skipped. Work that posts itself again and again, or a timer that
    // rearms itself with no delay, gets a turn a frame after the first thousand, so this always ends.
    // From inside a callback, or with seconds that are negative or not finite: an error, which is reported
    // too (reportProblem), and the clock stays.
    Status advance(double seconds);

    // Is advance() on the stack?
    bool isAdvancing() const { return m_isAdvancing; }

private:
    struct Timer {
        double repeat { 0 };
        std::function<void()> fire;
    };
    // Due time first, then order of setting: the order of firing.
    using TimerKey = std::pair<double, std::uint64_t>;

    void settle();
    bool runPosted();
    bool fireDueTimers(std::uint64_t setBefore);
    void runFrame();
    double nextStop(double end) const;

    Start m_start;
    double m_startSince1970 { 0 };   // seconds
    double m_now { 0 };              // seconds since boot
    double m_lastFrame { -1 };       // `now` of the last frame drawn
    bool m_isAdvancing { false };
    bool m_isOverloaded { false };   // work left over for the next frame
    std::uint64_t m_nextId { 1 };    // of timers and observers alike
    std::map<TimerKey, Timer> m_timers;
    std::map<std::uint64_t, double> m_dueById;
    std::vector<std::pair<std::uint64_t, std::function<bool(double)>>> m_frameObservers;
    mutable std::mutex m_postedMutex;   // guards m_posted alone
    std::deque<std::function<void()>> m_posted;
};

// The clock of this process's phone. Boot starts it; everything reads it.
Clock& deviceClock();

}
