// C functions that the phone's executable exports in the C library's place. The executable is linked with
// -rdynamic, so a plug-in that is loaded later binds to these without knowing. Calls from anywhere else go on
// to the C library.
#include "phone/kernel/commands.hpp"
#include "phone/kernel/plugin_loader.hpp"
#include "phone/kernel/result.hpp"

#include <cerrno>
#include <dlfcn.h>
#include <optional>
#include <spawn.h>
#include <string>
#include <utility>
#include <vector>

namespace {

std::optional<std::vector<std::string>> copied(char* const* texts)
{
    if (!texts)
        return std::nullopt;
    std::vector<std::string> copies;
    for (; *texts; ++texts)
        copies.emplace_back(*texts);
    return copies;
}

// Deviation: the phone's commands have no files of their own and no attributes.
void reportUnusedDetails()
{
    static bool isTold = false;
    if (!std::exchange(isTold, true))
        phone::reportProblem("posix_spawn: file actions and attributes are not carried out");
}

}

extern "C" __attribute__((visibility("default"))) int posix_spawn(pid_t* pid, char const* path,
    posix_spawn_file_actions_t const* actions, posix_spawnattr_t const* attributes, char* const arguments[],
    char* const environment[])
{
    if (phone::isPluginAddress(__builtin_return_address(0))) {
        if (actions || attributes)
            reportUnusedDetails();
        // The C library declares these two as never null, and the compiler would leave out a test for it; the
        // platform answers EFAULT.
        char const* volatile const givenPath = path;
        char* const* volatile const givenArguments = arguments;
        char const* const plainPath = givenPath;
        auto const started =
            phone::deviceCommands().spawn(plainPath ? std::optional<std::string>(plainPath) : std::nullopt,
                copied(givenArguments), copied(environment));
        if (started.result == 0 && pid)
            *pid = started.pid;
        return started.result;
    }
    using Function = decltype(&posix_spawn);
    static auto const original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "posix_spawn"));
    return original ? original(pid, path, actions, attributes, arguments, environment) : ENOSYS;
}
