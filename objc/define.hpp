// Classes of our own, defined as a table:
//
//     objc::define<CVLClockBadge>()
//         .property<"label", UILabel>(objc::strong)      // _label, -label, -setLabel:
//         .property<"showsSeconds", BOOL>()
//         .method<"initWithFrame:", &CVLClockBadge::initWithFrame>()
//         .install();
//
// The name and the superclass are those of the handle. Where the system lacks the superclass, or has a class
// of that name already, nothing is defined and nothing fails.
#pragma once

#include "objc/encoding.hpp"
#include "objc/ref.hpp"

#include <bit>
#include <vector>

namespace objc {

enum class ownership { assign, strong, copy };
inline constexpr ownership assign = ownership::assign;
inline constexpr ownership strong = ownership::strong;
inline constexpr ownership copy = ownership::copy;

// Instance variables move when a superclass grows, so their offset is asked for at the first use.
struct named_ivar {
    named_class* owner;
    char const* name;
    std::ptrdiff_t offset;   // bytes; 0 until it is known, since an object starts with its class
};
template <class T, fixed_string Name>
inline constinit named_ivar ivar_record { &class_record<T::class_name>, Name.c_str(), 0 };

[[gnu::noinline]] inline void* ivar_storage(id object, named_ivar& record)
{
    if (!record.offset)
        record.offset = ivar_getOffset(class_getInstanceVariable(look_up(*record.owner), record.name));
    return reinterpret_cast<char*>(object) + record.offset;
}

// The storage of an instance variable, by its name with the underscore. The object must not be nil, and its
// class must have the variable: meant for classes that we define.
template <class V, fixed_string Name, class T>
V& ivar(T self)
{
    return *static_cast<V*>(ivar_storage(self.object, ivar_record<T, Name>));
}

// Whether the object's class has an instance variable of that name.
inline bool has_ivar(handle object, char const* name)
{
    return object && class_getInstanceVariable(boundary::class_of(object.object), name);
}

// An object in an instance variable, read by name from an object of any class. None where the class has no
// such variable.
inline handle object_ivar(handle object, char const* name)
{
    if (!object)
        return {};
    Ivar const variable = class_getInstanceVariable(boundary::class_of(object.object), name);
    if (!variable)
        return {};
    return handle { *reinterpret_cast<id*>(
        reinterpret_cast<char*>(object.object) + ivar_getOffset(variable)) };
}

// A C++ value that belongs to an object, made when it is first asked for and destroyed with the object.
// T's table has a row state<S>(). The variable is named after the class, since GNU libobjc refuses a
// variable whose name a superclass has taken.
template <class T>
inline constexpr auto state_ivar_name = fixed_string { "_stateOf" } + T::class_name;

template <class S, class T>
S& state(T self)
{
    S*& held = ivar<S*, state_ivar_name<T>>(self);
    if (!held)
        held = new S();
    return *held;
}

template <auto Function>
struct method_thunk;
template <class R, class C, class... A, R (C::*Function)(A...) const>
struct method_thunk<Function> {
    static constexpr auto encoding = method_encoding<R, A...>;
    static constexpr std::size_t arity = sizeof...(A);
    template <class T>
    static boundary::wire_t<R> enter(id self, SEL, boundary::wire_t<A>... arguments)
    {
        static_assert(is_handle<T>);
        T const receiver { self };
        if constexpr (std::is_void_v<R>)
            (receiver.*Function)(boundary::wire<A>::narrow(arguments)...);
        else
            return boundary::wire<R>::widen((receiver.*Function)(boundary::wire<A>::narrow(arguments)...));
    }
};
template <class R, class C, class... A, R (C::*Function)(A...)>
struct method_thunk<Function> {
    static constexpr auto encoding = method_encoding<R, A...>;
    static constexpr std::size_t arity = sizeof...(A);
    template <class T>
    static boundary::wire_t<R> enter(id self, SEL, boundary::wire_t<A>... arguments)
    {
        static_assert(is_handle<T>);
        T receiver { self };
        if constexpr (std::is_void_v<R>)
            (receiver.*Function)(boundary::wire<A>::narrow(arguments)...);
        else
            return boundary::wire<R>::widen((receiver.*Function)(boundary::wire<A>::narrow(arguments)...));
    }
};
// Class methods: static functions. One that cares which subclass was asked takes a class_handle first.
template <auto Function, class R, class... A>
struct class_method_thunk {
    static constexpr auto encoding = method_encoding<R, A...>;
    static constexpr std::size_t arity = sizeof...(A);
    template <class T>
    static boundary::wire_t<R> enter(id, SEL, boundary::wire_t<A>... arguments)
    {
        if constexpr (std::is_void_v<R>)
            Function(boundary::wire<A>::narrow(arguments)...);
        else
            return boundary::wire<R>::widen(Function(boundary::wire<A>::narrow(arguments)...));
    }
};
template <auto Function, class R, class... A>
struct class_method_thunk<Function, R, class_handle, A...> {
    static constexpr auto encoding = method_encoding<R, A...>;
    static constexpr std::size_t arity = sizeof...(A);
    template <class T>
    static boundary::wire_t<R> enter(id self, SEL, boundary::wire_t<A>... arguments)
    {
        class_handle const receiver { reinterpret_cast<Class>(self) };
        if constexpr (std::is_void_v<R>)
            Function(receiver, boundary::wire<A>::narrow(arguments)...);
        else
            return boundary::wire<R>::widen(Function(receiver, boundary::wire<A>::narrow(arguments)...));
    }
};
template <class R, class... A, R (*Function)(A...)>
struct method_thunk<Function> : class_method_thunk<Function, R, A...> {
};

// A row of a class's table. Does nothing without a class.
[[gnu::noinline]] inline void add_method(Class cls, char const* selector, IMP code, char const* encoding)
{
    if (cls)
        class_addMethod(cls, sel_registerName(selector), boundary::leaving(code), encoding);
}

template <class T>
class define {
    static_assert(is_handle<T>);

public:
    define()
    {
        Class const superclass = T::superclass::cls().get();
        if (superclass && !objc_getClass(T::class_name.c_str()))
            m_class = objc_allocateClassPair(superclass, T::class_name.c_str(), 0);
    }
    define(define const&) = delete;
    define& operator=(define const&) = delete;

