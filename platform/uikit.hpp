// UIKit, as far as the plug-in sends messages to it. Frames in points, in the superview's space.
#pragma once

#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"

extern "C" {
extern CGFloat const UIFontWeightMedium;
extern CGFloat const UIWindowLevelAlert;

// An offscreen context of a size in points; scale 0 is the main screen's. Contexts nest.
void UIGraphicsBeginImageContextWithOptions(CGSize size, BOOL opaque, CGFloat scale);
CGContextRef UIGraphicsGetCurrentContext();
void UIGraphicsEndImageContext();
}

// Values of _frontMostAppOrientation, UIInterfaceOrientation.
inline constexpr NSInteger UIInterfaceOrientationPortrait = 1;
inline constexpr NSInteger UIInterfaceOrientationLandscapeRight = 3;
inline constexpr NSInteger UIInterfaceOrientationLandscapeLeft = 4;

inline constexpr NSInteger UIUserInterfaceLayoutDirectionRightToLeft = 1;

// Bits of UIViewAutoresizing.
inline constexpr NSUInteger UIViewAutoresizingFlexibleWidth = 2;
inline constexpr NSUInteger UIViewAutoresizingFlexibleHeight = 16;

inline constexpr NSInteger NSTextAlignmentLeft = 0;
inline constexpr NSInteger NSTextAlignmentCenter = 1;
inline constexpr NSInteger NSTextAlignmentRight = 2;

inline constexpr NSUInteger UIControlEventTouchDown = 1;
inline constexpr NSUInteger UIControlEventTouchUpInside = 64;
inline constexpr NSUInteger UIControlStateNormal = 0;
inline constexpr NSInteger UIButtonTypeCustom = 0;
inline constexpr NSInteger UIBlurEffectStyleLight = 1;
inline constexpr NSInteger UIBlurEffectStyleDark = 2;
inline constexpr NSInteger UICollectionViewScrollDirectionHorizontal = 1;
inline constexpr NSUInteger UIViewAnimationOptionCurveEaseOut = 131072;
inline constexpr NSInteger UIGestureRecognizerStateBegan = 1;
inline constexpr NSUInteger UISwipeGestureRecognizerDirectionUp = 4;
inline constexpr NSInteger UIAlertControllerStyleActionSheet = 0;
inline constexpr NSInteger UIAlertControllerStyleAlert = 1;
inline constexpr NSInteger UIAlertActionStyleDefault = 0;
inline constexpr NSInteger UIAlertActionStyleCancel = 1;
inline constexpr NSInteger UIImageRenderingModeAlwaysOriginal = 1;

struct UIViewController;
struct UIWindow;

// Core Graphics' colour, as a layer takes it.
struct CGColor;
using CGColorRef = CGColor*;

struct UIColor : objc::subclass<UIColor, "UIColor", NSObject> {
    using subclass::subclass;
    // Components 0 to 1.
    static UIColor colorWithRed(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha)
    {
        return cls().send<"colorWithRed:green:blue:alpha:", UIColor>(red, green, blue, alpha);
    }
    static UIColor clearColor() { return cls().send<"clearColor", UIColor>(); }
    static UIColor grayColor() { return cls().send<"grayColor", UIColor>(); }
    static UIColor blackColor() { return cls().send<"blackColor", UIColor>(); }
    UIColor colorWithAlphaComponent(CGFloat alpha) const
    {
        return send<"colorWithAlphaComponent:", UIColor>(alpha);
    }
    CGColorRef cgColor() const { return send<"CGColor", CGColorRef>(); }
};

struct UIFont : objc::subclass<UIFont, "UIFont", NSObject> {
    using subclass::subclass;
    static UIFont fontWithName(NSString name, CGFloat size)
    {
        return cls().send<"fontWithName:size:", UIFont>(name, size);
    }   // nil: not installed
    static UIFont systemFontOfSize(CGFloat size) { return cls().send<"systemFontOfSize:", UIFont>(size); }
    static UIFont systemFontOfSize(CGFloat size, CGFloat weight)
    {
        return cls().send<"systemFontOfSize:weight:", UIFont>(size, weight);
    }
};

