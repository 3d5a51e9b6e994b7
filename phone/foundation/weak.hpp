// Zeroing weak references, which neither GNU libobjc nor this GNUstep has: delegates, targets, superviews.
// Main thread, but for objects that go on another thread meanwhile.
#pragma once

#include "objc/ref.hpp"

namespace phone {

// Called once by defineFoundation(): from then on an object that goes clears the references to it.
void installWeakReferences();

class WeakReference {
public:
    WeakReference() = default;
    explicit WeakReference(objc::handle object) { set(object); }
    WeakReference(WeakReference const& other) { set(other.get()); }
    WeakReference& operator=(WeakReference const& other)
    {
        set(other.get());
        return *this;
    }
    ~WeakReference() { set({}); }

    // Lent; nil once the object has gone.
    objc::handle get() const;
    void set(objc::handle object);

private:
    friend class WeakTable;
    id m_object = nullptr;
};

// The same with the object's class.
template <class T>
class Weak {
public:
    Weak() = default;
    Weak(T object)
        : m_reference(object)
    {
    }
    T get() const { return T { m_reference.get().object }; }
    operator T() const { return get(); }
    Weak& operator=(T object)
    {
        m_reference.set(object);
        return *this;
    }
    explicit operator bool() const { return bool(m_reference.get()); }

private:
    WeakReference m_reference;
};

}
