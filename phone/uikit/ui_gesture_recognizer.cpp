#include "phone/uikit/ui_gesture_recognizer.hpp"

#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/uikit/raise.hpp"
#include "phone/uikit/touch_delivery.hpp"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace phone {

namespace {

// Recognisers that have, or had, a touch and were not reset since; in the order in which they got it.
std::vector<objc::ref<UIGestureRecognizer>> g_activeRecognizers;

bool sharesTouch(UIGestureRecognizer a, UIGestureRecognizer b)
{
    auto const& others = b.recognizerState().touches;
    return std::ranges::any_of(a.recognizerState().touches, [&others](auto const& touch) {
        return std::ranges::any_of(others, [&touch](auto const& other) { return other == touch; });
    });
}

// Either delegate may let both go on.
bool areSimultaneous(UIGestureRecognizer a, UIGestureRecognizer b)
{
    using std::pair;
    for (auto const& [one, other] : { pair { a, b }, pair { b, a } }) {
        objc::handle const delegate = one.delegate();
        if (delegate.ask<"gestureRecognizer:shouldRecognizeSimultaneouslyWithGestureRecognizer:", BOOL>(
                one, other))
            return true;
    }
    return false;
}

bool prevents(UIGestureRecognizer winner, UIGestureRecognizer other)
{
    return !areSimultaneous(winner, other) && winner.send<"canPreventGestureRecognizer:", BOOL>(other)
        && other.send<"canBePreventedByGestureRecognizer:", BOOL>(winner);
}

bool isOver(UITouch touch)
{
    return touch.phase() == TouchPhase::ended || touch.phase() == TouchPhase::cancelled;
}

}

UIGestureRecognizer UIGestureRecognizer::init() const { return initWithTarget({}, nullptr); }

UIGestureRecognizer UIGestureRecognizer::initWithTarget(objc::handle target, SEL action) const
{
    UIGestureRecognizer const self {
        objc::send_super<UIGestureRecognizer, "init", objc::handle>(*this).object
    };
    if (self && target && action)
        self.addTarget(target, action);
    return self;
}

void UIGestureRecognizer::addTarget(objc::handle target, SEL action) const
{
    auto& targets = recognizerState().targets;
    bool const isThere = std::ranges::any_of(targets, [target, action](GestureTarget const& each) {
        return each.target.get() == target && each.action == action;
    });
    if (!isThere && action)
        targets.push_back({ NSObject { target.object }, action });
}

void UIGestureRecognizer::removeTarget(objc::handle target, SEL action) const
{
    std::erase_if(recognizerState().targets, [target, action](GestureTarget const& each) {
        return (!target || each.target.get() == target) && (!action || each.action == action);
    });
}

std::vector<GestureTarget> UIGestureRecognizer::targets() const
{
    std::vector<GestureTarget> living;
    for (auto const& each : recognizerState().targets) {
        if (each.target)
            living.push_back(each);
    }
    return living;
}

UIView UIGestureRecognizer::view() const { return recognizerState().view; }
void UIGestureRecognizer::setView(UIView view) const
{
    RecognizerState& state = recognizerState();
    if (state.view.get() == view)
        return;
    state.view = view;
    // Taken off its view while a finger is down: the gesture is over.
    if (!view && state.isActive)
        setState(isPossible() ? GestureState::failed : GestureState::cancelled);
}

GestureState UIGestureRecognizer::state() const { return recognizerState().state; }

bool UIGestureRecognizer::isRecognized() const
{
    GestureState const now = state();
    return recognizerState().isActive
        && (now == GestureState::began || now == GestureState::changed || now == GestureState::ended);
}

void UIGestureRecognizer::setState(GestureState next) const
{
    RecognizerState& state = recognizerState();
    if (!state.isActive) {
        state.state = next;
        return;
    }
    bool const isUnderWay = state.state == GestureState::began || state.state == GestureState::changed;
    switch (next) {
    case GestureState::possible: return;
    case GestureState::began:
    case GestureState::changed:
    case GestureState::ended:
        if (state.state == GestureState::possible) {
            recognize(next == GestureState::changed ? GestureState::began : next);
            return;
        }
        if (!isUnderWay)
            return;
        state.state = next == GestureState::began ? GestureState::changed : next;
        sendActions();
        return;
    case GestureState::cancelled:
        if (isUnderWay) {
            state.state = next;
            sendActions();
        } else if (state.state == GestureState::possible) {
            state.state = GestureState::failed;
            state.deferred.reset();
        }
        return;
    case GestureState::failed:
        if (state.state == GestureState::possible) {
            state.state = next;
            state.deferred.reset();
        }
        return;
    }
}

