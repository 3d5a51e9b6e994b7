#include "phone/automation/gestures.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/kernel/clock.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/passcode_pad.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/touch_delivery.hpp"
#include "phone/uikit/ui_screen.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

// The main loop's turn after a touch.
void settle() { phone().advance(0); }

bool isOnScreen(CGPoint point)
{
    CGRect const screen = screenBounds();
    return point.x >= 0 && point.y >= 0 && point.x <= screen.size.width && point.y <= screen.size.height;
}

CGPoint between(CGPoint from, CGPoint to, double part)
{
    return { from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part };
}

}

Gestures::Finger& Gestures::fingerOf(std::string const& source)
{
    auto const [at, isNew] = m_fingers.try_emplace(source);
    if (isNew)
        at->second.number = m_nextFinger++;
    return at->second;
}

Answer<CGPoint> Gestures::target(ActionItem const& item, CGPoint pointer, Place const& place) const
{
    CGPoint origin {};
    if (item.origin == ActionItem::Origin::pointer) {
        origin = pointer;
    } else if (item.origin == ActionItem::Origin::element) {
        auto const rect = place(item.element);
        if (!rect)
            return rect.error();
        origin = center(*rect);
    }
    CGPoint const point { origin.x + item.x, origin.y + item.y };
    if (!isOnScreen(point))
        return CommandError { ErrorCode::moveTargetOutOfBounds,
            "(" + std::to_string(std::lround(std::clamp(point.x, -1e9, 1e9))) + ", "
                + std::to_string(std::lround(std::clamp(point.y, -1e9, 1e9))) + ") is not on the screen" };
    return point;
}

// The way of every finger, as elements lie now.
Answer<void> Gestures::check(std::vector<ActionSource> const& sources, Place const& place)
{
    for (ActionSource const& source : sources) {
        auto const known = m_fingers.find(source.id);
        CGPoint pointer = known == m_fingers.end() ? CGPoint {} : known->second.at;
        for (ActionItem const& item : source.items) {
            if (item.kind != ActionItem::Kind::pointerMove)
                continue;
            auto const point = target(item, pointer, place);
            if (!point)
                return point.error();
            pointer = *point;
        }
    }
    return {};
}

Answer<void> Gestures::perform(std::vector<ActionSource> const& sources, Place const& place)
{
    if (auto const checked = check(sources, place); !checked)
        return checked;
    std::size_t ticks = 0;
    for (ActionSource const& source : sources)
        ticks = std::max(ticks, source.items.size());
    for (std::size_t tick = 0; tick < ticks; ++tick) {
        double seconds = 0;
        std::vector<Motion> motions;
        for (ActionSource const& source : sources) {
            if (tick >= source.items.size())
                continue;
            seconds = std::max(seconds, source.items[tick].seconds);
            begin(source.items[tick], source, place, motions);
        }
        run(seconds, motions);
    }
    settle();
    return {};
}

void Gestures::begin(
    ActionItem const& item, ActionSource const& source, Place const& place, std::vector<Motion>& motions)
{
    using Kind = ActionItem::Kind;
    if (item.kind == Kind::keyDown)
        return press(item.key);
    if (source.kind != ActionSource::Kind::pointer || item.kind == Kind::pause)
        return;
    Finger& finger = fingerOf(source.id);
    switch (item.kind) {
    case Kind::pointerDown:
        if (!finger.isDown)
            touchDelivery().touchDown(finger.at, finger.number);
        finger.isDown = true;
        break;
    case Kind::pointerUp:
        if (finger.isDown)
            touchDelivery().touchUp(finger.at, finger.number);
        finger.isDown = false;
        settle();
        break;
    case Kind::pointerCancel:
        if (finger.isDown)
            touchDelivery().touchCancelled(finger.number);
        finger.isDown = false;
        break;
    case Kind::pointerMove: {
        // An element that has gone or left the screen since the check: the finger stays where it is.
        auto const to = target(item, finger.at, place);
        if (!to)
            break;
        if (item.seconds > 0) {
            motions.push_back({ &finger, finger.at, *to, item.seconds });
        } else {
            finger.at = *to;
            if (finger.isDown)
                touchDelivery().touchMoved(finger.at, finger.number);
        }
        break;
    }
    default: break;
    }
}

void Gestures::run(double seconds, std::vector<Motion> const& motions)
{
    bool const isSeen =
        std::ranges::any_of(motions, [](Motion const& motion) { return motion.finger->isDown; });
    if (!isSeen) {
        if (seconds > 0)
            m_passTime(seconds);
        for (Motion const& motion : motions)
            motion.finger->at = motion.to;
        return;
    }
    int const frames = std::max(1, static_cast<int>(std::lround(seconds * kFramesPerSecond)));
    double passed = 0;
    for (int frame = 1; frame <= frames; ++frame) {
        double const until = frame == frames ? seconds : seconds * frame / frames;
        m_passTime(until - passed);
        passed = until;
        for (Motion const& motion : motions) {
            motion.finger->at = between(motion.from, motion.to, std::min(1.0, passed / motion.seconds));
            if (motion.finger->isDown)
                touchDelivery().touchMoved(motion.finger->at, motion.finger->number);
        }
    }
}

void Gestures::press(std::string const& key)
{
    // A phone that asks for its passcode takes it from keys too.
    if (key.size() == 1 && key[0] >= '0' && key[0] <= '9' && phone().isPasscodeShown()
        && springBoard().passcodePad) {
        springBoard().passcodePad->press(key[0] - '0');
        return settle();
    }
    firstResponder().ask<"insertText:">(toNSString(key));
}

void Gestures::release()
{
    for (auto& [source, finger] : m_fingers)
        if (finger.isDown)
            touchDelivery().touchUp(finger.at, finger.number);
    m_fingers.clear();
    m_nextFinger = 10;
    settle();
}

void Gestures::press(CGPoint point, double seconds) { press(std::vector<CGPoint> { point }, seconds); }

void Gestures::press(std::vector<CGPoint> const& points, double seconds)
{
    for (std::size_t i = 0; i < points.size(); ++i)
        touchDelivery().touchDown(points[i], static_cast<int>(i));
    m_passTime(seconds);
    for (std::size_t i = 0; i < points.size(); ++i)
        touchDelivery().touchUp(points[i], static_cast<int>(i));
    settle();
}

void Gestures::drag(CGPoint from, CGPoint to, double hold, double seconds, double rest)
{
    touchDelivery().touchDown(from);
    if (hold > 0)
        m_passTime(hold);
    Finger finger { 0, from, true };
    run(seconds, { Motion { &finger, from, to, std::max(seconds, kFrameSeconds) } });
    touchDelivery().touchMoved(to);
    if (rest > 0)
        m_passTime(rest);
    touchDelivery().touchUp(to);
    settle();
}

}
