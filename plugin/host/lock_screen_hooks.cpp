#include "plugin/host/lock_screen_hooks.hpp"

#include "objc/define.hpp"
#include "platform/core_foundation.hpp"
#include "plugin/host/activator.hpp"
#include "plugin/host/host_state.hpp"
#include "plugin/host/settings.hpp"

namespace {

constexpr CGFloat kLockScreenStripHeight = 90;   // points, on the lock screen
constexpr CGFloat kStripInset = 10;              // each side; none with the banded style

enum class Occasion { dismissal, unlockFinish };

struct ParkedAction {
    NSInteger code;
    Occasion occasion;
    void (*run)(CVLView strip);
};

// Actions that were parked behind the passcode. Those that need another application in front wait for the lock screen's
// dismissal; the others can be shown over the lock screen, and run instead of leaving it.
constexpr ParkedAction kParkedActions[] = {
    { 1, Occasion::dismissal, [](CVLView strip) { strip.send<"msgWA">(); } },
    { 2, Occasion::dismissal, [](CVLView strip) { strip.send<"callWA">(); } },
    { 3, Occasion::unlockFinish, [](CVLView strip) { strip.send<"msgSMS">(); } },
    { 4, Occasion::unlockFinish, [](CVLView strip) { strip.send<"sndEmail">(); } },
    { 5, Occasion::unlockFinish, [](CVLView strip) { strip.send<"callPhone">(); } },
    { 6, Occasion::unlockFinish, [](CVLView strip) { strip.send<"callFacetime">(); } },
    { 7, Occasion::dismissal, [](CVLView strip) { strip.send<"msgTG">(); } },
    { 8, Occasion::dismissal, [](CVLView strip) { strip.send<"callTG">(); } },
    { 9, Occasion::unlockFinish, [](CVLView strip) { strip.send<"showMenu:">(nullptr); } },
};

// The read consumes the code, also one that belongs to the other occasion.
void runParkedAction(CVLView strip, Occasion occasion)
{
    NSInteger const code = strip.send<"actionState", NSInteger>();
    for (ParkedAction const& row : kParkedActions)
        if (row.code == code && row.occasion == occasion)
            row.run(strip);
}

// Both notifications of a turned screen end here: the overlay strip follows the front-most application.
void orientationChanged(CFNotificationCenterRef, void*, NSString, void const*, NSDictionary)
{
    HostState& host = hostState();
    NSInteger const orientation = frontMostAppOrientation();
    if (orientation == host.oldOrientation)
        return;
    host.overlayView->send<"rotateView">();
    host.oldOrientation = orientation;
}

void observeOrientation()
{
    CFNotificationCallback const callback = objc::boundary::leaving(&orientationChanged);
    CFNotificationCenterAddObserver(CFNotificationCenterGetDarwinNotifyCenter(), nullptr, callback,
        "com.apple.springboard.screenchanged"_ns, nullptr,
        CFNotificationSuspensionBehaviorDeliverImmediately);
    CFNotificationCenterAddObserver(CFNotificationCenterGetLocalCenter(), nullptr, callback,
        "UIWindowDidRotateNotification"_ns, nullptr, CFNotificationSuspensionBehaviorCoalesce);
}

void createStrip(AdjunctListViewController controller)
{
    HostState& host = hostState();
    NSNotificationCenter const center = NSNotificationCenter::defaultCenter();
    center.addObserver(controller, objc::selector<"activatorNONLS">(), kActivatorNONLS(), nullptr);
    host.oldOrientation = frontMostAppOrientation();
    observeOrientation();

    CGFloat const width = UIScreen::mainScreen().bounds().size.width - 55;
    host.cvloView = objc::adopt(CVLView::alloc().send<"initWithFrame:prefs:nonLSView:", CVLView>(
        CGRectMake(0, 27, width, 80), host.initPrefs.get(), BOOL(false)));
    if (settings().hideLSView)
        host.cvloView->setHidden(true);
    center.addObserver(controller, objc::selector<"activatorLS">(), kActivatorLS(), nullptr);
}

// The strip's own, so it outlives the strip's moves from stack to stack: made once.
NSLayoutConstraint heightConstraint(CVLView strip)
{
    static NSLayoutConstraint const height =
        objc::leak(objc::retain(strip.heightAnchor().constraintEqualToConstant(kLockScreenStripHeight)));
    return height;
}

NSArray stripConstraints(CVLView strip, UIStackView stack)
{
    NSMutableArray const constraints = NSMutableArray::array();
    if (!strip || !stack)
        return constraints;
    CGFloat const inset = settings().bannerStyle == 2 ? 0 : kStripInset;
    addConstraintIfAny(constraints, strip.centerXAnchor().constraintEqualTo(stack.centerXAnchor()));
    addConstraintIfAny(constraints, strip.leadingAnchor().constraintEqualTo(stack.leadingAnchor(), inset));
    addConstraintIfAny(constraints, strip.trailingAnchor().constraintEqualTo(stack.trailingAnchor(), -inset));
    addConstraintIfAny(constraints, heightConstraint(strip));
    return constraints;
}

// After anything that SpringBoard put into the list: the strip stays its last item.
void keepStripLast(AdjunctListViewController controller)
{
    auto const& strip = hostState().cvloView;
    if (!settings().enabled() || settings().isAlwaysOnTop || !strip)
        return;
    UIStackView const stack = stackViewOf(controller);
    stack.removeArrangedSubview(strip);
    stack.addArrangedSubview(strip);
}

}

