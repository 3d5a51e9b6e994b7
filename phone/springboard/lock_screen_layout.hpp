// Where the lock screen's parts go, and in which size, for a screen and a style. Arithmetic only: points, for
// a left-to-right language (see mirrored). Any thread.
#pragma once

#include "phone/graphics/geometry.hpp"
#include "phone/kernel/system_version.hpp"

namespace phone {

struct LockScreenLayout {
    graphics::Rect bounds;
    graphics::Rect statusBar;
    double statusBarEnd { 0 };   // width at either side of the camera's cut-out; 0 where none is in the bar
    graphics::Rect padlock;
    graphics::Rect time;   // the label's box: text centred in it
    graphics::Rect date;
    double timeSize { 0 };     // font, points
    double timeWeight { 0 };   // UIFont.Weight
    double dateSize { 0 };
    double dateWeight { 0 };
    graphics::Rect list;        // notifications, and the adjunct area under them
    bool listSinks { false };   // the list stands at the bottom of its space, as from iOS 16 on
    double cardRadius { 0 };
    bool cardsHaveHeader { false };   // icon and application name in a row of their own, before iOS 15
    graphics::Rect torch;             // empty on phones with a home button, as are camera and homeIndicator
    graphics::Rect camera;
    graphics::Rect footer;   // how to unlock
    graphics::Rect homeIndicator;

    // Phones without a home button are more than twice as tall as wide.
    bool hasHomeIndicator() const { return !homeIndicator.isEmpty(); }
};

inline constexpr double kCardMargin = 8;   // from the list's sides
inline constexpr double kCardGap = 8;

// `screen` as it stands: wider than tall in landscape.
LockScreenLayout lockScreenLayout(graphics::Size screen, SystemVersion);

// Mirrored in a space of that width, for right-to-left languages.
graphics::Rect mirrored(graphics::Rect const&, double width);

// Space at the top that sensors and status bar take, of a phone held upright.
double safeAreaTop(graphics::Size portrait);

}
