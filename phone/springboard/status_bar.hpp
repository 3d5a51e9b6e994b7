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

    // `frame` is the space at the top; `end` the width at either side of the camera's cut-out, in which text and signs then
    // stand in the middle, and 0 where they stand at the frame's edges.
    void layOut(graphics::Rect frame, double end);
    void updateClock();
    void setColor(graphics::Color const& color);   // white at first
    UIView view() const { return m_view; }

private:
    // The text's size in points, in a font that is smaller than `size` where the text would be wider than `width`.
    CGSize fitText(double size, double width);

    StatusBarLeading m_leading;
    objc::ref<UIView> m_view;
    objc::ref<UILabel> m_text;
    objc::ref<DrawnView> m_signs;
};

}
