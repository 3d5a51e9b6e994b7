#include "phone/graphics/text.hpp"

#include "phone/graphics/font_map.hpp"

#include <cmath>
#include <cstring>
#include <pango/pangocairo.h>
#include <vector>

namespace phone::graphics {

namespace {

constexpr std::string_view kEllipsis = "\u2026";

// Longer text is cut: no label shows that much, and shaping takes time by the character.
constexpr std::size_t kMaxTextBytes = 16384;

struct LineDeleter {
    void operator()(PangoLayoutLine* line) const { pango_layout_line_unref(line); }
};
using LinePointer = std::unique_ptr<PangoLayoutLine, LineDeleter>;

double points(int pangoUnits) { return static_cast<double>(pangoUnits) / PANGO_SCALE; }

std::string_view shortened(std::string_view utf8)
{
    if (utf8.size() <= kMaxTextBytes)
        return utf8;
    std::size_t end = kMaxTextBytes;
    while (end > 0 && (static_cast<unsigned char>(utf8[end]) & 0xc0) == 0x80)
        --end;
    return utf8.substr(0, end);
}

std::vector<std::string> paragraphsOf(std::string const& text)
{
    std::vector<std::string> paragraphs;
    char const* start = text.data();
    char const* const end = start + text.size();
    while (true) {
        int delimiter = 0;
        int next = 0;
        pango_find_paragraph_boundary(start, static_cast<int>(end - start), &delimiter, &next);
        paragraphs.emplace_back(start, static_cast<std::size_t>(delimiter));
        if (next == delimiter)   // no separator: the text ends here
            return paragraphs;
        start += next;
    }
}

PangoEllipsizeMode ellipsizeMode(Truncation truncation)
{
    switch (truncation) {
    case Truncation::tail: return PANGO_ELLIPSIZE_END;
    case Truncation::head: return PANGO_ELLIPSIZE_START;
    case Truncation::middle: return PANGO_ELLIPSIZE_MIDDLE;
    case Truncation::clip: return PANGO_ELLIPSIZE_NONE;
    }
    return PANGO_ELLIPSIZE_END;
}

bool isLimit(double length)
{
    // Pango counts in 1024ths of a point in an int: what doesn't fit there is no limit.
    return length > 0 && length < 1e6;
}

struct AttributeListDeleter {
    void operator()(PangoAttrList* list) const { pango_attr_list_unref(list); }
};
using AttributeList = std::unique_ptr<PangoAttrList, AttributeListDeleter>;

AttributeList attributes(TextStyle const& style, double fontScale)
{
    AttributeList list { pango_attr_list_new() };
    if (style.font.tabularDigits)
        pango_attr_list_insert(list.get(), pango_attr_font_features_new("tnum=1"));
    if (style.tracking != 0 && std::isfinite(style.tracking)) {
        int const spacing = static_cast<int>(std::lround(style.tracking * fontScale * PANGO_SCALE));
        pango_attr_list_insert(list.get(), pango_attr_letter_spacing_new(spacing));
    }
    return list;
}

ObjectPointer<PangoLayout> makeLayout(std::string const& text, TextStyle const& style, double fontScale)
{
    PangoContext* const context = textContext();
    pango_context_set_base_dir(context,
        style.direction == WritingDirection::rightToLeft ? PANGO_DIRECTION_RTL : PANGO_DIRECTION_LTR);
    ObjectPointer<PangoLayout> layout { pango_layout_new(context) };
    double const size = style.font.size * fontScale;
    FontDescription const description = fontDescription(style.font, size, style.font.size);
    pango_layout_set_font_description(layout.get(), description.get());
    pango_layout_set_attributes(layout.get(), attributes(style, fontScale).get());
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
    return layout;
}

double naturalWidth(std::string const& text, TextStyle const& style, double fontScale)
{
    PangoRectangle logical;
    pango_layout_get_extents(makeLayout(text, style, fontScale).get(), nullptr, &logical);
    return points(logical.width);
}

// The largest size at which one line fits, but no smaller than the style allows.
double shrinkingScale(std::string const& text, TextStyle const& style, double maxWidth)
{
    double const smallest = std::clamp(style.minimumScale, 0.01, 1.0);
    double scale = 1;
    // Glyphs scale exactly, so that the first quotient is right but for rounding to Pango's units.
    for (int attempt = 0; attempt < 4; ++attempt) {
        double const width = naturalWidth(text, style, scale);
        if (width <= maxWidth)
            return scale;
        scale = std::max(smallest, scale * (maxWidth / width) * (attempt == 0 ? 1 : 0.999));
        if (scale == smallest)
            break;
    }
    return scale;
}

bool hasColorGlyphs(PangoLayoutLine* line)
{
    for (GSList* node = line->runs; node; node = node->next) {
        auto const* const run = static_cast<PangoLayoutRun const*>(node->data);
        FontDescription const description { pango_font_describe(run->item->analysis.font) };
        char const* const family = pango_font_description_get_family(description.get());
        if (family && std::strcmp(family, kEmojiFamily) == 0)
            return true;
    }
    return false;
}

}   // namespace

struct TextLayout::Lines {
    struct Line {
        LinePointer line;
        double width { 0 };
    };

