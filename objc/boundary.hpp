// Where our code meets the runtime's: the few places at which the binaries of two systems differ.
// Nothing outside this file tests for a compiler or a system.
#pragma once

#include "objc/abi.hpp"

#include <type_traits>

// GNU libobjc looks an implementation up and lets the caller call it; Apple's runtime does both in one.
#if defined(__APPLE__)
extern "C" void objc_msgSend(void);
#else
extern "C" IMP objc_msg_lookup(id receiver, SEL selector);
#endif

namespace objc::boundary {

#if defined(__APPLE__)
inline IMP message_implementation(id, SEL) { return objc_msgSend; }
#else
inline IMP message_implementation(id receiver, SEL selector) { return objc_msg_lookup(receiver, selector); }
#endif

// The class an object is an instance of. Both runtimes keep it in the first word; Apple's may pack bits
// beside it, so it is asked there.
#if defined(__APPLE__)
extern "C" Class object_getClass(id object);
inline Class class_of(id object) { return object_getClass(object); }
#else
inline Class class_of(id object) { return object ? *reinterpret_cast<Class*>(object) : nullptr; }
#endif

// Pointer authentication (arm64e). Our image keeps plain code pointers inside; what leaves for the runtime
// is signed here, what comes in is authenticated here. Elsewhere these are the identity.
#if defined(__has_feature)
#    if __has_feature(ptrauth_intrinsics)
#        define CORVEL_BOUNDARY_SIGNS 1
#    endif
#endif

#if defined(CORVEL_BOUNDARY_SIGNS)
// Key IA, discriminator 0: C function pointers and method implementations.
template <class F>
F* leaving(F* function)
{
    return function ? reinterpret_cast<F*>(
               __builtin_ptrauth_sign_unauthenticated(reinterpret_cast<void*>(function), 0, 0))
                    : function;
}
template <class F>
F* entering(F* function)
{
    return function ? reinterpret_cast<F*>(__builtin_ptrauth_auth(reinterpret_cast<void*>(function), 0, 0))
                    : function;
}
// Function pointers inside a block or its descriptor: key IA, discriminated by the field's address.
template <class F>
void store_code(F** field, F* function)
{
    *field = reinterpret_cast<F*>(
        __builtin_ptrauth_sign_unauthenticated(reinterpret_cast<void*>(function), 0, field));
}
template <class F>
F* load_code(F* const* field)
{
    return reinterpret_cast<F*>(__builtin_ptrauth_auth(reinterpret_cast<void*>(*field), 0, field));
}
// A block's isa: key DA, the field's address blended with the runtime's constant 0x6AE1.
inline void store_isa(void** field, void* isa)
{
    *field =
        __builtin_ptrauth_sign_unauthenticated(isa, 2, __builtin_ptrauth_blend_discriminator(field, 0x6ae1));
}
#    undef CORVEL_BOUNDARY_SIGNS
#else
template <class F>
F* leaving(F* function)
{
    return function;
}
template <class F>
F* entering(F* function)
{
    return function;
}
#    if defined(CORVEL_HOST_AUTHENTICATES)
// The phone on arm64, which may have loaded a library that signs: only blocks travel between the two in memory.
extern "C" void* corvel_host_sign_code(void* code, void const* field);
extern "C" void* corvel_host_authenticate_code(void* code, void const* field);
extern "C" void* corvel_host_sign_isa(void* isa, void const* field);
template <class F>
void store_code(F** field, F* function)
{
    *field = reinterpret_cast<F*>(corvel_host_sign_code(reinterpret_cast<void*>(function), field));
}
template <class F>
F* load_code(F* const* field)
{
    return reinterpret_cast<F*>(corvel_host_authenticate_code(reinterpret_cast<void*>(*field), field));
}
inline void store_isa(void** field, void* isa) { *field = corvel_host_sign_isa(isa, field); }
#    else
template <class F>
void store_code(F** field, F* function)
{
    *field = function;
}
template <class F>
F* load_code(F* const* field)
{
    return *field;
}
inline void store_isa(void** field, void* isa) { *field = isa; }
#    endif
#endif

// Integers narrower than a register. Apple's arm64 has the caller extend arguments and the callee extend
// results, the Linux ABIs have nobody do it: so we pass and take whole registers and cut them ourselves.
template <class T>
struct wire {
    using type = T;
    static constexpr T narrow(type value) { return value; }
    static constexpr type widen(T value) { return value; }
};
template <class T>
requires(std::is_integral_v<T> && sizeof(T) < sizeof(int)) struct wire<T> {
    using type = std::conditional_t<std::is_signed_v<T>, int, unsigned>;
    static constexpr T narrow(type value)
    {
        if constexpr (std::is_same_v<T, bool>)
            return is_true(value);
        else
            return static_cast<T>(value);
    }
    static constexpr type widen(T value) { return static_cast<type>(value); }
};
template <>
struct wire<void> {
    using type = void;
};
template <class T>
using wire_t = typename wire<T>::type;

template <class Signature>
struct wired;
template <class R, class... A>
struct wired<R(A...)> {
    using function = wire_t<R>(wire_t<A>...);

    static R call(function* code, A... arguments)
    {
        if constexpr (std::is_void_v<R>)
            code(wire<A>::widen(arguments)...);
        else
            return wire<R>::narrow(code(wire<A>::widen(arguments)...));
    }
};

// Function pointers of different signatures: through void (*)(), which the compiler knows as "any".
template <class To>
To* function_cast(IMP code)
{
    return reinterpret_cast<To*>(code);
}
template <class F>
IMP any_function(F* code)
{
    return reinterpret_cast<IMP>(code);
}

}
