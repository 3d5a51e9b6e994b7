#include "phone/uikit/ui_view_controller.hpp"

#include "objc/define.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/result.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/json_values.hpp"
#include "phone/uikit/presentation_order.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_window.hpp"

namespace phone {

namespace {

// The slide of a presentation; UIKit's own takes about as long.
constexpr double kPresentationSeconds = 0.4;
constexpr NSInteger kFullScreen = 0;   // UIModalPresentationFullScreen
constexpr NSInteger kAutomatic = -2;   // UIModalPresentationAutomatic

enum class AppearanceState { disappeared, appearing, appeared, disappearing };

struct ControllerState {
    id controller { nullptr };
    objc::ref<UIView> view;
    bool isLoading { false };
    objc::ref<NSString> title;
    std::vector<objc::ref<UIViewController>> children;
    id parent { nullptr };   // cleared when it goes
    objc::ref<UIViewController> presented;
    id presenting { nullptr };   // keeps this one; cleared at the end of the dismissal
    bool isBeingPresented { false };
    bool isBeingDismissed { false };
    NSInteger presentationStyle { kAutomatic };
    NSInteger transitionStyle { 0 };
    AppearanceState appearance { AppearanceState::disappeared };
    bool isAnimated { false };
    std::uint64_t presentation { 0 };   // its place among all presentations
    int transition { 0 };   // counts presentations and dismissals: the end of an older one is not ours