struct UIImage : objc::subclass<UIImage, "UIImage", NSObject> {
    using subclass::subclass;
    static UIImage imageWithData(NSData data)
    {
        return cls().send<"imageWithData:", UIImage>(data);
    }   // nil: no image
    static UIImage imageWithContentsOfFile(NSString path)
    {
        return cls().send<"imageWithContentsOfFile:", UIImage>(path);
    }
    static UIImage imageWithCGImage(CGImageRef bitmap)
    {
        return cls().send<"imageWithCGImage:", UIImage>(bitmap);
    }
    // The icon of an installed application; private.
    static UIImage applicationIcon(NSString bundleIdentifier, int format, CGFloat scale)
    {
        return cls().ask<"_applicationIconImageForBundleIdentifier:format:scale:", UIImage>(
            bundleIdentifier, format, scale);
    }
    CGSize size() const { return send<"size", CGSize>(); }
    CGImageRef cgImage() const { return send<"CGImage", CGImageRef>(); }
    UIImage imageWithRenderingMode(NSInteger mode) const
    {
        return send<"imageWithRenderingMode:", UIImage>(mode);
    }
    void drawInRect(CGRect rect) const { send<"drawInRect:">(rect); }
};
extern "C" id UIGraphicsGetImageFromCurrentImageContext();

struct UIScreen : objc::subclass<UIScreen, "UIScreen", NSObject> {
    using subclass::subclass;
    static UIScreen mainScreen() { return cls().send<"mainScreen", UIScreen>(); }
    CGRect bounds() const { return send<"bounds", CGRect>(); }   // width and height swap in landscape
    CGFloat scale() const { return send<"scale", CGFloat>(); }   // pixels a point
};

struct UIDevice : objc::subclass<UIDevice, "UIDevice", NSObject> {
    using subclass::subclass;
    static UIDevice currentDevice() { return cls().send<"currentDevice", UIDevice>(); }
    NSString systemVersion() const { return send<"systemVersion", NSString>(); }   // "15.4"
};

struct UIResponder : objc::subclass<UIResponder, "UIResponder", NSObject> {
    using subclass::subclass;
    UIResponder nextResponder() const { return send<"nextResponder", UIResponder>(); }
    BOOL becomeFirstResponder() const { return send<"becomeFirstResponder", BOOL>(); }
};

struct UIApplication : objc::subclass<UIApplication, "UIApplication", UIResponder> {
    using subclass::subclass;
    static UIApplication sharedApplication() { return cls().send<"sharedApplication", UIApplication>(); }
    NSInteger userInterfaceLayoutDirection() const
    {
        return send<"userInterfaceLayoutDirection", NSInteger>();
    }
    NSArray windows() const { return send<"windows", NSArray>(); }
    // Asks the system to open the URL, nil included; the handler gets the outcome on a later turn of the main loop.
    void openURL(objc::handle url, NSDictionary options, objc::block_ref<void(BOOL)> completion) const
    {
        send<"openURL:options:completionHandler:">(url, options, completion);
    }
};

struct NSLayoutConstraint : objc::subclass<NSLayoutConstraint, "NSLayoutConstraint", NSObject> {
    using subclass::subclass;
    static void activateConstraints(NSArray constraints) { cls().send<"activateConstraints:">(constraints); }
};

// An array raises for nil.
inline void addConstraintIfAny(NSMutableArray constraints, NSLayoutConstraint constraint)
{
    if (constraint)
        constraints.addObject(constraint);
}

// One edge, centre or dimension of a view.
struct NSLayoutAnchor : objc::subclass<NSLayoutAnchor, "NSLayoutAnchor", NSObject> {
    using subclass::subclass;
    NSLayoutConstraint constraintEqualTo(NSLayoutAnchor other) const
    {
        return send<"constraintEqualToAnchor:", NSLayoutConstraint>(other);
    }
    NSLayoutConstraint constraintEqualTo(NSLayoutAnchor other, CGFloat constant) const
    {
        return send<"constraintEqualToAnchor:constant:", NSLayoutConstraint>(other, constant);
    }
    NSLayoutConstraint constraintEqualToConstant(CGFloat constant) const
    {
        return send<"constraintEqualToConstant:", NSLayoutConstraint>(constant);
    }
    NSLayoutConstraint constraintLessThanOrEqualToConstant(CGFloat constant) const
    {
        return send<"constraintLessThanOrEqualToConstant:", NSLayoutConstraint>(constant);
    }
};

