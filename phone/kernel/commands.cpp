#include "phone/kernel/commands.hpp"

#include "phone/kernel/clock.hpp"
#include "phone/kernel/trace.hpp"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace phone {

namespace {

template <class T>
Json orNull(std::optional<T> const& value)
{
    return value ? Json(*value) : Json(nullptr);
}

}

Commands::Commands(Clock& clock, Trace& trace)
    : m_clock(clock)
    , m_trace(trace)
{
    add(kKillallPath, [this](std::vector<std::string> const& arguments) { killall(arguments); });
}

void Commands::setRestartHandler(std::function<void()> restart) { m_restart = std::move(restart); }

void Commands::add(std::string path, Program program) { m_programs[std::move(path)] = std::move(program); }

void Commands::remove(std::string const& path) { m_programs.erase(path); }

void Commands::setHidden(std::string const& path, bool isHidden)
{
    if (isHidden)
        m_hidden.insert(path);
    else
        m_hidden.erase(path);
}

bool Commands::isKnown(std::string const& path) const
{
    return m_programs.contains(path) && !m_hidden.contains(path);
}

// backboardd takes SpringBoard down with it. Other names match no process of the phone.
void Commands::killall(std::vector<std::string> const& arguments)
{
    bool const endsSpringBoard = std::any_of(arguments.begin() + (arguments.empty() ? 0 : 1), arguments.end(),
        [](std::string const& name) { return name == "backboardd" || name == "SpringBoard"; });
    if (endsSpringBoard && m_restart) {
        auto const restart = m_restart;
        restart();
    }
}

Commands::Started Commands::spawn(std::optional<std::string> path,
    std::optional<std::vector<std::string>> arguments,
    std::optional<std::vector<std::string>> const& environment)
{
    Started started;
    if (!path || !arguments)
        started.result = EFAULT;
    else if (!isKnown(*path))
        started.result = ENOENT;
    m_trace.record("spawn",
        { { "path", orNull(path) }, { "arguments", orNull(arguments) },
            { "environment", orNull(environment) }, { "result", started.result } });
    if (started.result != 0)
        return started;
    started.pid = m_nextPid++;
    m_clock.post([program = m_programs[*path], arguments = *std::move(arguments)] { program(arguments); });
    return started;
}

Commands& deviceCommands()
{
    static Commands& commands = *new Commands(deviceClock(), deviceTrace());
    return commands;
}

}
