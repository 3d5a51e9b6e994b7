#include "phone/graphics/fonts.hpp"

#include "phone/graphics/bitmap.hpp"
#include "phone/graphics/font_map.hpp"
#include "phone/graphics/text.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

namespace phone::graphics {

namespace {

constexpr double kDisplayFromSize = 20;   // points: San Francisco's switch from Text to Display

struct FontFiles {
    char const* package;
    char const* folder;
    std::vector<char const*> files;
};

std::vector<FontFiles> const& fontFiles()
{
    static std::vector<FontFiles> const kFiles {
        { "fonts-inter", "/usr/share/fonts/opentype/inter/",
            { "Inter-Thin.otf", "Inter-ExtraLight.otf", "Inter-Light.otf", "Inter-Regular.otf",
                "Inter-Medium.otf", "Inter-SemiBold.otf", "Inter-Bold.otf", "Inter-ExtraBold.otf",
                "Inter-Black.otf", "Inter-ThinItalic.otf", "Inter-LightItalic.otf", "Inter-Italic.otf",
                "Inter-MediumItalic.otf", "Inter-BoldItalic.otf", "InterDisplay-Thin.otf",
                "InterDisplay-ExtraLight.otf", "InterDisplay-Light.otf", "InterDisplay-Regular.otf",
                "InterDisplay-Medium.otf", "InterDisplay-SemiBold.otf", "InterDisplay-Bold.otf",
                "InterDisplay-ExtraBold.otf", "InterDisplay-Black.otf", "InterDisplay-Italic.otf" } },
        { "fonts-noto-core", "/usr/share/fonts/truetype/noto/",
            { "NotoSans-Regular.ttf", "NotoSans-Bold.ttf", "NotoSans-Italic.ttf", "NotoSans-BoldItalic.ttf",
                "NotoSerif-Regular.ttf", "NotoSerif-Bold.ttf", "NotoSerif-Italic.ttf",
                "NotoSerif-BoldItalic.ttf", "NotoSansHebrew-Regular.ttf", "NotoSansHebrew-Bold.ttf",
                "NotoSansArabic-Regular.ttf", "NotoSansArabic-Bold.ttf", "NotoSansThai-Regular.ttf",
                "NotoSansThai-Bold.ttf", "NotoSansDevanagari-Regular.ttf", "NotoSansDevanagari-Bold.ttf",
                "NotoSansArmenian-Regular.ttf", "NotoSansGeorgian-Regular.ttf", "NotoSansBengali-Regular.ttf",
                "NotoSansTamil-Regular.ttf", "NotoSansTelugu-Regular.ttf", "NotoSansSymbols-Regular.ttf",
                "NotoSansSymbols2-Regular.ttf", "NotoSansMath-Regular.ttf" } },
        { "fonts-noto-cjk", "/usr/share/fonts/opentype/noto/",
            { "NotoSansCJK-Regular.ttc", "NotoSansCJK-Bold.ttc" } },
        { "fonts-noto-color-emoji", "/usr/share/fonts/truetype/noto/", { "NotoColorEmoji.ttf" } },
        { "fonts-dejavu-core", "/usr/share/fonts/truetype/dejavu/",
            { "DejaVuSansMono.ttf", "DejaVuSansMono-Bold.ttf" } },
    };
    return kFiles;
}

// "emoji" is the family Pango asks for where text wants colour. Colour fonts hold bitmaps of one
// size, and the second rule scales them; without it their glyphs stay empty. Antialiasing must not
// be set here: on target="font" it blanks every emoji. It is set in the context's options.
constexpr char kConfiguration[] = R"(<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <match target="pattern">
    <test name="family" compare="eq"><string>emoji</string></test>
    <edit name="family" mode="assign" binding="strong"><string>Noto Color Emoji</string></edit>
  </match>
  <match target="font">
    <test name="outline" compare="eq"><bool>false</bool></test>
    <edit name="pixelsizefixupfactor" mode="assign">
      <divide><name target="pattern">pixelsize</name><name target="font">pixelsize</name></divide>
    </edit>
  </match>
  <match target="font">
    <test name="outline" compare="eq"><bool>false</bool></test>
    <test name="pixelsizefixupfactor" compare="not_eq"><double>1.0</double></test>
    <edit name="matrix" mode="assign">
      <times><name>matrix</name><matrix>
        <name>pixelsizefixupfactor</name><double>0</double>
        <double>0</double><name>pixelsizefixupfactor</name>
      </matrix></times>
    </edit>
    <edit name="size" mode="assign">
      <divide><name>size</name><name>pixelsizefixupfactor</name></divide>
    </edit>
  </match>
</fontconfig>
)";

struct TextSystem {
    ObjectPointer<PangoFontMap> map;
    ObjectPointer<PangoContext> context;
    std::string cjkFamily { "Noto Sans CJK SC" };
    bool isWarm { false };
};

// Written by textSystem() once and by setTextLanguage(); main thread.
TextSystem g_text;

FcConfig* makeConfiguration()
{
    FcConfig* const config = FcConfigCreate();
    FcConfigParseAndLoadFromMemory(config, reinterpret_cast<FcChar8 const*>(kConfiguration), FcTrue);
    for (FontFiles const& group : fontFiles()) {
        std::string missing;
        for (char const* file : group.files) {
            std::string const path = std::string(group.folder) + file;
            if (!FcConfigAppFontAddFile(config, reinterpret_cast<FcChar8 const*>(path.c_str())))
                missing += missing.empty() ? path : std::string(" and others");
            if (missing.size() > path.size())
                break;
        }
        if (!missing.empty())
            std::fprintf(stderr, "phone: font %s is missing: install %s\n", missing.c_str(), group.package);
    }
    return config;
}

// Pango picks languages for scripts that the text's own language isn't written in, and asks the
// environment for them once a process. What is drawn must not depend on it.
void fixPreferredLanguages()
{
    constexpr char kVariable[] = "PANGO_LANGUAGE";
    char const* const present = std::getenv(kVariable);
    std::string const saved = present ? present : "";
    setenv(kVariable, "en:zh-cn", 1);
    // Declared without side effects, though it reads the environment: called so that the compiler
    // neither drops nor moves it.
    PangoLanguage** (*volatile ask)() = pango_language_get_preferred;
    ask();
    if (present)
        setenv(kVariable, saved.c_str(), 1);
    else
        unsetenv(kVariable);
}

TextSystem& textSystem()
{
    if (g_text.map)
        return g_text;
    fixPreferredLanguages();
    FcConfig* const config = makeConfiguration();
    FcConfigSetCurrent(config);
    g_text.map.reset(pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT));
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(g_text.map.get()), config);
    pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(g_text.map.get()), 72);
    FcConfigDestroy(config);   // both hold references of their own
    g_text.context.reset(pango_font_map_create_context(g_text.map.get()));
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(g_text.context.get(), options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(g_text.context.get(), FALSE);
    pango_context_set_language(g_text.context.get(), pango_language_from_string("en"));
    return g_text;
}

