// Renderer: draws view trees into a bitmap, as they look at this moment of the phone's clock. One walk for
// the window, screenshots and golden pictures. Main thread.
//
// Back to front: each view's shadow, backdrop, background, content, subviews and border. The same trees at
// the same moment give the same bytes. Colours are sRGB as they stand; nothing is managed.
#pragma once

#include "phone/graphics/bitmap.hpp"
#include "phone/screen/backdrop_cache.hpp"
#include "phone/uikit/ui_window.hpp"

#include <vector>

namespace phone {

class Renderer {
public:
    // The whole screen as it stands in its orientation, `scale` pixels a point. Lays windows out first.
    // Opaque: where no window draws, the screen is black. None when the size is refused (see Bitmap).
    graphics::Bitmap drawScreen(double scale);

    // The same over a bitmap of the caller's (a window's back buffer), at the bitmap's scale.
    void drawScreen(graphics::Bitmap const& target);

    // These trees alone, first one undermost, over what the bitmap holds; a root lies in the bitmap's points
    // as it would in its superview. Effect views inside a group that is faded or has round corners need an
    // opaque bitmap.
    void drawViews(std::vector<UIView> const& roots, graphics::Bitmap const& target);

private:
    BackdropCache m_backdrops;
};

}