    // An instance variable, with the name as it stands. A strong one is released with the object.
    template <fixed_string Name, class V>
    define& ivar(ownership kind = assign)
    {
        if (!m_class)
            return *this;
        constexpr auto log2Alignment = static_cast<std::uint8_t>(std::countr_zero(alignof(V)));
        class_addIvar(m_class, Name.c_str(), sizeof(V), log2Alignment, encoding<V>::value.c_str());
        if constexpr (std::is_base_of_v<handle, V>) {
            if (kind != assign)
                cleanups().push_back([](id self) { release_ivar<Name>(T { self }); });
        }
        return *this;
    }

    // A property with the platform's accessor names, backed by a variable with a leading underscore.
    template <fixed_string Name, class V>
    define& property(ownership kind = assign)
    {
        ivar<ivar_name(Name), V>(kind);
        add<Name>(&getter<Name, V>, method_encoding<V>.c_str());
        if (kind == strong)
            add<setter_name(Name)>(&setter<Name, V, strong>, method_encoding<void, V>.c_str());
        else if (kind == copy)
            add<setter_name(Name)>(&setter<Name, V, copy>, method_encoding<void, V>.c_str());
        else
            add<setter_name(Name)>(&setter<Name, V, assign>, method_encoding<void, V>.c_str());
        return *this;
    }

    // See objc::state.
    template <class S>
    define& state()
    {
        ivar<state_ivar_name<T>, void*>();
        cleanups().push_back(
            [](id self) { delete std::exchange(objc::ivar<S*, state_ivar_name<T>>(T { self }), nullptr); });
        return *this;
    }

    template <fixed_string Selector, auto Function>
    define& method()
    {
        using thunk = method_thunk<Function>;
        static_assert(Selector.count(':') == thunk::arity, "one argument for each colon of the selector");
        add<Selector>(&thunk::template enter<T>, thunk::encoding.c_str());
        return *this;
    }

    template <fixed_string Selector, auto Function>
    define& class_method()
    {
        using thunk = method_thunk<Function>;
        static_assert(Selector.count(':') == thunk::arity, "one argument for each colon of the selector");
        if (m_class)
            class_addMethod(boundary::class_of(reinterpret_cast<id>(m_class)), selector<Selector>(),
                boundary::leaving(boundary::any_function(&thunk::template enter<T>)),
                thunk::encoding.c_str());
        return *this;
    }

    // Declares conformance. A protocol that the runtime does not know is passed over.
    template <fixed_string Name>
    define& protocol()
    {
        if (Protocol* const known = m_class ? objc_getProtocol(Name.c_str()) : nullptr)
            class_addProtocol(m_class, known);
        return *this;
    }

    void install()
    {
        if (!m_class)
            return;
        if (!cleanups().empty())
            add<"dealloc">(&dealloc, method_encoding<void>.c_str());
        objc_registerClassPair(m_class);
    }

private:
    // What to undo when an instance goes, in the order of the table.
    static std::vector<void (*)(id)>& cleanups()
    {
        static std::vector<void (*)(id)> rows;
        return rows;
    }

    template <fixed_string Selector, class F>
    void add(F* code, char const* encoding)
    {
        add_method(m_class, selector_record<Selector>.name, boundary::any_function(code), encoding);
    }

    template <fixed_string Name>
    static void release_ivar(T self)
    {
        std::exchange(objc::ivar<handle, Name>(self), handle {}).template send<"release">();
    }

    template <fixed_string Name, class V>
    static boundary::wire_t<V> getter(id self, SEL)
    {
        return boundary::wire<V>::widen(objc::ivar<V, ivar_name(Name)>(T { self }));
    }

    template <fixed_string Name, class V, ownership Kind>
    static void setter(id self, SEL, boundary::wire_t<V> value)
    {
        V& held = objc::ivar<V, ivar_name(Name)>(T { self });
        if constexpr (Kind == assign || !std::is_base_of_v<handle, V>) {
            held = boundary::wire<V>::narrow(value);
        } else {
            if constexpr (Kind == copy)
                value = V { value.template send<"copy", handle>().object };
            else
                value.template send<"retain", handle>();
            std::exchange(held, value).template send<"release">();
        }
    }

    static void dealloc(id object, SEL)
    {
        for (auto* const cleanup : cleanups())
            cleanup(object);
        send_super<T, "dealloc">(T { object });
    }

    Class m_class = nullptr;
};

}
