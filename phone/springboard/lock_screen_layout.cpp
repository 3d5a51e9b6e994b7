#include "phone/springboard/lock_screen_layout.hpp"

#include "phone/graphics/display.hpp"
#include "phone/graphics/fonts.hpp"

#include <algorithm>

namespace phone {

namespace {

using graphics::Rect;
using graphics::Size;
namespace FontWeight = graphics::FontWeight;

// Measured on screens of each size (text baselines from the top of the screen).
struct ClockRow {
    double screenHeight;   // at least
    double timeBaseline;
    double dateBaseline;
};
constexpr ClockRow kOldClock[] {
    { 813, 182, 218 },
    { 700, 176, 212 },
    // Home button: no measurement; the same clock nearer to the shorter status bar.
    { 0, 118, 152 },
};
constexpr ClockRow kNewClock[] {
    { 853, 221, 122 },
    { 845, 215, 117 },
    { 700, 201, 108 },
    { 0, 160, 67 },
};

constexpr int kFirstNewMajor = 16;

template <std::size_t N>
ClockRow const& rowFor(ClockRow const (&rows)[N], double screenHeight)
{
    return *std::find_if(std::begin(rows), std::end(rows),
        [&](ClockRow const& row) { return screenHeight >= row.screenHeight; });
}

// A label's box whose text, centred upright, stands on the baseline.
Rect lineBox(double x, double width, double baseline, double size, double weight)
{
    auto const metrics = graphics::systemFont(size, weight).metrics();
    return { x, baseline - metrics.ascender, width, metrics.lineHeight };
}

double cardRadius(int major) { return major >= 16 ? 24 : major == 15 ? 19 : 13; }

bool isTall(Size portrait) { return portrait.height > 2 * portrait.width; }

void placeClock(LockScreenLayout& layout, double x, double width, double timeBaseline, double dateBaseline)
{
    layout.time = lineBox(x, width, timeBaseline, layout.timeSize, layout.timeWeight);
    layout.date = lineBox(x, width, dateBaseline, layout.dateSize, layout.dateWeight);
}

void placePortrait(LockScreenLayout& layout, Size screen, bool isNew)
{
    double const safeTop = safeAreaTop(screen);
    layout.statusBar = { 0, 0, screen.width, safeTop };
    auto const display = graphics::Display::of(screen);
    if (display.cutOut != graphics::Display::CutOut::none)
        layout.statusBarEnd = (screen.width - display.cutOutWidth) / 2;
    ClockRow const& clock = isNew ? rowFor(kNewClock, screen.height) : rowFor(kOldClock, screen.height);
    placeClock(layout, 0, screen.width, clock.timeBaseline, clock.dateBaseline);

    double bottom = screen.height - 50;
    if (isTall(screen)) {
        double const padlockTop = safeTop + (safeTop > 50 ? 4 : 5);
        layout.padlock = { screen.width / 2 - 10, padlockTop, 20, 26 };
        bool const isSmall = screen.height <= 812;
        double const sideDistance = isSmall ? 71 : 79;
        double const bottomDistance = isSmall ? 75 : 83;
        layout.torch = { sideDistance - 25, screen.height - bottomDistance - 25, 50, 50 };
        layout.camera = { screen.width - sideDistance - 25, layout.torch.y, 50, 50 };
        double const indicatorWidth = screen.width >= 390 ? 139 : 134;
        layout.homeIndicator = { (screen.width - indicatorWidth) / 2, screen.height - 13, indicatorWidth, 5 };
        layout.footer = lineBox(0, screen.width, screen.height - 36, 17, FontWeight::kSemibold);
        bottom = layout.torch.y - 8;
    } else {
        // In the middle of the status bar, as on phones with a home button.
        layout.padlock = { screen.width / 2 - 5, 4, 10, 13 };
        layout.footer = lineBox(0, screen.width, screen.height - 24, 17, FontWeight::kSemibold);
    }

    double const top = std::max(clock.timeBaseline, clock.dateBaseline) + 22;
    layout.list = { 0, top, screen.width, bottom - top };
}

// Clock in the leading half; the list keeps the width that it has upright, so that what is made for it fits.
void placeLandscape(LockScreenLayout& layout, Size screen, bool isNew)
{
    Size const portrait { screen.height, screen.width };
    double const safeSide = isTall(portrait) ? safeAreaTop(portrait) : 0;
    layout.statusBar = { safeSide, 0, screen.width - 2 * safeSide, 20 };
    layout.list = { screen.width - safeSide - portrait.width, 24, portrait.width, screen.height - 24 - 24 };
    double const clockWidth = layout.list.x - safeSide;
    double const middle = screen.height * 0.42;
    placeClock(layout, safeSide, clockWidth, isNew ? middle + 40 : middle, isNew ? middle - 48 : middle + 36);
    layout.padlock = { safeSide + clockWidth / 2 - 8, 26, 16, 21 };
    layout.footer = lineBox(safeSide, clockWidth, screen.height - 30, 15, FontWeight::kSemibold);
    if (isTall(portrait)) {
        layout.torch = { safeSide + 8, screen.height - 86, 50, 50 };
        layout.camera = { layout.list.x - 58, layout.torch.y, 50, 50 };
        layout.homeIndicator = { (screen.width - 210) / 2, screen.height - 13, 210, 5 };
    }
}

}

double safeAreaTop(Size portrait)
{
    if (!isTall(portrait))
        return 20;
    if (portrait.height == 852 || portrait.height == 932)
        return 59;
    return portrait.height == 844 || portrait.height == 926 ? 47 : 44;
}

LockScreenLayout lockScreenLayout(Size screen, SystemVersion version)
{
    bool const isNew = version.major >= kFirstNewMajor;
    bool const isLandscape = screen.width > screen.height;
    double const shortSide = std::min(screen.width, screen.height);

    LockScreenLayout layout;
    layout.bounds = { 0, 0, screen.width, screen.height };
    double const timeSize = isNew ? (shortSide >= 414 ? 102 : 96) : (shortSide > 375 ? 90 : 76);
    layout.timeSize = isLandscape ? timeSize * 0.8 : shortSide < 375 ? timeSize * shortSide / 375 : timeSize;
    layout.timeWeight = isNew ? FontWeight::kSemibold : FontWeight::kThin;
    layout.dateSize = isLandscape ? 19 : 22;
    layout.dateWeight = isNew ? FontWeight::kMedium : FontWeight::kRegular;
    layout.listSinks = isNew;
    layout.cardRadius = cardRadius(version.major);
    layout.cardsHaveHeader = version.major < 15;
    if (isLandscape)
        placeLandscape(layout, screen, isNew);
    else
        placePortrait(layout, screen, isNew);
    return layout;
}

Rect mirrored(Rect const& rect, double width)
{
    return { width - rect.x - rect.width, rect.y, rect.width, rect.height };
}

}
