#include "phone/uikit/touch_delivery.hpp"

#include "phone/foundation/plugin_call.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/ui_gesture_recognizer.hpp"
#include "phone/uikit/ui_scroll_view.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

// A further tap of the same finger counts up to here. Chosen by us, near what UIKit does.
constexpr double kMultipleTapSeconds = 0.35;
constexpr double kMultipleTapDistance = 45;   // points

template <objc::fixed_string Selector>
void sendTouch(objc::handle receiver, UITouch touch, UIEvent event)
{
    CalloutScope const scope(receiver, objc::selector<Selector>());
    receiver.send<Selector>(NSSet::setWithObject(touch), event);
}

void sendPhase(objc::handle receiver, UITouch touch, UIEvent event)
{
    switch (touch.phase()) {
    case TouchPhase::began: return sendTouch<"touchesBegan:withEvent:">(receiver, touch, event);
    case TouchPhase::moved: return sendTouch<"touchesMoved:withEvent:">(receiver, touch, event);
    case TouchPhase::ended: return sendTouch<"touchesEnded:withEvent:">(receiver, touch, event);
    case TouchPhase::cancelled: return sendTouch<"touchesCancelled:withEvent:">(receiver, touch, event);
    case TouchPhase::stationary: return;
    }
}

// The recognisers of the touch that still follow it.
void sendToRecognizers(UITouch touch, UIEvent event)
{
    auto const recognizers = touch.touchState().recognizers;
    for (auto const& recognizer : recognizers) {
        auto const& state = recognizer->recognizerState();
        bool const isWatching =
            std::ranges::any_of(state.touches, [touch](auto const& each) { return each.get() == touch; });
        GestureState const now = state.state;
        if (isWatching && state.isEnabled
            && (now == GestureState::possible || now == GestureState::began || now == GestureState::changed))
            sendPhase(recognizer, touch, event);
    }
}

void giveToRecognizers(UITouch touch)
{
    for (UIView view = touch.view(); view; view = view.superview()) {
        auto const recognizers = view.recognizers();
        for (objc::handle const each : recognizers) {
            UIGestureRecognizer const recognizer { each.object };
            if (!recognizer.isEnabled())
                continue;
            // Recognised already for an earlier finger, or out: it gets no further one.
            auto const& state = recognizer.recognizerState();
            if (state.isActive
                && (state.state == GestureState::ended || state.state == GestureState::failed
                    || state.state == GestureState::cancelled))
                continue;
            objc::handle const delegate = recognizer.delegate();
            if (delegate.responds<"gestureRecognizer:shouldReceiveTouch:">()
                && !delegate.send<"gestureRecognizer:shouldReceiveTouch:", BOOL>(recognizer, touch))
                continue;
            recognizer.takeTouch(touch);
        }
    }
}

}

TouchDelivery& touchDelivery()
{
    static TouchDelivery delivery;
    return delivery;
}

UIView TouchDelivery::hitTest(CGPoint point) const
{
    auto windows = allWindows();
    std::ranges::reverse(windows);
    for (UIWindow const window : windows) {
        if (window.isHidden())
            continue;
        if (UIView const hit = window.sendHitTest(fromScreen(point, window)))
            return hit;
    }
    return {};
}

std::shared_ptr<TouchDelivery::Finger> TouchDelivery::findShared(int number)
{
    for (auto const& finger : m_fingers) {
        if (finger->number == number && !finger->isLifted)
            return finger;
    }
    return nullptr;
}

bool TouchDelivery::isDown(int number) const
{
    return std::ranges::any_of(
        m_fingers, [number](auto const& finger) { return finger->number == number && !finger->isLifted; });
}

// The event of this moment: the touch in its new phase, every other finger as it rests.
UIEvent TouchDelivery::event(TouchPhase phase, UITouch touch)
{
    if (!m_event)
        m_event = objc::adopt(UIEvent { UIEvent::alloc().send<"init", objc::handle>().object });
    EventState& state = m_event->eventState();
    state.timestamp = clock().now();
    state.touches.clear();
    for (auto const& finger : m_fingers) {
        if (finger->touch.get() != touch && finger->isLifted)
            continue;
        if (finger->touch.get() != touch)
            finger->touch->touchState().phase = TouchPhase::stationary;
        state.touches.push_back(finger->touch);
    }
    touch.touchState().phase = phase;
    touch.touchState().timestamp = state.timestamp;
    return m_event;
}

void TouchDelivery::touchDown(CGPoint point, int number)
{
    if (isDown(number))
        touchUp(point, number);
    if (m_observer)
        m_observer();
    AutoreleasePool const pool;
    layoutWindowsIfNeeded();
    UIView const hit = hitTest(point);
    if (!hit)
        return;

    auto const finger = std::make_shared<Finger>();
    finger->number = number;
    finger->touch = objc::adopt(UITouch { UITouch::alloc().send<"init", objc::handle>().object });
    UITouch const touch = finger->touch;
    TouchState& state = touch.touchState();
    state.view = objc::retain(hit);
    state.window = objc::retain(hit.window());
    state.location = state.previousLocation = point;
    bool const isFurtherTap = clock().now() - m_lastUpTime <= kMultipleTapSeconds
        && std::hypot(point.x - m_lastUp.x, point.y - m_lastUp.y) <= kMultipleTapDistance;
    state.tapCount = isFurtherTap ? m_lastTapCount + 1 : 1;

    // A view that takes one finger at a time is not told of a second one; recognisers are.
    bool const isSecond = std::ranges::any_of(
        m_fingers, [hit](auto const& other) { return !other->isLifted && other->touch->view() == hit; });
    if (isSecond && !hit.isMultipleTouchEnabled())
        finger->content = Content::done;
    m_fingers.push_back(finger);

    giveToRecognizers(touch);
    sendToRecognizers(touch, event(TouchPhase::began, touch));
    settle();
}

