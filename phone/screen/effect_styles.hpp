// What each UIBlurEffect style looks like. Arithmetic only; any thread.
#pragma once

#include "phone/graphics/blur.hpp"
#include "platform/foundation.hpp"

namespace phone {

// UIBlurEffectStyle, see UIBlurEffect. Styles that follow the appearance look at `dark`; an unknown style is
// drawn as the regular one.
graphics::BlurStyle blurStyleOf(NSInteger style, bool dark);

// Points around a backdrop that still bear on it, at most.
inline constexpr double kBackdropReach = 56;

}
