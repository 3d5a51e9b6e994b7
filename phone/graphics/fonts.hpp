// Fonts of the phone: which exact files are used, what iOS font names mean, and the metrics that
// UIFont reports. The machine's own font configuration plays no part. Main thread only.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace phone::graphics {

// UIFont.Weight, -1 to 1.
namespace FontWeight {
inline constexpr double kUltraLight = -0.8;
inline constexpr double kThin = -0.6;
inline constexpr double kLight = -0.4;
inline constexpr double kRegular = 0;
inline constexpr double kMedium = 0.23;
inline constexpr double kSemibold = 0.3;
inline constexpr double kBold = 0.4;
inline constexpr double kHeavy = 0.56;
inline constexpr double kBlack = 0.62;
}

// What stands in for the platform's typefaces.
enum class Typeface {
    system,      // San Francisco: Inter below 20 pt, Inter Display from 20 pt on
    grotesque,   // Helvetica and kin: Inter at every size
    sans,        // humanist and geometric sans serifs: Noto Sans
    serif,       // Noto Serif
    monospace,   // DejaVu Sans Mono
};

// Values in points at the font's size. The descender is negative, as UIFont has it.
struct FontMetrics {
    double ascender { 0 };
    double descender { 0 };
    double lineHeight { 0 };
    double leading { 0 };
    double capHeight { 0 };
    double xHeight { 0 };
};

struct Font {
    std::string name;     // PostScript name as UIFont reports it
    std::string family;   // UIFont's familyName
    Typeface typeface { Typeface::system };
    double size { 17 };                       // points
    double weight { FontWeight::kRegular };   // UIFont.Weight
    bool italic { false };
    bool tabularDigits { false };

    // The platform font's own metrics: San Francisco at 17 pt has a line height of 20.29 whatever
    // our stand-in measures, and whichever scripts the text brings in.
    FontMetrics metrics() const;
    Font withSize(double points) const;

    friend bool operator==(Font const&, Font const&) = default;
};

// San Francisco. Sizes of zero or less, and those that aren't numbers, become 17 (UILabel's own).
Font systemFont(double size, double weight = FontWeight::kRegular);
Font italicSystemFont(double size);
Font monospacedDigitSystemFont(double size, double weight = FontWeight::kRegular);

// By PostScript or family name as iOS installs them ("HelveticaNeue-Bold", "Georgia",
// ".SFUI-Regular"). None for a name that iOS doesn't know: [UIFont fontWithName:size:] answers nil.
std::optional<Font> fontNamed(std::string_view name, double size);

// All PostScript names that fontNamed knows, in table order; and the names of one family.
std::vector<std::string> fontNames();

// BCP 47 language of the phone ("ja", "zh-Hant"): chooses between Chinese, Japanese and Korean
// forms of the same characters. Text laid out before keeps its forms. Default: simplified Chinese.
void setTextLanguage(std::string_view language);

// Reads the font files and draws a few glyphs of each, so that processes forked from here start
// with all of it in memory. Calling it again costs nothing. Without it the first text does the work.
// A missing font file is named once on standard error with its package; text then uses what is left.
void warmUp();

}   // namespace phone::graphics
