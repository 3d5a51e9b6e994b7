#include "objc/define.hpp"
#include "phone/springboard/lock_flow.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/system_classes.hpp"
#include "phone/uikit/ui_screen.hpp"

extern "C" {
IMP class_replaceMethod(Class cls, SEL selector, IMP implementation, char const* encoding);
}

namespace phone {

namespace {

struct PluginUserAgent : objc::subclass<PluginUserAgent, "SBPluginUserAgent", NSObject> {
    using subclass::subclass;
    BOOL deviceIsPasscodeLocked() const
    {
        bool const answer = isPasscodeLocked();
        if (!TraceOwnScope::isActive())
            trace().record("passcodeTest", { { "answer", answer } });
        return answer;
    }
    BOOL deviceIsLocked() const { return springBoard().isLocked; }
};

// The process is SpringBoard's; its executable on this computer has no bundle.
id mainBundleIdentifier(id bundle, SEL)
{
    static IMP const previous = class_getMethodImplementation(
        objc::cls<"NSBundle">().get(), objc::selector<"phone_previousBundleIdentifier">());
    objc::handle const main = objc::cls<"NSBundle">().send<"mainBundle", objc::handle>();
    if (bundle == main.object)
        return NSString::stringWithUTF8String(kSpringBoardIdentifier).object;
    return objc::call_implementation<objc::handle>(previous, bundle, objc::selector<"bundleIdentifier">())
        .object;
}

}

objc::handle SpringBoard::pluginUserAgent() const { return springBoard().pluginUserAgent; }

NSInteger SpringBoard::frontMostAppOrientation() const { return screenOrientation(); }

void defineSpringBoardApplication()
{
    objc::define<PluginUserAgent>()
        .method<"deviceIsPasscodeLocked", &PluginUserAgent::deviceIsPasscodeLocked>()
        .method<"deviceIsLocked", &PluginUserAgent::deviceIsLocked>()
        .install();
    objc::define<SpringBoard>()
        .method<"pluginUserAgent", &SpringBoard::pluginUserAgent>()
        .method<"_frontMostAppOrientation", &SpringBoard::frontMostAppOrientation>()
        .install();

    Class const bundle = objc::cls<"NSBundle">().get();
    SEL const selector = objc::selector<"bundleIdentifier">();
    class_addMethod(bundle, objc::selector<"phone_previousBundleIdentifier">(),
        class_getMethodImplementation(bundle, selector), "@@:");
    class_replaceMethod(bundle, selector, objc::boundary::any_function(&mainBundleIdentifier), "@@:");
}

objc::ref<objc::handle> makePluginUserAgent()
{
    return objc::adopt(PluginUserAgent::alloc().init<objc::handle>());
}

}
