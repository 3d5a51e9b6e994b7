// The two recognisers of a scroll view: one drags the content, the other keeps fingers from the content until
// it is clear that they don't drag. Made by UIScrollView. Main thread.
#pragma once

#include "phone/uikit/ui_scroll_view.hpp"

namespace phone {

struct UIScrollViewPanGestureRecognizer : objc::subclass<UIScrollViewPanGestureRecognizer,
                                              "UIScrollViewPanGestureRecognizer", UIPanGestureRecognizer> {
    using subclass::subclass;

    void touchesBegan(NSSet touches, UIEvent event) const;   // catches a content that moves
    void touchesMoved(NSSet touches, UIEvent event) const;
    void reset() const;

private:
    UIScrollView scrollView() const { return UIScrollView { view().object }; }
    bool mayTakeTouches() const;
};

struct DelayedTouchesState {
    TimerId timer {};
};

struct UIScrollViewDelayedTouchesBeganGestureRecognizer
    : objc::subclass<UIScrollViewDelayedTouchesBeganGestureRecognizer,
          "UIScrollViewDelayedTouchesBeganGestureRecognizer", UIGestureRecognizer> {
    using subclass::subclass;

    void touchesBegan(NSSet touches, UIEvent event) const;
    void reset() const;

private:
    DelayedTouchesState& delay() const { return objc::state<DelayedTouchesState>(*this); }
};

// A finger that rests this long belongs to the content (seconds; as measured on phones).
inline constexpr double kContentTouchDelay = 0.15;

// Adds both to the view; the pan recogniser's action is -handlePan:.
objc::ref<UIPanGestureRecognizer> addScrollRecognizers(UIScrollView scrollView);

void defineScrollRecognizers();

}
