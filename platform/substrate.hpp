// The hooking engine that loaded us.
#pragma once

#include "objc/abi.hpp"

// Replaces the class's implementation of the selector and stores the previous one in *original before it does. A nil class or
// a selector without implementation: nothing happens, *original is untouched.
extern "C" void MSHookMessageEx(Class cls, SEL selector, IMP replacement, IMP* original);
