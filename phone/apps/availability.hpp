// What of the phone is there and what is missing: services by name (`mail`, `whatsapp`, …), classes, methods
// and instance variables, as the boot options' `absent` has them, and changed while the phone runs.
// Main thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <string>

namespace phone {

bool isServiceAvailable(std::string const& service);

// An error names what is no service, class or member. A class that a plug-in has found already stays found:
// it is the look-up by name that fails from now on.
Status setAvailable(std::string const& name, bool isAvailable);

// What of the boot options' `absent` is not looked up each time: commands. Boot calls it.
void applyAbsentCommands();

}
