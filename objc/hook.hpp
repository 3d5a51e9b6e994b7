// Hooks: a replacement and the implementation that it replaced, with one signature.
//
//     struct ViewDidLoad {
//         static inline objc::original<void(UIViewController, SEL)> original;
//         static void replacement(UIViewController self, SEL cmd) { original(self, cmd); ... }
//     };
//     objc::hook<ViewDidLoad>()    // a row of the hook table
#pragma once

#include "objc/encoding.hpp"

namespace objc {

// The implementation that a hook replaced. Calling it before the hook is installed, or when there was
// nothing to replace, does nothing and answers zero.
template <class Signature>
class original;
template <class R, class T, class... A>
class original<R(T, SEL, A...)> {
public:
    R operator()(T self, SEL selector, A... arguments) const
    {
        if (!m_code)
            return R();
        return call_implementation<R, A...>(boundary::entering(m_code), self.object, selector, arguments...);
    }
    IMP* slot() { return &m_code; }

private:
    IMP m_code = nullptr;   // as the hooking engine stored it: signed where the system signs
};

struct hook_pair {
    IMP replacement;
    IMP* slot;
};

template <auto Replacement>
struct hook_thunk;
template <class R, class T, class... A, R (*Replacement)(T, SEL, A...)>
struct hook_thunk<Replacement> {
    static_assert(is_handle<T>, "a replacement takes its receiver as a handle");
    static constexpr auto encoding = method_encoding<R, A...>;

    static boundary::wire_t<R> enter(id self, SEL selector, boundary::wire_t<A>... arguments)
    {
        if constexpr (std::is_void_v<R>)
            Replacement(T { self }, selector, boundary::wire<A>::narrow(arguments)...);
        else
            return boundary::wire<R>::widen(
                Replacement(T { self }, selector, boundary::wire<A>::narrow(arguments)...));
    }
};

template <class Original, class Replacement>
inline constexpr bool same_signature = false;
template <class R, class T, class... A>
inline constexpr bool same_signature<original<R(T, SEL, A...)>, R (*)(T, SEL, A...)> = true;

template <class Pair>
hook_pair hook()
{
    static_assert(same_signature<decltype(Pair::original), decltype(&Pair::replacement)>,
        "the replacement and the original have one signature");
    return { boundary::any_function(&hook_thunk<&Pair::replacement>::enter), Pair::original.slot() };
}

// A method that is added to a class which lacks it: the same, without an original.
template <auto Function>
IMP added_method()
{
    return boundary::any_function(&hook_thunk<Function>::enter);
}

}
