// Weak: a reference that doesn't keep its object alive and reads as nil once the object is gone, as a
// delegate, a data source, a recogniser's target or a superview is held. Any object whose class descends
// from NSObject; any thread may release it, but reading belongs to the main thread.
#pragma once

#include "objc/handle.hpp"

#include <memory>

namespace phone {

// The cell shared by all weak references to one object; null for nil. It is emptied when the object's
// -dealloc reaches NSObject. GNU libobjc has no weak references of its own, so the first call puts our
// function in front of -[NSObject dealloc].
std::shared_ptr<id> weakCell(id object);

// Calls the function with each object whose -dealloc reaches NSObject, before it goes; any thread. For good;
// at most four functions.
void observeDeallocations(void (*observer)(id object));

template <class T>
class Weak {
public:
    Weak() = default;
    Weak(T object)
        : m_cell(weakCell(object.object))
    {
    }

    T get() const { return T { m_cell ? *m_cell : nullptr }; }
    operator T() const { return get(); }
    explicit operator bool() const { return bool(get()); }
    friend bool operator==(Weak const& a, Weak const& b) { return a.get() == b.get(); }

private:
    std::shared_ptr<id> m_cell;
};

}
