// Pango set up with the phone's own font files; the inside of fonts.hpp and text.hpp.
#pragma once

#include "phone/graphics/fonts.hpp"

#include <memory>
#include <pango/pango.h>

namespace phone::graphics {

struct ObjectReleaser {
    void operator()(void* object) const;
};
template <typename T>
using ObjectPointer = std::unique_ptr<T, ObjectReleaser>;   // one reference, given back

struct DescriptionDeleter {
    void operator()(PangoFontDescription*) const;
};
using FontDescription = std::unique_ptr<PangoFontDescription, DescriptionDeleter>;

// The one context that all text is laid out in. One unit is one point; glyph positions aren't rounded.
// Made at the first call. The base direction is left to the caller.
PangoContext* textContext();

// Which files to draw a font with at a size. `opticalSize` decides between the text and the display
// cut of the system font, so that shrunk text doesn't change its cut on the way.
FontDescription fontDescription(Font const&, double size, double opticalSize);

inline constexpr char kEmojiFamily[] = "Noto Color Emoji";

}   // namespace phone::graphics
