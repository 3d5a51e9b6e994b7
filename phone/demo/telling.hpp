// What the trace says, in words: for people who read the transcript.
#pragma once

#include "phone/kernel/trace.hpp"

#include <string>

namespace phone {

// A line without its line break; empty for what tells a person little (look-ups, frames, files read).
std::string inWords(Json const& event);

}
