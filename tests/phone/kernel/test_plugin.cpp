// A plug-in that does one thing when it is loaded: it starts a command.
#include <spawn.h>

namespace {

struct Start {
    Start()
    {
        char path[] = "/var/jb/usr/bin/killall";
        char name[] = "killall";
        char argument[] = "backboardd";
        char* arguments[] = { name, argument, nullptr };
        result = posix_spawn(&pid, path, nullptr, nullptr, arguments, nullptr);
    }
    pid_t pid = 0;
    int result = -1;
};

Start g_start;

}

// For the test to ask what the constructor was answered, and to start a command later on.
extern "C" int testPluginPid() { return g_start.pid; }
extern "C" int testPluginSpawn(char const* path, char* const* arguments, char* const* environment)
{
    pid_t pid = 0;
    return posix_spawn(&pid, path, nullptr, nullptr, arguments, environment);
}
extern "C" int testPluginSpawnWithAttributes(char const* path, char* const* arguments)
{
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    pid_t pid = 0;
    int const answer = posix_spawn(&pid, path, nullptr, &attributes, arguments, nullptr);
    posix_spawnattr_destroy(&attributes);
    return answer;
}
