// libSystem's memory, process and conversion functions, as libc++'s headers and our sources use them.
#pragma once

#include <stddef.h>

struct ldiv_t {
    long quot, rem;
};
struct lldiv_t {
    long long quot, rem;
};

extern "C" {
ldiv_t ldiv(long dividend, long divisor);
lldiv_t lldiv(long long dividend, long long divisor);
void* malloc(size_t size);
void free(void* memory);
int atexit(void (*function)(void));
void abort(void) __attribute__((noreturn));
}
