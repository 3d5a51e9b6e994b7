#include "phone/uikit/animation.hpp"

#include "objc/block.hpp"
#include "objc/define.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/graphics/curves.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_view_state.hpp"

#include <cmath>
#include <numbers>
#include <optional>

namespace phone {

// One call of an animate function: the properties that its block changed go together.
struct AnimationGroup {
    double begin { 0 };   // seconds on the phone's clock, after the delay
    double duration { 0 };
    graphics::TimingCurve curve { graphics::kEaseInOut };
    std::optional<graphics::Spring> spring;
    double springVelocity { 0 };
    NSUInteger options { 0 };
    std::function<void(bool)> completion;
    int recorded { 0 };    // property animations made
    int cancelled { 0 };   // of them, those that were removed with their view
    bool isDone { false };
    TimerId timer { TimerId::none };

    bool repeats() const { return options & AnimationOption::repeat; }
    bool autoreverses() const { return options & AnimationOption::autoreverse; }
    double length() const { return autoreverses() ? duration * 2 : duration; }

    double progress(double now) const
    {
        double elapsed = now - begin;
        if (elapsed <= 0)
            return 0;
        if (repeats())
            elapsed = std::fmod(elapsed, length());
        else if (elapsed >= length())
            return 1;
        if (autoreverses() && elapsed > duration)
            elapsed = length() - elapsed;
        if (spring)
            return 1 - spring->displacement(1, -springVelocity, elapsed);
        return curve.at(elapsed / duration);
    }
};

namespace {

using GroupPointer = std::shared_ptr<AnimationGroup>;

// Animation blocks being run, innermost last; null inside performWithoutAnimation.
std::vector<GroupPointer> g_openGroups;
std::vector<GroupPointer> g_runningGroups;
// Views with animations; not owned, removed as they go.
std::vector<id> g_animatedViews;
bool g_areAnimationsEnabled = true;
bool g_isObservingFrames = false;

graphics::TimingCurve curveOf(NSUInteger options)
{
    switch (options & AnimationOption::curveMask) {
    case AnimationOption::curveEaseIn: return graphics::kEaseIn;
    case AnimationOption::curveEaseOut: return graphics::kEaseOut;
    case AnimationOption::curveLinear: return graphics::kLinear;
    default: return graphics::kEaseInOut;
    }
}

void forgetIfIdle(UIView view)
{
    if (view.viewState().animations.empty())
        std::erase(g_animatedViews, view.object);
}

void dropAnimationsOf(GroupPointer const& group)
{
    for (id const object : std::vector<id>(g_animatedViews)) {
        UIView const view { object };
        std::erase_if(
            view.viewState().animations, [&group](auto const& each) { return each.group == group; });
        forgetIfIdle(view);
    }
}

// Arrived, or cancelled with all its views.
void finish(GroupPointer const& group, bool finished)
{
    if (std::exchange(group->isDone, true))
        return;
    clock().cancel(group->timer);
    std::erase(g_runningGroups, group);
    dropAnimationsOf(group);
    noteDisplayChange();
    auto const completion = std::move(group->completion);
    if (completion)
        completion(finished);
}

void observeFrames()
{
    if (std::exchange(g_isObservingFrames, true))
        return;
    clock().addFrameObserver([](double) {
        noteDisplayChange();
        g_isObservingFrames = !g_runningGroups.empty();
        return g_isObservingFrames;
    });
}

// The block has ended: what it recorded runs.
void start(GroupPointer const& group)
{
    if (!group->recorded) {
        // Nothing to animate: the completion comes at the end of this turn.
        clock().post([group] { finish(group, true); });
        return;
    }
    g_runningGroups.push_back(group);
    if (!group->repeats()) {
        double const delay = group->begin + group->length() - clock().now();
        group->timer = clock().at(delay, 0, [group] { finish(group, true); });
    }
    observeFrames();
}

struct OpenGroup {
    explicit OpenGroup(GroupPointer group) { g_openGroups.push_back(std::move(group)); }
    ~OpenGroup() { g_openGroups.pop_back(); }
    OpenGroup(OpenGroup const&) = delete;
    OpenGroup& operator=(OpenGroup const&) = delete;
};

void run(GroupPointer const& group, std::function<void()> const& changes)
{
    // A block inside a block takes the outer one's time and curve, unless it says otherwise.
    AnimationGroup const* const outer = g_openGroups.empty() ? nullptr : g_openGroups.back().get();
    if (outer) {
        if (!(group->options & AnimationOption::overrideInheritedDuration)) {
            group->duration = outer->duration;
            group->begin = outer->begin;
        }
        if (!(group->options & AnimationOption::overrideInheritedCurve))
            group->curve = outer->curve;
    }
    bool const isPlain =
        !g_areAnimationsEnabled || !(group->duration > 0) || (!g_openGroups.empty() && !g_openGroups.back());
    {
        OpenGroup const open(isPlain ? nullptr : group);
        if (changes)
            changes();
    }
    if (isPlain)
        finish(group, true);
    else
        start(group);
}

GroupPointer makeGroup(
    double duration, double delay, NSUInteger options, std::function<void(bool)> completion)
{
    auto group = std::make_shared<AnimationGroup>();
    group->duration = std::isfinite(duration) ? std::max(duration, 0.0) : 0;
    group->begin = clock().now() + (std::isfinite(delay) ? std::max(delay, 0.0) : 0);
    group->options = options;
    group->curve = curveOf(options);
    group->completion = std::move(completion);
    return group;
}

graphics::Color toColor(AnimatedValue const& v) { return { v[0], v[1], v[2], v[3] }; }

AnimatedValue toValue(graphics::Color c) { return { c.red, c.green, c.blue, c.alpha }; }

AnimatedValue between(AnimatedValue const& from, AnimatedValue const& to, double progress)
{
    AnimatedValue value {};
    for (std::size_t i = 0; i < value.size(); ++i)
        value[i] = from[i] + (to[i] - from[i]) * progress;
    return value;
}

// A transform as what is done to a view one after the other: shear, scale, turn, move.
struct TransformParts {
    double shear { 0 };
    double scaleX { 1 };
    double scaleY { 1 };
    double angle { 0 };   // radians
    double moveX { 0 };
    double moveY { 0 };
};

// None of one that squeezes the plane to a line or a point.
std::optional<TransformParts> partsOf(AnimatedValue const& t)
{
    auto const [a, b, c, d, tx, ty] = t;
    double const determinant = a * d - b * c;
    if (std::abs(determinant) < 1e-12)
        return std::nullopt;
    TransformParts parts { .moveX = tx, .moveY = ty };
    // A mirroring counts as one along the axis that it points against.
    double const flip = determinant < 0 && a < d ? -1 : 1;
    parts.scaleX = flip * std::hypot(a, b);
    double const x = a / parts.scaleX;
    double const y = b / parts.scaleX;
    parts.angle = std::atan2(y, x);
    parts.scaleY = x * d - y * c;
    parts.shear = (x * c + y * d) / parts.scaleY;
    return parts;
}

// As Core Animation has it: a turn runs as a turn, the shorter way round, and nothing shrinks on the way.
AnimatedValue transformBetween(AnimatedValue const& from, AnimatedValue const& to, double progress)
{
    auto const start = partsOf(from);
    auto const end = partsOf(to);
    if (!start || !end)
        return between(from, to, progress);
    auto const at = [progress](double first, double last) { return first + (last - first) * progress; };
    double const turn = std::remainder(end->angle - start->angle, 2 * std::numbers::pi);
    double const angle = start->angle + turn * progress;
    double const scaleX = at(start->scaleX, end->scaleX);
    double const scaleY = at(start->scaleY, end->scaleY);
    double const shear = at(start->shear, end->shear);
    double const cosine = std::cos(angle);
    double const sine = std::sin(angle);
    return { scaleX * cosine, scaleX * sine, scaleY * (shear * cosine - sine),
        scaleY * (shear * sine + cosine), at(start->moveX, end->moveX), at(start->moveY, end->moveY) };
}

}

AnimatedValue modelValue(UIView view, AnimatedProperty property)
{
    ViewState const& state = view.viewState();
    switch (property) {
    case AnimatedProperty::center: return { state.center.x, state.center.y };
    case AnimatedProperty::bounds:
        return { state.bounds.origin.x, state.bounds.origin.y, state.bounds.size.width,
            state.bounds.size.height };
    case AnimatedProperty::transform: {
        CGAffineTransform const& t = state.transform;
        return { t.a, t.b, t.c, t.d, t.tx, t.ty };
    }
    case AnimatedProperty::alpha: return { state.alpha };
    case AnimatedProperty::backgroundColor:
        return toValue(
            state.backgroundColor ? state.backgroundColor->rgba() : graphics::Color { 0, 0, 0, 0 });
    case AnimatedProperty::cornerRadius: return { state.layer->cornerRadius };
    }
    return {};
}

AnimatedValue presentValue(UIView view, AnimatedProperty property)
{
    AnimatedValue value = modelValue(view, property);
    for (PropertyAnimation const& each : view.viewState().animations) {
        if (each.property != property)
            continue;
        double const progress = each.group->progress(clock().now());
        value = property == AnimatedProperty::transform ? transformBetween(each.from, value, progress)
                                                        : between(each.from, value, progress);
    }
    return value;
}

void willChange(UIView view, AnimatedProperty property)
{
    if (g_openGroups.empty() || !g_openGroups.back())
        return;
    GroupPointer const& group = g_openGroups.back();
    auto& animations = view.viewState().animations;
    auto const running = std::find_if(animations.begin(), animations.end(),
        [property](auto const& each) { return each.property == property; });
    // Set twice in one block: the first value is where it starts.
    if (running != animations.end() && running->group == group)
        return;
    PropertyAnimation const animation { property, presentValue(view, property), group };
    // A newer animation of the property takes over where the older one is.
    if (running != animations.end()) {
        // One that repeats has no end of its own.
        GroupPointer const older = std::exchange(*running, animation).group;
        if (older->repeats() && ++older->cancelled >= older->recorded)
            clock().post([older] { finish(older, false); });
    } else {
        animations.push_back(animation);
    }
    ++group->recorded;
    view.viewState().animatedView = view.object;
    if (std::find(g_animatedViews.begin(), g_animatedViews.end(), view.object) == g_animatedViews.end())
        g_animatedViews.push_back(view.object);
}

void dropAnimations(ViewState& state)
{
    if (state.animations.empty())
        return;
    auto const dropped = std::exchange(state.animations, {});
    std::erase(g_animatedViews, state.animatedView);
    noteDisplayChange();
    for (PropertyAnimation const& each : dropped) {
        GroupPointer const& group = each.group;
        if (++group->cancelled >= group->recorded && !group->isDone)
            clock().post([group] { finish(group, false); });
    }
}

void removeAllAnimations(UIView view)
{
    if (view)
        dropAnimations(view.viewState());
}

ViewPresentation UIView::presentation() const
{
    if (!object)
        return {};
    ViewState const& state = viewState();
    ViewPresentation shown;
    if (state.animations.empty()) {
        shown.center = state.center;
        shown.bounds = state.bounds;
        shown.transform = state.transform;
        shown.alpha = state.alpha;
        shown.cornerRadius = state.layer->cornerRadius;
        if (state.backgroundColor)
            shown.backgroundColor = state.backgroundColor->rgba();
        return shown;
    }
    auto value = [this](AnimatedProperty property) { return presentValue(*this, property); };
    auto const center = value(AnimatedProperty::center);
    auto const bounds = value(AnimatedProperty::bounds);
    auto const t = value(AnimatedProperty::transform);
    shown.center = { center[0], center[1] };
    shown.bounds = { { bounds[0], bounds[1] }, { bounds[2], bounds[3] } };
    shown.transform = { t[0], t[1], t[2], t[3], t[4], t[5] };
    shown.alpha = std::clamp(value(AnimatedProperty::alpha)[0], 0.0, 1.0);
    shown.backgroundColor = toColor(value(AnimatedProperty::backgroundColor));
    shown.cornerRadius = value(AnimatedProperty::cornerRadius)[0];
    return shown;
}

bool UIView::isBlockedByAnimation() const
{
    for (PropertyAnimation const& each : viewState().animations) {
        if (!(each.group->options & AnimationOption::allowUserInteraction) && !each.group->isDone)
            return true;
    }
    return false;
}

void animate(double duration, std::function<void()> changes, std::function<void(bool)> completion)
{
    animateWithOptions(duration, 0, 0, std::move(changes), std::move(completion));
}

void animateWithOptions(double duration, double delay, NSUInteger options, std::function<void()> changes,
    std::function<void(bool)> completion)
{
    run(makeGroup(duration, delay, options, std::move(completion)), changes);
}

void animateWithSpring(double duration, double delay, double damping, double initialVelocity,
    NSUInteger options, std::function<void()> changes, std::function<void(bool)> completion)
{
    auto const group = makeGroup(duration, delay, options, std::move(completion));
    if (group->duration > 0)
        group->spring = graphics::Spring::settlingIn(group->duration, std::clamp(damping, 0.01, 1.0));
    group->springVelocity = initialVelocity;
    run(group, changes);
}

void performWithoutAnimation(std::function<void()> changes)
{
    OpenGroup const open(nullptr);
    if (changes)
        changes();
}

bool isInsideAnimationBlock() { return !g_openGroups.empty() && g_openGroups.back(); }
bool hasRunningAnimations() { return !g_runningGroups.empty(); }

// The messages, with the trace.
struct AnimationMethods {
    using Completion = objc::block_ref<void(BOOL)>;

