#include "tests/scenarios/story_pictures.hpp"

#include "phone/graphics/image_codec.hpp"
#include "phone/phone.hpp"
#include "phone/screen/renderer.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace phone {

namespace {

constexpr double kPictureScale = 1;   // pixels a point

// The first number that is free: a respring's second process goes on where the first has stopped.
std::filesystem::path nextFile(std::filesystem::path const& folder)
{
    for (int number = 1;; ++number) {
        char name[24];
        std::snprintf(name, sizeof name, "%03d.png", number);
        if (!std::filesystem::exists(folder / name))
            return folder / name;
    }
}

}

void takePicture()
{
    char const* const parent = std::getenv("CORVEL_PICTURES");
    testing::TestInfo const* const test = testing::UnitTest::GetInstance()->current_test_info();
    if (!parent || !*parent || !test || !phone().isBooted())
        return;
    std::string story = std::string(test->test_suite_name()) + "." + test->name();
    std::ranges::replace(story, '/', '-');
    std::filesystem::path const folder = std::filesystem::path(parent) / story;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    std::filesystem::path const file = nextFile(folder);
    Renderer renderer;
    if (!graphics::writePngFile(renderer.drawScreen(kPictureScale), file.string()))
        ADD_FAILURE() << "cannot write " << file;
}

}
