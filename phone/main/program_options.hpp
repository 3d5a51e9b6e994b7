// ProgramOptions: what `corvel-phone` was asked for on the command line.
#pragma once

#include "phone/kernel/boot_options.hpp"
#include "phone/kernel/result.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace phone {

struct ProgramOptions {
    BootOptions boot;
    std::optional<std::filesystem::path> root;       // none: the user's data folder
    std::optional<std::filesystem::path> contacts;   // a vCard file
    nlohmann::ordered_json addressBook;              // the file's contacts; null without one
    std::optional<std::filesystem::path> shot;       // write a picture of the screen and end
    std::optional<std::filesystem::path> resume;     // left by the phone before a restart
    bool drawsFrame { false };                       // --shot with the device around the screen
    bool printsTrace { false };
    bool playsMusic { false };
    bool asksForHelp { false };
    bool opensConsole { false };   // a prompt on standard input
    bool isHeadless { false };     // no window
    int orientation { 1 };

    std::optional<int> webDriverPort;   // serve WebDriver; 0: on a free port
    std::string host;                   // empty: this computer alone
    std::vector<std::string> allowedOrigins;
    std::optional<std::filesystem::path> inspector;   // a folder that is served under /inspector
    std::optional<ClockMode> clock;                   // with WebDriver
};

// `arguments` without the program's name. The error is one line that names the option and its value.
Result<ProgramOptions> parseProgramOptions(std::vector<std::string> const& arguments);

// What --help prints.
std::string programHelp();

// The passcode that a new phone has unless --passcode or --no-passcode says otherwise.
inline constexpr char const* kUsualPasscode = "1234";

}
