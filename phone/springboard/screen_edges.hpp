// ScreenEdges: what SpringBoard draws at the upper and lower edge of every screen, over what covers it: the status bar with the
// carrier, and the line of the home gesture on phones that have one. Main thread.
#pragma once

#include "phone/springboard/status_bar.hpp"

#include <memory>

namespace phone {

class ScreenEdges {
public:
    // In front of what the superview holds by now; none of it takes touches.
    ScreenEdges(UIView superview, graphics::Color const& color);

    void layOut(CGRect screen);
    void setStatusBarHidden(bool hidden);

private:
    StatusBar m_statusBar;
    objc::ref<DrawnView> m_homeIndicator;
};

}
