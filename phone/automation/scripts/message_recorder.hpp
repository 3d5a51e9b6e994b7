// The trace's `message`: what the strips, the adjunct-list controller and objects of chosen classes are told.
// Main thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <string>
#include <vector>

namespace phone {

// Records messages to the strips and the adjunct-list controller (`strips`), and to objects of the classes and their
// subclasses, from now on; replaces what an earlier call asked for. Memory's own messages (retain, release,
// autorelease, dealloc) are left out, and so are those of other threads. An object that a recorded message names lives
// on, since it has a handle. The error names a class that there is not, and changes nothing.
Status recordMessages(bool strips, std::vector<std::string> const& classes);

}
