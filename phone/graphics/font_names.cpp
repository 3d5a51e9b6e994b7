// The names iOS knows fonts by, and the vertical metrics of the fonts they name.
#include "phone/graphics/fonts.hpp"

#include <cmath>

namespace phone::graphics {

namespace {

using namespace FontWeight;

// In parts of the font size, from the fonts' own horizontal headers; descent is positive here.
struct MetricRatios {
    double ascent;
    double descent;
    double leading;
    double capHeight;
    double xHeight;
};

struct Face {
    std::string_view name;   // PostScript
    double weight { kRegular };
    bool italic { false };
};

struct Family {
    std::string_view name;
    Typeface typeface;
    MetricRatios metrics;
    std::vector<Face> faces;   // the first is what the family name alone means
};

// 1950, 494, 0, 1443 and 1078 of 2048 units: a line height of 20.287 at 17 points.
constexpr MetricRatios kSanFrancisco { 1950.0 / 2048, 494.0 / 2048, 0, 1443.0 / 2048, 1078.0 / 2048 };
constexpr MetricRatios kHelveticaNeue { 0.952, 0.213, 0.028, 0.714, 0.517 };
constexpr MetricRatios kHelvetica { 0.92, 0.23, 0, 0.717, 0.523 };
constexpr MetricRatios kArial { 0.905, 0.212, 0.033, 0.716, 0.519 };
constexpr MetricRatios kAvenir { 1.0, 0.366, 0, 0.708, 0.468 };
constexpr MetricRatios kGeorgia { 0.917, 0.219, 0, 0.692, 0.481 };
constexpr MetricRatios kTimes { 0.891, 0.216, 0.042, 0.662, 0.447 };
constexpr MetricRatios kCourier { 0.754, 0.246, 0, 0.562, 0.426 };
constexpr MetricRatios kCourierNew { 0.833, 0.300, 0, 0.571, 0.423 };
constexpr MetricRatios kMenlo { 0.928, 0.236, 0, 0.729, 0.547 };
constexpr MetricRatios kVerdana { 1.005, 0.210, 0, 0.727, 0.545 };
// Families whose headers weren't at hand: the common proportions of their kind.
constexpr MetricRatios kUsualSans { 0.95, 0.25, 0, 0.71, 0.5 };
constexpr MetricRatios kUsualSerif { 0.92, 0.25, 0, 0.67, 0.45 };

std::vector<Family> const& families()
{
    static std::vector<Family> const kFamilies {
        { ".AppleSystemUIFont", Typeface::system, kSanFrancisco,
            { { ".SFUI-Regular" }, { ".SFUI-Ultralight", kUltraLight }, { ".SFUI-Thin", kThin },
                { ".SFUI-Light", kLight }, { ".SFUI-Medium", kMedium }, { ".SFUI-Semibold", kSemibold },
                { ".SFUI-Bold", kBold }, { ".SFUI-Heavy", kHeavy }, { ".SFUI-Black", kBlack },
                { ".SFUI-RegularItalic", kRegular, true }, { ".SFUI-BoldItalic", kBold, true } } },
        { ".SF UI Text", Typeface::system, kSanFrancisco,
            { { ".SFUIText" }, { ".SFUIText-Regular" }, { ".SFUIText-Light", kLight },
                { ".SFUIText-Medium", kMedium }, { ".SFUIText-Semibold", kSemibold },
                { ".SFUIText-Bold", kBold }, { ".SFUIText-Heavy", kHeavy },
                { ".SFUIText-Italic", kRegular, true }, { ".SFUIText-BoldItalic", kBold, true } } },
        { ".SF UI Display", Typeface::system, kSanFrancisco,
            { { ".SFUIDisplay" }, { ".SFUIDisplay-Regular" }, { ".SFUIDisplay-Ultralight", kUltraLight },
                { ".SFUIDisplay-Thin", kThin }, { ".SFUIDisplay-Light", kLight },
                { ".SFUIDisplay-Medium", kMedium }, { ".SFUIDisplay-Semibold", kSemibold },
                { ".SFUIDisplay-Bold", kBold }, { ".SFUIDisplay-Heavy", kHeavy },
                { ".SFUIDisplay-Black", kBlack } } },
        { "Helvetica Neue", Typeface::grotesque, kHelveticaNeue,
            { { "HelveticaNeue" }, { "HelveticaNeue-UltraLight", kUltraLight },
                { "HelveticaNeue-UltraLightItalic", kUltraLight, true }, { "HelveticaNeue-Thin", kThin },
                { "HelveticaNeue-ThinItalic", kThin, true }, { "HelveticaNeue-Light", kLight },
                { "HelveticaNeue-LightItalic", kLight, true }, { "HelveticaNeue-Italic", kRegular, true },
                { "HelveticaNeue-Medium", kMedium }, { "HelveticaNeue-MediumItalic", kMedium, true },
                { "HelveticaNeue-Bold", kBold }, { "HelveticaNeue-BoldItalic", kBold, true },
                { "HelveticaNeue-CondensedBold", kBold }, { "HelveticaNeue-CondensedBlack", kBlack } } },
        { "Helvetica", Typeface::grotesque, kHelvetica,
            { { "Helvetica" }, { "Helvetica-Oblique", kRegular, true }, { "Helvetica-Light", kLight },
                { "Helvetica-LightOblique", kLight, true }, { "Helvetica-Bold", kBold },
                { "Helvetica-BoldOblique", kBold, true } } },
        { "Arial", Typeface::grotesque, kArial,
            { { "ArialMT" }, { "Arial-ItalicMT", kRegular, true }, { "Arial-BoldMT", kBold },
                { "Arial-BoldItalicMT", kBold, true } } },
        { "Arial Hebrew", Typeface::grotesque, kArial,
            { { "ArialHebrew" }, { "ArialHebrew-Light", kLight }, { "ArialHebrew-Bold", kBold } } },
        { "Arial Rounded MT Bold", Typeface::grotesque, kArial, { { "ArialRoundedMTBold", kBold } } },
        { "Avenir", Typeface::sans, kAvenir,
            { { "Avenir-Roman" }, { "Avenir-Book" }, { "Avenir-BookOblique", kRegular, true },
                { "Avenir-Light", kLight }, { "Avenir-LightOblique", kLight, true },
                { "Avenir-Oblique", kRegular, true }, { "Avenir-Medium", kMedium },
                { "Avenir-MediumOblique", kMedium, true }, { "Avenir-Heavy", kHeavy },
                { "Avenir-HeavyOblique", kHeavy, true }, { "Avenir-Black", kBlack },
                { "Avenir-BlackOblique", kBlack, true } } },
        { "Avenir Next", Typeface::sans, kAvenir,
            { { "AvenirNext-Regular" }, { "AvenirNext-UltraLight", kUltraLight },
                { "AvenirNext-UltraLightItalic", kUltraLight, true }, { "AvenirNext-Italic", kRegular, true },
                { "AvenirNext-Medium", kMedium }, { "AvenirNext-MediumItalic", kMedium, true },
                { "AvenirNext-DemiBold", kSemibold }, { "AvenirNext-DemiBoldItalic", kSemibold, true },
                { "AvenirNext-Bold", kBold }, { "AvenirNext-BoldItalic", kBold, true },
                { "AvenirNext-Heavy", kHeavy }, { "AvenirNext-HeavyItalic", kHeavy, true } } },
        { "Avenir Next Condensed", Typeface::sans, kAvenir,
            { { "AvenirNextCondensed-Regular" }, { "AvenirNextCondensed-Medium", kMedium },
                { "AvenirNextCondensed-DemiBold", kSemibold }, { "AvenirNextCondensed-Bold", kBold },
                { "AvenirNextCondensed-Heavy", kHeavy } } },
        { "Chalkboard SE", Typeface::sans, kUsualSans,
            { { "ChalkboardSE-Regular" }, { "ChalkboardSE-Light", kLight },
                { "ChalkboardSE-Bold", kBold } } },
        { "Chalkduster", Typeface::sans, kUsualSans, { { "Chalkduster" } } },
        { "Copperplate", Typeface::serif, kUsualSerif,
            { { "Copperplate" }, { "Copperplate-Light", kLight }, { "Copperplate-Bold", kBold } } },
        { "DIN Alternate", Typeface::sans, kUsualSans, { { "DINAlternate-Bold", kBold } } },
        { "DIN Condensed", Typeface::sans, kUsualSans, { { "DINCondensed-Bold", kBold } } },
        { "Futura", Typeface::sans, kUsualSans,
            { { "Futura-Medium", kMedium }, { "Futura-MediumItalic", kMedium, true },
                { "Futura-Bold", kBold }, { "Futura-CondensedMedium", kMedium },
                { "Futura-CondensedExtraBold", kHeavy } } },
        { "Gill Sans", Typeface::sans, kUsualSans,
            { { "GillSans" }, { "GillSans-Italic", kRegular, true }, { "GillSans-Light", kLight },
                { "GillSans-LightItalic", kLight, true }, { "GillSans-SemiBold", kSemibold },
                { "GillSans-SemiBoldItalic", kSemibold, true }, { "GillSans-Bold", kBold },
                { "GillSans-BoldItalic", kBold, true }, { "GillSans-UltraBold", kBlack } } },
        { "Hiragino Sans", Typeface::sans, { 0.88, 0.12, 0.5, 0.766, 0.545 },
            { { "HiraginoSans-W3" }, { "HiraginoSans-W6", kSemibold }, { "HiraginoSans-W7", kBold } } },
        { "Marker Felt", Typeface::sans, kUsualSans,
            { { "MarkerFelt-Thin" }, { "MarkerFelt-Wide", kBold } } },
        { "Noteworthy", Typeface::sans, kUsualSans,
            { { "Noteworthy-Light", kLight }, { "Noteworthy-Bold", kBold } } },
        { "Optima", Typeface::sans, kUsualSans,
            { { "Optima-Regular" }, { "Optima-Italic", kRegular, true }, { "Optima-Bold", kBold },
                { "Optima-BoldItalic", kBold, true }, { "Optima-ExtraBlack", kBlack } } },
        { "PingFang SC", Typeface::sans, { 1.06, 0.34, 0, 0.86, 0.6 },
            { { "PingFangSC-Regular" }, { "PingFangSC-Ultralight", kUltraLight },
                { "PingFangSC-Thin", kThin }, { "PingFangSC-Light", kLight },
                { "PingFangSC-Medium", kMedium }, { "PingFangSC-Semibold", kSemibold } } },
        { "PingFang TC", Typeface::sans, { 1.06, 0.34, 0, 0.86, 0.6 },
            { { "PingFangTC-Regular" }, { "PingFangTC-Light", kLight }, { "PingFangTC-Medium", kMedium },
                { "PingFangTC-Semibold", kSemibold } } },
        { "PingFang HK", Typeface::sans, { 1.06, 0.34, 0, 0.86, 0.6 },
            { { "PingFangHK-Regular" }, { "PingFangHK-Light", kLight }, { "PingFangHK-Medium", kMedium },
                { "PingFangHK-Semibold", kSemibold } } },
        { "Thonburi", Typeface::sans, kUsualSans,
            { { "Thonburi" }, { "Thonburi-Light", kLight }, { "Thonburi-Bold", kBold } } },
        { "Trebuchet MS", Typeface::sans, { 0.939, 0.222, 0, 0.716, 0.523 },
            { { "TrebuchetMS" }, { "TrebuchetMS-Italic", kRegular, true }, { "TrebuchetMS-Bold", kBold },
                { "Trebuchet-BoldItalic", kBold, true } } },
        { "Verdana", Typeface::sans, kVerdana,
            { { "Verdana" }, { "Verdana-Italic", kRegular, true }, { "Verdana-Bold", kBold },
                { "Verdana-BoldItalic", kBold, true } } },
        { "American Typewriter", Typeface::serif, kUsualSerif,
            { { "AmericanTypewriter" }, { "AmericanTypewriter-Light", kLight },
                { "AmericanTypewriter-Semibold", kSemibold }, { "AmericanTypewriter-Bold", kBold },
                { "AmericanTypewriter-Condensed" }, { "AmericanTypewriter-CondensedBold", kBold } } },
        { "Baskerville", Typeface::serif, kUsualSerif,
            { { "Baskerville" }, { "Baskerville-Italic", kRegular, true },
                { "Baskerville-SemiBold", kSemibold }, { "Baskerville-SemiBoldItalic", kSemibold, true },
                { "Baskerville-Bold", kBold }, { "Baskerville-BoldItalic", kBold, true } } },
        { "Bodoni 72", Typeface::serif, kUsualSerif,
            { { "BodoniSvtyTwoITCTT-Book" }, { "BodoniSvtyTwoITCTT-BookIta", kRegular, true },
                { "BodoniSvtyTwoITCTT-Bold", kBold } } },
        { "Charter", Typeface::serif, kUsualSerif,
            { { "Charter-Roman" }, { "Charter-Italic", kRegular, true }, { "Charter-Bold", kBold },
                { "Charter-BoldItalic", kBold, true }, { "Charter-Black", kBlack } } },
        { "Cochin", Typeface::serif, kUsualSerif,
            { { "Cochin" }, { "Cochin-Italic", kRegular, true }, { "Cochin-Bold", kBold },
                { "Cochin-BoldItalic", kBold, true } } },
        { "Didot", Typeface::serif, kUsualSerif,
            { { "Didot" }, { "Didot-Italic", kRegular, true }, { "Didot-Bold", kBold } } },
        { "Georgia", Typeface::serif, kGeorgia,
            { { "Georgia" }, { "Georgia-Italic", kRegular, true }, { "Georgia-Bold", kBold },
                { "Georgia-BoldItalic", kBold, true } } },
        { "Hoefler Text", Typeface::serif, kUsualSerif,
            { { "HoeflerText-Regular" }, { "HoeflerText-Italic", kRegular, true },
                { "HoeflerText-Black", kBlack }, { "HoeflerText-BlackItalic", kBlack, true } } },
        { "Palatino", Typeface::serif, kUsualSerif,
            { { "Palatino-Roman" }, { "Palatino-Italic", kRegular, true }, { "Palatino-Bold", kBold },
                { "Palatino-BoldItalic", kBold, true } } },
        { "Papyrus", Typeface::serif, kUsualSerif, { { "Papyrus" }, { "Papyrus-Condensed" } } },
        { "Rockwell", Typeface::serif, kUsualSerif,
            { { "Rockwell-Regular" }, { "Rockwell-Italic", kRegular, true }, { "Rockwell-Bold", kBold },
                { "Rockwell-BoldItalic", kBold, true } } },
        { "Snell Roundhand", Typeface::serif, kUsualSerif,
            { { "SnellRoundhand" }, { "SnellRoundhand-Bold", kBold }, { "SnellRoundhand-Black", kBlack } } },
        { "Times New Roman", Typeface::serif, kTimes,
            { { "TimesNewRomanPSMT" }, { "TimesNewRomanPS-ItalicMT", kRegular, true },
                { "TimesNewRomanPS-BoldMT", kBold }, { "TimesNewRomanPS-BoldItalicMT", kBold, true } } },
        { "Zapfino", Typeface::serif, kUsualSerif, { { "Zapfino" } } },
        { "Courier", Typeface::monospace, kCourier,
            { { "Courier" }, { "Courier-Oblique", kRegular, true }, { "Courier-Bold", kBold },
                { "Courier-BoldOblique", kBold, true } } },
        { "Courier New", Typeface::monospace, kCourierNew,
            { { "CourierNewPSMT" }, { "CourierNewPS-ItalicMT", kRegular, true },
                { "CourierNewPS-BoldMT", kBold }, { "CourierNewPS-BoldItalicMT", kBold, true } } },
        { "Menlo", Typeface::monospace, kMenlo,
            { { "Menlo-Regular" }, { "Menlo-Italic", kRegular, true }, { "Menlo-Bold", kBold },
                { "Menlo-BoldItalic", kBold, true } } },
    };
    return kFamilies;
}

struct SystemFace {
    double weight;
    std::string_view name;
};

constexpr SystemFace kSystemFaces[] = {
    { kUltraLight, ".SFUI-Ultralight" },
    { kThin, ".SFUI-Thin" },
    { kLight, ".SFUI-Light" },
    { kRegular, ".SFUI-Regular" },
    { kMedium, ".SFUI-Medium" },
    { kSemibold, ".SFUI-Semibold" },
    { kBold, ".SFUI-Bold" },
    { kHeavy, ".SFUI-Heavy" },
    { kBlack, ".SFUI-Black" },
};

double usableSize(double size) { return size > 0 && std::isfinite(size) ? size : 17; }

}   // namespace

FontMetrics Font::metrics() const
{
    MetricRatios ratios = kSanFrancisco;
    for (Family const& row : families()) {
        if (row.name == family)
            ratios = row.metrics;
    }
    return { .ascender = ratios.ascent * size,
        .descender = -ratios.descent * size,
        .lineHeight = (ratios.ascent + ratios.descent) * size,
        .leading = ratios.leading * size,
        .capHeight = ratios.capHeight * size,
        .xHeight = ratios.xHeight * size };
}

Font Font::withSize(double points) const
{
    Font font = *this;
    font.size = usableSize(points);
    return font;
}

Font systemFont(double size, double weight)
{
    SystemFace const* nearest = &kSystemFaces[3];
    for (SystemFace const& face : kSystemFaces) {
        if (std::abs(face.weight - weight) < std::abs(nearest->weight - weight))
            nearest = &face;
    }
    Font font;
    font.name = nearest->name;
    font.family = ".AppleSystemUIFont";
    font.size = usableSize(size);
    font.weight = std::isfinite(weight) ? weight : kRegular;
    return font;
}

Font italicSystemFont(double size)
{
    Font font = systemFont(size);
    font.name = ".SFUI-RegularItalic";
    font.italic = true;
    return font;
}

Font monospacedDigitSystemFont(double size, double weight)
{
    Font font = systemFont(size, weight);
    font.tabularDigits = true;
    return font;
}

std::optional<Font> fontNamed(std::string_view name, double size)
{
    for (Family const& family : families()) {
        for (Face const& face : family.faces) {
            // A family name means the family's first face, which comes first here too.
            if (face.name != name && family.name != name)
                continue;
            return Font { .name = std::string(face.name),
                .family = std::string(family.name),
                .typeface = family.typeface,
                .size = usableSize(size),
                .weight = face.weight,
                .italic = face.italic };
        }
    }
    return std::nullopt;
}

std::vector<std::string> fontNames()
{
    std::vector<std::string> names;
    for (Family const& family : families()) {
        for (Face const& face : family.faces)
            names.emplace_back(face.name);
    }
    return names;
}

}   // namespace phone::graphics
