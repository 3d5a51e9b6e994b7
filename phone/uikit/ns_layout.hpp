// Auto layout: anchors and constraints. The solver is layout_solver.hpp. Main thread.
#pragma once

#include "phone/uikit/ui_view.hpp"

namespace phone {

// NSLayoutAttribute
enum class LayoutAttribute : NSInteger {
    none = 0,
    left = 1,
    right = 2,
    top = 3,
    bottom = 4,
    leading = 5,
    trailing = 6,
    width = 7,
    height = 8,
    centerX = 9,
    centerY = 10,
    lastBaseline = 11,
    firstBaseline = 12,
};
enum class LayoutRelation : NSInteger { lessThanOrEqual = -1, equal = 0, greaterThanOrEqual = 1 };

inline constexpr float kPriorityRequired = 1000, kPriorityHigh = 750, kPriorityLow = 250;

struct NSLayoutConstraint : objc::subclass<NSLayoutConstraint, "NSLayoutConstraint", NSObject> {
    using subclass::subclass;
    // first.attribute relation second.attribute * multiplier + constant. second nil: a constant. Lent.
    static NSLayoutConstraint between(UIView first, LayoutAttribute firstAttribute, LayoutRelation relation,
        UIView second, LayoutAttribute secondAttribute, double multiplier, double constant);
    static NSLayoutConstraint constraintWithItem(UIView first, NSInteger firstAttribute, NSInteger relation,
        UIView second, NSInteger secondAttribute, CGFloat multiplier, CGFloat constant);
    static void activateConstraints(NSArray constraints);
    static void deactivateConstraints(NSArray constraints);

    BOOL isActive() const;
    void setActive(BOOL active) const;   // raises when the views have no common ancestor, as on the platform
    UIView firstItem() const;            // weak
    UIView secondItem() const;
    NSInteger firstAttribute() const;
    NSInteger secondAttribute() const;
    NSInteger relation() const;
    CGFloat multiplier() const;
    CGFloat constant() const;
    void setConstant(CGFloat constant) const;
    float priority() const;
    void setPriority(float priority) const;
    NSString identifier() const;
    void setIdentifier(NSString identifier) const;
    // "UILabel.top == CVLButton.bottom + 0": in words, as in the trace.
    std::string words() const;
    NSString description() const;
};

struct NSLayoutAnchor : objc::subclass<NSLayoutAnchor, "NSLayoutAnchor", NSObject> {
    using subclass::subclass;
    static NSLayoutAnchor of(objc::class_handle cls, UIView view, LayoutAttribute attribute);   // lent
    UIView item() const;
    LayoutAttribute attribute() const;
    NSLayoutConstraint constraintEqualToAnchor(NSLayoutAnchor other) const;
    NSLayoutConstraint constraintEqualToAnchorConstant(NSLayoutAnchor other, CGFloat constant) const;
    NSLayoutConstraint constraintGreaterThanOrEqualToAnchor(NSLayoutAnchor other) const;
    NSLayoutConstraint constraintGreaterThanOrEqualToAnchorConstant(
        NSLayoutAnchor other, CGFloat constant) const;
    NSLayoutConstraint constraintLessThanOrEqualToAnchor(NSLayoutAnchor other) const;
    NSLayoutConstraint constraintLessThanOrEqualToAnchorConstant(
        NSLayoutAnchor other, CGFloat constant) const;
};
struct NSLayoutXAxisAnchor : objc::subclass<NSLayoutXAxisAnchor, "NSLayoutXAxisAnchor", NSLayoutAnchor> {
    using subclass::subclass;
};
struct NSLayoutYAxisAnchor : objc::subclass<NSLayoutYAxisAnchor, "NSLayoutYAxisAnchor", NSLayoutAnchor> {
    using subclass::subclass;
};
struct NSLayoutDimension : objc::subclass<NSLayoutDimension, "NSLayoutDimension", NSLayoutAnchor> {
    using subclass::subclass;
    NSLayoutConstraint constraintEqualToConstant(CGFloat constant) const;
    NSLayoutConstraint constraintGreaterThanOrEqualToConstant(CGFloat constant) const;
    NSLayoutConstraint constraintLessThanOrEqualToConstant(CGFloat constant) const;
    NSLayoutConstraint constraintEqualToAnchorMultiplier(NSLayoutAnchor other, CGFloat multiplier) const;
    NSLayoutConstraint constraintEqualToAnchorMultiplierConstant(
        NSLayoutAnchor other, CGFloat multiplier, CGFloat constant) const;
};

// The active constraints that involve the view or two of its descendants; for view trees.
std::vector<NSLayoutConstraint> constraintsInvolving(UIView view);

void defineNSLayout();

}
