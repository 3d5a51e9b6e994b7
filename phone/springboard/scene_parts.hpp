// Small things that SpringBoard's screens are made of. Main thread.
#pragma once

#include "phone/graphics/glyphs.hpp"
#include "phone/springboard/named_view.hpp"
#include "phone/uikit/drawn_view.hpp"
#include "phone/uikit/ui_label.hpp"
#include "phone/uikit/ui_visual_effect_view.hpp"

#include <string_view>

namespace phone {

inline CGRect fromGraphics(graphics::Rect const& r) { return { { r.x, r.y }, { r.width, r.height } }; }

// A line of text in the system font; alignment is natural until it is set.
objc::ref<UILabel> makeText(std::string_view text, double size, double weight, graphics::Color color);

// A sign in one colour, as large as its view allows.
objc::ref<DrawnView> makeGlyph(graphics::Glyph glyph, graphics::Color color);

// A blurred backdrop with round corners; style as in UIBlurEffect.
objc::ref<UIVisualEffectView> makeBlur(NSInteger style, double cornerRadius);

// The wallpaper, as large as its view. Turned on its side it is painted anew for the wider screen.
objc::ref<DrawnView> makeWallpaper();

// Names a view for people who read trees; it shows nowhere.
void identify(UIView view, char const* identifier);

bool isDark();
bool isRightToLeft();

}
