#include "phone/uikit/scroll_indicators.hpp"

#include "phone/kernel/services.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/ui_scroll_view.hpp"

#include <algorithm>
#include <utility>

namespace phone {

namespace {

// Points; the look of iOS 13 and later.
constexpr double kThickness = 3;
constexpr double kIndicatorGap = 3;
constexpr double kShortest = 36;
constexpr double kShortestPressed = 7;
// Seconds. Chosen by us, near what UIKit does.
constexpr double kLingerSeconds = 0.5;
constexpr double kIndicatorFadeSeconds = 0.25;

void place(UIScrollView view, objc::ref<UIView>& bar, bool isWanted, CGRect frame)
{
    if (!isWanted) {
        if (bar)
            std::exchange(bar, {})->removeFromSuperview();
        return;
    }
    performWithoutAnimation([&] {
        if (!bar) {
            bar = make<UIView>(frame);
            bool const isDark = bootOptions().appearance == Appearance::dark;
            bar->setBackgroundColor(UIColor::colorWithWhite(isDark ? 1 : 0, 0.35));
            bar->setCornerRadius(kThickness / 2);
            bar->setUserInteractionEnabled(false);
            view.UIView::addSubview(bar.get());
        }
        bar->setFrame(frame);
        view.bringSubviewToFront(bar.get());
    });
}

void fade(UIScrollView view)
{
    ScrollIndicators& bars = view.scrollState().indicators;
    bars.fade = TimerId::none;
    auto const horizontal = std::exchange(bars.horizontal, {});
    auto const vertical = std::exchange(bars.vertical, {});
    for (auto const& bar : { horizontal, vertical }) {
        if (bar)
            animate(
                kIndicatorFadeSeconds, [bar] { bar->setAlpha(0); },
                [bar](bool) { bar->removeFromSuperview(); });
    }
}

}

IndicatorSpan indicatorSpan(double offset, double minimum, double maximum, double viewLength)
{
    double const track = std::max(viewLength - 2 * kIndicatorGap, 0.0);
    double const content = viewLength + maximum - minimum;
    double length = std::min(std::max(track * viewLength / std::max(content, 1.0), kShortest), track);
    double const beyond = std::max({ minimum - offset, offset - maximum, 0.0 });
    length = std::min(std::max(length - beyond, kShortestPressed), length);
    double const part =
        maximum > minimum ? std::clamp((offset - minimum) / (maximum - minimum), 0.0, 1.0) : 0;
    return { kIndicatorGap + (track - length) * part, length };
}

void showScrollIndicators(UIScrollView view)
{
    ScrollState& state = view.scrollState();
    CGRect const visible = view.bounds();
    ScrollRange const across = view.horizontalRange();
    ScrollRange const along = view.verticalRange();
    bool const isMirrored = view.effectiveUserInterfaceLayoutDirection() == 1;

    auto const h = indicatorSpan(visible.origin.x, across.minimum, across.maximum, visible.size.width);
    place(view, state.indicators.horizontal,
        state.showsHorizontalIndicator && across.maximum > across.minimum,
        { { visible.origin.x + h.start, visible.origin.y + visible.size.height - kIndicatorGap - kThickness },
            { h.length, kThickness } });

    auto const v = indicatorSpan(visible.origin.y, along.minimum, along.maximum, visible.size.height);
    double const x = isMirrored ? kIndicatorGap : visible.size.width - kIndicatorGap - kThickness;
    place(view, state.indicators.vertical, state.showsVerticalIndicator && along.maximum > along.minimum,
        { { visible.origin.x + x, visible.origin.y + v.start }, { kThickness, v.length } });

    clock().cancel(state.indicators.fade);
    state.indicators.fade = TimerId::none;
    if (!state.indicators.horizontal && !state.indicators.vertical)
        return;
    state.indicators.fade = clock().at(kLingerSeconds, 0, [weak = Weak(view)] {
        AutoreleasePool const pool;
        if (auto const self = objc::retain(weak.get()))
            fade(self);
    });
}

}
