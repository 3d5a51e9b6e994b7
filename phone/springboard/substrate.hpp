// Substrate's part of the phone: replacing methods. Plug-ins reach it through the exported C function
// MSHookMessageEx, and through the runtime's class_addMethod. Main thread.
//
// Both are recorded (`hook`, `addMethod`) in the order of installation.
#pragma once

#include "objc/abi.hpp"

#include <string>

extern "C" {
// Replaces an instance method (of a class method: give the metaclass). *previous, when asked for, receives the
// implementation that was there, before the replacement goes live.
// A nil class, a nil replacement or a selector that the class does not answer: nothing happens, *previous is
// left as it is. An inherited method is added to the class itself, and what *previous receives then looks the
// superclass's method up at each call, so that a later hook there is honoured. Hooks stack.
void MSHookMessageEx(Class cls, SEL selector, IMP replacement, IMP* previous);
}

namespace phone {

// Has a plug-in replaced this method of this very class? SpringBoard's own implementations ask, to tell when
// they are called (`previous`).
bool isHooked(Class cls, SEL selector);

// Code that calls the superclass's implementation of the selector with whatever arguments it is given, looked
// up anew at each call. Lives as long as the process. Null when the machine refuses executable memory.
IMP superclassCall(Class cls, SEL selector);

}
