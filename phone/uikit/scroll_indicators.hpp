// The bars at a scroll view's edges that tell where in its content it is. They appear while it scrolls.
// Used by UIScrollView alone. Main thread.
#pragma once

#include "phone/kernel/clock.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

struct UIScrollView;

struct ScrollIndicators {
    objc::ref<UIView> horizontal;
    objc::ref<UIView> vertical;
    TimerId fade {};
};

// Where the bar stands along its track, and how long it is. Points from the start of the view's bounds.
struct IndicatorSpan {
    double start;
    double length;
};
// `offset` beyond the range presses the bar together at that end, as a content that is pulled does.
IndicatorSpan indicatorSpan(double offset, double minimum, double maximum, double viewLength);

// The content moves under a finger, a wheel or an animation: shows the bars that the view wants, in place.
// Half a second after the last call they fade, and leave the view.
void showScrollIndicators(UIScrollView view);

}
