// Kinds of libraries that the plug-in loader takes besides the desktop's own. A part of the phone that can run one says so
// before main(); the loader then finds such files in the same folders, with the same filters. Main thread.
#pragma once

#include "phone/kernel/plugin_loader.hpp"
#include "phone/kernel/result.hpp"

#include <filesystem>
#include <string>

namespace phone {

struct PluginFormat {
    std::string extension;   // with its full stop: ".dylib"
    // Fills in what the library needs and imports. Reads the file, loads nothing. An error names the file.
    Status (*read)(PluginReport&);
    // Loads it for good; its constructors run inside. An error names the file.
    Status (*load)(std::filesystem::path const&);
    // Is the address inside one that was loaded or is being loaded?
    bool (*holds)(void const* address);
};

// Called before main(), once for each extension.
void addPluginFormat(PluginFormat);

}
