// Text between C++ and Foundation. UTF-8 on this side. Main thread.
#pragma once

#include "platform/foundation.hpp"

#include <string>
#include <string_view>

namespace phone {

// Lent until the autorelease pool drains. Bytes that are no UTF-8 come out as U+FFFD; zero bytes are kept.
NSString toNSString(std::string_view utf8);

// Empty from nil, and from anything that is no string. Lone surrogates come out as U+FFFD.
std::string toString(objc::handle text);

// The name of an object's class; "nil" from nil.
std::string classNameOf(objc::handle object);

}