struct WeightRow {
    double uikit;
    PangoWeight pango;
};

constexpr WeightRow kWeights[] = {
    { FontWeight::kUltraLight, PANGO_WEIGHT_THIN },
    { FontWeight::kThin, PANGO_WEIGHT_ULTRALIGHT },
    { FontWeight::kLight, PANGO_WEIGHT_LIGHT },
    { FontWeight::kRegular, PANGO_WEIGHT_NORMAL },
    { FontWeight::kMedium, PANGO_WEIGHT_MEDIUM },
    { FontWeight::kSemibold, PANGO_WEIGHT_SEMIBOLD },
    { FontWeight::kBold, PANGO_WEIGHT_BOLD },
    { FontWeight::kHeavy, PANGO_WEIGHT_ULTRABOLD },
    { FontWeight::kBlack, PANGO_WEIGHT_HEAVY },
};

PangoWeight pangoWeight(double uikit)
{
    WeightRow const* nearest = kWeights;
    for (WeightRow const& row : kWeights) {
        if (std::abs(row.uikit - uikit) < std::abs(nearest->uikit - uikit))
            nearest = &row;
    }
    return nearest->pango;
}

char const* familyName(Typeface typeface, double opticalSize)
{
    switch (typeface) {
    case Typeface::system: return opticalSize < kDisplayFromSize ? "Inter" : "Inter Display";
    case Typeface::grotesque: return "Inter";
    case Typeface::sans: return "Noto Sans";
    case Typeface::serif: return "Noto Serif";
    case Typeface::monospace: return "DejaVu Sans Mono";
    }
    return "Inter";
}

