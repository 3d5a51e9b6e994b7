// What libc++'s headers want of <math.h>: the classes of floating numbers, with libSystem's values. Its own functions come
// from the compiler; we call none of libSystem's.
#pragma once

#define FP_NAN 1
#define FP_INFINITE 2
#define FP_ZERO 3
#define FP_NORMAL 4
#define FP_SUBNORMAL 5
