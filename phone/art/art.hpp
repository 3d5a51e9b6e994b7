// The pictures that the phone's starter set and the preference bundle carry, drawn by us.
#pragma once

#include "phone/graphics/bitmap.hpp"

#include <span>

namespace phone::art {

// The cake shown on a birthday, on transparent ground. The strip squeezes it to four fifths of its
// height and the action menu doesn't, so there is no circle in it that would give that away.
graphics::Bitmap birthdayCake(graphics::Size points, double scale);

// Behind the welcome text of an empty strip: a row of people and a plus sign, faint enough to be
// read over, on light and on dark.
graphics::Bitmap emptyListBanner(graphics::Size points, double scale);

enum class Hair { bob, crop, longWaves, bun, curls, scarf, fringe, bald, ponytail, quiff };
enum class Collar { round, shirt, hood, vNeck };

struct Portrait {
    char const* name;       // of the file, without extension
    unsigned backdropTop;   // colours: 0xRRGGBB
    unsigned backdropBottom;
    unsigned skin;
    unsigned hair;
    unsigned clothes;
    Hair style;
    Collar collar { Collar::round };
    bool hasGlasses { false };
    bool hasBeard { false };
    bool hasEarrings { false };
    bool isPhoto { false };   // kept as a JPEG, as cameras make them; else PNG
};

// In the order of the files portrait1 to portraitN.
std::span<Portrait const> portraits();
graphics::Bitmap drawPortrait(Portrait const&, int sidePixels);

}   // namespace phone::art