void TouchDelivery::touchMoved(CGPoint point, int number)
{
    auto const finger = findShared(number);
    if (!finger)
        return;
    AutoreleasePool const pool;
    UITouch const touch = finger->touch;
    TouchState& state = touch.touchState();
    state.previousLocation = state.location;
    state.location = point;
    UIEvent const now = event(TouchPhase::moved, touch);
    sendToRecognizers(touch, now);
    settle();
    if (finger->content == Content::begun && touch.phase() == TouchPhase::moved)
        sendPhase(touch.view(), touch, now);
}

void TouchDelivery::touchUp(CGPoint point, int number)
{
    auto const finger = findShared(number);
    if (!finger)
        return;
    if (m_observer)
        m_observer();
    if (finger->touch->touchState().location != point)
        touchMoved(point, number);
    TouchState const& state = finger->touch->touchState();
    m_lastUp = point;
    m_lastUpTime = clock().now();
    m_lastTapCount = state.tapCount;
    lift(*finger, TouchPhase::ended);
}

void TouchDelivery::touchCancelled(int number)
{
    if (auto const finger = findShared(number))
        lift(*finger, TouchPhase::cancelled);
}

void TouchDelivery::cancelAll()
{
    auto const fingers = m_fingers;
    for (auto const& finger : fingers) {
        if (!finger->isLifted)
            lift(*finger, TouchPhase::cancelled);
    }
}

void TouchDelivery::lift(Finger& finger, TouchPhase phase)
{
    AutoreleasePool const pool;
    UITouch const touch = finger.touch;
    TouchState& state = touch.touchState();
    state.previousLocation = state.location;
    finger.isLifted = true;
    sendToRecognizers(touch, event(phase, touch));
    if (phase == TouchPhase::cancelled && finger.content == Content::held)
        finger.content = Content::done;
    else if (finger.content == Content::begun)
        finger.content = Content::endHeld;
    settle();
}

// Does a recogniser keep the touch from its view for now?
bool TouchDelivery::isHeldBack(UITouch touch, bool atEnd) const
{
    return std::ranges::any_of(touch.touchState().recognizers, [atEnd](auto const& recognizer) {
        auto const& state = recognizer->recognizerState();
        bool const isUndecided = state.isActive && recognizer->isPossible() && state.isEnabled;
        return isUndecided && (atEnd ? state.delaysTouchesEnded : state.delaysTouchesBegan);
    });
}

// Gives the view what it may know by now.
void TouchDelivery::handOver(Finger& finger)
{
    UITouch const touch = finger.touch;
    if (finger.content == Content::held) {
        if (isHeldBack(touch, /* atEnd: */ false))
            return;
        finger.content = finger.isLifted ? Content::endHeld : Content::begun;
        TouchPhase const phase = touch.phase();
        UIEvent const now = event(TouchPhase::began, touch);
        sendPhase(touch.view(), touch, now);
        touch.touchState().phase = phase == TouchPhase::began ? phase : TouchPhase::stationary;
        if (finger.isLifted)
            touch.touchState().phase = phase;
    }
    if (finger.content == Content::endHeld) {
        TouchPhase const phase = touch.phase();
        if (phase == TouchPhase::ended && isHeldBack(touch, /* atEnd: */ true))
            return;
        finger.content = Content::done;
        sendPhase(touch.view(), touch, event(phase, touch));
    }
}

void TouchDelivery::settle()
{
    settleRecognizers();
    auto const fingers = m_fingers;
    for (auto const& finger : fingers)
        handOver(*finger);
    // Recognisers keep the touches they still need; one that waits for a second tap gets a new one.
    std::erase_if(
        m_fingers, [](auto const& finger) { return finger->isLifted && finger->content == Content::done; });
    // A touch keeps its view and window: one that is over must not keep a prompt's window on the screen.
    if (m_fingers.empty() && m_event)
        m_event->eventState().touches.clear();
}

bool TouchDelivery::hasBegunInView(UITouch touch) const
{
    return std::ranges::any_of(m_fingers, [touch](auto const& finger) {
        return finger->touch.get() == touch
            && (finger->content == Content::begun || finger->content == Content::endHeld);
    });
}

void TouchDelivery::cancelInView(UITouch touch)
{
    auto const fingers = m_fingers;
    for (auto const& finger : fingers) {
        if (finger->touch.get() != touch)
            continue;
        bool const wasTold = finger->content == Content::begun || finger->content == Content::endHeld;
        finger->content = Content::done;
        if (wasTold) {
            TouchPhase const phase = touch.phase();
            sendPhase(touch.view(), touch, event(TouchPhase::cancelled, touch));
            touch.touchState().phase = phase;
        }
    }
}

bool TouchDelivery::wheel(CGPoint point, double dx, double dy)
{
    AutoreleasePool const pool;
    layoutWindowsIfNeeded();
    for (UIView view = hitTest(point); view; view = view.superview()) {
        UIScrollView const scrollView = objc::cast<UIScrollView>(view);
        if (scrollView && scrollView.scrollByWheel(dx, dy))
            return true;
    }
    return false;
}

}
