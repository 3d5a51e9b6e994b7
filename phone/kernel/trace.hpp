// Trace: what the phone did, in order: opened URLs, sounds, presentations, files written, and so on. Tests
// assert on it, and `--trace` prints it as JSON lines. Any thread.
#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace phone {

class Clock;

// Keeps its keys in the order in which they were set: an event reads the same on every run.
using Json = nlohmann::ordered_json;

class Trace {
public:
    // Called with each event as one line of JSON, without the line break, while the event is recorded: it
    // must not record itself.
    using Sink = std::function<void(std::string_view line)>;

    // `clock` gives the time of each event, and has to outlive the trace. The thread that makes the trace
    // counts as the main one until setMainThread().
    explicit Trace(Clock const& clock);
    Trace(Trace const&) = delete;
    Trace& operator=(Trace const&) = delete;

    // Adds {"n", "t", "kind"} and then `fields` (an object, or null for none) in their order. Adds `thread`
    // (1, 2, … in order of first appearance) on a thread that is not the main one, and `own: true` inside a
    // TraceOwnScope of this thread. Text that is not UTF-8 is printed with replacement characters.
    void record(std::string_view kind, Json fields = nullptr);

    // An event whose last field is known only when what it tells of is over: begin() records it without the
    // field (nothing goes to the sink yet) and answers its `n`; finish() adds the field and tells the sink.
    std::size_t begin(std::string_view kind, Json fields);
    void finish(std::size_t n, std::string const& key, Json value);

    // The events with `n` >= since, oldest first, as an array.
    Json events(std::size_t since = 0) const;
    // How many there are: also the `n` that the next event gets.
    std::size_t count() const;

    // Drops every event; `n` starts at 0 again. The phone's boot calls it; a respring does not, so that
    // `n` counts on.
    void reset();

    // For a respring into another process: the events so far, and taking them over there.
    Json state() const { return events(); }
    void restore(Json events);

    // nullptr: none.
    void setSink(Sink);

    // The calling thread is the main one from now on (after a fork on another thread).
    void setMainThread();

private:
    std::size_t threadNumber();
    void add(std::string_view kind, Json fields);
    void print(Json const& event) const;

    Clock const& m_clock;
    mutable std::recursive_mutex m_mutex;     // guards everything below
    std::vector<Json> m_events;               // the event at index i has n == i
    std::vector<std::thread::id> m_threads;   // index 0: the main one
    Sink m_sink;
};

// The trace of this process's phone, on its clock.
Trace& deviceTrace();

// While one is alive, what its thread records is SpringBoard's own doing, not the plug-in's: `own: true`.
// They nest.
class TraceOwnScope {
public:
    TraceOwnScope();
    ~TraceOwnScope();
    TraceOwnScope(TraceOwnScope const&) = delete;
    TraceOwnScope& operator=(TraceOwnScope const&) = delete;
    static bool isActive();
};

// The other way round: the plug-in's code runs inside something that SpringBoard does (a hook, an action),
// and what it causes is the plug-in's doing again.
class TracePluginScope {
public:
    TracePluginScope();
    ~TracePluginScope();
    TracePluginScope(TracePluginScope const&) = delete;
    TracePluginScope& operator=(TracePluginScope const&) = delete;

private:
    int m_outerDepth;
};

}
