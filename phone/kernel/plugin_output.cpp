// The trace's `log`: what a plug-in writes to standard output, standard error or the system log. The C functions for
// that are exported in the C library's place, told apart by who calls, and everything still goes where it was sent.
// C++'s streams end in the same functions; then the plug-in is the first caller outside of the standard library.
//
// The functions have names of their own here and the C library's in the object file, since the headers declare theirs
// with attributes and as macros.
#include "phone/kernel/plugin_loader.hpp"
#include "phone/kernel/trace.hpp"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <execinfo.h>
#include <ostream>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <sys/uio.h>
#include <unistd.h>
#include <utility>

namespace {

constexpr int kMaxFrames = 24;

// While one of these functions runs, those that it is made of are not asked again.
thread_local bool g_isInside = false;

class Inside {
public:
    Inside() = default;
    Inside(Inside const&) = delete;
    Inside& operator=(Inside const&) = delete;
    ~Inside() { g_isInside = m_wasInside; }
    bool isOutermost() const { return !m_wasInside; }

private:
    bool m_wasInside { std::exchange(g_isInside, true) };
};

// Where the standard library of C++ lies in memory: any of its functions tells.
void const* libraryOf(void const* address)
{
    Dl_info info {};
    return dladdr(address, &info) ? info.dli_fbase : nullptr;
}
bool isStandardLibrary(void const* address)
{
    static void const* const standard = libraryOf(
        dlsym(RTLD_DEFAULT, "_ZSt16__ostream_insertIcSt11char_traitsIcEERSt13basic_ostreamIT_T0_ES6_PKS3_l"));
    return standard && libraryOf(address) == standard;
}

bool isByPlugin(void const* caller)
{
    if (phone::isPluginAddress(caller))
        return true;
    if (!isStandardLibrary(caller))
        return false;
    std::array<void*, kMaxFrames> frames {};
    int const count = backtrace(frames.data(), kMaxFrames);
    bool isPastCaller = false;
    for (int i = 0; i < count; ++i) {
        void const* const frame = frames[static_cast<std::size_t>(i)];
        isPastCaller = isPastCaller || frame == caller;
        if (isPastCaller && !isStandardLibrary(frame))
            return phone::isPluginAddress(frame);
    }
    return false;
}

void note(std::string_view text)
{
    if (!text.empty())
        phone::deviceTrace().record("log", { { "text", text } });
}

std::string formatted(char const* format, va_list arguments)
{
    va_list copy;
    va_copy(copy, arguments);
    char few[512];
    int const length = vsnprintf(few, sizeof few, format, copy);
    va_end(copy);
    if (length < 0)
        return {};
    if (static_cast<std::size_t>(length) < sizeof few)
        return few;
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    va_copy(copy, arguments);
    vsnprintf(text.data(), text.size(), format, copy);
    va_end(copy);
    text.pop_back();
    return text;
}

bool isLogFile(FILE* file) { return file == stdout || file == stderr; }
bool isLogDescriptor(int descriptor) { return descriptor == STDOUT_FILENO || descriptor == STDERR_FILENO; }

template <class F>
F* next(char const* name)
{
    return reinterpret_cast<F*>(dlsym(RTLD_NEXT, name));
}

int printTo(FILE* file, char const* format, va_list arguments, void const* caller)
{
    using Function = int(FILE*, char const*, va_list);
    static auto* const original = next<Function>("vfprintf");
    Inside const inside;
    if (inside.isOutermost() && isLogFile(file) && isByPlugin(caller))
        note(formatted(format, arguments));
    return original(file, format, arguments);
}

void log(int priority, char const* format, va_list arguments, void const* caller)
{
    using Function = void(int, char const*, va_list);
    static auto* const original = next<Function>("vsyslog");
    Inside const inside;
    if (inside.isOutermost() && isByPlugin(caller)) {
        note(formatted(format, arguments));
        return;   // the computer's own log is none of the phone's
    }
    original(priority, format, arguments);
}

}

#define CORVEL_EXPORT(name) __asm__(name) __attribute__((visibility("default"), used))
#define CORVEL_CALLER __builtin_return_address(0)

