#include "objc/handle.hpp"
void use(objc::handle object) { object.send<"setFrame:">(1.0, 2.0); }
