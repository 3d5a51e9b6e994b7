#include "phone/kernel/clock.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

// Two moments closer than this are one: sums of tenths and sixtieths of a second differ in their last bits.
constexpr double kSameMoment = 1e-7;   // seconds, chosen by us

// Turns of the main loop at one moment, before work that never ends has to wait for the next frame.
constexpr int kTurnsAMoment = 1000;   // chosen by us

// The shortest repeat of a timer, as documented for NSTimer.
constexpr double kShortestRepeat = 0.0001;   // seconds

// Sets a flag while it lives, also when an exception passes.
struct FlagScope {
    explicit FlagScope(bool& flag)
        : m_flag(flag)
    {
        m_flag = true;
    }
    ~FlagScope() { m_flag = false; }
    FlagScope(FlagScope const&) = delete;
    FlagScope& operator=(FlagScope const&) = delete;

    bool& m_flag;
};

}

Clock::Clock()
{
    // 2026-06-18 09:41 UTC, without touching the process's time zone: that is start()'s to do.
    m_startSince1970 = static_cast<double>(daysFrom1970({ 2026, 6, 18 })) * 86400 + 9 * 3600 + 41 * 60;
}

Status Clock::start(Start const& start)
{
    if (m_isAdvancing)
        return Error { "the clock cannot be started while it advances" };
    if (!std::isfinite(start.now) || start.now < 0)
        return Error { "the clock cannot start at a time that is negative or not finite" };
    std::string const before = m_start.timezone;
    if (!setTimezone(start.timezone))
        return Error { "unknown time zone '" + start.timezone + "'" };
    auto const date = parseIsoDate(start.date);
    if (!date) {
        setTimezone(before);
        return Error { "not an ISO 8601 date: '" + start.date + "'" };
    }
    m_start = start;
    m_startSince1970 = date->since1970();
    m_now = start.now;
    m_lastFrame = -1;
    m_isOverloaded = false;
    m_timers.clear();
    m_dueById.clear();
    m_frameObservers.clear();
    std::lock_guard lock(m_postedMutex);
    m_posted.clear();
    return {};
}

Clock::Start Clock::state() const
{
    Start state = m_start;
    state.now = m_now;
    return state;
}

Date Clock::date() const { return Date::since1970(m_startSince1970 + m_now); }

TimerId Clock::at(double delay, double repeat, std::function<void()> fire)
{
    if (std::isnan(delay) || delay < 0)
        delay = 0;
    if (std::isnan(repeat) || repeat <= 0)
        repeat = 0;
    else
        repeat = std::max(repeat, kShortestRepeat);
    std::uint64_t const id = m_nextId++;
    double const due = m_now + delay;
    m_timers.emplace(TimerKey { due, id }, Timer { repeat, std::move(fire) });
    m_dueById.emplace(id, due);
    return TimerId { id };
}

void Clock::cancel(TimerId timer)
{
    auto const found = m_dueById.find(static_cast<std::uint64_t>(timer));
    if (found == m_dueById.end())
        return;
    // Taken out before it is destroyed: what it holds may cancel timers in turn as it goes.
    auto const dying = m_timers.extract({ found->second, found->first });
    m_dueById.erase(found);
}

bool Clock::isPending(TimerId timer) const { return m_dueById.count(static_cast<std::uint64_t>(timer)) != 0; }

void Clock::post(std::function<void()> work)
{
    std::lock_guard lock(m_postedMutex);
    m_posted.push_back(std::move(work));
}

// Runs what was posted before the call. False when there was nothing.
bool Clock::runPosted()
{
    std::size_t count;
    {
        std::lock_guard lock(m_postedMutex);
        count = m_posted.size();
    }
    for (std::size_t i = 0; i < count; ++i) {
        std::function<void()> work;
        {
            std::lock_guard lock(m_postedMutex);
            if (m_posted.empty())   // a nested run loop has been here
                break;
            work = std::move(m_posted.front());
            m_posted.pop_front();
        }
        work();
    }
    return count > 0;
}

