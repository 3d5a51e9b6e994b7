// Handles: names for objects that scripts and view trees speak of. A handle keeps its object alive and serves
// until the process ends. Main thread.
#pragma once

#include "objc/ref.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace phone {

// The object's handle, a text that begins with `object-`: the same one each time in this process, and none that
// another phone's process gives out, so that a handle from before a restart names nothing. Empty for nil.
std::string handleOf(objc::handle object);

// None for a text that names no object.
std::optional<objc::handle> objectOfHandle(std::string_view handle);

// Does the text look like a handle, whether it names an object or not?
bool isHandle(std::string_view text);

}
