#include "phone/kernel/trace.hpp"

#include "phone/kernel/clock.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace phone {

namespace {

// How many TraceOwnScope are alive on this thread.
thread_local int g_ownDepth = 0;

// Microseconds are enough to tell events apart, and keep the last bits of a sum of frames out of the text.
double tidy(double seconds) { return std::round(seconds * 1e6) / 1e6; }

}

Trace::Trace(Clock const& clock)
    : m_clock(clock)
    , m_threads { std::this_thread::get_id() }
{
}

// 0 for the main thread.
std::size_t Trace::threadNumber()
{
    auto const self = std::this_thread::get_id();
    auto const found = std::find(m_threads.begin(), m_threads.end(), self);
    if (found != m_threads.end())
        return static_cast<std::size_t>(found - m_threads.begin());
    m_threads.push_back(self);
    return m_threads.size() - 1;
}

// The lock is held.
void Trace::add(std::string_view kind, Json fields)
{
    Json event;
    event["n"] = m_events.size();
    event["t"] = tidy(m_clock.now());
    event["kind"] = kind;
    if (fields.is_object()) {
        for (auto& [key, value] : fields.items())
            event[key] = std::move(value);
    }
    if (std::size_t const thread = threadNumber())
        event["thread"] = thread;
    if (TraceOwnScope::isActive())
        event["own"] = true;
    m_events.push_back(std::move(event));
}

void Trace::print(Json const& event) const
{
    if (m_sink)
        m_sink(event.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void Trace::record(std::string_view kind, Json fields)
{
    std::lock_guard lock(m_mutex);
    add(kind, std::move(fields));
    print(m_events.back());
}

std::size_t Trace::begin(std::string_view kind, Json fields)
{
    std::lock_guard lock(m_mutex);
    add(kind, std::move(fields));
    return m_events.size() - 1;
}

void Trace::finish(std::size_t n, std::string const& key, Json value)
{
    std::lock_guard lock(m_mutex);
    if (n >= m_events.size())   // the trace began anew meanwhile
        return;
    m_events[n][key] = std::move(value);
    print(m_events[n]);
}

Json Trace::events(std::size_t since) const
{
    std::lock_guard lock(m_mutex);
    Json events = Json::array();
    for (std::size_t n = since; n < m_events.size(); ++n)
        events.push_back(m_events[n]);
    return events;
}

std::size_t Trace::count() const
{
    std::lock_guard lock(m_mutex);
    return m_events.size();
}

void Trace::reset()
{
    std::lock_guard lock(m_mutex);
    m_events.clear();
}

void Trace::restore(Json events)
{
    std::lock_guard lock(m_mutex);
    m_events.clear();
    for (auto& event : events)
        m_events.push_back(std::move(event));
}

void Trace::setSink(Sink sink)
{
    std::lock_guard lock(m_mutex);
    m_sink = std::move(sink);
}

void Trace::setMainThread()
{
    std::lock_guard lock(m_mutex);
    m_threads = { std::this_thread::get_id() };
}

Trace& deviceTrace()
{
    static Trace& trace = *new Trace(deviceClock());   // as long-lived as its clock
    return trace;
}

TraceOwnScope::TraceOwnScope() { ++g_ownDepth; }

TraceOwnScope::~TraceOwnScope() { --g_ownDepth; }

bool TraceOwnScope::isActive() { return g_ownDepth > 0; }

TracePluginScope::TracePluginScope()
    : m_outerDepth(std::exchange(g_ownDepth, 0))
{
}

TracePluginScope::~TracePluginScope() { g_ownDepth = m_outerDepth; }

}