    TextStyle style;
    FontMetrics metrics;
    double fontScale { 1 };
    double width { 0 };
    bool isTruncated { false };
    bool hasColorGlyphs { false };
    std::vector<ObjectPointer<PangoLayout>> paragraphs;   // lines point into them
    std::vector<Line> lines;

    double pitch() const { return metrics.lineHeight + style.lineSpacing; }
    double height() const
    {
        return lines.empty() ? 0 : static_cast<double>(lines.size()) * pitch() - style.lineSpacing;
    }

    // Appends one paragraph in at most `room` lines (0: any number). `isCut`: more text follows that
    // won't be shown, so that the last line has to say so even when it fits.
    void addParagraph(std::string text, double maxWidth, int room, bool isCut)
    {
        bool const clips = style.truncation == Truncation::clip;
        if (isCut && !clips)
            text += kEllipsis;
        ObjectPointer<PangoLayout> layout = makeLayout(text, style, fontScale);
        bool const keepsOneLine = room == 1 && clips;
        if (isLimit(maxWidth) && !keepsOneLine) {
            // One unit more: a width that was measured here must hold the same text again.
            pango_layout_set_width(layout.get(), static_cast<int>(std::ceil(maxWidth * PANGO_SCALE)) + 1);
            if (room > 0 && !clips) {
                pango_layout_set_height(layout.get(), -room);
                pango_layout_set_ellipsize(layout.get(), ellipsizeMode(style.truncation));
            }
        }
        int const count = pango_layout_get_line_count(layout.get());
        int const shown = room > 0 ? std::min(count, room) : count;
        for (int i = 0; i < shown; ++i) {
            LinePointer line { pango_layout_line_ref(pango_layout_get_line_readonly(layout.get(), i)) };
            PangoRectangle logical;
            pango_layout_line_get_extents(line.get(), nullptr, &logical);
            hasColorGlyphs = hasColorGlyphs || graphics::hasColorGlyphs(line.get());
            width = std::max(width, points(logical.width));
            lines.push_back({ std::move(line), points(logical.width) });
        }
        isTruncated = isTruncated || isCut || shown < count || pango_layout_is_ellipsized(layout.get());
        paragraphs.push_back(std::move(layout));
    }

    double lineX(Line const& line, Rect const& rect) const
    {
        bool const isRightToLeft = style.direction == WritingDirection::rightToLeft;
        switch (style.alignment) {
        case TextAlignment::center: return rect.midX() - line.width / 2;
        case TextAlignment::right: return rect.maxX() - line.width;
        case TextAlignment::natural: return isRightToLeft ? rect.maxX() - line.width : rect.x;
        case TextAlignment::left: break;
        }
        return rect.x;
    }

    double top(Rect const& rect, VerticalAlignment vertical) const
    {
        switch (vertical) {
        case VerticalAlignment::center: return rect.midY() - height() / 2;
        case VerticalAlignment::bottom: return rect.maxY() - height();
        case VerticalAlignment::top: break;
        }
        return rect.y;
    }