struct UIGestureRecognizer;

struct CALayer : objc::subclass<CALayer, "CALayer", NSObject> {
    using subclass::subclass;
    void setCornerRadius(CGFloat radius) const { send<"setCornerRadius:">(radius); }
    void setBorderWidth(CGFloat width) const { send<"setBorderWidth:">(width); }
    void setBorderColor(CGColorRef color) const { send<"setBorderColor:">(color); }
};

struct UIView : objc::subclass<UIView, "UIView", UIResponder> {
    using subclass::subclass;
    template <class Self = UIView>
    Self initWithFrame(CGRect frame) const
    {
        return send<"initWithFrame:", Self>(frame);
    }

    CGRect frame() const { return send<"frame", CGRect>(); }
    void setFrame(CGRect frame) const { send<"setFrame:">(frame); }
    CGPoint center() const { return send<"center", CGPoint>(); }
    void setCenter(CGPoint center) const { send<"setCenter:">(center); }
    void setTransform(CGAffineTransform transform) const { send<"setTransform:">(transform); }
    void setAlpha(CGFloat alpha) const { send<"setAlpha:">(alpha); }
    BOOL isHidden() const { return send<"isHidden", BOOL>(); }
    void setHidden(BOOL hidden) const { send<"setHidden:">(hidden); }
    void setBackgroundColor(UIColor color) const { send<"setBackgroundColor:">(color); }   // nil: none
    UIColor tintColor() const { return send<"tintColor", UIColor>(); }
    void setTintColor(UIColor color) const { send<"setTintColor:">(color); }
    void setClipsToBounds(BOOL clips) const { send<"setClipsToBounds:">(clips); }
    void setUserInteractionEnabled(BOOL enabled) const { send<"setUserInteractionEnabled:">(enabled); }
    void setAutoresizingMask(NSUInteger mask) const { send<"setAutoresizingMask:">(mask); }
    CALayer layer() const { return send<"layer", CALayer>(); }

    UIView superview() const { return send<"superview", UIView>(); }
    NSArray subviews() const { return send<"subviews", NSArray>(); }   // back to front
    void addSubview(UIView view) const { send<"addSubview:">(view); }
    void removeFromSuperview() const { send<"removeFromSuperview">(); }
    void addGestureRecognizer(UIGestureRecognizer recognizer) const;
    // Point in the receiver's space; nil when the point is outside or nothing there takes touches.
    UIView hitTest(CGPoint point, objc::handle event) const
    {
        return send<"hitTest:withEvent:", UIView>(point, event);
    }

    void setTranslatesAutoresizingMaskIntoConstraints(BOOL translates) const
    {
        send<"setTranslatesAutoresizingMaskIntoConstraints:">(translates);
    }
    NSLayoutAnchor centerXAnchor() const { return send<"centerXAnchor", NSLayoutAnchor>(); }
    NSLayoutAnchor leadingAnchor() const { return send<"leadingAnchor", NSLayoutAnchor>(); }
    NSLayoutAnchor trailingAnchor() const { return send<"trailingAnchor", NSLayoutAnchor>(); }
    NSLayoutAnchor topAnchor() const { return send<"topAnchor", NSLayoutAnchor>(); }
    NSLayoutAnchor bottomAnchor() const { return send<"bottomAnchor", NSLayoutAnchor>(); }
    NSLayoutAnchor widthAnchor() const { return send<"widthAnchor", NSLayoutAnchor>(); }
    NSLayoutAnchor heightAnchor() const { return send<"heightAnchor", NSLayoutAnchor>(); }

    // Durations and delays in seconds. The completion's argument: whether the animation ran to its end.
    static void animate(double duration, objc::block_ref<void()> animations)
    {
        cls().send<"animateWithDuration:animations:">(duration, animations);
    }
    static void animate(
        double duration, objc::block_ref<void()> animations, objc::block_ref<void(BOOL)> completion)
    {
        cls().send<"animateWithDuration:animations:completion:">(duration, animations, completion);
    }
    static void animate(double duration, double delay, NSUInteger options, objc::block_ref<void()> animations,
        objc::block_ref<void(BOOL)> completion)
    {
        cls().send<"animateWithDuration:delay:options:animations:completion:">(
            duration, delay, options, animations, completion);
    }
    static void transition(UIView view, double duration, NSUInteger options,
        objc::block_ref<void()> animations, objc::block_ref<void(BOOL)> completion)
    {
        cls().send<"transitionWithView:duration:options:animations:completion:">(
            view, duration, options, animations, completion);
    }
};