UIStackView stackViewOf(AdjunctListViewController controller)
{
    NSString const key = "_stackView"_ns;
    // Key-value coding raises for a key that it does not find.
    if (!key || (!controller.responds<"_stackView">() && !objc::has_ivar(controller, "_stackView")))
        return nullptr;
    return objc::cast<UIStackView>(controller.valueForKey(key));
}

void placeStripInStack(UIStackView stack)
{
    CVLView const strip = hostState().cvloView;
    NSArray const constraints = stripConstraints(strip, stack);
    if (settings().isAlwaysOnTop)
        stack.insertArrangedSubview(strip, 0);
    else
        stack.addArrangedSubview(strip);
    NSLayoutConstraint::activateConstraints(constraints);
}

void ViewDidLoad::replacement(AdjunctListViewController self, SEL cmd)
{
    original(self, cmd);   // first: it makes the stack that the strip goes into
    if (!settings().enabled())
        return;
    UIStackView const stack = stackViewOf(self);
    self.send<"initFirstPreferences">();
    if (!hostState().cvloView)
        createStrip(self);

    hostState().cvloView->setTranslatesAutoresizingMaskIntoConstraints(false);
    placeStripInStack(stack);
}

Answer UpdatePresentingContent::replacement(AdjunctListViewController self, SEL cmd)
{
    Answer const answer = original(self, cmd);
    keepStripLast(self);
    return answer;
}

Answer InsertItemAnimated::replacement(
    AdjunctListViewController self, SEL cmd, objc::handle item, BOOL animated)
{
    Answer const answer = original(self, cmd, item, animated);
    keepStripLast(self);
    return answer;
}

// Not asked while we are enabled: the area under the notifications shows whenever it holds the strip.
BOOL IsPresentingContent::replacement(AdjunctListViewController self, SEL cmd)
{
    return settings().enabled() || original(self, cmd);
}

Answer LockScreenViewControllerWillDismiss::replacement(SBLockScreenManager self, SEL cmd)
{
    Answer const answer = original(self, cmd);
    HostState const& host = hostState();
    if (host.cvloView) {
        runParkedAction(host.cvloView, Occasion::dismissal);
        host.overlayView->send<"makeBannerGone">();
    }
    return answer;
}

// Swallowed while the strip wants to stay: the unlock is not carried through, and the lock screen remains.
Answer FinishUIUnlock::replacement(SBLockScreenManager self, SEL cmd, int source, objc::handle options)
{
    HostState const& host = hostState();
    if (!host.cvloView->send<"getShouldStayAtLS", BOOL>())
        return original(self, cmd, source, options);
    runParkedAction(host.cvloView, Occasion::unlockFinish);
    host.overlayView->send<"makeBannerGone">();
    return 0;
}

// However the passcode screen was left, what waited for it is forgotten.
void PasscodeViewDidDisappear::replacement(PasscodeViewController self, SEL cmd, BOOL animated)
{
    original(self, cmd, animated);
    auto const& strip = hostState().cvloView;
    strip->send<"setShouldStayAtLS:">(BOOL(false));
    strip->send<"resetActionState">();
}

void initFirstPreferences(AdjunctListViewController, SEL)
{
    hostState().initPrefs.assign(currentPreferences());
}
