// A restarted phone is another process: what it takes over travels in a file. Main thread.
#pragma once

#include "phone/phone.hpp"

namespace phone {

// Under the system's temporary folder. An error when it can't be written.
Result<std::filesystem::path> writeRestartFile(RestartState const&);

// Reads and removes it. An error when it is missing or is no such file.
Result<RestartState> takeRestartFile(std::filesystem::path const&);

}
