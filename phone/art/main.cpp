// art FOLDER: writes avatars/, happybd.png and contactsbar3.png below FOLDER. The same bytes each time.
#include "phone/art/art.hpp"
#include "phone/graphics/image_codec.hpp"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace phone;

constexpr int kPortraitSide = 240;   // pixels: 45 points at 3x, and some to spare
constexpr int kJpegQuality = 90;
constexpr double kScale = 3;
constexpr graphics::Size kCake { 29, 29 };           // points, as the strip and the action menu show it
constexpr graphics::Size kBanner { 375 - 70, 50 };   // on the narrowest screen

bool write(std::filesystem::path const& path, std::vector<std::uint8_t> const& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<char const*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (bytes.empty() || !file) {
        std::fprintf(stderr, "art: cannot write %s\n", path.c_str());
        return false;
    }
    return true;
}

bool writeAll(std::filesystem::path const& folder)
{
    std::filesystem::path const avatars = folder / "avatars";
    std::error_code error;
    std::filesystem::create_directories(avatars, error);
    if (error) {
        std::fprintf(stderr, "art: cannot make %s: %s\n", avatars.c_str(), error.message().c_str());
        return false;
    }
    bool isWritten = write(folder / "happybd.png", graphics::encodePng(art::birthdayCake(kCake, kScale)))
        && write(folder / "contactsbar3.png", graphics::encodePng(art::emptyListBanner(kBanner, kScale)));
    for (art::Portrait const& portrait : art::portraits()) {
        graphics::Bitmap const bitmap = art::drawPortrait(portrait, kPortraitSide);
        std::string const name = std::string(portrait.name) + (portrait.isPhoto ? ".jpg" : ".png");
        isWritten = isWritten
            && write(avatars / name,
                portrait.isPhoto ? graphics::encodeJpeg(bitmap, kJpegQuality) : graphics::encodePng(bitmap));
    }
    return isWritten;
}

}   // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fprintf(stderr, "usage: art FOLDER\n");
        return 2;
    }
    return writeAll(arguments[1]) ? 0 : 1;
}
