// Replacing methods of Foundation's classes: what GNUstep Base does on this machine's clock and disk, the phone
// does on its own. Each replacement keeps what it replaced.
#pragma once

#include "objc/encoding.hpp"

namespace phone {

// Gives the class the implementation, as its own method, and answers the one it had or inherited; null when
// it had none. The class's metaclass stands for class methods.
IMP replaceMethod(Class cls, SEL selector, IMP implementation, char const* encoding);

// Rows: the replacement is a function of receiver, selector and arguments.
//     static Replaced<id(id, SEL, id)> g_previous;
//     replace<"initWithContentsOfFile:">("NSArray", &initWithContents, g_previous);
template <class Signature>
struct Replaced;
template <class R, class... A>
struct Replaced<R(id, SEL, A...)> {
    R (*function)(id, SEL, A...) = nullptr;
    R operator()(id self, SEL cmd, A... arguments) const { return function(self, cmd, arguments...); }
};

enum class MethodKind { instance, ofClass };

template <objc::fixed_string Selector, class R, class... A>
void replace(char const* className, R (*implementation)(id, SEL, A...), Replaced<R(id, SEL, A...)>& previous,
    MethodKind kind = MethodKind::instance)
{
    Class cls = objc_getClass(className);
    if (!cls)
        return;
    if (kind == MethodKind::ofClass)
        cls = objc::boundary::class_of(reinterpret_cast<id>(cls));
    IMP const former = replaceMethod(cls, objc::selector<Selector>(),
        objc::boundary::any_function(implementation), objc::method_encoding<R, A...>.c_str());
    previous.function = objc::boundary::function_cast<R(id, SEL, A...)>(former);
}
template <objc::fixed_string Selector, class R, class... A>
void replace(
    char const* className, R (*implementation)(id, SEL, A...), MethodKind kind = MethodKind::instance)
{
    Replaced<R(id, SEL, A...)> forgotten;
    replace<Selector>(className, implementation, forgotten, kind);
}

}
