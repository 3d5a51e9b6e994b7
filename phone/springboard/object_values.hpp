// Objects as scripts and the trace write them. Main thread.
#pragma once

#include "objc/handle.hpp"
#include "phone/kernel/trace.hpp"
#include "phone/uikit/json_values.hpp"

namespace phone {

// Null for nil; text, number, bool, array, dictionary, date, data, colour, image; anything else, and every
// view, as class, description and handle. Containers deeper than 32 levels end in their descriptions.
Json objectValue(objc::handle object);

}
