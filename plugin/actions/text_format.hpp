// Filling "%@" in our own texts.
#pragma once

#include "platform/foundation.hpp"

#include <initializer_list>

// The format with its placeholders replaced by the values in order; a nil value leaves nothing in its place. Values are taken as
// they are, placeholders in them included. Done here rather than by a method with variable arguments, whose calling convention
// differs between systems. Lent.
NSString filled(char const* format, std::initializer_list<NSString> values);