    ControllerState() = default;
    ControllerState(ControllerState const&) = delete;
    ControllerState& operator=(ControllerState const&) = delete;
    ~ControllerState();
};

ControllerState& stateOf(UIViewController controller)
{
    return objc::state<ControllerState>(UIViewController { controller.object });
}

ControllerState::~ControllerState()
{
    if (view)
        view->setViewController({});
    for (auto const& child : children)
        stateOf(child).parent = nullptr;
    if (presented)
        stateOf(presented).presenting = nullptr;
}

UIViewController topParent(UIViewController controller)
{
    while (UIViewController const parent = controller.parentViewController())
        controller = parent;
    return controller;
}

std::function<void()> functionOf(PlainBlock block)
{
    if (!block)
        return {};
    return [kept = objc::block_copy<void()>(block)] {
        CalloutScope const scope(reinterpret_cast<void const*>(kept.get().block->invoke));
        kept();
    };
}

void callLater(std::function<void()> completion)
{
    if (completion)
        clock().post(std::move(completion));
}

Json eventFields(UIViewController controller, UIViewController presenter, bool animated, bool completion)
{
    return { { "class", classNameOf(controller) }, { "presenter", classNameOf(presenter) },
        { "window", presenter.view().window().windowLevel() }, { "animated", animated },
        { "completion", completion } };
}

}

// Life cycle

UIViewController UIViewController::init() const
{
    auto const self =
        objc::send_super<UIViewController, "init", UIViewController>(UIViewController { object });
    if (self)
        stateOf(self).controller = self.object;
    return self;
}

UIView UIViewController::view() const
{
    if (!object)
        return {};
    ControllerState& state = stateOf(*this);
    if (!state.view && !state.isLoading) {
        state.isLoading = true;
        send<"loadView">();
        state.isLoading = false;
        if (state.view)
            send<"viewDidLoad">();
    }
    return state.view;
}

UIView UIViewController::viewIfLoaded() const { return object ? stateOf(*this).view.get() : UIView {}; }
BOOL UIViewController::isViewLoaded() const { return bool(viewIfLoaded()); }

void UIViewController::setView(UIView view) const
{
    ControllerState& state = stateOf(*this);
    if (state.view.get() == view)
        return;
    if (state.view)
        state.view->setViewController({});
    state.view = objc::retain(view);
    if (view)
        view.setViewController(*this);
}

void UIViewController::loadView() const
{
    auto const view = make<UIView>(screenBounds());
    view->setAutoresizingMask(Autoresizing::width | Autoresizing::height);
    send<"setView:">(view.get());
}
void UIViewController::loadViewIfNeeded() const { view(); }
void UIViewController::viewDidLoad() const { }
void UIViewController::viewWillAppear(BOOL) const { }
void UIViewController::viewDidAppear(BOOL) const { }
void UIViewController::viewWillDisappear(BOOL) const { }
void UIViewController::viewDidDisappear(BOOL) const { }
void UIViewController::viewWillLayoutSubviews() const { }
void UIViewController::viewDidLayoutSubviews() const { }

void beginAppearance(UIViewController controller, bool appears, bool animated)
{
    if (!controller)
        return;
    ControllerState& state = stateOf(controller);
    bool const isShown =
        state.appearance == AppearanceState::appeared || state.appearance == AppearanceState::appearing;
    if (isShown == appears)
        return;
    controller.view();
    state.appearance = appears ? AppearanceState::appearing : AppearanceState::disappearing;
    state.isAnimated = animated;
    if (appears)
        controller.send<"viewWillAppear:">(BOOL { animated });
    else
        controller.send<"viewWillDisappear:">(BOOL { animated });
    for (auto const& child : std::vector(state.children))
        beginAppearance(child, appears, animated);
}

void endAppearance(UIViewController controller)
{
    if (!controller)
        return;
    auto const kept = objc::retain(controller);
    ControllerState& state = stateOf(controller);
    bool const appears = state.appearance == AppearanceState::appearing;
    if (!appears && state.appearance != AppearanceState::disappearing)
        return;
    state.appearance = appears ? AppearanceState::appeared : AppearanceState::disappeared;
    if (appears)
        controller.send<"viewDidAppear:">(BOOL { state.isAnimated });
    else
        controller.send<"viewDidDisappear:">(BOOL { state.isAnimated });
    for (auto const& child : std::vector(state.children))
        endAppearance(child);
}

NSString UIViewController::title() const { return object ? stateOf(*this).title.get() : NSString {}; }
void UIViewController::setTitle(NSString title) const
{
    stateOf(*this).title = objc::adopt(NSString { title.send<"copy", objc::handle>().object });
}

// Containment

UIViewController UIViewController::parentViewController() const
{
    return object ? UIViewController { stateOf(*this).parent } : UIViewController {};
}
NSArray UIViewController::childViewControllers() const
{
    auto const array = NSMutableArray::array();
    for (auto const& child : stateOf(*this).children)
        array.addObject(child.get());
    return array;
}
void UIViewController::addChildViewController(UIViewController child) const
{
    if (!object || !child || child.parentViewController() == *this)
        return;
    auto const kept = objc::retain(child);
    if (child.parentViewController())
        child.removeFromParentViewController();
    child.send<"willMoveToParentViewController:">(*this);
    stateOf(*this).children.push_back(kept);
    stateOf(child).parent = object;
}
void UIViewController::removeFromParentViewController() const
{
    UIViewController const parent = parentViewController();
    if (!parent)
        return;
    auto const kept = objc::retain(*this);
    stateOf(*this).parent = nullptr;
    std::erase_if(stateOf(parent).children, [this](auto const& each) { return each.get() == *this; });
    send<"didMoveToParentViewController:">(UIViewController {});
}
void UIViewController::willMoveToParentViewController(UIViewController) const { }
void UIViewController::didMoveToParentViewController(UIViewController) const { }

UIResponder UIViewController::nextResponder() const
{
    if (!object)
        return {};
    if (UIViewController const presenter = presentingViewController())
        return presenter;
    return viewIfLoaded().superview();
}

BOOL UIViewController::canShowWhileLocked() const { return false; }

// Presentation

UIViewController UIViewController::presentedViewController() const
{
    for (UIViewController each = *this; each; each = each.parentViewController()) {
        if (UIViewController const presented = stateOf(each).presented)
            return presented;
    }
    return {};
}
UIViewController UIViewController::presentingViewController() const
{
    for (UIViewController each = *this; each; each = each.parentViewController()) {
        if (id const presenter = stateOf(each).presenting)
            return UIViewController { presenter };
    }
    return {};
}
BOOL UIViewController::isBeingPresented() const { return object && stateOf(*this).isBeingPresented; }
BOOL UIViewController::isBeingDismissed() const { return object && stateOf(*this).isBeingDismissed; }
NSInteger UIViewController::modalPresentationStyle() const { return stateOf(*this).presentationStyle; }
void UIViewController::setModalPresentationStyle(NSInteger style) const
{
    stateOf(*this).presentationStyle = style;
}
NSInteger UIViewController::modalTransitionStyle() const { return stateOf(*this).transitionStyle; }
void UIViewController::setModalTransitionStyle(NSInteger style) const
{
    stateOf(*this).transitionStyle = style;
}

namespace {

// Why the platform would not present, with the warning it prints; empty when it would.
std::string refusal(UIViewController presenter, UIViewController controller)
{
    std::string const attempt =
        "can't present a " + classNameOf(controller) + " on a " + classNameOf(presenter) + ": ";
    if (!controller)
        return attempt + "there is none";
    if (stateOf(controller).presenting)
        return attempt + "it is presented already";
    if (controller == presenter || controller == topParent(presenter))
        return attempt + "it would present itself";
    if (UIViewController const shown = presenter.presentedViewController())
        return attempt + "it presents a " + classNameOf(shown) + " already";
    if (!presenter.view().window())
        return attempt + "its view is in no window";
    if (!controller.send<"phone_mayBePresented", BOOL>())
        return attempt + "it is not to be shown now";
    return {};
}

}

void UIViewController::present(
    UIViewController controller, bool animated, std::function<void()> completion) const
{
    if (!object)
        return;
    if (std::string const problem = refusal(*this, controller); !problem.empty()) {
        reportProblem(problem);
        return;
    }
    Json fields = eventFields(controller, *this, animated, bool(completion));
    controller.send<"phone_describePresentation:">(&fields);
    trace().record("present", std::move(fields));

    UIViewController const presenter = topParent(*this);
    UIWindow const window = view().window();
    auto const kept = objc::retain(controller);
    ControllerState& state = stateOf(controller);
    stateOf(presenter).presented = kept;
    state.presenting = presenter.object;
    state.isBeingPresented = true;
    static std::uint64_t presentations = 0;
    state.presentation = ++presentations;
    int const transition = ++state.transition;
    bool const covers = state.presentationStyle == kFullScreen;

    UIView const presentedView = controller.view();
    presentedView.setFrame(window.bounds());
    presentedView.setAutoresizingMask(Autoresizing::width | Autoresizing::height);
    beginAppearance(controller, true, animated);
    if (covers)
        beginAppearance(presenter, false, animated);
    window.addSubview(presentedView);
    presentedView.layoutIfNeeded();

    std::function<void()> done = [kept, keptPresenter = objc::retain(presenter), transition, covers,
                                     completion = std::move(completion)] {
        ControllerState& arrived = stateOf(kept);
        if (arrived.transition == transition) {
            arrived.isBeingPresented = false;
            endAppearance(kept);
            if (covers)
                endAppearance(keptPresenter);
        }
        if (completion)
            completion();
    };
    if (animated)
        controller.send<"phone_animatePresentation:completion:">(BOOL { true }, &done);
    else
        callLater(std::move(done));
}

void UIViewController::dismiss(bool animated, std::function<void()> completion) const
{
    if (!object)
        return;
    UIViewController controller = presentedViewController();
    if (!controller) {
        UIViewController each = *this;
        while (each && !stateOf(each).presenting)
            each = each.parentViewController();
        controller = each;
    }
    if (!controller || stateOf(controller).isBeingDismissed)
        return;
    UIViewController const presenter { stateOf(controller).presenting };
    trace().record("dismiss", eventFields(controller, presenter, animated, bool(completion)));

    // What stands above goes with it; the topmost one is what is seen to leave.
    std::vector<objc::ref<UIViewController>> leaving;
    for (UIViewController each = controller; each; each = stateOf(each).presented)
        leaving.push_back(objc::retain(each));
    bool const covers = stateOf(controller).presentationStyle == kFullScreen;
    for (auto each = leaving.rbegin(); each != leaving.rend(); ++each) {
        stateOf(*each).isBeingDismissed = true;
        stateOf(*each).isBeingPresented = false;
        ++stateOf(*each).transition;
        beginAppearance(*each, false, animated);
    }
    if (covers)
        beginAppearance(presenter, true, animated);

    std::function<void()> done = [leaving, covers, keptPresenter = objc::retain(presenter),
                                     completion = std::move(completion)] {
        for (auto each = leaving.rbegin(); each != leaving.rend(); ++each) {
            ControllerState& state = stateOf(*each);
            (*each)->view().removeFromSuperview();
            state.isBeingDismissed = false;
            if (id const above = std::exchange(state.presenting, nullptr))
                stateOf(UIViewController { above }).presented = nullptr;
            endAppearance(*each);
        }
        if (covers)
            endAppearance(keptPresenter);
        if (completion)
            completion();
    };
    if (animated)
        leaving.back()->send<"phone_animatePresentation:completion:">(BOOL { false }, &done);
    else
        callLater(std::move(done));
}

void UIViewController::presentViewController(
    UIViewController controller, BOOL animated, PlainBlock completion) const
{
    present(controller, animated, functionOf(completion));
}
void UIViewController::dismissViewController(BOOL animated, PlainBlock completion) const
{
    dismiss(animated, functionOf(completion));
}

void UIViewController::animatePresentation(BOOL presenting, std::function<void()>* done) const
{
    UIView const view = this->view();
    CGRect const shown = view.superview().bounds();
    CGRect const below { { shown.origin.x, shown.origin.y + shown.size.height }, shown.size };
    if (presenting)
        view.setFrame(below);
    animateWithOptions(
        kPresentationSeconds, 0, AnimationOption::curveEaseOut,
        [view, presenting, shown, below] { view.setFrame(presenting ? shown : below); },
        [finished = std::move(*done)](bool) { finished(); });
}

void UIViewController::describePresentation(Json*) const { }
BOOL UIViewController::mayBePresented() const { return true; }

std::uint64_t presentationOrder(UIViewController controller)
{
    return controller ? stateOf(controller).presentation : 0;
}

std::vector<UIViewController> presentedControllers(UIWindow window)
{
    std::vector<UIViewController> all;
    UIViewController each = window.rootViewController();
    while (each && (each = each.presentedViewController()))
        all.push_back(each);
    return all;
}

void defineUIViewController()
{
    objc::define<UIViewController>()
        .state<ControllerState>()
        .method<"init", &UIViewController::init>()
        .method<"view", &UIViewController::view>()
        .method<"viewIfLoaded", &UIViewController::viewIfLoaded>()
        .method<"setView:", &UIViewController::setView>()
        .method<"isViewLoaded", &UIViewController::isViewLoaded>()
        .method<"loadView", &UIViewController::loadView>()
        .method<"loadViewIfNeeded", &UIViewController::loadViewIfNeeded>()
        .method<"viewDidLoad", &UIViewController::viewDidLoad>()
        .method<"viewWillAppear:", &UIViewController::viewWillAppear>()
        .method<"viewDidAppear:", &UIViewController::viewDidAppear>()
        .method<"viewWillDisappear:", &UIViewController::viewWillDisappear>()
        .method<"viewDidDisappear:", &UIViewController::viewDidDisappear>()
        .method<"viewWillLayoutSubviews", &UIViewController::viewWillLayoutSubviews>()
        .method<"viewDidLayoutSubviews", &UIViewController::viewDidLayoutSubviews>()
        .method<"title", &UIViewController::title>()
        .method<"setTitle:", &UIViewController::setTitle>()
        .method<"parentViewController", &UIViewController::parentViewController>()
        .method<"childViewControllers", &UIViewController::childViewControllers>()
        .method<"addChildViewController:", &UIViewController::addChildViewController>()
        .method<"removeFromParentViewController", &UIViewController::removeFromParentViewController>()
        .method<"willMoveToParentViewController:", &UIViewController::willMoveToParentViewController>()
        .method<"didMoveToParentViewController:", &UIViewController::didMoveToParentViewController>()
        .method<"presentedViewController", &UIViewController::presentedViewController>()
        .method<"presentingViewController", &UIViewController::presentingViewController>()
        .method<"presentViewController:animated:completion:", &UIViewController::presentViewController>()
        .method<"dismissViewControllerAnimated:completion:", &UIViewController::dismissViewController>()
        .method<"isBeingPresented", &UIViewController::isBeingPresented>()
        .method<"isBeingDismissed", &UIViewController::isBeingDismissed>()
        .method<"modalPresentationStyle", &UIViewController::modalPresentationStyle>()
        .method<"setModalPresentationStyle:", &UIViewController::setModalPresentationStyle>()
        .method<"modalTransitionStyle", &UIViewController::modalTransitionStyle>()
        .method<"setModalTransitionStyle:", &UIViewController::setModalTransitionStyle>()
        .method<"nextResponder", &UIViewController::nextResponder>()
        .method<"_canShowWhileLocked", &UIViewController::canShowWhileLocked>()
        .method<"phone_animatePresentation:completion:", &UIViewController::animatePresentation>()
        .method<"phone_describePresentation:", &UIViewController::describePresentation>()
        .method<"phone_mayBePresented", &UIViewController::mayBePresented>()
        .install();
}

}
