// Handles: names for objects that scripts and view trees speak of. A handle keeps its object alive and serves
// until the process ends. Main thread.
#pragma once

#include "objc/ref.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace phone {

// The object's handle (`object-7`), the same one each time. Empty for nil.
std::string handleOf(objc::handle object);

// None for a text that names no object.
std::optional<objc::handle> objectOfHandle(std::string_view handle);

}
