// Runs scenes, each in a process of its own, forked from this one, which must not have booted a phone.
#pragma once

#include "phone/demo/scene.hpp"
#include "phone/graphics/bitmap.hpp"

#include <filesystem>

namespace phone {

struct SceneResult {
    Scene const* scene { nullptr };
    std::filesystem::path picture;   // the PNG
    graphics::Bitmap image;          // the same; none where there is a problem
    std::string transcript;          // what was asked for, and what the phone recorded; lines
    std::string problem;             // one line; empty when the picture is there
};

// Two or more at a time, as the machine has processors. The results are in the order of the scenes.
std::vector<SceneResult> runScenes(std::span<Scene const> scenes, std::filesystem::path const& folder);

}
