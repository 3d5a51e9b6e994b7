#include "phone/uikit/ui_pan_gesture_recognizer.hpp"

#include "phone/kernel/services.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

// The stretch of time over which a finger's speed is taken. Chosen by us: six display frames.
constexpr double kVelocitySeconds = 0.1;

// A movement on the screen, as the view sees it: turned, mirrored or scaled, but not moved.
CGPoint directionIn(UIView view, UIWindow window, CGPoint movement)
{
    CGPoint const from = fromScreen({}, window);
    CGPoint const to = fromScreen(movement, window);
    if (!view)
        return to - from;
    return view.convertPointFromView(to, window) - view.convertPointFromView(from, window);
}

CGPoint directionFrom(UIView view, UIWindow window, CGPoint movement)
{
    CGPoint const unitX = directionIn(view, window, { 1, 0 });
    CGPoint const unitY = directionIn(view, window, { 0, 1 });
    return apply(inverted({ unitX.x, unitX.y, unitY.x, unitY.y, 0, 0 }), movement);
}

UIWindow windowOf(UIGestureRecognizer recognizer) { return recognizer.view().window(); }

}

NSUInteger UIPanGestureRecognizer::minimumNumberOfTouches() const { return pan().minimumTouches; }
void UIPanGestureRecognizer::setMinimumNumberOfTouches(NSUInteger count) const
{
    pan().minimumTouches = count;
}
NSUInteger UIPanGestureRecognizer::maximumNumberOfTouches() const { return pan().maximumTouches; }
void UIPanGestureRecognizer::setMaximumNumberOfTouches(NSUInteger count) const
{
    pan().maximumTouches = count;
}

CGPoint UIPanGestureRecognizer::translationInView(UIView view) const
{
    return directionIn(view, windowOf(*this), pan().middle - pan().start);
}

void UIPanGestureRecognizer::setTranslation(CGPoint translation, UIView view) const
{
    pan().start = pan().middle - directionFrom(view, windowOf(*this), translation);
}

CGPoint UIPanGestureRecognizer::velocityInView(UIView view) const
{
    auto const& samples = pan().samples;
    double const now = clock().now();
    auto const first = std::ranges::find_if(
        samples, [now](PanState::Sample const& each) { return now - each.time <= kVelocitySeconds; });
    if (first == samples.end() || samples.back().time <= first->time)
        return {};
    double const seconds = samples.back().time - first->time;
    CGPoint const moved = samples.back().location - first->location;
    return directionIn(view, windowOf(*this), { moved.x / seconds, moved.y / seconds });
}

void UIPanGestureRecognizer::reset() const { pan().samples.clear(); }

// Takes down where the fingers are, and when.
void UIPanGestureRecognizer::note() const
{
    PanState& state = pan();
    state.middle = middleOf(recognizerState().touches);
    double const now = clock().now();
    state.samples.push_back({ now, state.middle });
    while (state.samples.size() > 2 && now - state.samples[1].time > kVelocitySeconds)
        state.samples.pop_front();
}

void UIPanGestureRecognizer::touchesBegan(NSSet, UIEvent) const
{
    PanState& state = pan();
    CGPoint const before = state.middle;
    CGPoint const after = middleOf(recognizerState().touches);
    if (isPossible()) {
        if (numberOfTouches() > state.maximumTouches) {
            setState(GestureState::failed);
            return;
        }
        state.start = after;
        state.samples.clear();
    } else {
        // A further finger moves the middle; what is dragged stays where it is.
        state.start = state.start + (after - before);
        state.samples.clear();
    }
    note();
}

void UIPanGestureRecognizer::touchesMoved(NSSet, UIEvent) const { follow(PanAxes::both); }

void UIPanGestureRecognizer::follow(PanAxes axes) const
{
    PanState& state = pan();
    note();
    if (!isPossible()) {
        setState(GestureState::changed);
        return;
    }
    if (numberOfTouches() < state.minimumTouches)
        return;
    CGPoint moved = translationInView(view());
    auto const bits = static_cast<unsigned>(axes);
    if (!(bits & static_cast<unsigned>(PanAxes::horizontal)))
        moved.x = 0;
    if (!(bits & static_cast<unsigned>(PanAxes::vertical)))
        moved.y = 0;
    double const distance = std::hypot(moved.x, moved.y);
    if (distance <= kPanSlop)
        return;
    // What is dragged sets off from where it is, without a jump by the slop.
    double const beyond = (distance - kPanSlop) / distance;
    setTranslation({ moved.x * beyond, moved.y * beyond }, view());
    setState(GestureState::began);
}

void UIPanGestureRecognizer::touchesEnded(NSSet, UIEvent) const
{
    auto& touches = recognizerState().touches;
    std::vector<objc::ref<UITouch>> staying;
    std::ranges::copy_if(touches, std::back_inserter(staying),
        [](auto const& touch) { return touch->phase() != TouchPhase::ended; });
    if (staying.empty() || isPossible()) {
        setState(isPossible() ? GestureState::failed : GestureState::ended);
        return;
    }
    CGPoint const after = middleOf(staying);
    pan().start = pan().start + (after - pan().middle);
    pan().middle = after;
    pan().samples.clear();
}

void UIPanGestureRecognizer::touchesCancelled(NSSet, UIEvent) const { setState(GestureState::cancelled); }

void defineUIPanGestureRecognizer()
{
    using Self = UIPanGestureRecognizer;
    objc::define<Self>()
        .state<PanState>()
        .method<"minimumNumberOfTouches", &Self::minimumNumberOfTouches>()
        .method<"setMinimumNumberOfTouches:", &Self::setMinimumNumberOfTouches>()
        .method<"maximumNumberOfTouches", &Self::maximumNumberOfTouches>()
        .method<"setMaximumNumberOfTouches:", &Self::setMaximumNumberOfTouches>()
        .method<"translationInView:", &Self::translationInView>()
        .method<"setTranslation:inView:", &Self::setTranslation>()
        .method<"velocityInView:", &Self::velocityInView>()
        .method<"reset", &Self::reset>()
        .method<"touchesBegan:withEvent:", &Self::touchesBegan>()
        .method<"touchesMoved:withEvent:", &Self::touchesMoved>()
        .method<"touchesEnded:withEvent:", &Self::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &Self::touchesCancelled>()
        .install();
}

}
