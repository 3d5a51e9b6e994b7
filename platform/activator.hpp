// Activator, if it is installed.
#pragma once

#include "platform/foundation.hpp"

struct LAActivator : objc::subclass<LAActivator, "LAActivator", NSObject> {
    using subclass::subclass;
    static LAActivator sharedInstance() { return cls().ask<"sharedInstance", LAActivator>(); }
    void registerListener(objc::handle listener, NSString name) const
    {
        ask<"registerListener:forName:">(listener, name);
    }
};
