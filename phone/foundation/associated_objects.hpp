// Associated objects: what one object keeps for another under a key, until it goes. GNU libobjc has none; the
// functions objc_setAssociatedObject, objc_getAssociatedObject and objc_removeAssociatedObjects are exported
// under the names, and with the policies, of the platform's runtime. Any thread.
#pragma once

#include "objc/abi.hpp"

// The value, lent; nil for none.
extern "C" id objc_getAssociatedObject(id object, void const* key);

namespace phone {

// Has what an object keeps released with it. Boot calls it before plug-ins load; further calls do nothing.
void watchAssociatedObjects();

}
