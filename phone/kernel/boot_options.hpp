// BootOptions: everything that makes one phone differ from another, decided before it starts. Boot sets them;
// everything reads them. Main thread.
#pragma once

#include "phone/kernel/system_version.hpp"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace phone {

enum class LayoutDirection { leftToRight = 0, rightToLeft = 1 };   // UIUserInterfaceLayoutDirection's numbers
enum class Appearance { light = 1, dark = 2 };                     // UIUserInterfaceStyle's numbers
enum class ClockMode { manual, running };                          // moved by hand, or with the display

// What SBCoverSheetPresentationManager answers to: its lock-screen controller under one name, the other,
// both or neither.
enum class CoverSheetAnswer { dashBoard, coverSheet, both, neither };

struct BootOptions {
    SystemVersion ios {};
    std::optional<double> coreFoundation;         // none: that version's number
    std::optional<CoverSheetAnswer> coverSheet;   // none: dashBoard up to iOS 12, coverSheet from 13
    double width { 390 };                         // points, upright
    double height { 844 };
    double scale { 3 };                         // pixels per point
    std::string language { "en" };              // BCP 47
    std::optional<LayoutDirection> direction;   // none: the language's
    Appearance appearance { Appearance::light };
    std::optional<std::string> passcode;   // none: unlocks without one
    bool locked { true };
    std::string timezone { "UTC" };               // IANA name
    std::string date { "2026-06-18T09:41:00" };   // ISO 8601; local time when it has no offset
    ClockMode clock { ClockMode::manual };
    // Entries as the contact list file has them. None: the starter set; an empty array: a file with no entry.
    std::optional<nlohmann::ordered_json> contacts;
    std::optional<nlohmann::ordered_json> settings;   // none: no settings file
    std::vector<std::string> absent;                  // parts that are missing; see isAbsent()
    std::vector<std::string> present;                 // `Class selector`: added before the plug-ins load
    std::vector<std::filesystem::path> plugins;       // more libraries to load, whatever their filter says

    // `absent` names it: a service (`activator`, `whatsapp`, …), a class, `Class selector:` or `Class._ivar`.
    bool isAbsent(std::string const& name) const
    {
        for (auto const& each : absent) {
            if (each == name)
                return true;
        }
        return false;
    }

    bool isRightToLeft() const
    {
        if (direction)
            return *direction == LayoutDirection::rightToLeft;
        for (char const* each : { "ar", "fa", "he", "iw", "ur", "yi" }) {
            if (language == each || language.starts_with(std::string(each) + "-"))
                return true;
        }
        return false;
    }
    double coreFoundationNumber() const { return coreFoundation.value_or(phone::coreFoundationNumber(ios)); }
};

}
