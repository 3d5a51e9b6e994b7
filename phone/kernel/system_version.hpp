// SystemVersion: which iOS the phone is, and what follows from that: the CoreFoundation number and the
// family of SpringBoard's classes. Any thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <compare>
#include <string>
#include <string_view>

namespace phone {

struct SystemVersion {
    int major { 16 };
    int minor { 1 };
    int patch { 0 };

    // `13`, `13.7`, `16.1.2`: digits and dots only, 1 to 3 numbers, each 0 to 999, major at least 1. The
    // error names the text.
    static Result<SystemVersion> parse(std::string_view text);

    // As UIDevice's systemVersion has it: `13.0`, `13.7`, `16.1.2` (no patch when it is 0).
    std::string text() const;

    friend auto operator<=>(SystemVersion const&, SystemVersion const&) = default;
};

// kCFCoreFoundationVersionNumber of that system: the value known for it, or that of the nearest known system
// before it (of the first known one, when it is older than all).
double coreFoundationNumber(SystemVersion);

// Names of SpringBoard's lock-screen classes: `SBDashBoard…` or `CS…`.
enum class ClassFamily { dashBoard, coverSheet };

// The number at which the families part: up to it `dashBoard`, above it `coverSheet`.
inline constexpr double kLastDashBoardNumber = 1600.0;

// By the number rather than the version, since the number may be overridden. NaN: dashBoard, as a
// comparison with "greater" gives.
ClassFamily classFamily(double coreFoundationNumber);

}