bool UIGestureRecognizer::mayBegin() const
{
    RecognizerState const& state = recognizerState();
    if (!state.isEnabled)
        return false;
    NSObject const delegate = state.delegate;
    if (delegate.responds<"gestureRecognizerShouldBegin:">()) {
        CalloutScope const scope(delegate, objc::selector<"gestureRecognizerShouldBegin:">());
        if (!delegate.send<"gestureRecognizerShouldBegin:", BOOL>(*this))
            return false;
    }
    UIView const view = state.view;
    return !view.responds<"gestureRecognizerShouldBegin:">()
        || view.send<"gestureRecognizerShouldBegin:", BOOL>(*this);
}

// Does one that has to fail first still have a chance?
bool UIGestureRecognizer::isHeldUp() const
{
    auto const watches = [this](UIGestureRecognizer other) {
        return other && other != *this && other.recognizerState().isActive && other.isPossible();
    };
    if (std::ranges::any_of(
            recognizerState().required, [&watches](auto const& other) { return watches(other.get()); }))
        return true;
    return std::ranges::any_of(g_activeRecognizers, [this, &watches](auto const& other) {
        if (!watches(other.get()) || !sharesTouch(*this, other.get()))
            return false;
        return delegate().ask<"gestureRecognizer:shouldRequireFailureOfGestureRecognizer:", BOOL>(
                   *this, other.get())
            || other->delegate()
                   .template ask<"gestureRecognizer:shouldBeRequiredToFailByGestureRecognizer:", BOOL>(
                       other.get(), *this);
    });
}

void UIGestureRecognizer::recognize(GestureState next) const
{
    auto const keepAlive = objc::retain(*this);
    RecognizerState& state = recognizerState();
    if (isHeldUp()) {
        state.deferred = next;
        return;
    }
    state.deferred.reset();
    auto const active = g_activeRecognizers;
    bool const isTaken = std::ranges::any_of(state.required, [](auto const& other) {
        return other.get() && other.get().isRecognized();
    }) || std::ranges::any_of(active, [this](auto const& other) {
        return other.get() != *this && other->isRecognized() && sharesTouch(*this, other.get())
            && prevents(other.get(), *this);
    });
    if (isTaken || !mayBegin()) {
        state.state = GestureState::failed;
        return;
    }

    state.state = next;
    for (auto const& other : active) {
        if (other.get() != *this && other->isPossible() && sharesTouch(*this, other.get())
            && prevents(*this, other.get()))
            other->setState(GestureState::failed);
    }
    auto const touches = state.touches;
    bool const cancels = state.cancelsTouchesInView;
    sendActions();
    if (cancels) {
        for (auto const& touch : touches)
            touchDelivery().cancelInView(touch);
    }
}

void UIGestureRecognizer::sendActions() const
{
    auto const keepAlive = objc::retain(*this);
    auto const targets = recognizerState().targets;
    for (auto const& [weak, action] : targets) {
        auto const target = objc::retain(weak.get());
        if (!target)
            continue;
        CalloutScope const scope(target.get(), action);
        objc::call_implementation<void, UIGestureRecognizer>(
            objc::boundary::message_implementation(target.get().object, action), target.get().object, action,
            *this);
    }
}

