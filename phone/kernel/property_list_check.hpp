// What the property-list reader makes sure of before libplist sees a file: libplist recurses over nested
// values and copies shared ones, so a small file could exhaust the stack or the memory. property_list_read.cpp
// alone uses this. Any thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <string>
#include <string_view>

namespace phone {

// The same document reduced to what a property list consists of: one root value inside `plist`, known
// elements without attributes, each closed where it has to be, text with its entities. Comments, processing
// instructions and the document type are gone, CDATA is plain text. An error, naming the line, for anything
// else, for text that is not UTF-8, and past the limits in property_list.hpp.
Result<std::string> cleanPropertyListXml(std::string_view document);

// A binary property list whose parts lie inside the file, whose root can be reached without a circle, and
// that stays within the limits once shared values are copied. An error otherwise.
Status checkPropertyListBinary(std::string_view file);

}
