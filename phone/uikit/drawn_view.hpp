// DrawnView: a view whose content is a function: SpringBoard's wallpaper, signs and the like. Main thread.
#pragma once

#include "phone/uikit/ui_view.hpp"

#include <functional>

namespace phone {

struct DrawnView : objc::subclass<DrawnView, "PhoneDrawnView", UIView> {
    using subclass::subclass;
    using Draw = std::function<void(DrawContext&, CGRect bounds)>;

    // User interaction is off: a picture lets touches through to what it lies on.
    static objc::ref<DrawnView> make(CGRect frame, Draw draw);
    void setDraw(Draw draw) const;   // and draws anew
    void drawContent(DrawContext* context) const;
};

void defineDrawnView();

}
