// What each action does on Anna, as effects(): for the tests of all the ways that lead to it.
#pragma once

#include "tests/scenarios/story.hpp"

namespace phone {

enum class ActionGroup { call, messagingApp, composer };

// Single-tap codes, 0 to 7.
struct ActionRow {
    int tapCode;
    ActionGroup group;
    Effects atOnce;   // in the call itself, without confirmation
    Effects later;    // on a later turn
};

ActionRow const& actionOfTap(int tapCode);

Effects operator+(Effects first, Effects const& second);

inline constexpr char const* kStoryVersions[] { "12.4", "13.7", "14.8", "15.4", "16.1" };

// `iOS13_7`, for names of tests.
std::string versionName(std::string version);

}