    template <typename Show>
    void forEachLine(Rect const& rect, VerticalAlignment vertical, Show show) const
    {
        double baseline = top(rect, vertical) + metrics.ascender;
        for (Line const& line : lines) {
            show(line.line.get(), lineX(line, rect), baseline);
            baseline += pitch();
        }
    }
};

TextLayout::TextLayout(std::string_view utf8, TextStyle const& style, double maxWidth, double maxHeight)
{
    auto lines = std::make_shared<Lines>();
    lines->style = style;
    std::string const text = validUtf8(shortened(utf8));
    if (!text.empty()) {
        std::vector<std::string> const paragraphs = paragraphsOf(text);
        if (style.minimumScale < 1 && style.maxLines == 1 && isLimit(maxWidth))
            lines->fontScale = shrinkingScale(paragraphs.front(), style, maxWidth);
        lines->metrics = style.font.withSize(style.font.size * lines->fontScale).metrics();
        int limit = std::max(0, style.maxLines);
        if (isLimit(maxHeight)) {
            double const fitting = std::floor((maxHeight + style.lineSpacing) / lines->pitch() + 1e-6);
            int const byHeight = static_cast<int>(std::clamp(fitting, 1.0, 1e6));
            limit = limit == 0 ? byHeight : std::min(limit, byHeight);
        }
        for (std::size_t i = 0; i < paragraphs.size(); ++i) {
            int const room = limit == 0 ? 0 : limit - static_cast<int>(lines->lines.size());
            if (limit != 0 && room <= 0)
                break;
            // When the room ends within this paragraph or with it, the ellipsis goes there.
            bool isCut = false;
            if (room > 0 && i + 1 < paragraphs.size()) {
                Lines trial;
                trial.style = style;
                trial.fontScale = lines->fontScale;
                trial.addParagraph(paragraphs[i], maxWidth, 0, false);
                isCut = static_cast<int>(trial.lines.size()) >= room;
            }
            lines->addParagraph(paragraphs[i], maxWidth, room, isCut);
        }
    } else {
        lines->metrics = style.font.metrics();
    }
    m_lines = std::move(lines);
}

Size TextLayout::size() const { return { m_lines->width, m_lines->height() }; }

int TextLayout::lineCount() const { return static_cast<int>(m_lines->lines.size()); }

bool TextLayout::isTruncated() const { return m_lines->isTruncated; }

double TextLayout::fontScale() const { return m_lines->fontScale; }

double TextLayout::firstBaseline() const { return m_lines->metrics.ascender; }

void TextLayout::draw(
    cairo_t* context, Rect const& rect, Color const& color, VerticalAlignment vertical) const
{
    if (m_lines->lines.empty() || !(color.alpha > 0))
        return;
    // Cairo paints colour glyphs as they are, whatever the source's alpha.
    bool const fadesAsGroup = m_lines->hasColorGlyphs && color.alpha < 1;
    cairo_save(context);
    if (fadesAsGroup) {
        // Without a clip the group would be as large as the whole screen. Glyphs may reach out of their
        // lines, but never by more than the size of one.
        double const margin = m_lines->metrics.lineHeight;
        Rect const block { std::min(rect.x, rect.midX() - m_lines->width), m_lines->top(rect, vertical),
            std::max(rect.width, 2 * m_lines->width), m_lines->height() };
        cairo_rectangle(
            context, block.x - margin, block.y - margin, block.width + 2 * margin, block.height + 2 * margin);
        cairo_clip(context);
        cairo_push_group(context);
    }
    cairo_set_source_rgba(context, color.red, color.green, color.blue, fadesAsGroup ? 1 : color.alpha);
    m_lines->forEachLine(rect, vertical, [context](PangoLayoutLine* line, double x, double baseline) {
        cairo_move_to(context, x, baseline);
        pango_cairo_show_layout_line(context, line);
    });
    if (fadesAsGroup) {
        cairo_pop_group_to_source(context);
        cairo_paint_with_alpha(context, color.alpha);
    }
    cairo_restore(context);
    cairo_new_path(context);
}

void TextLayout::addPath(cairo_t* context, Rect const& rect, VerticalAlignment vertical) const
{
    m_lines->forEachLine(rect, vertical, [context](PangoLayoutLine* line, double x, double baseline) {
        cairo_move_to(context, x, baseline);
        pango_cairo_layout_line_path(context, line);
    });
}

Size measureText(std::string_view utf8, TextStyle const& style, double maxWidth, double maxHeight)
{
    return TextLayout(utf8, style, maxWidth, maxHeight).size();
}

void drawText(cairo_t* context, std::string_view utf8, TextStyle const& style, Rect const& rect,
    Color const& color, VerticalAlignment vertical)
{
    TextLayout(utf8, style, rect.width).draw(context, rect, color, vertical);
}

std::string firstCharacter(std::string_view utf8)
{
    // The longest emoji sequences are about ten code points; marks may add some more.
    constexpr int kEnough = 64;
    std::string text = validUtf8(utf8.substr(0, kEnough * 4));
    int const count =
        std::min(kEnough, static_cast<int>(g_utf8_strlen(text.data(), static_cast<gssize>(text.size()))));
    if (count == 0)
        return {};
    text.resize(static_cast<std::size_t>(g_utf8_offset_to_pointer(text.data(), count) - text.data()));
    std::vector<PangoLogAttr> marks(static_cast<std::size_t>(count) + 1);
    pango_get_log_attrs(text.data(), static_cast<int>(text.size()), -1, pango_language_from_string("en"),
        marks.data(), count + 1);
    int end = 1;
    while (end < count && !marks[static_cast<std::size_t>(end)].is_cursor_position)
        ++end;
    return text.substr(0, static_cast<std::size_t>(g_utf8_offset_to_pointer(text.data(), end) - text.data()));
}

std::string validUtf8(std::string_view utf8)
{
    char* const valid = g_utf8_make_valid(utf8.data(), static_cast<gssize>(utf8.size()));
    std::string result { valid };
    g_free(valid);
    return result;
}

}   // namespace phone::graphics
