// What libc++'s headers want of <wchar.h>: the state of a conversion, with libSystem's size.
#pragma once

#include <stddef.h>

union mbstate_t {
    char bytes[128];
    long long alignment;
};
