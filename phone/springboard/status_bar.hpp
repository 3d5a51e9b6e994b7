// StatusBar: carrier or time at the leading side, signal, wifi and battery at the trailing one. Main thread.
#pragma once

#include "phone/graphics/geometry.hpp"
#include "phone/uikit/drawn_view.hpp"
#include "phone/uikit/ui_label.hpp"

namespace phone {

enum class StatusBarLeading { carrier, time };

class StatusBar {
public:
    StatusBar(UIView superview, StatusBarLeading);

    // `frame` is the space at the top, with the notch in its middle on phones that have one.
    void layOut(graphics::Rect frame, double screenWidth);
    void updateClock();
    void setColor(graphics::Color const& color);   // white at first
    UIView view() const { return m_view; }

private:
    StatusBarLeading m_leading;
    objc::ref<UIView> m_view;
    objc::ref<UILabel> m_text;
    objc::ref<DrawnView> m_signs;
};

}
