// UIViewController: the owner of a view, and presentation of one controller over another. Main thread.
#pragma once

#include "objc/block.hpp"
#include "phone/uikit/ui_view.hpp"

#include <functional>

namespace phone {

using PlainBlock = objc::block_ref<void()>;

struct UIViewController : objc::subclass<UIViewController, "UIViewController", UIResponder> {
    using subclass::subclass;
    UIViewController init() const;

    UIView view() const;   // makes it on first use: loadView, then viewDidLoad
    UIView viewIfLoaded() const;
    void setView(UIView view) const;
    BOOL isViewLoaded() const;
    void loadView() const;   // the base: a plain view of the screen's size
    void loadViewIfNeeded() const;
    void viewDidLoad() const;   // these: nothing in the base
    void viewWillAppear(BOOL animated) const;
    void viewDidAppear(BOOL animated) const;
    void viewWillDisappear(BOOL animated) const;
    void viewDidDisappear(BOOL animated) const;
    void viewWillLayoutSubviews() const;
    void viewDidLayoutSubviews() const;

    NSString title() const;
    void setTitle(NSString title) const;
    UIViewController parentViewController() const;
    NSArray childViewControllers() const;
    void addChildViewController(UIViewController child) const;
    void removeFromParentViewController() const;
    void willMoveToParentViewController(UIViewController parent) const;
    void didMoveToParentViewController(UIViewController parent) const;

    UIViewController presentedViewController() const;
    UIViewController presentingViewController() const;
    // Records `present` when it is accepted. Refused, with a line on standard error: nil, one that is
    // presented already, a presenter that presents already or whose view is in no window.
    void presentViewController(UIViewController controller, BOOL animated, PlainBlock completion) const;
    void present(UIViewController controller, bool animated, std::function<void()> completion = {}) const;
    // Dismisses what this one presents, or else itself.
    void dismissViewController(BOOL animated, PlainBlock completion) const;
    void dismiss(bool animated, std::function<void()> completion = {}) const;
    BOOL isBeingPresented() const;
    BOOL isBeingDismissed() const;
    NSInteger modalPresentationStyle() const;
    void setModalPresentationStyle(NSInteger style) const;
    NSInteger modalTransitionStyle() const;
    void setModalTransitionStyle(NSInteger style) const;
    UIResponder nextResponder() const;   // the view's superview, or the presenter, or the window
    BOOL canShowWhileLocked() const;     // _canShowWhileLocked; the base: NO

    // Overridable by classes of the phone, as messages:
    //   phone_animatePresentation:completion: (BOOL presenting, std::function<void()>* done) moves the view
    //     in or out and calls *done when it has arrived; the base slides from below in 0.4 s. The function
    //     object has to be moved or copied out.
    //   phone_describePresentation: (nlohmann::ordered_json* fields) adds fields to the trace's event.
    //   phone_mayBePresented: NO refuses the presentation; the base: YES.
    void animatePresentation(BOOL presenting, std::function<void()>* done) const;
    void describePresentation(nlohmann::ordered_json* fields) const;
    BOOL mayBePresented() const;
};

// The view of the controller enters or leaves the screen: sends the appearance messages that are due.
void beginAppearance(UIViewController controller, bool appears, bool animated);
void endAppearance(UIViewController controller);

// What is presented over the window's root, from the root's own to the top.
std::vector<UIViewController> presentedControllers(UIWindow window);

void defineUIViewController();

}
