// Property lists between the kernel's values and Foundation's objects. Main thread.
#pragma once

#include "phone/kernel/property_list.hpp"
#include "platform/foundation.hpp"

#include <optional>

namespace phone {

objc::handle toObject(PropertyList const& value);   // lent

// None when something in it is of no property-list kind, or a key is no text.
std::optional<PropertyList> toPropertyList(objc::handle object);

// -initWithContentsOfFile:, -writeToFile:atomically: and their like on device paths. Once.
void replaceFileMethods();

}
