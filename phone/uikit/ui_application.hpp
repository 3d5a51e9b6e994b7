// UIApplication: the process. SpringBoard is a subclass of it; the one that is made first is shared. Main thread.
#pragma once

#include "objc/block.hpp"
#include "phone/uikit/ui_window.hpp"

#include <functional>

namespace phone {

using SuccessBlock = objc::block_ref<void(BOOL)>;

struct UIApplication : objc::subclass<UIApplication, "UIApplication", UIResponder> {
    using subclass::subclass;
    static UIApplication sharedApplication();   // nil before one is made
    UIApplication init() const;                 // becomes the shared one if there is none

    NSArray windows() const;
    UIWindow keyWindow() const;
    NSInteger userInterfaceLayoutDirection() const;
    NSInteger applicationState() const;
    NSInteger statusBarOrientation() const;
    BOOL canOpenURL(objc::handle url) const;
    BOOL openURL(objc::handle url) const;
    void openURLWithOptions(objc::handle url, NSDictionary options, SuccessBlock completion) const;
    BOOL sendAction(SEL action, objc::handle target, objc::handle sender, objc::handle event) const;
    BOOL isIdleTimerDisabled() const;
    void setIdleTimerDisabled(BOOL disabled) const;
};

// What opening a URL does: answers whether something took it. Set by whoever owns the applications; without
// one nothing opens. The trace's `openURL` and `completion` are recorded by UIApplication.
using UrlOpener = std::function<bool(std::string const& url)>;
void setUrlOpener(UrlOpener opener, UrlOpener canOpen);

// Forgets the shared application; for tests.
void forgetSharedApplication();

void defineUIApplication();

}
