#include "phone/uikit/ui_application.hpp"

#include "objc/define.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/foundation/weak.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/json_values.hpp"
#include "phone/uikit/ui_screen.hpp"

#include <algorithm>
#include <optional>

namespace phone {

namespace {

objc::ref<UIApplication> g_sharedApplication;
UrlOpener g_openUrl;
UrlOpener g_canOpenUrl;
bool g_isIdleTimerDisabled = false;

std::optional<std::string> textOfUrl(objc::handle url)
{
    if (!url)
        return std::nullopt;
    return toString(url.ask<"absoluteString", NSString>());
}

// The trace's `openURL`; answers whether something took it.
bool open(objc::handle url, Json options)
{
    auto const text = textOfUrl(url);
    trace().record(
        "openURL", { { "url", text ? Json(*text) : Json(nullptr) }, { "options", std::move(options) } });
    return text && g_openUrl && g_openUrl(*text);
}

// A message with as many of sender and event as the selector has arguments.
void perform(objc::handle target, SEL action, objc::handle sender, objc::handle event)
{
    CalloutScope const scope(target, action);
    std::string_view const name = sel_getName(action);
    IMP const code = objc::boundary::message_implementation(target.object, action);
    switch (std::count(name.begin(), name.end(), ':')) {
    case 0: objc::call_implementation<void>(code, target.object, action); break;
    case 1: objc::call_implementation<void>(code, target.object, action, sender); break;
    default: objc::call_implementation<void>(code, target.object, action, sender, event); break;
    }
}

}

void setUrlOpener(UrlOpener opener, UrlOpener canOpen)
{
    g_openUrl = std::move(opener);
    g_canOpenUrl = std::move(canOpen);
}

void forgetSharedApplication() { g_sharedApplication = nullptr; }

UIApplication UIApplication::sharedApplication() { return g_sharedApplication; }

UIApplication UIApplication::init() const
{
    auto const self = objc::send_super<UIApplication, "init", UIApplication>(UIApplication { object });
    if (self && !g_sharedApplication)
        g_sharedApplication = objc::retain(self);
    return self;
}

NSArray UIApplication::windows() const
{
    auto const array = NSMutableArray::array();
    for (UIWindow const window : allWindows())
        array.addObject(window);
    return array;
}
UIWindow UIApplication::keyWindow() const { return UIWindow::keyWindow(); }
NSInteger UIApplication::userInterfaceLayoutDirection() const
{
    return bootOptions().isRightToLeft() ? 1 : 0;
}
NSInteger UIApplication::applicationState() const { return 0; }   // active
NSInteger UIApplication::statusBarOrientation() const { return screenOrientation(); }

BOOL UIApplication::canOpenURL(objc::handle url) const
{
    auto const text = textOfUrl(url);
    return text && g_canOpenUrl && g_canOpenUrl(*text);
}
BOOL UIApplication::openURL(objc::handle url) const { return open(url, Json::object()); }

void UIApplication::openURLWithOptions(objc::handle url, NSDictionary options, SuccessBlock completion) const
{
    bool const success = open(url, options ? toJson(static_cast<objc::handle>(options)) : Json::object());
    if (!completion)
        return;
    auto const text = textOfUrl(url);
    clock().post([kept = objc::block_copy<void(BOOL)>(completion), text, success] {
        trace().record(
            "completion", { { "url", text ? Json(*text) : Json(nullptr) }, { "success", success } });
        CalloutScope const scope(reinterpret_cast<void const*>(kept.get().block->invoke));
        kept(success);
    });
}

BOOL UIApplication::sendAction(SEL action, objc::handle target, objc::handle sender, objc::handle event) const
{
    if (!action)
        return false;
    if (target) {
        perform(target, action, sender, event);
        return true;
    }
    // No target: the first that answers to it, from the one with the keyboard, or else from the sender, on.
    UIResponder const start = firstResponder() ? firstResponder() : objc::cast<UIResponder>(sender);
    for (UIResponder each = start; each; each = each.next()) {
        if (objc::is_true(class_respondsToSelector(objc::boundary::class_of(each.object), action))) {
            perform(each, action, sender, event);
            return true;
        }
    }
    return false;
}

BOOL UIApplication::isIdleTimerDisabled() const { return g_isIdleTimerDisabled; }
void UIApplication::setIdleTimerDisabled(BOOL disabled) const { g_isIdleTimerDisabled = disabled; }

void defineUIApplication()
{
    objc::define<UIApplication>()
        .class_method<"sharedApplication", &UIApplication::sharedApplication>()
        .method<"init", &UIApplication::init>()
        .method<"windows", &UIApplication::windows>()
        .method<"keyWindow", &UIApplication::keyWindow>()
        .method<"userInterfaceLayoutDirection", &UIApplication::userInterfaceLayoutDirection>()
        .method<"applicationState", &UIApplication::applicationState>()
        .method<"statusBarOrientation", &UIApplication::statusBarOrientation>()
        .method<"canOpenURL:", &UIApplication::canOpenURL>()
        .method<"openURL:", &UIApplication::openURL>()
        .method<"openURL:options:completionHandler:", &UIApplication::openURLWithOptions>()
        .method<"sendAction:to:from:forEvent:", &UIApplication::sendAction>()
        .method<"isIdleTimerDisabled", &UIApplication::isIdleTimerDisabled>()
        .method<"setIdleTimerDisabled:", &UIApplication::setIdleTimerDisabled>()
        .install();
}

}
