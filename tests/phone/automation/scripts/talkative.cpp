// A plug-in that writes wherever a plug-in can: each line names the way it took.
#include "objc/handle.hpp"

#include <cstdio>
#include <iostream>
#include <syslog.h>
#include <unistd.h>

extern "C" void NSLog(id format, ...);

namespace {

id text(char const* utf8)
{
    return objc::cls<"NSString">().send<"stringWithUTF8String:", objc::handle>(utf8).object;
}

struct Talk {
    Talk()
    {
        std::printf("printf %d\n", 1);
        std::fprintf(stderr, "fprintf %s\n", "stderr");
        std::puts("puts");
        std::fputs("fputs\n", stdout);
        char const bytes[] = "fwrite\n";
        std::fwrite(bytes, 1, sizeof bytes - 1, stderr);
        ssize_t const written = write(STDERR_FILENO, "write\n", 6);
        static_cast<void>(written);
        std::cout << "cout" << std::flush;
        std::cerr << "cerr";
        std::clog << "clog" << std::flush;
        syslog(LOG_NOTICE, "syslog %d", 2);
        NSLog(text("NSLog %d"), 3);
        std::FILE* const file = std::fopen("/dev/null", "w");
        if (file) {
            std::fputs("to a file, which is no log", file);
            std::fclose(file);
        }
    }
};

Talk const g_talk;

}
