// Scenes of the demo: a phone, what is done with it, and the picture that is taken then.
#pragma once

#include "phone/phone.hpp"

#include <span>

namespace phone {

struct Scene {
    char const* name;      // of the picture's file, without .png
    char const* title;     // a few words, under the picture
    char const* caption;   // what there is to see; a sentence
    void (*prepare)(BootOptions& options);
    void (*act)(Phone& device) = nullptr;   // after the boot; null: nothing is done
};

// In the order in which they are shown.
std::span<Scene const> demoScenes();

}
