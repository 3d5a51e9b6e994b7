#include "phone/foundation/notification_centers.hpp"

#include "phone/foundation/json_objects.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"

#include <algorithm>
#include <optional>
#include <vector>

double kCFCoreFoundationVersionNumber = 0;

struct CFNotificationCenter {
    struct Observer {
        void const* observer;
        CFNotificationCallback callback;
        std::optional<std::string> name;   // none: all
        void const* object;                // null: any
        NSInteger behaviour;
    };
    char const* name;
    std::vector<Observer> observers {};
    std::vector<std::string> pending {};   // Darwin: names posted and not delivered yet
};

namespace phone {

namespace {

CFNotificationCenter& darwin()
{
    static CFNotificationCenter center { .name = "darwin" };
    return center;
}
CFNotificationCenter& local()
{
    static CFNotificationCenter center { .name = "local" };
    return center;
}

Json classOrNull(void const* object)
{
    // A CoreFoundation object is one of Foundation's; anything else a C caller may pass has no class to name.
    return object ? Json("pointer") : Json(nullptr);
}

void deliver(CFNotificationCenter& center, std::string const& name, void const* object, NSDictionary userInfo)
{
    auto const observers = center.observers;
    for (auto const& each : observers) {
        if ((each.name && *each.name != name) || (each.object && each.object != object))
            continue;
        AutoreleasePool const pool;
        CalloutScope const scope(reinterpret_cast<void const*>(each.callback));
        each.callback(&center, const_cast<void*>(each.observer), toNSString(name), object, userInfo);
    }
}

void deliverPending()
{
    auto const names = std::exchange(darwin().pending, {});
    for (std::string const& name : names)
        deliver(darwin(), name, nullptr, {});
}

}

void postDarwinNotification(std::string const& name)
{
    auto& pending = darwin().pending;
    if (pending.empty())
        clock().post(&deliverPending);
    // What was posted already and has not been seen yet is seen once.
    if (std::find(pending.begin(), pending.end(), name) == pending.end())
        pending.push_back(name);
}

void postLocalNotification(std::string const& name) { deliver(local(), name, nullptr, {}); }

void forgetNotificationObservers()
{
    for (CFNotificationCenter* const center : { &darwin(), &local() }) {
        center->observers.clear();
        center->pending.clear();
    }
}

}

using namespace phone;

CFNotificationCenterRef CFNotificationCenterGetDarwinNotifyCenter() { return &darwin(); }
CFNotificationCenterRef CFNotificationCenterGetLocalCenter() { return &local(); }
CFNotificationCenterRef CFNotificationCenterGetDistributedCenter() { return &local(); }

void CFNotificationCenterAddObserver(CFNotificationCenterRef center, void const* observer,
    CFNotificationCallback callback, NSString name, void const* object, NSInteger suspensionBehavior)
{
    if (!center || !callback)
        return;
    if (isPluginCode(__builtin_return_address(0)))
        trace().record("observe",
            { { "name", name ? Json(toString(name)) : Json(nullptr) }, { "center", center->name },
                { "behaviour", suspensionBehavior }, { "observer", classOrNull(observer) },
                { "selector", nullptr }, { "object", classOrNull(object) } });
    if (!name && center == &darwin())
        return;
    center->observers.push_back({ observer, callback, name ? std::optional(toString(name)) : std::nullopt,
        center == &darwin() ? nullptr : object, suspensionBehavior });
}

void CFNotificationCenterRemoveObserver(
    CFNotificationCenterRef center, void const* observer, NSString name, void const* object)
{
    if (!center)
        return;
    std::string const wanted = toString(name);
    std::erase_if(center->observers, [&](auto const& each) {
        return each.observer == observer && (!name || each.name == wanted)
            && (!object || each.object == object);
    });
}

void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef center, void const* observer)
{
    CFNotificationCenterRemoveObserver(center, observer, {}, nullptr);
}

namespace {

void post(
    CFNotificationCenterRef center, NSString name, void const* object, NSDictionary userInfo, bool isPlugin)
{
    if (!center || !name)
        return;
    std::string const text = toString(name);
    if (isPlugin)
        trace().record("post",
            { { "name", text }, { "center", center->name }, { "object", classOrNull(object) },
                { "userInfo", toJson(userInfo) } });
    if (center == &darwin())
        postDarwinNotification(text);
    else
        deliver(*center, text, object, userInfo);
}

}

void CFNotificationCenterPostNotification(
    CFNotificationCenterRef center, NSString name, void const* object, NSDictionary userInfo, objc::raw_bool)
{
    post(center, name, object, userInfo, isPluginCode(__builtin_return_address(0)));
}

void CFNotificationCenterPostNotificationWithOptions(
    CFNotificationCenterRef center, NSString name, void const* object, NSDictionary userInfo, NSUInteger)
{
    post(center, name, object, userInfo, isPluginCode(__builtin_return_address(0)));
}
