// Exceptions as the platform raises them when its caller is wrong. Main thread.
#pragma once

#include "phone/foundation/strings.hpp"

namespace phone {

// Raises an NSException. Code that nobody catches it for ends with the reason on standard error.
[[noreturn]] inline void raise(NSString name, std::string const& reason)
{
    objc::cls<"NSException">()
        .send<"exceptionWithName:reason:userInfo:", objc::handle>(name, toNSString(reason), NSDictionary {})
        .send<"raise">();
    __builtin_unreachable();
}

}