extern "C" {

int corvel_printf(char const* format, ...) CORVEL_EXPORT("printf");
int corvel_vprintf(char const* format, va_list arguments) CORVEL_EXPORT("vprintf");
int corvel_fprintf(FILE* file, char const* format, ...) CORVEL_EXPORT("fprintf");
int corvel_vfprintf(FILE* file, char const* format, va_list arguments) CORVEL_EXPORT("vfprintf");
int corvel_printf_chk(int flag, char const* format, ...) CORVEL_EXPORT("__printf_chk");
int corvel_fprintf_chk(FILE* file, int flag, char const* format, ...) CORVEL_EXPORT("__fprintf_chk");
int corvel_puts(char const* text) CORVEL_EXPORT("puts");
int corvel_fputs(char const* text, FILE* file) CORVEL_EXPORT("fputs");
int corvel_putchar(int letter) CORVEL_EXPORT("putchar");
int corvel_fputc(int letter, FILE* file) CORVEL_EXPORT("fputc");
int corvel_putc(int letter, FILE* file) CORVEL_EXPORT("putc");
std::size_t corvel_fwrite(void const* bytes, std::size_t size, std::size_t count, FILE* file)
    CORVEL_EXPORT("fwrite");
ssize_t corvel_write(int descriptor, void const* bytes, std::size_t count) CORVEL_EXPORT("write");
ssize_t corvel_writev(int descriptor, iovec const* parts, int count) CORVEL_EXPORT("writev");
void corvel_perror(char const* text) CORVEL_EXPORT("perror");
void corvel_syslog(int priority, char const* format, ...) CORVEL_EXPORT("syslog");
void corvel_vsyslog(int priority, char const* format, va_list arguments) CORVEL_EXPORT("vsyslog");
void corvel_syslog_chk(int priority, int flag, char const* format, ...) CORVEL_EXPORT("__syslog_chk");

int corvel_printf(char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const written = printTo(stdout, format, arguments, CORVEL_CALLER);
    va_end(arguments);
    return written;
}
int corvel_vprintf(char const* format, va_list arguments)
{
    return printTo(stdout, format, arguments, CORVEL_CALLER);
}
int corvel_fprintf(FILE* file, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const written = printTo(file, format, arguments, CORVEL_CALLER);
    va_end(arguments);
    return written;
}
int corvel_vfprintf(FILE* file, char const* format, va_list arguments)
{
    return printTo(file, format, arguments, CORVEL_CALLER);
}
int corvel_printf_chk(int, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const written = printTo(stdout, format, arguments, CORVEL_CALLER);
    va_end(arguments);
    return written;
}
int corvel_fprintf_chk(FILE* file, int, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    int const written = printTo(file, format, arguments, CORVEL_CALLER);
    va_end(arguments);
    return written;
}

int corvel_puts(char const* text)
{
    static auto* const original = next<int(char const*)>("puts");
    Inside const inside;
    if (inside.isOutermost() && isByPlugin(CORVEL_CALLER))
        note(std::string(text) + "\n");
    return original(text);
}
int corvel_fputs(char const* text, FILE* file)
{
    static auto* const original = next<int(char const*, FILE*)>("fputs");
    Inside const inside;
    if (inside.isOutermost() && isLogFile(file) && isByPlugin(CORVEL_CALLER))
        note(text);
    return original(text, file);
}

int corvel_putchar(int letter)
{
    static auto* const original = next<int(int, FILE*)>("fputc");
    Inside const inside;
    if (inside.isOutermost() && isByPlugin(CORVEL_CALLER))
        note(std::string(1, static_cast<char>(letter)));
    return original(letter, stdout);
}
int corvel_fputc(int letter, FILE* file)
{
    static auto* const original = next<int(int, FILE*)>("fputc");
    Inside const inside;
    if (inside.isOutermost() && isLogFile(file) && isByPlugin(CORVEL_CALLER))
        note(std::string(1, static_cast<char>(letter)));
    return original(letter, file);
}
int corvel_putc(int letter, FILE* file)
{
    static auto* const original = next<int(int, FILE*)>("putc");
    Inside const inside;
    if (inside.isOutermost() && isLogFile(file) && isByPlugin(CORVEL_CALLER))
        note(std::string(1, static_cast<char>(letter)));
    return original(letter, file);
}

std::size_t corvel_fwrite(void const* bytes, std::size_t size, std::size_t count, FILE* file)
{
    static auto* const original = next<std::size_t(void const*, std::size_t, std::size_t, FILE*)>("fwrite");
    Inside const inside;
    if (inside.isOutermost() && isLogFile(file) && isByPlugin(CORVEL_CALLER))
        note({ static_cast<char const*>(bytes), size * count });
    return original(bytes, size, count, file);
}
ssize_t corvel_write(int descriptor, void const* bytes, std::size_t count)
{
    static auto* const original = next<ssize_t(int, void const*, std::size_t)>("write");
    if (!isLogDescriptor(descriptor))
        return original(descriptor, bytes, count);
    Inside const inside;
    if (inside.isOutermost() && isByPlugin(CORVEL_CALLER))
        note({ static_cast<char const*>(bytes), count });
    return original(descriptor, bytes, count);
}
ssize_t corvel_writev(int descriptor, iovec const* parts, int count)
{
    static auto* const original = next<ssize_t(int, iovec const*, int)>("writev");
    if (!isLogDescriptor(descriptor))
        return original(descriptor, parts, count);
    Inside const inside;
    if (inside.isOutermost() && isByPlugin(CORVEL_CALLER)) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text.append(static_cast<char const*>(parts[i].iov_base), parts[i].iov_len);
        note(text);
    }
    return original(descriptor, parts, count);
}
void corvel_perror(char const* text)
{
    static auto* const original = next<void(char const*)>("perror");
    int const problem = errno;
    Inside const inside;
    if (inside.isOutermost() && isByPlugin(CORVEL_CALLER))
        note((text && *text ? std::string(text) + ": " : std::string()) + std::strerror(problem) + "\n");
    errno = problem;
    original(text);
}

void corvel_syslog(int priority, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    log(priority, format, arguments, CORVEL_CALLER);
    va_end(arguments);
}
void corvel_vsyslog(int priority, char const* format, va_list arguments)
{
    log(priority, format, arguments, CORVEL_CALLER);
}
void corvel_syslog_chk(int priority, int, char const* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    log(priority, format, arguments, CORVEL_CALLER);
    va_end(arguments);
}
}
