// The media item of the adjunct list: what plays, and the controls for it. Main thread.
#pragma once

#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

inline constexpr double kMediaCardHeight = 162;   // points

// A view that lays itself out at any width and asks for its height by a constraint.
objc::ref<UIView> makeMediaCard(double cornerRadius);

void defineMediaCard();

}
