#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/edge_swipe.hpp"
#include "phone/springboard/lock_flow.hpp"
#include "phone/springboard/lock_screen.hpp"
#include "phone/springboard/passcode_pad.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/system_classes.hpp"
#include "phone/uikit/ui_gesture_recognizer.hpp"
#include "phone/uikit/ui_screen.hpp"

namespace phone {

namespace {

constexpr char kControllerKey[] = "_idleTimerProvider";
constexpr char kIdleControllerKey[] = "_dashBoardIdleTimerProvider";

// Keeps the screen on for those who ask, by reason.
struct IdleTimerProvider : objc::subclass<IdleTimerProvider, "SBDashBoardIdleTimerProvider", NSObject> {
    using subclass::subclass;
    // The key by which it is reached.
    std::string& key() const { return objc::state<std::string>(*this); }

    static objc::ref<IdleTimerProvider> make(char const* key)
    {
        auto provider = objc::adopt(alloc().init<IdleTimerProvider>());
        provider->key() = key;
        return provider;
    }
    void note(char const* action, objc::handle reason) const
    {
        trace().record("assertion",
            { { "action", action }, { "reason", reason ? Json(toString(reason)) : Json() },
                { "provider", key() } });
    }
    void add(objc::handle reason) const
    {
        note("add", reason);
        springBoard().idleTimer.add(toString(reason));
    }
    void remove(objc::handle reason) const
    {
        note("remove", reason);
        springBoard().idleTimer.remove(toString(reason));
    }
};

struct IdleTimerController : objc::subclass<IdleTimerController, "CSIdleTimerController", NSObject> {
    using subclass::subclass;
};

// The controller's view: lays the lock screen out, and takes the swipe that leaves it.
struct CoverSheetView : objc::subclass<CoverSheetView, "CSCoverSheetView", UIView> {
    using subclass::subclass;
    void layoutSubviews() const
    {
        objc::send_super<CoverSheetView, "layoutSubviews">(*this);
        auto const& state = springBoard();
        if (state.lockScreen && state.passcodePad && state.coverSheetController->viewIfLoaded() == *this) {
            state.lockScreen->layOut();
            state.passcodeController->view().setFrame(bounds());
            state.passcodePad->layOut(bounds());
        }
    }
    EdgeSwipe& swipe() const { return objc::state<EdgeSwipe>(*this); }
    void touchesBegan(objc::handle touches, objc::handle) const { swipe().begin(*this, touches); }
    void touchesMoved(objc::handle touches, objc::handle) const
    {
        if (!swipe().isDone(*this, touches))
            return;
        TraceOwnScope const own;
        requestUnlock();
    }
    void touchesEnded(objc::handle, objc::handle) const { swipe().end(); }
};

// Key-value coding that answers nil where the platform's raises.
id safeValueForKey(id receiver, SEL, id key)
{
    NSObject const object { receiver };
    std::string const name = toString(objc::handle { key });
    std::string const plain = name.starts_with('_') ? name.substr(1) : name;
    Class const cls = objc::boundary::class_of(receiver);
    bool const isKnown = class_getInstanceVariable(cls, name.c_str())
        || class_getInstanceVariable(cls, ("_" + plain).c_str())
        || objc::is_true(class_respondsToSelector(cls, sel_registerName(name.c_str())));
    return isKnown ? object.valueForKey(NSString { key }).object : nullptr;
}

struct CoverSheetState {
    objc::ref<IdleTimerProvider> provider;
    objc::ref<IdleTimerProvider> idleProvider;
    objc::ref<IdleTimerController> idleController;
};

template <objc::fixed_string Name>
struct CoverSheetController : objc::subclass<CoverSheetController<Name>, Name, UIViewController> {
    using CoverSheetController::subclass::subclass;
    CoverSheetState& parts() const { return objc::state<CoverSheetState>(*this); }
    objc::handle idleTimerController() const { return parts().idleController; }
    void loadView() const
    {
        auto const view = make<CoverSheetView>(screenBounds());
        this->setView(view);
    }
    BOOL canShowWhileLocked() const { return true; }
};
using DashBoardController = CoverSheetController<"SBDashBoardViewController">;
using CoverSheetControllerClass = CoverSheetController<"CSCoverSheetViewController">;

// Objects in variables that key-value coding finds; a version may lack them.
void storeVariable(objc::handle object, char const* name, objc::handle value)
{
    Class const cls = objc::boundary::class_of(object.object);
    if (Ivar const variable = class_getInstanceVariable(cls, name))
        *reinterpret_cast<id*>(reinterpret_cast<char*>(object.object) + ivar_getOffset(variable)) =
            value.object;
}

template <class T>
void defineCoverSheetController()
{
    objc::define<T>()
        .template ivar<kControllerKey, objc::handle>()   // the state owns it
        .template state<CoverSheetState>()
        .template method<"loadView", &T::loadView>()
        .template method<"idleTimerController", &T::idleTimerController>()
        .template method<"_canShowWhileLocked", &T::canShowWhileLocked>()
        .install();
}

template <class T>
objc::ref<UIViewController> makeController()
{
    auto controller = objc::adopt(T { T::alloc().template send<"init", objc::handle>().object });
    auto& parts = controller->parts();
    parts.provider = IdleTimerProvider::make(kControllerKey);
    parts.idleProvider = IdleTimerProvider::make(kIdleControllerKey);
    parts.idleController = objc::adopt(IdleTimerController::alloc().template init<IdleTimerController>());
    storeVariable(controller.get(), kControllerKey, parts.provider);
    storeVariable(parts.idleController.get(), kIdleControllerKey, parts.idleProvider);
    return objc::retain(UIViewController(controller.get()));
}

struct CoverSheetManager : objc::subclass<CoverSheetManager, "SBCoverSheetPresentationManager", NSObject> {
    using subclass::subclass;
    static objc::handle sharedInstance() { return springBoard().coverSheetManager; }
    UIViewController controller() const { return springBoard().coverSheetController; }
    BOOL isVisible() const { return springBoard().isLocked; }
};

}

void defineCoverSheet(ClassFamily family, CoverSheetAnswer answer)
{
    class_addMethod(NSObject::cls().get(), objc::selector<"safeValueForKey:">(),
        objc::boundary::any_function(&safeValueForKey), "@@:@");
    objc::define<IdleTimerProvider>()
        .state<std::string>()
        .method<"addDisabledIdleTimerAssertionReason:", &IdleTimerProvider::add>()
        .method<"removeDisabledIdleTimerAssertionReason:", &IdleTimerProvider::remove>()
        .install();
    objc::define<IdleTimerController>().ivar<kIdleControllerKey, objc::handle>().install();
    objc::define<CoverSheetView>()
        .state<EdgeSwipe>()
        .method<"layoutSubviews", &CoverSheetView::layoutSubviews>()
        .method<"touchesBegan:withEvent:", &CoverSheetView::touchesBegan>()
        .method<"touchesMoved:withEvent:", &CoverSheetView::touchesMoved>()
        .method<"touchesEnded:withEvent:", &CoverSheetView::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &CoverSheetView::touchesEnded>()
        .install();
    if (family == ClassFamily::dashBoard)
        defineCoverSheetController<DashBoardController>();
    else
        defineCoverSheetController<CoverSheetControllerClass>();

    objc::define<CoverSheetManager> manager;
    manager.class_method<"sharedInstance", &CoverSheetManager::sharedInstance>()
        .method<"isVisible", &CoverSheetManager::isVisible>();
    if (answer == CoverSheetAnswer::dashBoard || answer == CoverSheetAnswer::both)
        manager.method<"dashBoardViewController", &CoverSheetManager::controller>();
    if (answer == CoverSheetAnswer::coverSheet || answer == CoverSheetAnswer::both)
        manager.method<"coverSheetViewController", &CoverSheetManager::controller>();
    manager.install();
}

objc::ref<UIViewController> makeCoverSheetController(ClassFamily family)
{
    return family == ClassFamily::dashBoard ? makeController<DashBoardController>()
                                            : makeController<CoverSheetControllerClass>();
}

objc::ref<objc::handle> makeCoverSheetManager()
{
    return objc::adopt(CoverSheetManager::alloc().init<objc::handle>());
}

}
