// The program as a WebDriver server. Main thread.
#pragma once

#include "phone/main/program_options.hpp"

namespace phone {

// Serves until it is ended; answers the program's status. Without --root the phone's disk is a temporary one, so that tests leave
// nothing behind.
int serveWebDriver(ProgramOptions const& options);

}
