// What a view holds, for UIKit's own files: everything else goes through UIView's functions. Main thread.
#pragma once

#include "phone/uikit/ui_view.hpp"

#include <array>
#include <memory>

namespace phone {

struct AnimationGroup;

enum class AnimatedProperty { center, bounds, transform, alpha, backgroundColor, cornerRadius };
using AnimatedValue = std::array<double, 6>;

// A property on its way from an earlier value to the model's.
struct PropertyAnimation {
    AnimatedProperty property;
    AnimatedValue from;
    std::shared_ptr<AnimationGroup> group;
};

struct ViewState {
    ViewState() = default;
    ViewState(ViewState const&) = delete;
    ViewState& operator=(ViewState const&) = delete;
    ~ViewState();   // the view is going: its subviews, layer, recognisers and constraints let go of it

    CGRect bounds {};
    CGPoint center {};
    CGAffineTransform transform { kIdentity };
    double alpha { 1 };
    bool isHidden { false };
    bool isOpaque { true };
    bool isWindow { false };
    bool isUserInteractionEnabled { true };
    bool isMultipleTouchEnabled { false };
    bool isExclusiveTouch { false };
    bool autoresizesSubviews { true };
    bool translatesAutoresizingMask { true };
    bool needsLayout { true };
    bool descendantNeedsLayout { false };
    bool needsUpdateConstraints { false };
    bool isAccessibilityElement { false };
    NSUInteger autoresizingMask { 0 };
    NSUInteger accessibilityTraits { 0 };
    NSInteger contentMode { 0 };
    NSInteger semanticContent { 0 };
    NSInteger tag { 0 };
    objc::ref<UIColor> backgroundColor;
    objc::ref<UIColor> tintColor;

    id superview { nullptr };   // cleared when it goes
    std::vector<objc::ref<UIView>> subviews;
    std::vector<objc::handle> recognizers;   // owned
    id viewController { nullptr };           // cleared when it goes

    std::shared_ptr<LayerProperties> layer { std::make_shared<LayerProperties>() };
    objc::ref<CALayer> layerObject;
    std::uint64_t contentRevision { 0 };
    std::vector<PropertyAnimation> animations;
    id animatedView { nullptr };   // the view itself, from its first animation on

    // Auto layout
    int constraintUses { 0 };   // active constraints that name this view, and stacks that arrange it
    std::array<float, 2> hugging { 250, 250 };
    std::array<float, 2> compression { 750, 750 };

    objc::ref<NSString> accessibilityLabel;
    objc::ref<NSString> accessibilityIdentifier;
    objc::ref<NSString> accessibilityHint;
};

// Before a setter changes the model: remembers where the property was, if an animation block is open.
void willChange(UIView view, AnimatedProperty property);
// Animations of a view that is going: their groups end without it.
void dropAnimations(ViewState& state);
AnimatedValue modelValue(UIView view, AnimatedProperty property);
AnimatedValue presentValue(UIView view, AnimatedProperty property);

// Moves and sizes, with all that follows (autoresizing, layout); the core of every geometry setter.
void applyGeometry(UIView view, CGPoint center, CGRect bounds);

// The top of the tree that the view is in.
UIView rootOf(UIView view);

// Constraints between views of the tree have to be solved again.
void markConstraintsDirty(UIView view);
// Solves what is dirty in the view's tree. Answers whether anything moved.
bool solveConstraints(UIView root);
// Constraints that leave the subtree end when it does.
void deactivateCrossingConstraints(UIView subtree);

// Schedules layoutWindowsIfNeeded() for the end of this turn.
void scheduleLayout();
void layoutTree(UIView view);

UIColor defaultTintColor();

}