// Fires the timers that are due and were set before timer number `setBefore`. False when there was none.
bool Clock::fireDueTimers(std::uint64_t setBefore)
{
    bool hasFired = false;
    double const limit = m_now + kSameMoment;
    auto next = m_timers.begin();
    while (next != m_timers.end() && next->first.first <= limit) {
        TimerKey const key = next->first;
        if (key.second >= setBefore) {
            ++next;
            continue;
        }
        hasFired = true;
        auto const [due, id] = key;
        double const repeat = next->second.repeat;
        std::function<void()> fire;
        if (repeat > 0) {
            fire = next->second.fire;
            // Turns that were missed are left out, as Foundation does.
            double following = due + repeat;
            if (following <= limit)
                following = due + repeat * (std::floor((limit - due) / repeat) + 1);
            auto node = m_timers.extract(next);
            node.key() = { following, id };
            m_timers.insert(std::move(node));
            m_dueById[id] = following;
        } else {
            fire = std::move(next->second.fire);
            m_timers.erase(next);
            m_dueById.erase(id);
        }
        fire();
        // The callback may have changed the table in any way.
        next = m_timers.upper_bound(key);
    }
    return hasFired;
}

void Clock::runLoopTurn()
{
    std::uint64_t const setBefore = m_nextId;
    runPosted();
    fireDueTimers(setBefore);
}

bool Clock::hasWorkNow() const
{
    if (!m_timers.empty() && m_timers.begin()->first.first <= m_now + kSameMoment)
        return true;
    std::lock_guard lock(m_postedMutex);
    return !m_posted.empty();
}

// Turns of the main loop until nothing is left to do at this moment.
void Clock::settle()
{
    m_isOverloaded = false;
    for (int turn = 0; hasWorkNow(); ++turn) {
        if (turn == kTurnsAMoment) {
            m_isOverloaded = true;
            return;
        }
        runLoopTurn();
    }
}

FrameObserverId Clock::addFrameObserver(std::function<bool(double)> frame)
{
    std::uint64_t const id = m_nextId++;
    m_frameObservers.emplace_back(id, std::move(frame));
    return FrameObserverId { id };
}

void Clock::removeFrameObserver(FrameObserverId observer)
{
    auto const found = std::find_if(m_frameObservers.begin(), m_frameObservers.end(),
        [=](auto const& entry) { return entry.first == static_cast<std::uint64_t>(observer); });
    if (found == m_frameObservers.end())
        return;
    auto const dying = std::move(found->second);
    m_frameObservers.erase(found);
}

void Clock::runFrame()
{
    m_lastFrame = m_now;
    // By number, since an observer may add and remove observers. One that is added now waits for the next
    // frame.
    std::vector<std::uint64_t> numbers;
    for (auto const& entry : m_frameObservers)
        numbers.push_back(entry.first);
    for (std::uint64_t number : numbers) {
        auto const find = [&] {
            return std::find_if(m_frameObservers.begin(), m_frameObservers.end(),
                [=](auto const& entry) { return entry.first == number; });
        };
        auto const entry = find();
        if (entry == m_frameObservers.end())
            continue;
        auto const frame = entry->second;
        if (!frame(m_now))
            removeFrameObserver(FrameObserverId { number });
    }
}

// The next moment after now, and not after `end`, at which something has to happen.
double Clock::nextStop(double end) const
{
    double stop = end;
    if (isAnimating() || m_isOverloaded) {
        double const frame = (std::floor(m_now * kFramesPerSecond + 1e-5) + 1) / kFramesPerSecond;
        stop = std::min(stop, frame);
    }
    // Those due before are left over from an overloaded moment, and wait for the frame.
    auto const timer = m_timers.upper_bound({ m_now + kSameMoment, ~std::uint64_t { 0 } });
    if (timer != m_timers.end())
        stop = std::min(stop, timer->first.first);
    return stop;
}

Status Clock::advance(double seconds)
{
    if (m_isAdvancing) {
        Error error { "the clock was asked to advance from inside a callback of its own; it stays" };
        reportProblem(error.message);
        return error;
    }
    if (!std::isfinite(seconds) || seconds < 0) {
        Error error { "the clock can advance by a finite number of seconds from 0 on only; it stays" };
        reportProblem(error.message);
        return error;
    }
    FlagScope const advancing(m_isAdvancing);
    double const end = m_now + seconds;
    settle();
    while (m_now < end) {
        m_now = nextStop(end);
        settle();
        double const frames = m_now * kFramesPerSecond;
        if (isAnimating() && std::fabs(frames - std::round(frames)) < 1e-5) {
            runFrame();
            settle();
        }
    }
    if (isAnimating() && m_now - m_lastFrame > kSameMoment) {
        runFrame();
        settle();
    }
    return {};
}

Clock& deviceClock()
{
    // Never destroyed: at exit its timers would release objects of a runtime that has been taken down.
    static Clock& clock = *new Clock;
    return clock;
}

}