// Target and action: the target is not kept.
struct UIGestureRecognizer : objc::subclass<UIGestureRecognizer, "UIGestureRecognizer", NSObject> {
    using subclass::subclass;
    template <class Self>
    Self initWithTarget(objc::handle target, SEL action) const
    {
        return send<"initWithTarget:action:", Self>(target, action);
    }
    NSInteger state() const { return send<"state", NSInteger>(); }
    UIView view() const { return send<"view", UIView>(); }
};
inline void UIView::addGestureRecognizer(UIGestureRecognizer recognizer) const
{
    send<"addGestureRecognizer:">(recognizer);
}

struct UILongPressGestureRecognizer
    : objc::subclass<UILongPressGestureRecognizer, "UILongPressGestureRecognizer", UIGestureRecognizer> {
    using subclass::subclass;
    void setMinimumPressDuration(double seconds) const { send<"setMinimumPressDuration:">(seconds); }
};

struct UISwipeGestureRecognizer
    : objc::subclass<UISwipeGestureRecognizer, "UISwipeGestureRecognizer", UIGestureRecognizer> {
    using subclass::subclass;
    void setDirection(NSUInteger direction) const { send<"setDirection:">(direction); }
};

struct UIBlurEffect : objc::subclass<UIBlurEffect, "UIBlurEffect", NSObject> {
    using subclass::subclass;
    static UIBlurEffect effectWithStyle(NSInteger style)
    {
        return cls().send<"effectWithStyle:", UIBlurEffect>(style);
    }
};

struct UIVisualEffectView : objc::subclass<UIVisualEffectView, "UIVisualEffectView", UIView> {
    using subclass::subclass;
    UIVisualEffectView initWithEffect(UIBlurEffect effect) const
    {
        return send<"initWithEffect:", UIVisualEffectView>(effect);
    }
};

struct UILabel : objc::subclass<UILabel, "UILabel", UIView> {
    using subclass::subclass;
    NSString text() const { return send<"text", NSString>(); }
    void setText(NSString text) const { send<"setText:">(text); }   // copies
    void setFont(UIFont font) const { send<"setFont:">(font); }
    void setTextColor(UIColor color) const { send<"setTextColor:">(color); }   // nil: the default colour
    void setTextAlignment(NSInteger alignment) const { send<"setTextAlignment:">(alignment); }
    void setNumberOfLines(NSInteger lines) const { send<"setNumberOfLines:">(lines); }
    void setAdjustsFontSizeToFitWidth(BOOL adjusts) const { send<"setAdjustsFontSizeToFitWidth:">(adjusts); }
    void setMinimumScaleFactor(CGFloat factor) const { send<"setMinimumScaleFactor:">(factor); }
};

struct UIImageView : objc::subclass<UIImageView, "UIImageView", UIView> {
    using subclass::subclass;
    void setImage(UIImage image) const { send<"setImage:">(image); }
};

struct UIButton : objc::subclass<UIButton, "UIButton", UIView> {
    using subclass::subclass;
    // Lent, of the class that is asked.
    template <class Self = UIButton>
    static Self buttonWithType(NSInteger type)
    {
        return Self::cls().template send<"buttonWithType:", Self>(type);
    }
    void setImage(UIImage image, NSUInteger state) const { send<"setImage:forState:">(image, state); }
    void setTitle(NSString title, NSUInteger state) const { send<"setTitle:forState:">(title, state); }
    void addTarget(objc::handle target, SEL action, NSUInteger events) const
    {
        send<"addTarget:action:forControlEvents:">(target, action, events);
    }
};

struct UICollectionViewFlowLayout
    : objc::subclass<UICollectionViewFlowLayout, "UICollectionViewFlowLayout", NSObject> {
    using subclass::subclass;
    void setScrollDirection(NSInteger direction) const { send<"setScrollDirection:">(direction); }
    void invalidateLayout() const { send<"invalidateLayout">(); }
};

