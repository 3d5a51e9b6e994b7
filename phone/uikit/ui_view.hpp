// UIView: a rectangle in a tree of views. Member functions are UIKit's implementations; what a subclass may
// override is sent as a message by whoever walks the tree. Points; main thread.
//
// Model values change at once. What is on screen while an animation runs is presentation().
#pragma once

#include "phone/uikit/ca_layer.hpp"
#include "phone/uikit/draw_context.hpp"
#include "phone/uikit/geometry.hpp"
#include "phone/uikit/ui_color.hpp"
#include "phone/uikit/ui_responder.hpp"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace phone {

struct UIViewController;
struct UIWindow;
struct UIGestureRecognizer;
struct NSLayoutXAxisAnchor;
struct NSLayoutYAxisAnchor;
struct NSLayoutDimension;
struct ViewState;

// UIViewAutoresizing
namespace Autoresizing {
inline constexpr NSUInteger leftMargin = 1, width = 2, rightMargin = 4, topMargin = 8, height = 16,
                            bottomMargin = 32;
}

enum class UIViewContentMode : NSInteger {
    scaleToFill,
    scaleAspectFit,
    scaleAspectFill,
    redraw,
    center,
    top,
    bottom,
    left,
    right,
    topLeft,
    topRight,
    bottomLeft,
    bottomRight,
};

// UISemanticContentAttribute
enum class SemanticContent : NSInteger { unspecified, playback, spatial, forceLeftToRight, forceRightToLeft };

inline constexpr CGFloat kNoIntrinsicMetric = -1;   // UIViewNoIntrinsicMetric

// What is drawn now: the model's values, or in between while an animation runs.
struct ViewPresentation {
    CGPoint center {};
    CGRect bounds {};
    CGAffineTransform transform { kIdentity };
    double alpha { 1 };
    graphics::Color backgroundColor { 0, 0, 0, 0 };
    double cornerRadius { 0 };
};

struct UIView : objc::subclass<UIView, "UIView", UIResponder> {
    using subclass::subclass;

    // Consumes the receiver, answers +1, as initialisers do. From C++ use make<T>(), which sends the message.
    UIView initWithFrame(CGRect frame) const;
    UIView init() const;

    // Geometry. With a transform that is not the identity, frame is the bounding box, and setFrame: moves
    // the centre and sizes the bounds through the inverse.
    CGRect frame() const;
    void setFrame(CGRect frame) const;
    CGRect bounds() const;
    void setBounds(CGRect bounds) const;
    CGPoint center() const;
    void setCenter(CGPoint center) const;
    CGAffineTransform transform() const;
    void setTransform(CGAffineTransform transform) const;
    void setSize(CGSize size) const;   // bounds' size, the frame's origin kept

    NSUInteger autoresizingMask() const;
    void setAutoresizingMask(NSUInteger mask) const;
    BOOL autoresizesSubviews() const;
    void setAutoresizesSubviews(BOOL resizes) const;
    BOOL translatesAutoresizingMaskIntoConstraints() const;
    void setTranslatesAutoresizingMaskIntoConstraints(BOOL translates) const;
    CGSize sizeThatFits(CGSize size) const;   // the base: its own size
    void sizeToFit() const;
    CGSize intrinsicContentSize() const;   // the base: none
    void invalidateIntrinsicContentSize() const;
    CGSize systemLayoutSizeFittingSize(CGSize size) const;

    // Appearance
    CGFloat alpha() const;
    void setAlpha(CGFloat alpha) const;
    BOOL isHidden() const;
    void setHidden(BOOL hidden) const;
    BOOL isOpaque() const;
    void setOpaque(BOOL opaque) const;
    UIColor backgroundColor() const;   // nil: none
    void setBackgroundColor(UIColor color) const;
    UIColor tintColor() const;   // its own, or the nearest one above; never nil
    UIColor ownTintColor() const;
    void setTintColor(UIColor color) const;
    void tintColorDidChange() const;   // the base: nothing
    BOOL clipsToBounds() const;
    void setClipsToBounds(BOOL clips) const;
    NSInteger contentMode() const;
    void setContentMode(NSInteger mode) const;
    NSInteger semanticContentAttribute() const;
    void setSemanticContentAttribute(NSInteger attribute) const;
    NSInteger effectiveUserInterfaceLayoutDirection() const;   // 1: right to left
    CALayer layer() const;
    LayerProperties& layerProperties() const;   // without making the layer
    void setCornerRadius(double radius) const;
    ViewPresentation presentation() const;
    // The centre and bounds alone, as presentation() has them, combined: from own bounds to the superview's.
    CGAffineTransform presentationTransformToSuperview() const;

    // Interaction
    BOOL isUserInteractionEnabled() const;
    void setUserInteractionEnabled(BOOL enabled) const;
    BOOL isMultipleTouchEnabled() const;
    void setMultipleTouchEnabled(BOOL enabled) const;
    BOOL isExclusiveTouch() const;
    void setExclusiveTouch(BOOL exclusive) const;
    // An animation that does not allow interaction runs on it.
    bool isBlockedByAnimation() const;
    UIView hitTest(CGPoint point, objc::handle event) const;     // the implementation
    BOOL pointInside(CGPoint point, objc::handle event) const;   // the implementation
    UIView sendHitTest(CGPoint point, objc::handle event = {}) const
    {
        return send<"hitTest:withEvent:", UIView>(point, event);
    }
    NSArray gestureRecognizers() const;   // nil when there is none, as on the platform
    void setGestureRecognizers(NSArray recognizers) const;
    void addGestureRecognizer(objc::handle recognizer) const;   // moves it here from another view
    void removeGestureRecognizer(objc::handle recognizer) const;
    std::vector<objc::handle> const& recognizers() const;
    // Recogniser objects are told through phone_setView: (UIView or nil).

