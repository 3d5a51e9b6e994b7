// Files that Foundation and UIKit address by absolute device paths: through the device root, never on this
// machine's disk. What is read and written so goes into the trace. Main thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace phone {

// Begins with /var, /private/var, /Library or /System, as a whole component. Other absolute paths are this
// machine's: GNUstep's own resources and test data.
bool isDevicePath(std::string_view path);

// The whole file, none when it can't be read. Device paths record `read` (path, found).
std::optional<Bytes> readFile(std::string const& path);
bool writeFile(std::string const& path, void const* bytes, std::size_t count, bool atomically);   // `write`
bool fileExists(std::string const& path);

}
