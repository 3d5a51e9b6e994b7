// The layout pass: constraints first, then layoutSubviews from the top down, until nothing asks for more.
#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/result.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_view_state.hpp"
#include "phone/uikit/ui_window.hpp"

namespace phone {

namespace {

// A view that asks for layout in its own layoutSubviews would go on for ever; the platform then hangs. We stop.
constexpr int kMaximumRounds = 12;

bool g_isLayoutScheduled = false;

bool wantsLayout(UIView view)
{
    ViewState const& state = view.viewState();
    return state.needsLayout || state.descendantNeedsLayout;
}

void layoutOne(UIView view)
{
    UIViewController const controller = view.viewController();
    if (controller)
        controller.send<"viewWillLayoutSubviews">();
    view.send<"layoutSubviews">();
    if (controller)
        controller.send<"viewDidLayoutSubviews">();
}

}

void layoutTree(UIView view)
{
    if (!wantsLayout(view))
        return;
    auto const kept = objc::retain(view);
    ViewState& state = view.viewState();
    if (state.needsUpdateConstraints) {
        state.needsUpdateConstraints = false;
        view.send<"updateConstraints">();
    }
    if (state.needsLayout) {
        state.needsLayout = false;
        layoutOne(view);
    }
    state.descendantNeedsLayout = false;
    for (UIView const child : view.children()) {
        auto const keptChild = objc::retain(child);
        if (child.superview() == view)
            layoutTree(child);
    }
}

namespace {

void layoutUntilDone(UIView view)
{
    UIView const root = rootOf(view);
    for (int round = 0; round < kMaximumRounds; ++round) {
        bool const moved = solveConstraints(root);
        if (!moved && !wantsLayout(view))
            return;
        layoutTree(view);
    }
}

}

void scheduleLayout()
{
    if (g_isLayoutScheduled)
        return;
    g_isLayoutScheduled = true;
    clock().post([] {
        g_isLayoutScheduled = false;
        layoutWindowsIfNeeded();
    });
}

void layoutWindowsIfNeeded()
{
    std::vector<objc::ref<UIWindow>> windows;
    for (UIWindow const window : allWindows())
        windows.push_back(objc::retain(window));
    for (auto const& window : windows)
        layoutUntilDone(window);
}

void UIView::setNeedsLayout() const
{
    if (!object)
        return;
    viewState().needsLayout = true;
    for (UIView above = superview(); above && !above.viewState().descendantNeedsLayout;
         above = above.superview())
        above.viewState().descendantNeedsLayout = true;
    scheduleLayout();
}

bool UIView::needsLayout() const { return object && viewState().needsLayout; }

void UIView::layoutIfNeeded() const
{
    if (!object)
        return;
    auto const kept = objc::retain(*this);
    layoutUntilDone(*this);
}

void UIView::layoutSubviews() const { }

void UIView::setNeedsDisplay() const
{
    if (!object)
        return;
    ++viewState().contentRevision;
    noteDisplayChange();
}

std::uint64_t UIView::contentRevision() const { return object ? viewState().contentRevision : 0; }

void UIView::setNeedsUpdateConstraints() const
{
    if (!object)
        return;
    viewState().needsUpdateConstraints = true;
    setNeedsLayout();
}

void UIView::updateConstraintsIfNeeded() const
{
    if (object && std::exchange(viewState().needsUpdateConstraints, false))
        send<"updateConstraints">();
}

void UIView::updateConstraints() const { }

// Only the window knows of the screen's edges: a view gets what of them lies over it.
UIEdgeInsets UIView::safeAreaInsets() const
{
    UIWindow const root = window();
    if (!root)
        return {};
    UIEdgeInsets const screen = safeAreaOfScreen();
    CGRect const safe = inset(root.bounds(), screen);
    CGRect const own = convertRectToView(bounds(), root);
    return { std::clamp(minY(safe) - minY(own), 0.0, screen.top),
        std::clamp(minX(safe) - minX(own), 0.0, screen.left),
        std::clamp(maxY(own) - maxY(safe), 0.0, screen.bottom),
        std::clamp(maxX(own) - maxX(safe), 0.0, screen.right) };
}

void UIView::drawContent(DrawContext*) const { }

}
