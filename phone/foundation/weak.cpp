#include "phone/foundation/weak.hpp"

#include <array>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <unordered_map>

extern "C" {
IMP method_setImplementation(Method method, IMP implementation);
void __objc_update_dispatch_table_for_class(Class cls);
}

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

using DeallocationObserver = void (*)(id);
std::array<std::atomic<DeallocationObserver>, 4> g_deallocationObservers {};

using Dealloc = void (*)(id, SEL);
Dealloc g_objectDealloc = nullptr;

void deallocAndEmptyCell(id object, SEL cmd)
{
    for (auto const& each : g_deallocationObservers) {
        DeallocationObserver const observer = each.load(std::memory_order_relaxed);
        if (!observer)
            break;
        observer(object);
    }
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
        Class const root = objc_getClass("NSObject");
        Method const dealloc = class_getInstanceMethod(root, sel_registerName("dealloc"));
        g_objectDealloc = reinterpret_cast<Dealloc>(
            method_setImplementation(dealloc, objc::boundary::any_function(&deallocAndEmptyCell)));
        // GNU libobjc tells NSObject alone; classes that are in use would keep the old one.
        __objc_update_dispatch_table_for_class(root);
        return true;
    }();
    static_cast<void>(isWatching);
}

}

void observeDeallocations(DeallocationObserver observer)
{
    watchDeallocations();
    for (auto& each : g_deallocationObservers) {
        DeallocationObserver free = nullptr;
        if (each.compare_exchange_strong(free, observer))
            return;
    }
    std::abort();
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
