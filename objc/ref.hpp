// Owning references: retain on the way in, release on the way out.
#pragma once

#include "objc/handle.hpp"

#include <utility>

namespace objc {

template <class T>
class ref {
    static_assert(is_handle<T>);

public:
    constexpr ref() = default;
    constexpr ref(std::nullptr_t) { }
    ref(ref const& other)
        : m_held(other.m_held)
    {
        m_held.template send<"retain", handle>();
    }
    ref(ref&& other) noexcept
        : m_held(std::exchange(other.m_held, T {}))
    {
    }
    ref& operator=(ref other) noexcept
    {
        std::swap(m_held, other.m_held);
        return *this;
    }
    ~ref() { m_held.template send<"release">(); }

    T get() const { return m_held; }
    operator T() const { return m_held; }
    T const* operator->() const { return &m_held; }
    explicit operator bool() const { return bool(m_held); }
    friend bool operator==(ref const& a, ref const& b) { return a.m_held == b.m_held; }

    template <class U>
    friend ref<U> adopt(U owned);
    template <class U>
    friend U leak(ref<U> owner);

private:
    T m_held {};
};

// Takes over a reference that the caller owns: results of alloc/init, new, copy, mutableCopy.
template <class T>
ref<T> adopt(T owned)
{
    ref<T> taken;
    taken.m_held = owned;
    return taken;
}

// Keeps what was lent.
template <class T>
ref<T> retain(T lent)
{
    lent.template send<"retain", handle>();
    return adopt(lent);
}

// Gives the reference away: whoever takes the handle owes a release.
template <class T>
T leak(ref<T> owner)
{
    return std::exchange(owner.m_held, T {});
}

// Hands an owned result to the caller's autorelease pool, as a method that answers a lent object must.
template <class T>
T autorelease(ref<T> owner)
{
    return T { leak(std::move(owner)).template send<"autorelease", handle>().object };
}

}
