// Handles: a pointer to an object, with the object's class as its C++ type. One pointer, trivially
// copyable, owning nothing; nil is a handle like any other and answers zero to every message.
#pragma once

#include "objc/boundary.hpp"
#include "objc/fixed_string.hpp"

#include <cstddef>
#include <type_traits>

namespace objc {

template <class T>
class ref;
template <class Signature>
struct block_ref;

// What is looked up by name, once a program: a record for each name and one function for all of them, so that
// the code of a use is a call and no more.
struct named_selector {
    char const* name;
    SEL found;
};
struct named_class {
    char const* name;
    Class found;
};
template <fixed_string Name>
inline constinit named_selector selector_record { Name.c_str(), nullptr };
template <fixed_string Name>
inline constinit named_class class_record { Name.c_str(), nullptr };

[[gnu::noinline]] inline SEL look_up(named_selector& record)
{
    if (!record.found)
        record.found = sel_registerName(record.name);
    return record.found;
}
[[gnu::noinline]] inline Class look_up(named_class& record)
{
    if (!record.found)
        record.found = objc_getClass(record.name);
    return record.found;
}

// The registered selector of a name.
template <fixed_string Name>
SEL selector()
{
    return look_up(selector_record<Name>);
}

[[gnu::noinline]] inline bool responds_to(id object, named_selector& record)
{
    return object && is_true(class_respondsToSelector(boundary::class_of(object), look_up(record)));
}

struct handle {
    id object = nullptr;

    constexpr handle() = default;
    constexpr handle(std::nullptr_t) { }
    constexpr explicit handle(id object)
        : object(object)
    {
    }

    constexpr explicit operator bool() const { return object != nullptr; }
    friend constexpr bool operator==(handle a, handle b) { return a.object == b.object; }

    // One message: send<"setFrame:">(frame), send<"text", NSString>(). Zero of R from nil. Arguments are
    // passed as they are typed, so give them the type that the method takes.
    template <fixed_string Selector, class R = void, class... A>
    R send(A const&... arguments) const;

    // The same, if the object answers to the selector; otherwise zero. For what a system version may lack.
    template <fixed_string Selector, class R = void, class... A>
    R ask(A const&... arguments) const;

    template <fixed_string Selector>
    bool responds() const
    {
        return responds_to(object, selector_record<Selector>);
    }
};

template <class T>
concept is_handle = std::is_base_of_v<handle, T> && sizeof(T) == sizeof(void*)
    && std::is_trivially_copyable_v<T>&& std::is_trivially_destructible_v<T>;

// A class object, as the receiver of class messages.
struct class_handle : handle {
    using handle::handle;
    explicit class_handle(Class cls)
        : handle(reinterpret_cast<id>(cls))
    {
    }
    Class get() const { return reinterpret_cast<Class>(object); }
};

// The class of a name, nil when the running system has none. Found ones are remembered; a missing one is
// looked for again at the next call, since it may be registered later.
template <fixed_string Name>
class_handle cls()
{
    return class_handle { look_up(class_record<Name>) };
}

// The base of every typed handle:
//     struct UILabel : objc::subclass<UILabel, "UILabel", UIView> { using subclass::subclass; ... };
template <class Self, fixed_string Name, class Super>
struct subclass : Super {
    using Super::Super;
    using superclass = Super;
    static constexpr auto class_name = Name;

    static class_handle cls() { return objc::cls<Name>(); }
    static Self alloc() { return cls().template send<"alloc", Self>(); }   // +1: adopt what init answers
};

// What travels when a value is given to a message: owning references and blocks lend what they hold.
template <class T>
constexpr T const& lent(T const& value)
{
    return value;
}
template <class T>
T lent(ref<T> const& owner)
{
    return owner.get();
}
inline handle lent(std::nullptr_t) { return {}; }
template <class T>
using lent_t = std::remove_cvref_t<decltype(lent(std::declval<T const&>()))>;

template <class R, class... A>
R call_implementation(IMP code, id receiver, SEL selector, A... arguments)
{
    static_assert((std::is_trivially_copyable_v<A> && ...), "only plain values travel in a message");
    using wired = boundary::wired<R(id, SEL, A...)>;
    return wired::call(
        boundary::function_cast<typename wired::function>(code), receiver, selector, arguments...);
}

template <fixed_string Selector, class R, class... A>
R handle::send(A const&... arguments) const
{
    static_assert(Selector.count(':') == sizeof...(A), "one argument for each colon of the selector");
    static_assert(
        std::is_void_v<R> || std::is_trivially_copyable_v<R>, "only plain values travel in a message");
    if (!object)
        return R();
    SEL const name = selector<Selector>();
    return call_implementation<R, lent_t<A>...>(
        boundary::message_implementation(object, name), object, name, lent(arguments)...);
}

template <fixed_string Selector, class R, class... A>
R handle::ask(A const&... arguments) const
{
    if (!responds<Selector>())
        return R();
    return send<Selector, R>(arguments...);
}

// The implementation that T's superclass has of the selector, sent to self: for use inside T's methods.
template <class T, fixed_string Selector, class R = void, class... A>
R send_super(T self, A const&... arguments)
{
    static_assert(Selector.count(':') == sizeof...(A), "one argument for each colon of the selector");
    if (!self)
        return R();
    SEL const name = selector<Selector>();
    IMP const code = class_getMethodImplementation(class_getSuperclass(T::cls().get()), name);
    return call_implementation<R, lent_t<A>...>(
        boundary::entering(code), self.object, name, lent(arguments)...);
}

// A handle of class T if the object is one (or of a subclass), nil otherwise: for values that come from
// outside, which may be of any kind.
template <class T>
T cast(handle object)
{
    class_handle const wanted = T::cls();
    if (object && wanted && object.send<"isKindOfClass:", bool>(wanted))
        return T { object.object };
    return {};
}

}
