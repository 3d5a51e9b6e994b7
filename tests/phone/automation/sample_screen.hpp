// A small screen of elements, without a phone: an application with two windows, a list of three cells and an alert.
#pragma once

#include "phone/automation/element_tree.hpp"

namespace phone {

// Numbers: 0 application, 1 window, 2 collection view, 3 cell "Anna" (4 image, 5 text), 6 cell without a name (7 text "Kéller"),
// 8 cell "Chloé" (9 text), 10 window, 11 alert "Call Anna", 12 text "Call Anna", 13 text "+1 555", 14 Cancel, 15 Call.
ElementTree sampleScreen();

}
