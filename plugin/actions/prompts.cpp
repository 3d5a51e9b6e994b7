// The one way in which alerts and sheets are shown, over whatever is on screen.
#include "plugin/actions/presenter.hpp"
#include "plugin/strip/cvl_view.hpp"

namespace {

char const kPromptWindowKey = 0;

// Nil where none is, and on a system whose windows do not tell: the key is private.
UIWindow keyWindow()
{
    objc::class_handle const windows = UIWindow::cls();
    if (!windows.responds<"keyWindow">())
        return nullptr;
    return UIWindow { NSObject { windows.object }.valueForKey("keyWindow"_ns).object };
}

// A window above the system's alerts. Nobody else keeps it, so the prompt does: it goes when the prompt has gone.
UIResponder promptWindowPresenter(UIViewController prompt)
{
    auto const window =
        objc::adopt(UIWindow::alloc().initWithFrame<UIWindow>(UIScreen::mainScreen().bounds()));
    window->setRootViewController(objc::adopt(UIViewController::alloc().init<UIViewController>()));
    window->setWindowLevel(UIWindowLevelAlert + 1.0);
    window->setHidden(false);
    window->setSecure(true);
    window->setTintColor(keyWindow().tintColor());
    objc_setAssociatedObject(
        prompt.object, &kPromptWindowKey, window.get().object, OBJC_ASSOCIATION_RETAIN_NONATOMIC);
    return window->rootViewController();
}

bool usesPromptWindow(CVLView strip)
{
    if (systemVersionIsAtLeast("16"_ns))
        return false;
    return systemVersionIsAtLeast("13"_ns) || strip.isViewNonLS();
}

}

void CVLView::windowForPrompts(UIViewController prompt) const
{
    if (!prompt)
        return;
    UIResponder const presenter =
        usesPromptWindow(*this) ? promptWindowPresenter(prompt) : responderChainPresenter(*this);
    presentViewController(presenter, prompt, {});
}
