// PhoneLife: a phone's process from its boot to its end, at one end of a channel. Messages:
//
//   in, first   {"boot": arguments of `phone: boot` or null, "resume": file or null, "root": folder, "elements": n}
//   out         {"booted": true, "ios": "16.1"} or {"error", "message"}; after an error the process ends
//   in          {"command", "element", "argument", "parameters", "settings", "implicit"}
//   out         {"value"} or {"error", "message"}, with "elements": n, and with "boot": arguments or "restart": file when another
//               phone is to take over
//   out, at any time {"restart": file} or {"closed": true}; from then on a command is answered by {"again": true}
//
// The process ends when the channel does. Main thread.
#pragma once

#include "phone/automation/channel.hpp"
#include "phone/kernel/boot_options.hpp"
#include "phone/kernel/result.hpp"

#include <filesystem>
#include <optional>
#include <vector>

namespace phone {

// What the command line says of every phone that this server boots.
struct PhoneSetup {
    BootOptions boot;
    ClockMode scriptClock { ClockMode::manual };   // of what `phone: boot` boots, unless it says otherwise
    Json addressBook;   // what the picker offers on the first phone; null: the starter set
    bool playsMusic { false };
    int orientation { 1 };
    bool printsTrace { false };
    bool opensWindow { false };
    std::optional<std::vector<std::filesystem::path>> pluginFolders;   // none: the usual ones
};

// Answers the process's status.
int livePhone(Channel channel, PhoneSetup const& setup);

}
