// What libc++'s headers want of <stdio.h>. Nothing of it is called; `remove` is declared since they bring it into the same
// namespace as the algorithm of that name.
#pragma once

#define EOF (-1)

extern "C" int remove(char const* path);