// Tried in this order for what the typeface itself lacks.
std::string fallbackFamilies()
{
    return ",Noto Sans Hebrew,Noto Sans Arabic," + g_text.cjkFamily
        + ",Noto Sans Thai,Noto Sans Devanagari,Noto Sans Armenian,Noto Sans Georgian,Noto Sans Bengali"
          ",Noto Sans Tamil,Noto Sans Telugu,Noto Sans,Noto Sans Symbols,Noto Sans Symbols2,Noto Sans Math,"
        + kEmojiFamily;
}

bool startsWith(std::string_view text, std::string_view prefix)
{
    return text.substr(0, prefix.size()) == prefix;
}

char const* cjkFamily(std::string_view language)
{
    if (startsWith(language, "ja"))
        return "Noto Sans CJK JP";
    if (startsWith(language, "ko"))
        return "Noto Sans CJK KR";
    if (startsWith(language, "zh-HK") || startsWith(language, "zh-Hant-HK") || startsWith(language, "yue"))
        return "Noto Sans CJK HK";
    if (startsWith(language, "zh-Hant") || startsWith(language, "zh-TW"))
        return "Noto Sans CJK TC";
    return "Noto Sans CJK SC";
}

}   // namespace

void ObjectReleaser::operator()(void* object) const { g_object_unref(object); }

void DescriptionDeleter::operator()(PangoFontDescription* description) const
{
    pango_font_description_free(description);
}

PangoContext* textContext() { return textSystem().context.get(); }

FontDescription fontDescription(Font const& font, double size, double opticalSize)
{
    FontDescription description { pango_font_description_new() };
    std::string const families = familyName(font.typeface, opticalSize) + fallbackFamilies();
    pango_font_description_set_family(description.get(), families.c_str());
    pango_font_description_set_weight(description.get(), pangoWeight(font.weight));
    pango_font_description_set_style(
        description.get(), font.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_absolute_size(description.get(), size * PANGO_SCALE);
    return description;
}

void setTextLanguage(std::string_view language)
{
    TextSystem& text = textSystem();
    text.cjkFamily = cjkFamily(language);
    std::string const name { language.empty() ? std::string_view { "en" } : language };
    pango_context_set_language(text.context.get(), pango_language_from_string(name.c_str()));
}

void warmUp()
{
    if (textSystem().isWarm)
        return;
    g_text.isWarm = true;
    Bitmap const bitmap = Bitmap::withPixels(64, 64);
    Context const context = bitmap.newContext();
    for (double const size : { 12.0, 17.0, 36.0 }) {
        for (double const weight : { FontWeight::kThin, FontWeight::kRegular, FontWeight::kMedium,
                 FontWeight::kSemibold, FontWeight::kBold }) {
            TextStyle style;
            style.font = systemFont(size, weight);
            drawText(context.get(), "Ag0 \u05d0 \u738b \U0001f382", style, bitmap.bounds(), Color::black());
        }
    }
}

}   // namespace phone::graphics
