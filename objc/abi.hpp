// The Objective-C runtime's C interface, as far as we use it. Declared here rather than included, since
// the headers of GNU libobjc and of Apple's runtime differ where their binaries do not.
// Everything else in the bridge stands on this file and on boundary.hpp.
#pragma once

#include <cstddef>
#include <cstdint>

struct objc_object;
struct objc_class;
struct objc_selector;
struct objc_method;
struct objc_ivar;
struct objc_protocol;

using id = objc_object*;
using Class = objc_class*;
using SEL = objc_selector const*;
using Method = objc_method*;
using Ivar = objc_ivar*;
using Protocol = objc_protocol;
using IMP = void (*)();
using BOOL = bool;
using NSInteger = long;
using NSUInteger = unsigned long;

inline constexpr std::uintptr_t OBJC_ASSOCIATION_RETAIN_NONATOMIC = 1;

namespace objc {

// What a runtime function that answers BOOL leaves in the register: only the low byte is defined
// (GNU's BOOL is an unsigned char, Apple's a bool). Read it with is_true.
using raw_bool = unsigned;
constexpr bool is_true(raw_bool answer) { return (answer & 0xffu) != 0; }

}

extern "C" {
Class objc_getClass(char const* name);
Protocol* objc_getProtocol(char const* name);
Class objc_allocateClassPair(Class superclass, char const* name, std::size_t extraBytes);
void objc_registerClassPair(Class cls);

SEL sel_registerName(char const* name);
char const* sel_getName(SEL selector);

char const* class_getName(Class cls);
Class class_getSuperclass(Class cls);
objc::raw_bool class_addIvar(
    Class cls, char const* name, std::size_t size, std::uint8_t log2Alignment, char const* encoding);
objc::raw_bool class_addMethod(Class cls, SEL selector, IMP implementation, char const* encoding);
objc::raw_bool class_addProtocol(Class cls, Protocol* protocol);
objc::raw_bool class_respondsToSelector(Class cls, SEL selector);
Ivar class_getInstanceVariable(Class cls, char const* name);
Method class_getInstanceMethod(Class cls, SEL selector);
IMP class_getMethodImplementation(Class cls, SEL selector);
std::ptrdiff_t ivar_getOffset(Ivar ivar);

// An object that another one keeps as long as it lives, under a key that is an address.
void objc_setAssociatedObject(id object, void const* key, id value, std::uintptr_t policy);

// Blocks: the published ABI, the same symbols in libBlocksRuntime and in Apple's libSystem.
extern void* _NSConcreteStackBlock[32];
void* _Block_copy(void const* block);
void _Block_release(void const* block);
}
