// What plug-ins observe and post on the default notification centre. Who calls is told by the return address,
// so the replacements record and then do what GNUstep does.
#include "phone/foundation/json_objects.hpp"
#include "phone/foundation/method_replacement.hpp"
#include "phone/foundation/notification_centers.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"

namespace phone {

namespace {

Replaced<void(id, SEL, id, SEL, id, id)> g_addObserver;
Replaced<void(id, SEL, id, id)> g_post;
Replaced<void(id, SEL, id, id, id)> g_postWithInfo;

Json classOrNull(id object) { return object ? Json(classNameOf(objc::handle { object })) : Json(nullptr); }
Json textOrNull(id text) { return text ? Json(toString(objc::handle { text })) : Json(nullptr); }

void addObserver(id self, SEL cmd, id observer, SEL selector, id name, id object)
{
    if (isPluginCode(__builtin_return_address(0)))
        trace().record("observe",
            { { "name", textOrNull(name) }, { "center", "default" }, { "behaviour", nullptr },
                { "observer", classOrNull(observer) },
                { "selector", selector ? Json(sel_getName(selector)) : Json(nullptr) },
                { "object", classOrNull(object) } });
    g_addObserver(self, cmd, observer, selector, name, object);
}

void record(id name, id object, id userInfo)
{
    trace().record("post",
        { { "name", textOrNull(name) }, { "center", "default" }, { "object", classOrNull(object) },
            { "userInfo", toJson(objc::handle { userInfo }) } });
}

void postName(id self, SEL cmd, id name, id object)
{
    if (isPluginCode(__builtin_return_address(0)))
        record(name, object, nullptr);
    g_post(self, cmd, name, object);
}

void postNameWithInfo(id self, SEL cmd, id name, id object, id userInfo)
{
    if (isPluginCode(__builtin_return_address(0)))
        record(name, object, userInfo);
    g_postWithInfo(self, cmd, name, object, userInfo);
}

}

void traceNotificationCenter()
{
    static bool isDone = false;
    if (std::exchange(isDone, true))
        return;
    replace<"addObserver:selector:name:object:">("NSNotificationCenter", &addObserver, g_addObserver);
    replace<"postNotificationName:object:">("NSNotificationCenter", &postName, g_post);
    replace<"postNotificationName:object:userInfo:">(
        "NSNotificationCenter", &postNameWithInfo, g_postWithInfo);
}

}
