// The first character of a name, as a reader counts characters.
#pragma once

#include "platform/foundation.hpp"

// A letter with its marks, an emoji with its joined parts, a flag: not half of one. The text must not be empty. Lent.
NSString firstCharacter(NSString text);
