// What the library carries of the C++ runtime, so that it takes nothing from the phone's libc++, whose content differs from
// iOS 12 to 16. No stub of libc++ is linked: whatever else the headers leave undefined is an error of the linker here, never
// a missing symbol on somebody's phone.
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>

// Memory that cannot be had ends SpringBoard, as it does when any other part of it asks.
void* operator new(std::size_t size)
{
    if (void* const memory = std::malloc(size ? size : 1))
        return memory;
    std::abort();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace std::inline __1 {

// Where exceptions are off, what would throw (a length out of range) ends up here.
[[noreturn]] void __libcpp_verbose_abort(char const*, ...) noexcept { abort(); }

// The headers declare this one extern, since libc++ holds it.
template class basic_string<char>;

string to_string(unsigned long value)
{
    char digits[20];   // of the largest value
    char* first = digits + sizeof digits;
    do
        *--first = static_cast<char>('0' + value % 10);
    while (value /= 10);
    return { first, digits + sizeof digits };
}

}
