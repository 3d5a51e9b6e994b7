// Text: measuring and drawing a label's worth of it. Layout is in points and never depends on the
// scale it is drawn at. Main thread only.
#pragma once

#include "phone/graphics/fonts.hpp"
#include "phone/graphics/geometry.hpp"

#include <cairo.h>

#include <memory>
#include <string>
#include <string_view>

namespace phone::graphics {

enum class TextAlignment { left, center, right, natural };
enum class WritingDirection { leftToRight, rightToLeft };
enum class VerticalAlignment { top, center, bottom };

// What happens to text that doesn't fit the lines it may have.
enum class Truncation { tail, head, middle, clip };

struct TextStyle {
    Font font { systemFont(17) };
    TextAlignment alignment { TextAlignment::natural };
    WritingDirection direction { WritingDirection::leftToRight };   // the user interface's, for natural
    int maxLines { 1 };                                             // 0: as many as there are
    Truncation truncation { Truncation::tail };
    double minimumScale { 1 };   // below 1, and with one line: the text shrinks this far before it is cut
    double tracking { 0 };       // points between letters
    double lineSpacing { 0 };    // points between lines
};

// One laid-out text. Copies share it. Invalid UTF-8 shows U+FFFD in place of the bad bytes.
// Text beyond 16384 bytes is left out.
class TextLayout {
public:
    // No limit on width or height.
    static constexpr double kUnlimited = 0;

    // Lines wrap at maxWidth and are dropped (the last one truncated) below maxHeight, but the
    // first always stays; kUnlimited or less is no limit. Paragraphs end at \n, \r\n and U+2029.
    // Each takes its base direction from its first strong character, or else from the style.
    TextLayout(
        std::string_view utf8, TextStyle const&, double maxWidth = kUnlimited, double maxHeight = kUnlimited);

    // Width of the widest line and height of all lines by the font's line height; zero if empty.
    // Exact: UIKit's callers round up to pixels.
    Size size() const;
    int lineCount() const;
    bool isTruncated() const;
    double fontScale() const;       // 1, or what shrinking to fit came to
    double firstBaseline() const;   // from the top of the block

    // In colour, at its place in rect by the style's alignment. Text wider than the rect sticks
    // out at the far side, as in UILabel. Colour glyphs (emoji) keep their colours and take the alpha.
    void draw(cairo_t*, Rect const& rect, Color const&, VerticalAlignment = VerticalAlignment::center) const;

    // The same outlines as a path in the context, for masks; colour glyphs are left out.
    void addPath(cairo_t*, Rect const& rect, VerticalAlignment = VerticalAlignment::center) const;

private:
    struct Lines;
    std::shared_ptr<Lines const> m_lines;
};

// Without keeping the layout.
Size measureText(std::string_view utf8, TextStyle const&, double maxWidth = TextLayout::kUnlimited,
    double maxHeight = TextLayout::kUnlimited);
void drawText(cairo_t*, std::string_view utf8, TextStyle const&, Rect const& rect, Color const&,
    VerticalAlignment = VerticalAlignment::center);

// The first user-perceived character (an emoji family is one); empty for empty text.
std::string firstCharacter(std::string_view utf8);

// Bad bytes, and NUL, replaced by U+FFFD.
std::string validUtf8(std::string_view);

}   // namespace phone::graphics
