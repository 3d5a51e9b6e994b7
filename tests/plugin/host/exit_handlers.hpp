// What the process has been asked to do at its end by std::atexit: plug-ins register so too, and the phone leaves without it.
#pragma once

#include <span>

namespace phone {

using ExitHandler = void (*)(void*);   // called with nullptr

// In the order of registration; what is registered later comes behind. Lent for the life of the process.
std::span<ExitHandler const> exitHandlers();

}
