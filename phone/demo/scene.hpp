// Scenes of the demo: a phone, what is done with it, and the picture that is taken then.
#pragma once

#include "phone/phone.hpp"

#include <span>
#include <vector>

namespace phone {

// After which nothing moves any more.
inline constexpr double kSecondsToRest = 1.5;

struct Scene {
    char const* name;      // of the picture's file, without .png
    char const* title;     // a few words, under the picture
    char const* caption;   // what there is to see; a sentence
    void (*prepare)(BootOptions& options);
    void (*act)(Phone& device) = nullptr;   // after the boot; null: nothing is done
    double rest = kSecondsToRest;           // seconds from there to the picture; 0: in mid-movement
    bool restarts = false;                  // act ends in a respring; the picture is the next phone's
};

// In the order in which they are shown; by subject.
std::vector<Scene> demoScenes();
std::span<Scene const> lockScreenScenes();
std::span<Scene const> touchScenes();
std::span<Scene const> pickerScenes();
std::span<Scene const> overlayScenes();

}
