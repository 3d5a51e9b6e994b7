// What libc++'s headers want of <time.h>, with libSystem's sizes. Nothing of it is called.
#pragma once

#include <stddef.h>

typedef long time_t;
struct timespec {
    time_t tv_sec;
    long tv_nsec;
};