    // Hierarchy
    UIView superview() const;
    UIWindow window() const;
    NSArray subviews() const;               // a copy, back to front; lent
    std::vector<UIView> children() const;   // the same
    void addSubview(
        UIView view) const;   // nil: nothing; an ancestor or itself: refused with a line on standard error
    void insertSubviewAtIndex(UIView view, NSInteger index) const;
    void insertSubviewAbove(UIView view, UIView sibling) const;
    void insertSubviewBelow(UIView view, UIView sibling) const;
    void removeFromSuperview() const;
    void bringSubviewToFront(UIView view) const;
    void sendSubviewToBack(UIView view) const;
    void exchangeSubviews(NSInteger index, NSInteger other) const;
    BOOL isDescendantOfView(UIView view) const;
    UIView viewWithTag(NSInteger tag) const;
    NSInteger tag() const;
    void setTag(NSInteger tag) const;
    void willMoveToSuperview(UIView view) const;   // these five: nothing in the base
    void didMoveToSuperview() const;
    void willMoveToWindow(UIWindow window) const;
    void didMoveToWindow() const;
    void didAddSubview(UIView view) const;
    void willRemoveSubview(UIView view) const;
    UIResponder nextResponder() const;
    UIViewController viewController() const;   // the controller whose view this is; nil
    void setViewController(UIViewController controller) const;

    // Conversion through transforms; nil stands for the window.
    CGPoint convertPointToView(CGPoint point, UIView view) const;
    CGPoint convertPointFromView(CGPoint point, UIView view) const;
    CGRect convertRectToView(CGRect rect, UIView view) const;
    CGRect convertRectFromView(CGRect rect, UIView view) const;
    CGAffineTransform transformToSuperview() const;   // from own bounds space, by model values

    // Layout and drawing
    void setNeedsLayout() const;
    bool needsLayout() const;
    void layoutIfNeeded() const;
    void layoutSubviews() const;   // the base: nothing (constraints are solved before it is sent)
    void setNeedsDisplay() const;
    void setNeedsUpdateConstraints() const;
    void updateConstraintsIfNeeded() const;
    void updateConstraints() const;
    UIEdgeInsets safeAreaInsets() const;
    // The renderer sends phone_drawContent: with the context; subclasses that show something override it.
    void drawContent(DrawContext* context) const;
    void sendDrawContent(DrawContext& context) const { send<"phone_drawContent:">(&context); }
    // Grows with every change of the content (not of the geometry): a cache of its drawing is good while it stays.
    std::uint64_t contentRevision() const;

    // Anchors; lent. Implemented by auto layout.
    NSLayoutXAxisAnchor leadingAnchor() const;
    NSLayoutXAxisAnchor trailingAnchor() const;
    NSLayoutXAxisAnchor leftAnchor() const;
    NSLayoutXAxisAnchor rightAnchor() const;
    NSLayoutXAxisAnchor centerXAnchor() const;
    NSLayoutYAxisAnchor topAnchor() const;
    NSLayoutYAxisAnchor bottomAnchor() const;
    NSLayoutYAxisAnchor centerYAnchor() const;
    NSLayoutDimension widthAnchor() const;
    NSLayoutDimension heightAnchor() const;
    float contentHuggingPriority(NSInteger axis) const;   // axis 0 horizontal, 1 vertical
    void setContentHuggingPriority(float priority, NSInteger axis) const;
    float contentCompressionResistancePriority(NSInteger axis) const;
    void setContentCompressionResistancePriority(float priority, NSInteger axis) const;
    NSArray constraints()
        const;   // those active between descendants of this view for which it is the nearest common view

    // Accessibility
    NSString accessibilityLabel() const;
    void setAccessibilityLabel(NSString label) const;
    NSString accessibilityIdentifier() const;
    void setAccessibilityIdentifier(NSString identifier) const;
    NSString accessibilityHint() const;
    void setAccessibilityHint(NSString hint) const;
    BOOL isAccessibilityElement() const;
    void setIsAccessibilityElement(BOOL is) const;
    NSUInteger accessibilityTraits() const;
    void setAccessibilityTraits(NSUInteger traits) const;

    NSString description() const;

    // For UIKit's own files.
    ViewState& viewState() const;

    // Rows of the table: the same as a message, which the observer below is told of.
    UIView initWithFrameMessage(CGRect frame) const;
    void setFrameMessage(CGRect frame) const;
    void setCenterMessage(CGPoint center) const;
    void setTransformMessage(CGAffineTransform transform) const;
    void setHiddenMessage(BOOL hidden) const;
};

// Makes a view of class T by the message, so that T's own initialiser runs.
template <class T>
objc::ref<T> make(CGRect frame = {})
{
    return objc::adopt(T { T::alloc().template send<"initWithFrame:", objc::handle>(frame).object });
}

// Grows with everything that may change the picture: geometry, hierarchy, content, animation frames.
std::uint64_t displayRevision();
void noteDisplayChange();

// Told of each geometry call that comes as a message (initWithFrame:, setFrame:, setCenter:, setTransform:,
// setHidden:), before it takes effect, with its argument as in the trace: for the trace's `frame` rows.
// The phone's own code calls the C++ functions and is not told of.
using ViewCallObserver = std::function<void(UIView view, char const* call, nlohmann::ordered_json value)>;
void setViewCallObserver(ViewCallObserver observer);

void defineUIView();

}