BOOL UIGestureRecognizer::isEnabled() const { return recognizerState().isEnabled; }
void UIGestureRecognizer::setEnabled(BOOL enabled) const
{
    RecognizerState& state = recognizerState();
    if (state.isEnabled == enabled)
        return;
    state.isEnabled = enabled;
    if (!enabled && state.isActive)
        setState(GestureState::cancelled);
}
BOOL UIGestureRecognizer::cancelsTouchesInView() const { return recognizerState().cancelsTouchesInView; }
void UIGestureRecognizer::setCancelsTouchesInView(BOOL cancels) const
{
    recognizerState().cancelsTouchesInView = cancels;
}
BOOL UIGestureRecognizer::delaysTouchesBegan() const { return recognizerState().delaysTouchesBegan; }
void UIGestureRecognizer::setDelaysTouchesBegan(BOOL delays) const
{
    recognizerState().delaysTouchesBegan = delays;
}
BOOL UIGestureRecognizer::delaysTouchesEnded() const { return recognizerState().delaysTouchesEnded; }
void UIGestureRecognizer::setDelaysTouchesEnded(BOOL delays) const
{
    recognizerState().delaysTouchesEnded = delays;
}
objc::handle UIGestureRecognizer::delegate() const { return recognizerState().delegate.get(); }
void UIGestureRecognizer::setDelegate(objc::handle delegate) const
{
    recognizerState().delegate = NSObject { delegate.object };
}
NSString UIGestureRecognizer::name() const { return toNSString(recognizerState().name); }
void UIGestureRecognizer::setName(NSString name) const { recognizerState().name = toString(name); }

void UIGestureRecognizer::requireGestureRecognizerToFail(UIGestureRecognizer other) const
{
    if (other && other != *this)
        recognizerState().required.push_back(other);
}

CGPoint middleOf(std::vector<objc::ref<UITouch>> const& touches)
{
    CGPoint sum {};
    for (auto const& touch : touches)
        sum = sum + touch->touchState().location;
    auto const count = static_cast<double>(std::max<std::size_t>(touches.size(), 1));
    return { sum.x / count, sum.y / count };
}

CGPoint UIGestureRecognizer::locationInView(UIView view) const
{
    auto const& touches = recognizerState().touches;
    if (touches.empty())
        return {};
    UIWindow const window = touches.front()->window();
    CGPoint const inWindow = fromScreen(middleOf(touches), window);
    return view ? view.convertPointFromView(inWindow, window) : inWindow;
}

CGPoint UIGestureRecognizer::locationOfTouch(NSUInteger index, UIView view) const
{
    auto const& touches = recognizerState().touches;
    if (index < touches.size())
        return touches[index]->locationInView(view);
    raise("NSInvalidArgumentException"_ns,
        "-[UIGestureRecognizer locationOfTouch:inView:]: index is beyond the number of touches");
}

NSUInteger UIGestureRecognizer::numberOfTouches() const { return recognizerState().touches.size(); }

void UIGestureRecognizer::reset() const { }

void UIGestureRecognizer::ignoreTouch(UITouch touch, UIEvent) const
{
    std::erase_if(recognizerState().touches, [touch](auto const& each) { return each.get() == touch; });
}

BOOL UIGestureRecognizer::canPreventGestureRecognizer(UIGestureRecognizer) const { return true; }
BOOL UIGestureRecognizer::canBePreventedByGestureRecognizer(UIGestureRecognizer) const { return true; }

void UIGestureRecognizer::touchesBegan(NSSet, UIEvent) const { }
void UIGestureRecognizer::touchesMoved(NSSet, UIEvent) const { }
void UIGestureRecognizer::touchesEnded(NSSet, UIEvent) const { setState(GestureState::failed); }
void UIGestureRecognizer::touchesCancelled(NSSet, UIEvent) const { setState(GestureState::cancelled); }

void UIGestureRecognizer::takeTouch(UITouch touch) const
{
    RecognizerState& state = recognizerState();
    if (!state.isActive) {
        state.isActive = true;
        state.state = GestureState::possible;
        state.deferred.reset();
        g_activeRecognizers.push_back(objc::retain(*this));
    }
    state.touches.push_back(objc::retain(touch));
    touch.touchState().recognizers.push_back(objc::retain(*this));
}

