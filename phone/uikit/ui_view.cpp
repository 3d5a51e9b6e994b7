// Geometry, appearance and interaction of views. Hierarchy: ui_view_hierarchy.cpp; layout: ui_view_layout.cpp;
// the table of methods: ui_view_methods.cpp.
#include "phone/uikit/ui_view.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/result.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/ui_view_state.hpp"

namespace phone {

namespace {

std::uint64_t g_displayRevision = 0;

// Below this alpha a view is not hit; UIKit's documented bound.
constexpr double kLeastVisibleAlpha = 0.01;

// The share of a change that falls on one flexible part: by its size, or evenly when all are empty.
double share(double part, double sum, int count) { return sum != 0 ? part / sum : 1.0 / count; }

struct Span {
    double start, length;
};

// One axis of the autoresizing mask. `before` and `after`: the superview's lengths.
Span autoresized(Span span, double before, double after, bool minMargin, bool length, bool maxMargin)
{
    double const delta = after - before;
    double const margin = before - span.start - span.length;
    int const count = minMargin + length + maxMargin;
    if (!count || delta == 0)
        return span;
    double const sum = (minMargin ? span.start : 0) + (length ? span.length : 0) + (maxMargin ? margin : 0);
    Span result = span;
    if (minMargin)
        result.start += delta * share(span.start, sum, count);
    if (length)
        result.length = std::max(0.0, span.length + delta * share(span.length, sum, count));
    return result;
}

void autoresizeSubviews(UIView view, CGSize before, CGSize after)
{
    for (UIView const child : view.children()) {
        NSUInteger const mask = child.autoresizingMask();
        if (!mask || !child.translatesAutoresizingMaskIntoConstraints())
            continue;
        CGRect const bounds = child.bounds();
        CGPoint const center = child.center();
        Span const x = autoresized({ center.x - bounds.size.width / 2, bounds.size.width }, before.width,
            after.width, mask & Autoresizing::leftMargin, mask & Autoresizing::width,
            mask & Autoresizing::rightMargin);
        Span const y = autoresized({ center.y - bounds.size.height / 2, bounds.size.height }, before.height,
            after.height, mask & Autoresizing::topMargin, mask & Autoresizing::height,
            mask & Autoresizing::bottomMargin);
        applyGeometry(child, { x.start + x.length / 2, y.start + y.length / 2 },
            { bounds.origin, { x.length, y.length } });
    }
}

bool isFinite(CGPoint p) { return std::isfinite(p.x) && std::isfinite(p.y); }

}

std::uint64_t displayRevision() { return g_displayRevision; }
void noteDisplayChange() { ++g_displayRevision; }

ViewState& UIView::viewState() const { return objc::state<ViewState>(UIView { object }); }

// Geometry

void applyGeometry(UIView view, CGPoint center, CGRect bounds)
{
    ViewState& state = view.viewState();
    if (!isFinite(center) || !phone::isFinite(bounds)) {
        // The platform raises CALayerInvalidGeometry here, which ends SpringBoard.
        reportProblem("geometry with NaN or infinity refused for a " + classNameOf(view));
        return;
    }
    if (state.center == center && state.bounds == bounds)
        return;
    CGSize const before = state.bounds.size;
    bool const resized = !(before == bounds.size);
    if (!(state.center == center)) {
        willChange(view, AnimatedProperty::center);
        state.center = center;
    }
    if (!(state.bounds == bounds)) {
        willChange(view, AnimatedProperty::bounds);
        state.bounds = bounds;
    }
    noteDisplayChange();
    if (resized) {
        ++state.contentRevision;
        if (state.autoresizesSubviews)
            autoresizeSubviews(view, before, bounds.size);
        view.setNeedsLayout();
    }
    // A place that constraints start from has moved. Scrolling (the bounds' origin) moves none.
    if (state.constraintUses)
        markConstraintsDirty(view);
}

CGRect UIView::frame() const
{
    if (!object)
        return {};
    ViewState const& state = viewState();
    CGSize const size = state.bounds.size;
    if (isIdentity(state.transform))
        return { { state.center.x - size.width / 2, state.center.y - size.height / 2 }, size };
    CGRect const box = apply(state.transform, CGRect { { -size.width / 2, -size.height / 2 }, size });
    return { box.origin + state.center, box.size };
}

void UIView::setFrame(CGRect frame) const
{
    if (!object)
        return;
    ViewState const& state = viewState();
    frame = standardized(frame);
    CGSize size = frame.size;
    if (!isIdentity(state.transform)) {
        CGAffineTransform linear = state.transform;
        linear.tx = linear.ty = 0;
        size = apply(inverted(linear), CGRect { {}, frame.size }).size;
    }
    applyGeometry(*this, phone::center(frame) - CGPoint { state.transform.tx, state.transform.ty },
        { state.bounds.origin, size });
}

CGRect UIView::bounds() const { return object ? viewState().bounds : CGRect {}; }
void UIView::setBounds(CGRect bounds) const
{
    if (object)
        applyGeometry(*this, viewState().center, { bounds.origin, standardized(bounds).size });
}
CGPoint UIView::center() const { return object ? viewState().center : CGPoint {}; }
void UIView::setCenter(CGPoint center) const
{
    if (object)
        applyGeometry(*this, center, viewState().bounds);
}
CGAffineTransform UIView::transform() const { return object ? viewState().transform : CGAffineTransform {}; }

void UIView::setTransform(CGAffineTransform transform) const
{
    if (!object || viewState().transform == transform)
        return;
    willChange(*this, AnimatedProperty::transform);
    viewState().transform = transform;
    noteDisplayChange();
}

void UIView::setSize(CGSize size) const
{
    CGRect const box = frame();
    setFrame({ box.origin, size });
}

CGAffineTransform UIView::transformToSuperview() const
{
    ViewState const& state = viewState();
    CGAffineTransform const toCenter = translation(-midX(state.bounds), -midY(state.bounds));
    return concatenated(concatenated(toCenter, state.transform), translation(state.center.x, state.center.y));
}

CGAffineTransform UIView::presentationTransformToSuperview() const
{
    ViewPresentation const shown = presentation();
    CGAffineTransform const toCenter = translation(-midX(shown.bounds), -midY(shown.bounds));
    return concatenated(concatenated(toCenter, shown.transform), translation(shown.center.x, shown.center.y));
}

namespace {

// From the view's bounds space to that of the top of its tree. Of the window for views in one.
CGAffineTransform transformToRoot(UIView view)
{
    CGAffineTransform result = kIdentity;
    for (UIView each = view; each && each.superview(); each = each.superview())
        result = concatenated(result, each.transformToSuperview());
    return result;
}

// Windows lie on the screen by their own frames; conversion between two goes through it.
CGAffineTransform transformToScreen(UIView view)
{
    UIView const root = rootOf(view);
    CGAffineTransform const toRoot = transformToRoot(view);
    return root && root.viewState().isWindow ? concatenated(toRoot, root.transformToSuperview()) : toRoot;
}

CGAffineTransform transformBetween(UIView from, UIView to)
{
    if (from == to)
        return kIdentity;
    if (rootOf(from) == rootOf(to))
        return concatenated(transformToRoot(from), inverted(transformToRoot(to)));
    return concatenated(transformToScreen(from), inverted(transformToScreen(to)));
}

}

CGPoint UIView::convertPointToView(CGPoint point, UIView view) const
{
    return object ? apply(transformBetween(*this, view ? view : rootOf(*this)), point) : point;
}
CGPoint UIView::convertPointFromView(CGPoint point, UIView view) const
{
    return object ? apply(transformBetween(view ? view : rootOf(*this), *this), point) : point;
}
CGRect UIView::convertRectToView(CGRect rect, UIView view) const
{
    return object ? apply(transformBetween(*this, view ? view : rootOf(*this)), rect) : rect;
}
CGRect UIView::convertRectFromView(CGRect rect, UIView view) const
{
    return object ? apply(transformBetween(view ? view : rootOf(*this), *this), rect) : rect;
}

NSUInteger UIView::autoresizingMask() const { return object ? viewState().autoresizingMask : 0; }
void UIView::setAutoresizingMask(NSUInteger mask) const { viewState().autoresizingMask = mask & 63; }
BOOL UIView::autoresizesSubviews() const { return object && viewState().autoresizesSubviews; }
void UIView::setAutoresizesSubviews(BOOL resizes) const { viewState().autoresizesSubviews = resizes; }
BOOL UIView::translatesAutoresizingMaskIntoConstraints() const
{
    return object && viewState().translatesAutoresizingMask;
}
void UIView::setTranslatesAutoresizingMaskIntoConstraints(BOOL translates) const
{
    if (!object || viewState().translatesAutoresizingMask == translates)
        return;
    viewState().translatesAutoresizingMask = translates;
    if (viewState().constraintUses)
        markConstraintsDirty(*this);
}

CGSize UIView::sizeThatFits(CGSize) const { return bounds().size; }

void UIView::sizeToFit() const
{
    CGRect const box = bounds();
    send<"setBounds:">(CGRect { box.origin, send<"sizeThatFits:", CGSize>(box.size) });
}

CGSize UIView::intrinsicContentSize() const { return { kNoIntrinsicMetric, kNoIntrinsicMetric }; }

void UIView::invalidateIntrinsicContentSize() const
{
    if (object && viewState().constraintUses)
        markConstraintsDirty(*this);
}

// Deviation: a view that subviews hold apart by constraints answers its intrinsic or fitting size; the
// platform solves for the smallest size that satisfies them.
CGSize UIView::systemLayoutSizeFittingSize(CGSize size) const
{
    CGSize const intrinsic = send<"intrinsicContentSize", CGSize>();
    CGSize const fitting = send<"sizeThatFits:", CGSize>(size);
    return { intrinsic.width >= 0 ? intrinsic.width : fitting.width,
        intrinsic.height >= 0 ? intrinsic.height : fitting.height };
}

// Appearance

CGFloat UIView::alpha() const { return object ? viewState().alpha : 0; }
void UIView::setAlpha(CGFloat alpha) const
{
    double const clamped = std::isnan(alpha) ? 0 : std::clamp(alpha, 0.0, 1.0);
    if (!object || viewState().alpha == clamped)
        return;
    willChange(*this, AnimatedProperty::alpha);
    viewState().alpha = clamped;
    noteDisplayChange();
}
BOOL UIView::isHidden() const { return object && viewState().isHidden; }
void UIView::setHidden(BOOL hidden) const
{
    if (!object || viewState().isHidden == hidden)
        return;
    viewState().isHidden = hidden;
    noteDisplayChange();
    // Stacks leave hidden views out.
    if (viewState().constraintUses)
        markConstraintsDirty(*this);
}
BOOL UIView::isOpaque() const { return object && viewState().isOpaque; }
void UIView::setOpaque(BOOL opaque) const { viewState().isOpaque = opaque; }
UIColor UIView::backgroundColor() const { return object ? viewState().backgroundColor.get() : UIColor {}; }
void UIView::setBackgroundColor(UIColor color) const
{
    if (!object)
        return;
    willChange(*this, AnimatedProperty::backgroundColor);
    viewState().backgroundColor = objc::retain(color);
    noteDisplayChange();
}

UIColor defaultTintColor() { return UIColor::systemBlueColor(); }

UIColor UIView::ownTintColor() const { return object ? viewState().tintColor.get() : UIColor {}; }
UIColor UIView::tintColor() const
{
    for (UIView each = *this; each; each = each.superview()) {
        if (UIColor const own = each.ownTintColor())
            return own;
    }
    return object ? defaultTintColor() : UIColor {};
}

namespace {
void sendTintColorDidChange(UIView view)
{
    view.send<"tintColorDidChange">();
    for (UIView const child : view.children()) {
        if (!child.ownTintColor())
            sendTintColorDidChange(child);
    }
}
}

void UIView::setTintColor(UIColor color) const
{
    if (!object)
        return;
    viewState().tintColor = objc::retain(color);
    noteDisplayChange();
    sendTintColorDidChange(*this);
}
void UIView::tintColorDidChange() const { }

BOOL UIView::clipsToBounds() const { return object && viewState().layer->masksToBounds; }
void UIView::setClipsToBounds(BOOL clips) const
{
    viewState().layer->masksToBounds = clips;
    noteDisplayChange();
}
NSInteger UIView::contentMode() const { return object ? viewState().contentMode : 0; }
void UIView::setContentMode(NSInteger mode) const
{
    viewState().contentMode = mode >= 0 && mode <= 12 ? mode : 0;
    setNeedsDisplay();
}
NSInteger UIView::semanticContentAttribute() const { return object ? viewState().semanticContent : 0; }
void UIView::setSemanticContentAttribute(NSInteger attribute) const
{
    viewState().semanticContent = attribute;
    setNeedsLayout();
    if (viewState().constraintUses)
        markConstraintsDirty(*this);
}
NSInteger UIView::effectiveUserInterfaceLayoutDirection() const
{
    switch (static_cast<SemanticContent>(semanticContentAttribute())) {
    case SemanticContent::playback:
    case SemanticContent::spatial:
    case SemanticContent::forceLeftToRight: return 0;
    case SemanticContent::forceRightToLeft: return 1;
    case SemanticContent::unspecified: break;
    }
    return bootOptions().isRightToLeft() ? 1 : 0;
}

CALayer UIView::layer() const
{
    if (!object)
        return {};
    ViewState& state = viewState();
    if (!state.layerObject) {
        state.layer->view = object;
        state.layerObject = objc::adopt(CALayer::sharing(state.layer));
    }
    return state.layerObject;
}
LayerProperties& UIView::layerProperties() const { return *viewState().layer; }
void UIView::setCornerRadius(double radius) const
{
    if (!object || viewState().layer->cornerRadius == radius)
        return;
    willChange(*this, AnimatedProperty::cornerRadius);
    viewState().layer->cornerRadius = radius;
    noteDisplayChange();
}

// Interaction

BOOL UIView::isUserInteractionEnabled() const { return object && viewState().isUserInteractionEnabled; }
void UIView::setUserInteractionEnabled(BOOL enabled) const { viewState().isUserInteractionEnabled = enabled; }
BOOL UIView::isMultipleTouchEnabled() const { return object && viewState().isMultipleTouchEnabled; }
void UIView::setMultipleTouchEnabled(BOOL enabled) const { viewState().isMultipleTouchEnabled = enabled; }
BOOL UIView::isExclusiveTouch() const { return object && viewState().isExclusiveTouch; }
void UIView::setExclusiveTouch(BOOL exclusive) const { viewState().isExclusiveTouch = exclusive; }

BOOL UIView::pointInside(CGPoint point, objc::handle) const { return contains(bounds(), point); }

UIView UIView::hitTest(CGPoint point, objc::handle event) const
{
    if (!object)
        return {};
    ViewState const& state = viewState();
    if (state.isHidden || !state.isUserInteractionEnabled || state.alpha < kLeastVisibleAlpha
        || isBlockedByAnimation())
        return {};
    if (!send<"pointInside:withEvent:", BOOL>(point, event))
        return {};
    std::vector<UIView> const all = children();
    for (auto each = all.rbegin(); each != all.rend(); ++each) {
        CGPoint const inner = apply(inverted(each->transformToSuperview()), point);
        if (UIView const hit = each->sendHitTest(inner, event))
            return hit;
    }
    return *this;
}

std::vector<objc::handle> const& UIView::recognizers() const { return viewState().recognizers; }

NSArray UIView::gestureRecognizers() const
{
    if (!object || viewState().recognizers.empty())
        return {};
    auto const array = NSMutableArray::array();
    for (objc::handle const each : viewState().recognizers)
        array.addObject(each);
    return array;
}

void UIView::setGestureRecognizers(NSArray recognizers) const
{
    while (!viewState().recognizers.empty())
        removeGestureRecognizer(viewState().recognizers.back());
    for (NSUInteger i = 0; i < recognizers.count(); ++i)
        addGestureRecognizer(recognizers.objectAtIndex(i));
}

void UIView::addGestureRecognizer(objc::handle recognizer) const
{
    if (!object || !recognizer)
        return;
    auto const kept = objc::retain(recognizer);
    if (UIView const former = recognizer.ask<"view", UIView>()) {
        if (former == *this)
            return;
        former.removeGestureRecognizer(recognizer);
    }
    viewState().recognizers.push_back(objc::leak(objc::retain(recognizer)));
    recognizer.ask<"phone_setView:">(*this);
}

void UIView::removeGestureRecognizer(objc::handle recognizer) const
{
    if (!object)
        return;
    auto& all = viewState().recognizers;
    auto const found = std::find(all.begin(), all.end(), recognizer);
    if (found == all.end())
        return;
    objc::handle const removed = *found;
    all.erase(found);
    removed.ask<"phone_setView:">(UIView {});
    removed.send<"release">();
}

// Accessibility

NSString UIView::accessibilityLabel() const { return viewState().accessibilityLabel; }
void UIView::setAccessibilityLabel(NSString label) const
{
    viewState().accessibilityLabel = objc::adopt(NSString { label.send<"copy", objc::handle>().object });
}
NSString UIView::accessibilityIdentifier() const { return viewState().accessibilityIdentifier; }
void UIView::setAccessibilityIdentifier(NSString identifier) const
{
    viewState().accessibilityIdentifier =
        objc::adopt(NSString { identifier.send<"copy", objc::handle>().object });
}
NSString UIView::accessibilityHint() const { return viewState().accessibilityHint; }
void UIView::setAccessibilityHint(NSString hint) const
{
    viewState().accessibilityHint = objc::adopt(NSString { hint.send<"copy", objc::handle>().object });
}
BOOL UIView::isAccessibilityElement() const { return viewState().isAccessibilityElement; }
void UIView::setIsAccessibilityElement(BOOL is) const { viewState().isAccessibilityElement = is; }
NSUInteger UIView::accessibilityTraits() const { return viewState().accessibilityTraits; }
void UIView::setAccessibilityTraits(NSUInteger traits) const { viewState().accessibilityTraits = traits; }

NSInteger UIView::tag() const { return object ? viewState().tag : 0; }
void UIView::setTag(NSInteger tag) const { viewState().tag = tag; }

NSString UIView::description() const
{
    CGRect const box = frame();
    char text[256];
    std::snprintf(text, sizeof text, "<%s: %p; frame = (%g %g; %g %g)%s%s>",
        class_getName(objc::boundary::class_of(object)), static_cast<void const*>(object), box.origin.x,
        box.origin.y, box.size.width, box.size.height, isHidden() ? "; hidden = YES" : "",
        alpha() == 1 ? "" : "; alpha < 1");
    return toNSString(text);
}

}