    static void record(double duration, double delay, NSUInteger options, bool completion, bool transition)
    {
        Json fields { { "duration", duration }, { "delay", delay }, { "options", options },
            { "completion", completion } };
        if (transition)
            fields["transition"] = true;
        trace().record("animate", std::move(fields));
    }

    static std::function<void()> changesOf(PlainBlock block)
    {
        return [kept = objc::block_copy<void()>(block)] { kept(); };
    }
    static std::function<void(bool)> completionOf(Completion block)
    {
        if (!block)
            return {};
        return [kept = objc::block_copy<void(BOOL)>(block)](bool finished) {
            CalloutScope const scope(reinterpret_cast<void const*>(kept.get().block->invoke));
            kept(finished);
        };
    }

    static void animations(double duration, PlainBlock changes)
    {
        record(duration, 0, 0, false, false);
        animate(duration, changesOf(changes));
    }
    static void animationsCompletion(double duration, PlainBlock changes, Completion completion)
    {
        record(duration, 0, 0, bool(completion), false);
        animate(duration, changesOf(changes), completionOf(completion));
    }
    static void delayed(
        double duration, double delay, NSUInteger options, PlainBlock changes, Completion completion)
    {
        record(duration, delay, options, bool(completion), false);
        animateWithOptions(duration, delay, options, changesOf(changes), completionOf(completion));
    }
    static void spring(double duration, double delay, CGFloat damping, CGFloat velocity, NSUInteger options,
        PlainBlock changes, Completion completion)
    {
        record(duration, delay, options, bool(completion), false);
        animateWithSpring(
            duration, delay, damping, velocity, options, changesOf(changes), completionOf(completion));
    }
    // Deviation: flips, curls and dissolves are not drawn; the properties that the block changes move.
    static void transition(
        UIView, double duration, NSUInteger options, PlainBlock changes, Completion completion)
    {
        record(duration, 0, options, bool(completion), true);
        animateWithOptions(duration, 0, options, changesOf(changes), completionOf(completion));
    }
    static void withoutAnimation(PlainBlock changes)
    {
        performWithoutAnimation([changes] { changes(); });
    }
    static BOOL areAnimationsEnabled() { return g_areAnimationsEnabled; }
    static void setAnimationsEnabled(BOOL enabled) { g_areAnimationsEnabled = enabled; }
};

// UIView's class methods are rows of a class that exists already, so they are added to it.
template <auto Function, objc::fixed_string Selector>
void addClassMethod()
{
    using thunk = objc::method_thunk<Function>;
    class_addMethod(objc::boundary::class_of(UIView::cls().object), objc::selector<Selector>(),
        objc::boundary::any_function(&thunk::template enter<UIView>), thunk::encoding.c_str());
}

void defineAnimation()
{
    addClassMethod<&AnimationMethods::animations, "animateWithDuration:animations:">();
    addClassMethod<&AnimationMethods::animationsCompletion, "animateWithDuration:animations:completion:">();
    addClassMethod<&AnimationMethods::delayed, "animateWithDuration:delay:options:animations:completion:">();
    addClassMethod<&AnimationMethods::spring,
        "animateWithDuration:delay:usingSpringWithDamping:initialSpringVelocity:options:animations:completion:">();
    addClassMethod<&AnimationMethods::transition,
        "transitionWithView:duration:options:animations:completion:">();
    addClassMethod<&AnimationMethods::withoutAnimation, "performWithoutAnimation:">();
    addClassMethod<&AnimationMethods::areAnimationsEnabled, "areAnimationsEnabled">();
    addClassMethod<&AnimationMethods::setAnimationsEnabled, "setAnimationsEnabled:">();
}

}
