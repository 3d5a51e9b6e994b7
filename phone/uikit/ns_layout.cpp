#include "phone/uikit/ns_layout.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/foundation/weak.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/layout_engine.hpp"
#include "phone/uikit/ui_view_state.hpp"

#include <cmath>

namespace phone {

namespace {

struct ConstraintState {
    Weak<UIView> first;
    Weak<UIView> second;
    LayoutAttribute firstAttribute { LayoutAttribute::none };
    LayoutAttribute secondAttribute { LayoutAttribute::none };
    LayoutRelation relation { LayoutRelation::equal };
    double multiplier { 1 };
    double constant { 0 };
    float priority { kPriorityRequired };
    bool isActive { false };
    objc::ref<NSString> identifier;
};

struct AnchorState {
    Weak<UIView> view;
    LayoutAttribute attribute { LayoutAttribute::none };
};

ConstraintState& stateOf(NSLayoutConstraint constraint)
{
    return objc::state<ConstraintState>(NSLayoutConstraint { constraint.object });
}

constexpr char const* kAttributeNames[] { "none", "left", "right", "top", "bottom", "leading", "trailing",
    "width", "height", "centerX", "centerY", "lastBaseline", "firstBaseline" };

char const* nameOf(LayoutAttribute attribute)
{
    auto const index = static_cast<std::size_t>(attribute);
    return index < std::size(kAttributeNames) ? kAttributeNames[index] : "none";
}

std::string numberText(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

// In the order in which they became active: of two that contradict each other the later one gives way.
std::vector<objc::ref<NSLayoutConstraint>> g_activeConstraints;

UIView commonAncestor(UIView a, UIView b)
{
    for (UIView each = a; each; each = each.superview()) {
        if (!b || b.isDescendantOfView(each))
            return each;
    }
    return {};
}

void countUse(UIView view, int change)
{
    if (view)
        view.viewState().constraintUses += change;
}

void raise(char const* name, std::string const& reason)
{
    objc::cls<"NSException">().send<"raise:format:">(toNSString(name), toNSString(reason));
}

void deactivate(NSLayoutConstraint constraint)
{
    ConstraintState& state = stateOf(constraint);
    if (!std::exchange(state.isActive, false))
        return;
    countUse(state.first, -1);
    countUse(state.second, -1);
    markConstraintsDirty(state.first.get() ? state.first.get() : state.second.get());
    std::erase_if(g_activeConstraints, [constraint](auto const& each) { return each.get() == constraint; });
}

}

std::vector<NSLayoutConstraint> activeConstraints()
{
    // Those whose view has gone go too.
    for (std::size_t i = g_activeConstraints.size(); i-- > 0;) {
        ConstraintState const& state = stateOf(g_activeConstraints[i]);
        bool const needsSecond = state.secondAttribute != LayoutAttribute::none;
        if (!state.first.get() || (needsSecond && !state.second.get()))
            deactivate(g_activeConstraints[i]);
    }
    return { g_activeConstraints.begin(), g_activeConstraints.end() };
}

void deactivateCrossingConstraints(UIView subtree)
{
    if (g_activeConstraints.empty())
        return;
    for (NSLayoutConstraint const each : activeConstraints()) {
        UIView const second = each.secondItem();
        if (second && each.firstItem().isDescendantOfView(subtree) != second.isDescendantOfView(subtree))
            deactivate(each);
    }
}

std::vector<NSLayoutConstraint> constraintsInvolving(UIView view)
{
    std::vector<NSLayoutConstraint> all;
    for (NSLayoutConstraint const each : activeConstraints()) {
        if (each.firstItem() == view || each.secondItem() == view)
            all.push_back(each);
    }
    return all;
}

NSLayoutConstraint NSLayoutConstraint::between(UIView first, LayoutAttribute firstAttribute,
    LayoutRelation relation, UIView second, LayoutAttribute secondAttribute, double multiplier,
    double constant)
{
    auto made = objc::adopt(NSLayoutConstraint { NSLayoutConstraint::alloc().init().object });
    ConstraintState& state = stateOf(made);
    state.first = first;
    state.second = second;
    state.firstAttribute = firstAttribute;
    state.secondAttribute = second ? secondAttribute : LayoutAttribute::none;
    state.relation = relation;
    state.multiplier = multiplier;
    state.constant = constant;
    return objc::autorelease(std::move(made));
}

NSLayoutConstraint NSLayoutConstraint::constraintWithItem(UIView first, NSInteger firstAttribute,
    NSInteger relation, UIView second, NSInteger secondAttribute, CGFloat multiplier, CGFloat constant)
{
    return between(first, static_cast<LayoutAttribute>(firstAttribute), static_cast<LayoutRelation>(relation),
        second, static_cast<LayoutAttribute>(secondAttribute), multiplier, constant);
}

void NSLayoutConstraint::activateConstraints(NSArray constraints)
{
    for (NSUInteger i = 0; i < constraints.count(); ++i)
        constraints.objectAtIndex(i).send<"setActive:">(BOOL { true });
}
void NSLayoutConstraint::deactivateConstraints(NSArray constraints)
{
    for (NSUInteger i = 0; i < constraints.count(); ++i)
        constraints.objectAtIndex(i).send<"setActive:">(BOOL { false });
}

BOOL NSLayoutConstraint::isActive() const { return object && stateOf(*this).isActive; }

void NSLayoutConstraint::setActive(BOOL active) const
{
    if (!object || stateOf(*this).isActive == active)
        return;
    if (!active) {
        auto const kept = objc::retain(*this);
        deactivate(*this);
        return;
    }
    ConstraintState& state = stateOf(*this);
    if (!state.first.get() || !commonAncestor(state.first, state.second)) {
        raise("NSGenericException",
            "Unable to activate constraint " + words() + " because its views have no common ancestor");
        return;
    }
    state.isActive = true;
    countUse(state.first, 1);
    countUse(state.second, 1);
    g_activeConstraints.push_back(objc::retain(*this));
    trace().record("constraint", { { "what", words() } });
    markConstraintsDirty(state.first);
}

UIView NSLayoutConstraint::firstItem() const { return object ? stateOf(*this).first.get() : UIView {}; }
UIView NSLayoutConstraint::secondItem() const { return object ? stateOf(*this).second.get() : UIView {}; }
NSInteger NSLayoutConstraint::firstAttribute() const
{
    return static_cast<NSInteger>(stateOf(*this).firstAttribute);
}
NSInteger NSLayoutConstraint::secondAttribute() const
{
    return static_cast<NSInteger>(stateOf(*this).secondAttribute);
}
NSInteger NSLayoutConstraint::relation() const { return static_cast<NSInteger>(stateOf(*this).relation); }
CGFloat NSLayoutConstraint::multiplier() const { return stateOf(*this).multiplier; }
CGFloat NSLayoutConstraint::constant() const { return object ? stateOf(*this).constant : 0; }
void NSLayoutConstraint::setConstant(CGFloat constant) const
{
    if (stateOf(*this).constant == constant)
        return;
    stateOf(*this).constant = constant;
    if (isActive())
        markConstraintsDirty(firstItem());
}
float NSLayoutConstraint::priority() const { return stateOf(*this).priority; }
void NSLayoutConstraint::setPriority(float priority) const
{
    stateOf(*this).priority = priority;
    if (isActive())
        markConstraintsDirty(firstItem());
}
NSString NSLayoutConstraint::identifier() const { return stateOf(*this).identifier; }
void NSLayoutConstraint::setIdentifier(NSString identifier) const
{
    stateOf(*this).identifier = objc::adopt(NSString { identifier.send<"copy", objc::handle>().object });
}

std::string NSLayoutConstraint::words() const
{
    ConstraintState const& state = stateOf(*this);
    std::string text = classNameOf(state.first.get()) + "." + nameOf(state.firstAttribute);
    text += state.relation == LayoutRelation::equal         ? " == "
        : state.relation == LayoutRelation::lessThanOrEqual ? " <= "
                                                            : " >= ";
    if (state.secondAttribute == LayoutAttribute::none)
        return text + numberText(state.constant);
    text += classNameOf(state.second.get()) + "." + nameOf(state.secondAttribute);
    if (state.multiplier != 1)
        text += " * " + numberText(state.multiplier);
    text += std::signbit(state.constant) && state.constant != 0 ? " - " : " + ";
    text += numberText(std::abs(state.constant));
    if (state.priority < kPriorityRequired)
        text += " @" + numberText(state.priority);
    return text;
}

NSString NSLayoutConstraint::description() const
{
    return toNSString("<NSLayoutConstraint: " + words() + ">");
}

// Anchors

NSLayoutAnchor NSLayoutAnchor::of(objc::class_handle cls, UIView view, LayoutAttribute attribute)
{
    auto made =
        objc::adopt(NSLayoutAnchor { cls.send<"alloc", objc::handle>().send<"init", objc::handle>().object });
    AnchorState& state = objc::state<AnchorState>(made.get());
    state.view = view;
    state.attribute = attribute;
    return objc::autorelease(std::move(made));
}

UIView NSLayoutAnchor::item() const
{
    return object ? objc::state<AnchorState>(NSLayoutAnchor { object }).view.get() : UIView {};
}
LayoutAttribute NSLayoutAnchor::attribute() const
{
    return object ? objc::state<AnchorState>(NSLayoutAnchor { object }).attribute : LayoutAttribute::none;
}

namespace {

NSLayoutConstraint between(
    NSLayoutAnchor a, LayoutRelation relation, NSLayoutAnchor b, double multiplier, double constant)
{
    return NSLayoutConstraint::between(
        a.item(), a.attribute(), relation, b.item(), b.attribute(), multiplier, constant);
}

}

NSLayoutConstraint NSLayoutAnchor::constraintEqualToAnchor(NSLayoutAnchor other) const
{
    return phone::between(*this, LayoutRelation::equal, other, 1, 0);
}
NSLayoutConstraint NSLayoutAnchor::constraintEqualToAnchorConstant(
    NSLayoutAnchor other, CGFloat constant) const
{
    return phone::between(*this, LayoutRelation::equal, other, 1, constant);
}
NSLayoutConstraint NSLayoutAnchor::constraintGreaterThanOrEqualToAnchor(NSLayoutAnchor other) const
{
    return phone::between(*this, LayoutRelation::greaterThanOrEqual, other, 1, 0);
}
NSLayoutConstraint NSLayoutAnchor::constraintGreaterThanOrEqualToAnchorConstant(
    NSLayoutAnchor other, CGFloat constant) const
{
    return phone::between(*this, LayoutRelation::greaterThanOrEqual, other, 1, constant);
}
NSLayoutConstraint NSLayoutAnchor::constraintLessThanOrEqualToAnchor(NSLayoutAnchor other) const
{
    return phone::between(*this, LayoutRelation::lessThanOrEqual, other, 1, 0);
}
NSLayoutConstraint NSLayoutAnchor::constraintLessThanOrEqualToAnchorConstant(
    NSLayoutAnchor other, CGFloat constant) const
{
    return phone::between(*this, LayoutRelation::lessThanOrEqual, other, 1, constant);
}
NSLayoutConstraint NSLayoutDimension::constraintEqualToConstant(CGFloat constant) const
{
    return phone::between(*this, LayoutRelation::equal, {}, 0, constant);
}
NSLayoutConstraint NSLayoutDimension::constraintGreaterThanOrEqualToConstant(CGFloat constant) const
{
    return phone::between(*this, LayoutRelation::greaterThanOrEqual, {}, 0, constant);
}
NSLayoutConstraint NSLayoutDimension::constraintLessThanOrEqualToConstant(CGFloat constant) const
{
    return phone::between(*this, LayoutRelation::lessThanOrEqual, {}, 0, constant);
}
NSLayoutConstraint NSLayoutDimension::constraintEqualToAnchorMultiplier(
    NSLayoutAnchor other, CGFloat multiplier) const
{
    return phone::between(*this, LayoutRelation::equal, other, multiplier, 0);
}
NSLayoutConstraint NSLayoutDimension::constraintEqualToAnchorMultiplierConstant(
    NSLayoutAnchor other, CGFloat multiplier, CGFloat constant) const
{
    return phone::between(*this, LayoutRelation::equal, other, multiplier, constant);
}

namespace {
template <class T>
T anchor(UIView view, LayoutAttribute attribute)
{
    return T { NSLayoutAnchor::of(T::cls(), view, attribute).object };
}
}

NSLayoutXAxisAnchor UIView::leadingAnchor() const
{
    return anchor<NSLayoutXAxisAnchor>(*this, LayoutAttribute::leading);
}
NSLayoutXAxisAnchor UIView::trailingAnchor() const
{
    return anchor<NSLayoutXAxisAnchor>(*this, LayoutAttribute::trailing);
}
NSLayoutXAxisAnchor UIView::leftAnchor() const
{
    return anchor<NSLayoutXAxisAnchor>(*this, LayoutAttribute::left);
}
NSLayoutXAxisAnchor UIView::rightAnchor() const
{
    return anchor<NSLayoutXAxisAnchor>(*this, LayoutAttribute::right);
}
NSLayoutXAxisAnchor UIView::centerXAnchor() const
{
    return anchor<NSLayoutXAxisAnchor>(*this, LayoutAttribute::centerX);
}
NSLayoutYAxisAnchor UIView::topAnchor() const
{
    return anchor<NSLayoutYAxisAnchor>(*this, LayoutAttribute::top);
}
NSLayoutYAxisAnchor UIView::bottomAnchor() const
{
    return anchor<NSLayoutYAxisAnchor>(*this, LayoutAttribute::bottom);
}
NSLayoutYAxisAnchor UIView::centerYAnchor() const
{
    return anchor<NSLayoutYAxisAnchor>(*this, LayoutAttribute::centerY);
}
NSLayoutDimension UIView::widthAnchor() const
{
    return anchor<NSLayoutDimension>(*this, LayoutAttribute::width);
}
NSLayoutDimension UIView::heightAnchor() const
{
    return anchor<NSLayoutDimension>(*this, LayoutAttribute::height);
}

float UIView::contentHuggingPriority(NSInteger axis) const { return viewState().hugging[axis == 1 ? 1 : 0]; }
void UIView::setContentHuggingPriority(float priority, NSInteger axis) const
{
    viewState().hugging[axis == 1 ? 1 : 0] = priority;
    invalidateIntrinsicContentSize();
}
float UIView::contentCompressionResistancePriority(NSInteger axis) const
{
    return viewState().compression[axis == 1 ? 1 : 0];
}
void UIView::setContentCompressionResistancePriority(float priority, NSInteger axis) const
{
    viewState().compression[axis == 1 ? 1 : 0] = priority;
    invalidateIntrinsicContentSize();
}

NSArray UIView::constraints() const
{
    auto const array = NSMutableArray::array();
    for (NSLayoutConstraint const each : activeConstraints()) {
        if (commonAncestor(each.firstItem(), each.secondItem()) == *this)
            array.addObject(each);
    }
    return array;
}

void defineNSLayout()
{
    objc::define<NSLayoutConstraint>()
        .state<ConstraintState>()
        .class_method<"constraintWithItem:attribute:relatedBy:toItem:attribute:multiplier:constant:",
            &NSLayoutConstraint::constraintWithItem>()
        .class_method<"activateConstraints:", &NSLayoutConstraint::activateConstraints>()
        .class_method<"deactivateConstraints:", &NSLayoutConstraint::deactivateConstraints>()
        .method<"isActive", &NSLayoutConstraint::isActive>()
        .method<"setActive:", &NSLayoutConstraint::setActive>()
        .method<"firstItem", &NSLayoutConstraint::firstItem>()
        .method<"secondItem", &NSLayoutConstraint::secondItem>()
        .method<"firstAttribute", &NSLayoutConstraint::firstAttribute>()
        .method<"secondAttribute", &NSLayoutConstraint::secondAttribute>()
        .method<"relation", &NSLayoutConstraint::relation>()
        .method<"multiplier", &NSLayoutConstraint::multiplier>()
        .method<"constant", &NSLayoutConstraint::constant>()
        .method<"setConstant:", &NSLayoutConstraint::setConstant>()
        .method<"priority", &NSLayoutConstraint::priority>()
        .method<"setPriority:", &NSLayoutConstraint::setPriority>()
        .method<"identifier", &NSLayoutConstraint::identifier>()
        .method<"setIdentifier:", &NSLayoutConstraint::setIdentifier>()
        .method<"description", &NSLayoutConstraint::description>()
        .install();
    objc::define<NSLayoutAnchor>()
        .state<AnchorState>()
        .method<"item", &NSLayoutAnchor::item>()
        .method<"constraintEqualToAnchor:", &NSLayoutAnchor::constraintEqualToAnchor>()
        .method<"constraintEqualToAnchor:constant:", &NSLayoutAnchor::constraintEqualToAnchorConstant>()
        .method<"constraintGreaterThanOrEqualToAnchor:",
            &NSLayoutAnchor::constraintGreaterThanOrEqualToAnchor>()
        .method<"constraintGreaterThanOrEqualToAnchor:constant:",
            &NSLayoutAnchor::constraintGreaterThanOrEqualToAnchorConstant>()
        .method<"constraintLessThanOrEqualToAnchor:", &NSLayoutAnchor::constraintLessThanOrEqualToAnchor>()
        .method<"constraintLessThanOrEqualToAnchor:constant:",
            &NSLayoutAnchor::constraintLessThanOrEqualToAnchorConstant>()
        .install();
    objc::define<NSLayoutXAxisAnchor>().install();
    objc::define<NSLayoutYAxisAnchor>().install();
    objc::define<NSLayoutDimension>()
        .method<"constraintEqualToConstant:", &NSLayoutDimension::constraintEqualToConstant>()
        .method<"constraintGreaterThanOrEqualToConstant:",
            &NSLayoutDimension::constraintGreaterThanOrEqualToConstant>()
        .method<"constraintLessThanOrEqualToConstant:",
            &NSLayoutDimension::constraintLessThanOrEqualToConstant>()
        .method<"constraintEqualToAnchor:multiplier:",
            &NSLayoutDimension::constraintEqualToAnchorMultiplier>()
        .method<"constraintEqualToAnchor:multiplier:constant:",
            &NSLayoutDimension::constraintEqualToAnchorMultiplierConstant>()
        .install();
}

}
