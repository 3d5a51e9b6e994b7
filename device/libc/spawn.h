// libSystem's posix_spawn. Actions and attributes are opaque pointers on the phone.
#pragma once

typedef int pid_t;
typedef void* posix_spawn_file_actions_t;
typedef void* posix_spawnattr_t;

extern "C" int posix_spawn(pid_t* child, char const* path, posix_spawn_file_actions_t const* actions,
    posix_spawnattr_t const* attributes, char* const arguments[], char* const environment[]);
