// In which order controllers were presented, over all windows: automation speaks to the one that came last. Main thread.
#pragma once

#include "phone/uikit/ui_view_controller.hpp"

#include <cstdint>

namespace phone {

// Grows from one presentation to the next; 0 for a controller that was never presented.
std::uint64_t presentationOrder(UIViewController controller);

}
