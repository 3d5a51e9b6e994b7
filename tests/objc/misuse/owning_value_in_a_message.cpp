#include "objc/handle.hpp"
#include <string>
void use(objc::handle object) { object.send<"setText:">(std::string("text")); }
