// UIScrollView: a view over a larger content; its bounds' origin is the content's offset. Drags by a pan
// recogniser, coasts, bounces and turns pages on the phone's clock. Main thread.
#pragma once

#include "phone/kernel/clock.hpp"
#include "phone/uikit/scroll_indicators.hpp"
#include "phone/uikit/scroll_motion.hpp"
#include "phone/uikit/ui_pan_gesture_recognizer.hpp"

namespace phone {

struct ScrollState {
    CGSize contentSize {};
    UIEdgeInsets contentInset {};
    Weak<NSObject> delegate;
    objc::ref<UIPanGestureRecognizer> pan;
    bool isScrollEnabled { true };
    bool isPagingEnabled { false };
    bool bounces { true };
    bool alwaysBouncesHorizontally { false };
    bool alwaysBouncesVertically { false };
    bool showsHorizontalIndicator { true };
    bool showsVerticalIndicator { true };
    bool delaysContentTouches { true };
    bool canCancelContentTouches { true };
    double decelerationRate { 0.998 };   // per millisecond

    bool isTracking { false };       // a finger is down
    bool isDragging { false };       // and has scrolled
    bool isDecelerating { false };   // has left, and the content still moves
    bool isAnimating { false };      // setContentOffset:animated:
    CGPoint wantedAtStart {};        // offset that the finger asked for where its translation was zero
    ScrollMotion horizontal {};
    ScrollMotion vertical {};
    double motionStart { 0 };   // seconds on the phone's clock
    FrameObserverId frames {};
    TimerId wheelEnd {};   // after which a paging view settles on a page
    ScrollIndicators indicators;
};

struct UIScrollView : objc::subclass<UIScrollView, "UIScrollView", UIView> {
    using subclass::subclass;

    UIScrollView initWithFrame(CGRect frame) const;

    CGPoint contentOffset() const;
    // At once; a movement under way stops. The delegate is told of each change (scrollViewDidScroll:).
    void setContentOffset(CGPoint offset) const;
    void setContentOffsetAnimated(CGPoint offset, BOOL animated) const;
    void scrollRectToVisible(CGRect rect, BOOL animated) const;   // as little as shows it, if it fits
    CGSize contentSize() const;
    void setContentSize(CGSize size) const;
    UIEdgeInsets contentInset() const;
    void setContentInset(UIEdgeInsets inset) const;
    UIEdgeInsets adjustedContentInset() const;
    objc::handle delegate() const;
    void setDelegate(objc::handle delegate) const;   // not kept

    BOOL isScrollEnabled() const;
    void setScrollEnabled(BOOL enabled) const;
    BOOL isPagingEnabled() const;
    void setPagingEnabled(BOOL enabled) const;
    BOOL bounces() const;
    void setBounces(BOOL bounces) const;
    BOOL alwaysBounceHorizontal() const;
    void setAlwaysBounceHorizontal(BOOL bounces) const;
    BOOL alwaysBounceVertical() const;
    void setAlwaysBounceVertical(BOOL bounces) const;
    BOOL showsHorizontalScrollIndicator() const;
    void setShowsHorizontalScrollIndicator(BOOL shows) const;
    BOOL showsVerticalScrollIndicator() const;
    void setShowsVerticalScrollIndicator(BOOL shows) const;
    BOOL delaysContentTouches() const;
    void setDelaysContentTouches(BOOL delays) const;
    BOOL canCancelContentTouches() const;
    void setCanCancelContentTouches(BOOL can) const;
    CGFloat decelerationRate() const;
    void setDecelerationRate(CGFloat rate) const;   // nearer to normal (0.998) or fast (0.99)

    BOOL isTracking() const;
    BOOL isDragging() const;
    BOOL isDecelerating() const;
    UIPanGestureRecognizer panGestureRecognizer() const;

    // May a drag take the finger from this view of the content? The base: unless it is a control.
    BOOL touchesShouldCancelInContentView(UIView view) const;

    // Wheel turns: NO if it can't move any further that way.
    bool scrollByWheel(double dx, double dy) const;

    // For the pan recogniser and for subclasses of the phone.
    PanAxes scrollableAxes() const;
    bool isInMotion() const;                            // coasts, bounces or is being scrolled
    void handlePan(UIPanGestureRecognizer pan) const;   // the pan recogniser's action
    ScrollRange horizontalRange() const;
    ScrollRange verticalRange() const;
    ScrollState& scrollState() const { return objc::state<ScrollState>(UIScrollView { object }); }

private:
    void applyOffset(CGPoint offset) const;
    void beginDrag() const;
    void endDrag() const;
    void startMotion(ScrollMotion horizontal, ScrollMotion vertical, bool isAnimation) const;
    void stopMotion() const;
    bool runMotion(double now) const;
    void keepInRange() const;
    void settleOnPage() const;
};

void defineUIScrollView();

// UIScrollViewDecelerationRate
inline constexpr double kDecelerationRateNormal = 0.998;
inline constexpr double kDecelerationRateFast = 0.99;

}
