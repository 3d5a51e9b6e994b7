#include "phone/springboard/strip_views.hpp"

#include "phone/foundation/weak.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/ui_window.hpp"

#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace phone {

namespace {

bool isStrip(UIView view)
{
    // Asked for each time: the class comes with the plug-in, which the phone may be without.
    objc::class_handle const cls { objc_getClass("CVLView") };
    return cls && view && view.send<"isKindOfClass:", BOOL>(cls);
}

StripKind kindOf(UIView strip)
{
    return strip.ask<"isViewNonLS", BOOL>() ? StripKind::overlay : StripKind::strip;
}

UIView findBelow(UIView root, StripKind kind)
{
    if (isStrip(root) && kindOf(root) == kind)
        return root;
    for (UIView const child : root.children())
        if (UIView const found = findBelow(child, kind))
            return found;
    return {};
}

// An `initWithFrame:` whose strip has not told yet which it is.
struct OpenEvent {
    Weak<UIView> view;
    std::size_t n;
};

// Never destroyed, as the views that it speaks of are not.
std::vector<OpenEvent>& openEvents()
{
    static auto& events = *new std::vector<OpenEvent>;
    return events;
}

void complete(OpenEvent const& event)
{
    UIView const view = event.view;
    trace().finish(event.n, "view", view && kindOf(view) == StripKind::overlay ? "overlay" : "strip");
}

void completeAll()
{
    for (OpenEvent const& event : std::exchange(openEvents(), {}))
        complete(event);
}

void record(UIView view, char const* call, Json value)
{
    if (!isStrip(view))
        return;
    if (std::strcmp(call, "initWithFrame:") == 0) {
        std::size_t const n =
            trace().begin("frame", Json::object({ { "call", call }, { "value", std::move(value) } }));
        if (openEvents().empty())
            deviceClock().post(completeAll);
        openEvents().push_back({ view, n });
        return;
    }
    completeAll();
    trace().record("frame",
        Json::object({ { "view", kindOf(view) == StripKind::overlay ? "overlay" : "strip" }, { "call", call },
            { "value", std::move(value) } }));
}

}

UIView findStrip(StripKind kind)
{
    for (UIWindow const window : allWindows())
        if (UIView const found = findBelow(window, kind))
            return found;
    return {};
}

void recordStripFrames() { setViewCallObserver(record); }

}