void settleRecognizers()
{
    // One that goes on makes others fail, and one that fails lets others go on.
    for (bool again = true; std::exchange(again, false);) {
        auto const active = g_activeRecognizers;
        for (auto const& recognizer : active) {
            auto& state = recognizer->recognizerState();
            if (state.deferred && recognizer->isPossible() && !recognizer->isHeldUp()) {
                recognizer->recognize(*std::exchange(state.deferred, std::nullopt));
                again = true;
            }
        }
    }
    auto const active = g_activeRecognizers;
    for (auto const& recognizer : active) {
        auto& state = recognizer->recognizerState();
        bool const areOver =
            std::ranges::all_of(state.touches, [](auto const& touch) { return isOver(touch.get()); });
        if (!areOver)
            continue;
        std::erase_if(state.touches, [&state](auto const& touch) {
            // Kept while the gesture waits for another to fail: its action may ask where it was.
            return isOver(touch.get()) && !state.deferred;
        });
        if (recognizer->isPossible())
            continue;   // waits for a further touch
        state.touches.clear();
        state.isActive = false;
        std::erase(g_activeRecognizers, recognizer);
        recognizer->send<"reset">();
        state.state = GestureState::possible;
    }
}

NSString UIGestureRecognizer::description() const
{
    static constexpr char const* kNames[] = { "Possible", "Began", "Changed", "Ended", "Cancelled",
        "Failed" };
    char text[200];
    std::snprintf(text, sizeof text, "<%s: %p; state = %s; view = <%s %p>>", classNameOf(*this).c_str(),
        static_cast<void*>(object), kNames[static_cast<unsigned>(state()) % 6], classNameOf(view()).c_str(),
        static_cast<void*>(view().object));
    return toNSString(text);
}

void defineUIGestureRecognizer()
{
    objc::define<UIGestureRecognizer>()
        .state<RecognizerState>()
        .method<"init", &UIGestureRecognizer::init>()
        .method<"initWithTarget:action:", &UIGestureRecognizer::initWithTarget>()
        .method<"addTarget:action:", &UIGestureRecognizer::addTarget>()
        .method<"removeTarget:action:", &UIGestureRecognizer::removeTarget>()
        .method<"view", &UIGestureRecognizer::view>()
        .method<"state", &UIGestureRecognizer::state>()
        .method<"setState:", &UIGestureRecognizer::setState>()
        .method<"isEnabled", &UIGestureRecognizer::isEnabled>()
        .method<"setEnabled:", &UIGestureRecognizer::setEnabled>()
        .method<"cancelsTouchesInView", &UIGestureRecognizer::cancelsTouchesInView>()
        .method<"setCancelsTouchesInView:", &UIGestureRecognizer::setCancelsTouchesInView>()
        .method<"delaysTouchesBegan", &UIGestureRecognizer::delaysTouchesBegan>()
        .method<"setDelaysTouchesBegan:", &UIGestureRecognizer::setDelaysTouchesBegan>()
        .method<"delaysTouchesEnded", &UIGestureRecognizer::delaysTouchesEnded>()
        .method<"setDelaysTouchesEnded:", &UIGestureRecognizer::setDelaysTouchesEnded>()
        .method<"delegate", &UIGestureRecognizer::delegate>()
        .method<"setDelegate:", &UIGestureRecognizer::setDelegate>()
        .method<"name", &UIGestureRecognizer::name>()
        .method<"setName:", &UIGestureRecognizer::setName>()
        .method<"requireGestureRecognizerToFail:", &UIGestureRecognizer::requireGestureRecognizerToFail>()
        .method<"locationInView:", &UIGestureRecognizer::locationInView>()
        .method<"locationOfTouch:inView:", &UIGestureRecognizer::locationOfTouch>()
        .method<"numberOfTouches", &UIGestureRecognizer::numberOfTouches>()
        .method<"reset", &UIGestureRecognizer::reset>()
        .method<"ignoreTouch:forEvent:", &UIGestureRecognizer::ignoreTouch>()
        .method<"canPreventGestureRecognizer:", &UIGestureRecognizer::canPreventGestureRecognizer>()
        .method<"canBePreventedByGestureRecognizer:",
            &UIGestureRecognizer::canBePreventedByGestureRecognizer>()
        .method<"touchesBegan:withEvent:", &UIGestureRecognizer::touchesBegan>()
        .method<"touchesMoved:withEvent:", &UIGestureRecognizer::touchesMoved>()
        .method<"touchesEnded:withEvent:", &UIGestureRecognizer::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &UIGestureRecognizer::touchesCancelled>()
        .method<"description", &UIGestureRecognizer::description>()
        .method<"phone_setView:", &UIGestureRecognizer::setView>()
        .install();
}

}