struct NSIndexPath : objc::subclass<NSIndexPath, "NSIndexPath", NSObject> {
    using subclass::subclass;
    NSInteger row() const { return send<"row", NSInteger>(); }
};

struct UICollectionViewCell : objc::subclass<UICollectionViewCell, "UICollectionViewCell", UIView> {
    using subclass::subclass;
};

struct UICollectionView : objc::subclass<UICollectionView, "UICollectionView", UIView> {
    using subclass::subclass;
    UICollectionView initWithFrame(CGRect frame, UICollectionViewFlowLayout layout) const
    {
        return send<"initWithFrame:collectionViewLayout:", UICollectionView>(frame, layout);
    }
    void setShowsHorizontalScrollIndicator(BOOL shows) const
    {
        send<"setShowsHorizontalScrollIndicator:">(shows);
    }
    void setPagingEnabled(BOOL enabled) const { send<"setPagingEnabled:">(enabled); }
    void setDataSource(objc::handle source) const { send<"setDataSource:">(source); }   // not kept
    void setDelegate(objc::handle delegate) const { send<"setDelegate:">(delegate); }   // not kept
    void registerClass(objc::class_handle cell, NSString identifier) const
    {
        send<"registerClass:forCellWithReuseIdentifier:">(cell, identifier);
    }
    UICollectionViewCell dequeueReusableCell(NSString identifier, NSIndexPath path) const
    {
        return send<"dequeueReusableCellWithReuseIdentifier:forIndexPath:", UICollectionViewCell>(
            identifier, path);
    }
};

struct UIStackView : objc::subclass<UIStackView, "UIStackView", UIView> {
    using subclass::subclass;
    void addArrangedSubview(UIView view) const { send<"addArrangedSubview:">(view); }
    void insertArrangedSubview(UIView view, NSUInteger index) const
    {
        send<"insertArrangedSubview:atIndex:">(view, index);
    }
    void removeArrangedSubview(UIView view) const
    {
        send<"removeArrangedSubview:">(view);
    }   // stays a subview
};

struct UIViewController : objc::subclass<UIViewController, "UIViewController", UIResponder> {
    using subclass::subclass;
    UIView view() const { return send<"view", UIView>(); }
};

// Presentation is asked of whatever the responder chain yields, which need not be a view controller. Nil is not presented: UIKit
// raises for it.
inline void presentViewController(
    UIResponder presenter, UIViewController presented, objc::block_ref<void()> completion)
{
    if (presented)
        presenter.ask<"presentViewController:animated:completion:">(presented, true, completion);
}

struct UIWindow : objc::subclass<UIWindow, "UIWindow", UIView> {
    using subclass::subclass;
    UIViewController rootViewController() const { return send<"rootViewController", UIViewController>(); }
    void setRootViewController(UIViewController controller) const
    {
        send<"setRootViewController:">(controller);
    }
    void setWindowLevel(CGFloat level) const { send<"setWindowLevel:">(level); }
    void makeKeyAndVisible() const { send<"makeKeyAndVisible">(); }
    // Private. A secure window shows above the lock screen.
    void setSecure(BOOL secure) const { ask<"_setSecure:">(secure); }
    // Private.
    void setAutorotates(BOOL autorotates) const { ask<"setAutorotates:">(autorotates); }
};

struct UIAlertAction : objc::subclass<UIAlertAction, "UIAlertAction", NSObject> {
    using subclass::subclass;
    static UIAlertAction actionWithTitle(
        NSString title, NSInteger style, objc::block_ref<void(UIAlertAction)> handler)
    {
        return cls().send<"actionWithTitle:style:handler:", UIAlertAction>(title, style, handler);
    }
};

struct UIAlertController : objc::subclass<UIAlertController, "UIAlertController", UIViewController> {
    using subclass::subclass;
    static UIAlertController alertController(NSString title, NSString message, NSInteger style)
    {
        return cls().send<"alertControllerWithTitle:message:preferredStyle:", UIAlertController>(
            title, message, style);
    }
    void addAction(UIAlertAction action) const { send<"addAction:">(action); }
};

// Nil, where the system makes none, is left out: UIKit raises for it.
inline void addActionIfAny(UIAlertController prompt, UIAlertAction action)
{
    if (action)
        prompt.addAction(action);
}
