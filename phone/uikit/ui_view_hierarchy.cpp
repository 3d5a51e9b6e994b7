// The tree of views: adding, removing, ordering, and what is told to whom meanwhile.
#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/result.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_view_state.hpp"
#include "phone/uikit/ui_window.hpp"

namespace phone {

ViewState::~ViewState()
{
    dropAnimations(*this);
    for (auto const& child : subviews)
        child->viewState().superview = nullptr;
    for (objc::handle const recognizer : recognizers) {
        recognizer.ask<"phone_setView:">(UIView {});
        recognizer.send<"release">();
    }
    layer->view = nullptr;
}

UIView rootOf(UIView view)
{
    UIView root = view;
    while (UIView const above = root.superview())
        root = above;
    return root;
}

UIView UIView::superview() const { return object ? UIView { viewState().superview } : UIView {}; }

UIWindow UIView::window() const
{
    UIView const root = rootOf(*this);
    return root && root.viewState().isWindow ? UIWindow { root.object } : UIWindow {};
}

std::vector<UIView> UIView::children() const
{
    if (!object)
        return {};
    auto const& held = viewState().subviews;
    return { held.begin(), held.end() };
}

NSArray UIView::subviews() const
{
    auto const array = NSMutableArray::array();
    for (UIView const child : children())
        array.addObject(child);
    return array;
}

BOOL UIView::isDescendantOfView(UIView view) const
{
    if (!view)
        return false;
    for (UIView each = *this; each; each = each.superview()) {
        if (each == view)
            return true;
    }
    return false;
}

UIView UIView::viewWithTag(NSInteger tag) const
{
    if (!object || this->tag() == tag)
        return *this;
    for (UIView const child : children()) {
        if (UIView const found = child.viewWithTag(tag))
            return found;
    }
    return {};
}

namespace {

// Parents first, over a copy: a callback may change the tree.
template <class Visit>
void visitSubtree(UIView view, Visit const& visit)
{
    auto const kept = objc::retain(view);
    visit(view);
    for (UIView const child : view.children())
        visitSubtree(child, visit);
}

// The lists of a tree may change in a callback, so each step looks its index up again.
std::size_t indexOf(std::vector<objc::ref<UIView>> const& views, UIView view)
{
    std::size_t index = 0;
    while (index < views.size() && !(views[index].get() == view))
        ++index;
    return index;
}

void reorder(UIView parent, UIView child, std::size_t index)
{
    auto& views = parent.viewState().subviews;
    std::size_t const from = indexOf(views, child);
    if (from >= views.size())
        return;
    auto kept = views[from];
    views.erase(views.begin() + static_cast<std::ptrdiff_t>(from));
    views.insert(views.begin() + static_cast<std::ptrdiff_t>(std::min(index, views.size())), std::move(kept));
    noteDisplayChange();
}

// Takes the view out of its superview's list; the callbacks are the caller's.
void unlink(UIView view)
{
    UIView const former = view.superview();
    if (!former)
        return;
    former.send<"willRemoveSubview:">(view);
    auto& views = former.viewState().subviews;
    std::size_t const index = indexOf(views, view);
    view.viewState().superview = nullptr;
    former.setNeedsLayout();
    noteDisplayChange();
    if (index < views.size()) {
        // The list is changed before the last reference may go.
        auto const kept = std::move(views[index]);
        views.erase(views.begin() + static_cast<std::ptrdiff_t>(index));
    }
}

void removeAnimationsOf(UIView subtree)
{
    visitSubtree(subtree, [](UIView each) { removeAllAnimations(each); });
}

void sendInherited(UIView view)
{
    view.send<"tintColorDidChange">();
    for (UIView const child : view.children()) {
        if (!child.ownTintColor())
            sendInherited(child);
    }
}

// Everything that putting `view` under `parent` (nil: nowhere) involves, in UIKit's order.
void move(UIView view, UIView parent, std::size_t index)
{
    auto const kept = objc::retain(view);
    auto const keptParent = objc::retain(parent);
    UIWindow const formerWindow = view.window();
    UIWindow const newWindow = parent.window();
    UIColor const formerTint = view.tintColor();
    bool const windowChanges = !(formerWindow == newWindow) && !view.viewState().isWindow;

    if (windowChanges)
        visitSubtree(view, [newWindow](UIView each) { each.send<"willMoveToWindow:">(newWindow); });
    view.send<"willMoveToSuperview:">(parent);

    deactivateCrossingConstraints(view);
    unlink(view);
    if (parent) {
        auto& views = parent.viewState().subviews;
        views.insert(
            views.begin() + static_cast<std::ptrdiff_t>(std::min(index, views.size())), objc::retain(view));
        view.viewState().superview = parent.object;
        parent.setNeedsLayout();
        view.setNeedsLayout();
        noteDisplayChange();
    }

    if (windowChanges) {
        if (formerWindow)
            removeAnimationsOf(view);
        visitSubtree(view, [](UIView each) { each.send<"didMoveToWindow">(); });
    }
    view.send<"didMoveToSuperview">();
    if (parent)
        parent.send<"didAddSubview:">(view);
    if (!view.ownTintColor() && !(formerTint == view.tintColor()))
        sendInherited(view);
}

void insert(UIView parent, UIView view, std::size_t index)
{
    if (!parent || !view)
        return;
    if (parent.isDescendantOfView(view)) {
        // The platform raises.
        reportProblem("a " + classNameOf(view) + " can't be added to itself or to what it contains");
        return;
    }
    if (view.superview() == parent)
        reorder(parent, view, index);
    else
        move(view, parent, index);
}

constexpr std::size_t kLast = static_cast<std::size_t>(-1);

}

void UIView::addSubview(UIView view) const { insert(*this, view, kLast); }

void UIView::insertSubviewAtIndex(UIView view, NSInteger index) const
{
    insert(*this, view, index < 0 ? 0 : static_cast<std::size_t>(index));
}

void UIView::insertSubviewAbove(UIView view, UIView sibling) const
{
    if (!object || view == sibling)
        return;
    if (view && view.superview() == *this)
        reorder(*this, view, kLast);
    std::size_t const index = indexOf(viewState().subviews, sibling);
    insert(*this, view, index >= viewState().subviews.size() ? kLast : index + 1);
}

void UIView::insertSubviewBelow(UIView view, UIView sibling) const
{
    if (!object || view == sibling)
        return;
    if (view && view.superview() == *this)
        reorder(*this, view, kLast);
    insert(*this, view, indexOf(viewState().subviews, sibling));
}

void UIView::removeFromSuperview() const
{
    if (object && superview())
        move(*this, {}, 0);
}

void UIView::bringSubviewToFront(UIView view) const
{
    if (object && view && view.superview() == *this)
        reorder(*this, view, kLast);
}
void UIView::sendSubviewToBack(UIView view) const
{
    if (object && view && view.superview() == *this)
        reorder(*this, view, 0);
}
void UIView::exchangeSubviews(NSInteger index, NSInteger other) const
{
    auto& views = viewState().subviews;
    auto const count = static_cast<NSInteger>(views.size());
    if (index < 0 || other < 0 || index >= count || other >= count)
        return;
    std::swap(views[static_cast<std::size_t>(index)], views[static_cast<std::size_t>(other)]);
    noteDisplayChange();
}

void UIView::willMoveToSuperview(UIView) const { }
void UIView::didMoveToSuperview() const { }
void UIView::willMoveToWindow(UIWindow) const { }
void UIView::didMoveToWindow() const { }
void UIView::didAddSubview(UIView) const { }
void UIView::willRemoveSubview(UIView) const { }

UIViewController UIView::viewController() const
{
    return object ? UIViewController { viewState().viewController } : UIViewController {};
}
void UIView::setViewController(UIViewController controller) const
{
    viewState().viewController = controller.object;
}

UIResponder UIView::nextResponder() const
{
    if (UIViewController const owner = viewController())
        return owner;
    return superview();
}

}
