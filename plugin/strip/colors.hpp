// Colour strings of the settings file.
#pragma once

#include "platform/uikit.hpp"

// "#rgb", "#rrggbb" or "#rrggbbaa", the signs optional. Any other text is scanned as it stands, as one hexadecimal 32-bit number
// 0xrrggbbaa: leading digits only; clear black when there are none, 0xffffffff when there are too many. Nil: clear black.
UIColor colorWithHexString(NSString text);
