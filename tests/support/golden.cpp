#include "tests/support/golden.hpp"

#include "phone/graphics/image_codec.hpp"
#include "phone/graphics/picture_compare.hpp"
#include "phone/springboard/view_tree.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace phone {

namespace {

constexpr int kColorTolerance = 12;              // of 255, in any channel
constexpr double kDifferingPartAllowed = 2e-3;   // of all pixels

std::filesystem::path goldenFile(std::string const& name)
{
    return std::filesystem::path(CORVEL_GOLDENS) / name;
}

// Where a failing test leaves what it got; its folder is made.
std::filesystem::path failureFile(std::string const& name)
{
    std::filesystem::path const path = std::filesystem::path(CORVEL_GOLDEN_FAILURES) / name;
    std::filesystem::create_directories(path.parent_path());
    return path;
}

bool isAccepting() { return std::getenv("CORVEL_ACCEPT_GOLDENS") != nullptr; }

void writeText(std::filesystem::path const& path, std::string const& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

// Three decimals at most, as short as can be.
std::string number(double value)
{
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%.3f", value);
    std::string text = buffer;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return text == "-0" ? "0" : text;
}

std::string numbers(Json const& values)
{
    std::string text;
    for (Json const& each : values)
        text += (text.empty() ? "" : " ") + number(each.get<double>());
    return text;
}

void addTree(std::string& text, Json const& tree, int depth)
{
    text += std::string(static_cast<std::size_t>(depth) * 2, ' ') + tree["class"].get<std::string>() + " ("
        + numbers(tree["frame"]["rect"]) + ")";
    auto const isSet = [&](char const* key) { return tree.contains(key) && !tree[key].is_null(); };
    if (isSet("text"))
        text += " " + tree["text"].dump();
    if (tree["hidden"] == true)
        text += " hidden";
    if (tree["alpha"] != 1.0)
        text += " alpha " + number(tree["alpha"]);
    if (std::string const t = numbers(tree["transform"]["transform"]); t != "1 0 0 1 0 0")
        text += " transform " + t;
    if (isSet("backgroundColor"))
        text += " background " + numbers(tree["backgroundColor"]["color"]);
    if (tree["cornerRadius"] != 0.0)
        text += " radius " + number(tree["cornerRadius"]);
    if (tree["autoresizingMask"] != 0)
        text += " mask " + tree["autoresizingMask"].dump();
    if (tree["clipsToBounds"] == true)
        text += " clips";
    if (isSet("effectStyle"))
        text += " effect " + tree["effectStyle"].dump();
    if (isSet("font"))
        text += " " + tree["font"]["name"].get<std::string>() + " " + number(tree["font"]["size"]);
    if (isSet("textAlignment"))
        text += " alignment " + tree["textAlignment"].dump();
    if (isSet("contentSize"))
        text += " content " + numbers(tree["contentSize"]["size"]);
    text += "\n";
    for (Json const& child : tree["children"])
        addTree(text, child, depth + 1);
}

}

std::string treeText(UIView root)
{
    std::string text;
    addTree(text, viewTree(root, { .detail = true, .handles = false }), 0);
    return text;
}

void expectGoldenText(std::string const& name, std::string const& actual)
{
    std::filesystem::path const golden = goldenFile(name + ".txt");
    if (isAccepting()) {
        std::filesystem::create_directories(golden.parent_path());
        writeText(golden, actual);
        return;
    }
    std::ifstream file(golden, std::ios::binary);
    std::ostringstream expected;
    expected << file.rdbuf();
    if (expected.str() == actual)
        return;
    std::filesystem::path const left = failureFile(name + ".actual.txt");
    writeText(left, actual);
    ADD_FAILURE() << "compare " << golden.string() << " and " << left.string();
}

void expectGoldenPicture(std::string const& name, graphics::Bitmap const& actual)
{
    ASSERT_TRUE(actual);
    std::filesystem::path const golden = goldenFile(name + ".png");
    if (isAccepting()) {
        std::filesystem::create_directories(golden.parent_path());
        ASSERT_TRUE(graphics::writePngFile(actual, golden.string()));
        return;
    }
    graphics::Bitmap const expected = graphics::readImageFile(golden.string(), actual.scale());
    auto const difference = graphics::comparePictures(actual, expected, kColorTolerance);
    double const pixels = static_cast<double>(actual.pixelWidth()) * actual.pixelHeight();
    if (difference.sameSize
        && static_cast<double>(difference.differingPixels) <= pixels * kDifferingPartAllowed)
        return;
    std::filesystem::path const left = failureFile(name + ".actual.png");
    graphics::writePngFile(actual, left.string());
    if (expected)
        graphics::writePngFile(expected, failureFile(name + ".golden.png").string());
    if (difference.picture)
        graphics::writePngFile(difference.picture, failureFile(name + ".difference.png").string());
    ADD_FAILURE() << name << ": " << difference.description() << "; see " << left.parent_path().string();
}

}
