// Commands: the programs that a plug-in can start with posix_spawn. Nothing is really started: each start
// goes into the trace, and the few commands that the phone knows have their effect. Main thread.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace phone {

class Clock;
class Trace;

inline constexpr char const* kKillallPath = "/var/jb/usr/bin/killall";

class Commands {
public:
    // The arguments include the program's own name at index 0, as execve has it.
    using Program = std::function<void(std::vector<std::string> const& arguments)>;

    // Both have to outlive it. A new registry knows `killall` alone.
    Commands(Clock& clock, Trace& trace);

    // `/var/jb/usr/bin/killall backboardd` (or `SpringBoard`) asks for a restart: `restart` is called on a
    // later turn of the main loop, once the plug-in's call has returned. nullptr: nothing happens.
    void setRestartHandler(std::function<void()> restart);

    // Makes a program known at an absolute device path, or unknown again. A program runs on a later turn.
    void add(std::string path, Program program);
    void remove(std::string const& path);
    // As if the command were missing, until it is shown again.
    void setHidden(std::string const& path, bool isHidden);
    bool isKnown(std::string const& path) const;

    struct Started {
        int result { 0 };   // 0, or an errno value, as posix_spawn returns it
        int pid { 0 };      // made up, only when result is 0
    };

    // What posix_spawn does: records `spawn` (path, arguments, environment or null, result) and lets the
    // program run. An unknown path gives ENOENT. A null `arguments` or `path` (as a C caller may pass) gives
    // EFAULT and is recorded as null.
    Started spawn(std::optional<std::string> path, std::optional<std::vector<std::string>> arguments,
        std::optional<std::vector<std::string>> const& environment);

private:
    void killall(std::vector<std::string> const& arguments);

    Clock& m_clock;
    Trace& m_trace;
    std::function<void()> m_restart;
    std::map<std::string, Program> m_programs;   // by path
    std::set<std::string> m_hidden;              // paths
    int m_nextPid { 1001 };
};

// The commands of this process's phone. exported_symbols.cpp sends a plug-in's posix_spawn here.
Commands& deviceCommands();

}
