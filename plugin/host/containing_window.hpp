// BAContainingWindow: the transparent, full-screen window above any application in which the overlay strip lies. Touches beside
// the strip go to what is below.
#pragma once

#include "platform/uikit.hpp"

struct BAContainingWindow : objc::subclass<BAContainingWindow, "BAContainingWindow", UIWindow> {
    using subclass::subclass;
    BAContainingWindow initWithFrame(CGRect frame) const;
    BOOL pointInside(CGPoint point, objc::handle event) const;
};
void defineBAContainingWindow();
