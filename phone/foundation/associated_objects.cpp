#include "phone/foundation/associated_objects.hpp"

#include "objc/ref.hpp"
#include "phone/foundation/weak.hpp"

#include <atomic>
#include <map>
#include <mutex>
#include <unordered_map>

namespace {

// objc_AssociationPolicy. The atomic ones (769, 771) are here no different from the others.
constexpr std::uintptr_t kRetainNonatomic = 1, kCopyNonatomic = 3, kRetain = 769, kCopy = 771;

// Keeps its value as the policy says.
class Association {
public:
    Association() = default;
    Association(id value, std::uintptr_t policy)
        : m_value(value)
    {
        if (policy == kRetain || policy == kRetainNonatomic)
            m_owner = objc::retain(objc::handle { value });
        else if (policy == kCopy || policy == kCopyNonatomic)
            m_owner = objc::adopt(objc::handle { value }.send<"copy", objc::handle>());
        if (m_owner)
            m_value = m_owner.get().object;
    }
    id value() const { return m_value; }

private:
    id m_value { nullptr };
    objc::ref<objc::handle> m_owner;
};

using Associations = std::map<void const*, Association>;   // by key

struct Table {
    std::mutex mutex;   // guards byObject
    std::unordered_map<id, Associations> byObject;
    std::atomic<std::size_t> count { 0 };   // so that other objects pay one load
};

// Never destroyed: objects may still be released while the process exits.
Table& table()
{
    static Table* const all = new Table;
    return *all;
}

// Out of the table first: a value that goes may look here itself.
Associations taken(id object)
{
    Table& all = table();
    if (!all.count.load(std::memory_order_relaxed))
        return {};
    std::lock_guard const lock(all.mutex);
    auto const found = all.byObject.find(object);
    if (found == all.byObject.end())
        return {};
    Associations associations = std::move(found->second);
    all.byObject.erase(found);
    all.count.store(all.byObject.size(), std::memory_order_relaxed);
    return associations;
}

}

extern "C" {

void objc_removeAssociatedObjects(id object);

void objc_setAssociatedObject(id object, void const* key, id value, std::uintptr_t policy)
{
    if (!object)
        return;
    // Holds the old value at the end, and lets go of it when the lock is gone: what goes may look here itself.
    Association association = value ? Association(value, policy) : Association();
    Table& all = table();
    std::lock_guard const lock(all.mutex);
    if (!value) {
        auto const found = all.byObject.find(object);
        if (found == all.byObject.end())
            return;
        auto const row = found->second.find(key);
        if (row == found->second.end())
            return;
        std::swap(association, row->second);
        found->second.erase(row);
        if (found->second.empty())
            all.byObject.erase(found);
    } else {
        std::swap(all.byObject[object][key], association);
    }
    all.count.store(all.byObject.size(), std::memory_order_relaxed);
}

id objc_getAssociatedObject(id object, void const* key)
{
    objc::ref<objc::handle> value;
    {
        Table& all = table();
        std::lock_guard const lock(all.mutex);
        auto const found = all.byObject.find(object);
        if (found == all.byObject.end())
            return nullptr;
        auto const row = found->second.find(key);
        if (row == found->second.end())
            return nullptr;
        value = objc::retain(objc::handle { row->second.value() });
    }
    return objc::autorelease(value).object;
}

void objc_removeAssociatedObjects(id object) { taken(object); }
}

namespace phone {

void watchAssociatedObjects()
{
    static bool const isWatching = [] {
        observeDeallocations([](id object) { taken(object); });
        return true;
    }();
    static_cast<void>(isWatching);
}

}
