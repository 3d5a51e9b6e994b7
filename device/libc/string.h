// libSystem's memory and string functions, as libc++'s headers and our sources use them.
#pragma once

#include <stddef.h>

extern "C" {
void* memchr(void const* bytes, int wanted, size_t count);
int memcmp(void const* a, void const* b, size_t count);
void* memcpy(void* destination, void const* source, size_t count);
void* memmove(void* destination, void const* source, size_t count);
void* memset(void* destination, int value, size_t count);
char* strchr(char const* text, int wanted);
char* strpbrk(char const* text, char const* wanted);
char* strrchr(char const* text, int wanted);
char* strstr(char const* text, char const* wanted);
size_t strlen(char const* text);
}
