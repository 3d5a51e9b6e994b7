#include "phone/uikit/ui_window.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/geometry.hpp"
#include "phone/uikit/json_values.hpp"
#include "phone/uikit/ui_application.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_view_state.hpp"

#include <algorithm>

double const UIWindowLevelNormal = 0;
double const UIWindowLevelAlert = 2000;
double const UIWindowLevelStatusBar = 1000;

namespace phone {

namespace {

// In the order in which they were last shown. Not owned: a window that nobody keeps goes, as on the platform.
std::vector<id> g_windows;
// Those that were key, the present one last.
std::vector<id> g_keyWindows;
int g_lastNumber = 0;

struct WindowState {
    id window { nullptr };
    int number { 0 };
    double level { 0 };
    bool isSecure { false };
    bool autorotates { true };
    objc::ref<UIViewController> rootViewController;

    WindowState() = default;
    WindowState(WindowState const&) = delete;
    WindowState& operator=(WindowState const&) = delete;
    ~WindowState()
    {
        std::erase(g_windows, window);
        std::erase(g_keyWindows, window);
        noteDisplayChange();
    }
};

WindowState& stateOf(UIWindow window) { return objc::state<WindowState>(UIWindow { window.object }); }

void record(UIWindow window, char const* call, Json value)
{
    trace().record("window",
        { { "window", window.number() }, { "class", classNameOf(window) }, { "call", call },
            { "value", std::move(value) } });
}

// From the display's own space, as the phone is held upright, to that of the screen's bounds in an orientation.
CGAffineTransform displayToScreen(int orientation)
{
    double const width = bootOptions().width;
    double const height = bootOptions().height;
    switch (orientation) {
    case 2: return { -1, 0, 0, -1, width, height };
    case 3: return { 0, -1, 1, 0, 0, width };
    case 4: return { 0, 1, -1, 0, height, 0 };
    default: return kIdentity;
    }
}

CGAffineTransform turnOf(int orientation)
{
    CGAffineTransform turn = displayToScreen(orientation);
    turn.tx = turn.ty = 0;
    return turn;
}

CGRect boundsIn(int orientation)
{
    CGSize const upright { bootOptions().width, bootOptions().height };
    return { {}, orientation >= 3 ? CGSize { upright.height, upright.width } : upright };
}

void moveToFront(UIWindow window)
{
    std::erase(g_windows, window.object);
    g_windows.push_back(window.object);
    noteDisplayChange();
}

}

std::vector<UIWindow> allWindows()
{
    std::vector<UIWindow> all;
    // Of the same level the later one lies above.
    for (id const each : g_windows) {
        UIWindow const window { each };
        all.insert(std::ranges::upper_bound(all, window.windowLevel(), {}, &UIWindow::windowLevel), window);
    }
    return all;
}

void setKeyWindow(UIWindow window)
{
    std::erase(g_keyWindows, window.object);
    g_keyWindows.push_back(window.object);
}

void turnWindows(int from)
{
    int const to = screenOrientation();
    if (from == to)
        return;
    for (UIWindow const window : allWindows()) {
        if (!window.autorotates()) {
            CGPoint const onDisplay = apply(inverted(displayToScreen(from)), window.center());
            window.setTransform(turnOf(to));
            window.setCenter(apply(displayToScreen(to), onDisplay));
        } else if (window.frame() == boundsIn(from)) {
            window.setFrame(boundsIn(to));
        }
    }
}

UIWindow UIWindow::keyWindow()
{
    return g_keyWindows.empty() ? UIWindow {} : UIWindow { g_keyWindows.back() };
}

UIWindow UIWindow::initWithFrame(CGRect frame) const
{
    UIWindow const self { UIView::initWithFrame(frame).object };
    if (!self)
        return {};
    WindowState& state = stateOf(self);
    state.window = self.object;
    state.number = ++g_lastNumber;
    self.viewState().isWindow = true;
    self.viewState().isHidden = true;
    g_windows.push_back(self.object);
    return self;
}

int UIWindow::number() const { return object ? stateOf(*this).number : 0; }
CGFloat UIWindow::windowLevel() const { return object ? stateOf(*this).level : 0; }
void UIWindow::setWindowLevel(CGFloat level) const
{
    stateOf(*this).level = level;
    noteDisplayChange();
}
UIViewController UIWindow::rootViewController() const
{
    return object ? stateOf(*this).rootViewController.get() : UIViewController {};
}

void UIWindow::setRootViewController(UIViewController controller) const
{
    if (!object || rootViewController() == controller)
        return;
    auto const former = std::exchange(stateOf(*this).rootViewController, objc::retain(controller));
    bool const isVisible = !isHidden();
    if (former && former->isViewLoaded()) {
        if (isVisible)
            beginAppearance(former, false, false);
        former->view().removeFromSuperview();
        if (isVisible)
            endAppearance(former);
    }
    if (!controller)
        return;
    UIView const view = controller.view();
    view.setFrame(bounds());
    view.setAutoresizingMask(Autoresizing::width | Autoresizing::height);
    if (isVisible)
        beginAppearance(controller, true, false);
    insertSubviewAtIndex(view, 0);
    if (isVisible)
        endAppearance(controller);
}

void UIWindow::setHidden(BOOL hidden) const
{
    if (!object || isHidden() == hidden)
        return;
    auto const kept = objc::retain(*this);
    UIViewController const root = rootViewController();
    if (root)
        beginAppearance(root, !hidden, false);
    if (!hidden)
        moveToFront(*this);
    UIView::setHidden(hidden);
    if (hidden)
        std::erase(g_keyWindows, object);
    if (root)
        endAppearance(root);
}

void UIWindow::makeKeyWindow() const
{
    if (object)
        setKeyWindow(*this);
}
void UIWindow::makeKeyAndVisible() const
{
    setHidden(false);
    makeKeyWindow();
}
void UIWindow::resignKeyWindow() const { std::erase(g_keyWindows, object); }
BOOL UIWindow::isKeyWindow() const { return object && keyWindow() == *this; }
BOOL UIWindow::isSecure() const { return object && stateOf(*this).isSecure; }
void UIWindow::setSecure(BOOL secure) const { stateOf(*this).isSecure = secure; }
BOOL UIWindow::autorotates() const { return object && stateOf(*this).autorotates; }
void UIWindow::setAutorotates(BOOL autorotates) const
{
    if (!object || stateOf(*this).autorotates == bool(autorotates))
        return;
    stateOf(*this).autorotates = autorotates;
    // What it covers of the display stays the same.
    CGRect const covered = frame();
    performWithoutAnimation([this, covered, autorotates] {
        setTransform(autorotates ? kIdentity : turnOf(screenOrientation()));
        setFrame(covered);
    });
}
UIResponder UIWindow::nextResponder() const { return UIApplication::sharedApplication(); }

// The rows: the same calls as messages, which the trace tells of.
UIWindow UIWindow::initWithFrameMessage(CGRect frame) const
{
    UIWindow const self = initWithFrame(frame);
    if (self)
        record(self, "initWithFrame:", toJson(frame));
    return self;
}
void UIWindow::setFrameMessage(CGRect frame) const
{
    record(*this, "setFrame:", toJson(frame));
    setFrame(frame);
}
void UIWindow::setWindowLevelMessage(CGFloat level) const
{
    record(*this, "setWindowLevel:", level);
    setWindowLevel(level);
}
void UIWindow::setRootViewControllerMessage(UIViewController controller) const
{
    record(*this,
        "setRootViewController:", controller ? Json { { "class", classNameOf(controller) } } : Json(nullptr));
    setRootViewController(controller);
}
void UIWindow::setHiddenMessage(BOOL hidden) const
{
    record(*this, "setHidden:", bool(hidden));
    setHidden(hidden);
}
void UIWindow::makeKeyAndVisibleMessage() const
{
    record(*this, "makeKeyAndVisible", nullptr);
    makeKeyAndVisible();
}
void UIWindow::makeKeyWindowMessage() const
{
    record(*this, "makeKeyWindow", nullptr);
    makeKeyWindow();
}
void UIWindow::setSecureMessage(BOOL secure) const
{
    record(*this, "_setSecure:", bool(secure));
    setSecure(secure);
}
void UIWindow::setAutorotatesMessage(BOOL autorotates) const
{
    record(*this, "setAutorotates:", bool(autorotates));
    setAutorotates(autorotates);
}
void UIWindow::setUserInteractionEnabledMessage(BOOL enabled) const
{
    record(*this, "setUserInteractionEnabled:", bool(enabled));
    setUserInteractionEnabled(enabled);
}
void UIWindow::setTintColorMessage(UIColor color) const
{
    record(*this, "setTintColor:", color ? toJson(color.rgba()) : Json(nullptr));
    setTintColor(color);
}
void UIWindow::setBackgroundColorMessage(UIColor color) const
{
    record(*this, "setBackgroundColor:", color ? toJson(color.rgba()) : Json(nullptr));
    setBackgroundColor(color);
}

void defineUIWindow()
{
    objc::define<UIWindow>()
        .state<WindowState>()
        .class_method<"keyWindow", &UIWindow::keyWindow>()
        .method<"initWithFrame:", &UIWindow::initWithFrameMessage>()
        .method<"setFrame:", &UIWindow::setFrameMessage>()
        .method<"windowLevel", &UIWindow::windowLevel>()
        .method<"setWindowLevel:", &UIWindow::setWindowLevelMessage>()
        .method<"rootViewController", &UIWindow::rootViewController>()
        .method<"setRootViewController:", &UIWindow::setRootViewControllerMessage>()
        .method<"setHidden:", &UIWindow::setHiddenMessage>()
        .method<"makeKeyAndVisible", &UIWindow::makeKeyAndVisibleMessage>()
        .method<"makeKeyWindow", &UIWindow::makeKeyWindowMessage>()
        .method<"resignKeyWindow", &UIWindow::resignKeyWindow>()
        .method<"isKeyWindow", &UIWindow::isKeyWindow>()
        .method<"_isSecure", &UIWindow::isSecure>()
        .method<"_setSecure:", &UIWindow::setSecureMessage>()
        .method<"autorotates", &UIWindow::autorotates>()
        .method<"setAutorotates:", &UIWindow::setAutorotatesMessage>()
        .method<"setUserInteractionEnabled:", &UIWindow::setUserInteractionEnabledMessage>()
        .method<"setTintColor:", &UIWindow::setTintColorMessage>()
        .method<"setBackgroundColor:", &UIWindow::setBackgroundColorMessage>()
        .method<"nextResponder", &UIWindow::nextResponder>()
        .install();
}

}
