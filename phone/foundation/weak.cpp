#include "phone/foundation/weak.hpp"

#include <atomic>
#include <mutex>
#include <unordered_map>

extern "C" IMP method_setImplementation(Method method, IMP implementation);

namespace phone {

namespace {

struct Cells {
    std::mutex mutex;   // guards byObject
    std::unordered_map<id, std::shared_ptr<id>> byObject;
    std::atomic<std::size_t> count { 0 };   // so that objects without weak references pay one load
};

// Never destroyed: objects may still be released while the process exits.
Cells& cells()
{
    static Cells* const all = new Cells;
    return *all;
}

using Dealloc = void (*)(id, SEL);
Dealloc g_objectDealloc = nullptr;

void deallocAndEmptyCell(id object, SEL cmd)
{
    Cells& all = cells();
    if (all.count.load(std::memory_order_relaxed)) {
        std::lock_guard const lock(all.mutex);
        if (auto const found = all.byObject.find(object); found != all.byObject.end()) {
            *found->second = nullptr;
            all.byObject.erase(found);
            all.count.store(all.byObject.size(), std::memory_order_relaxed);
        }
    }
    g_objectDealloc(object, cmd);
}

void watchDeallocations()
{
    static bool const isWatching = [] {
        Method const dealloc =
            class_getInstanceMethod(objc_getClass("NSObject"), sel_registerName("dealloc"));
        g_objectDealloc = reinterpret_cast<Dealloc>(
            method_setImplementation(dealloc, objc::boundary::any_function(&deallocAndEmptyCell)));
        return true;
    }();
    static_cast<void>(isWatching);
}

}

std::shared_ptr<id> weakCell(id object)
{
    if (!object)
        return nullptr;
    watchDeallocations();
    Cells& all = cells();
    std::lock_guard const lock(all.mutex);
    std::shared_ptr<id>& cell = all.byObject[object];
    if (!cell) {
        cell = std::make_shared<id>(object);
        all.count.store(all.byObject.size(), std::memory_order_relaxed);
    }
    return cell;
}

}
