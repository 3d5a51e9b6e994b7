#include "phone/graphics/fonts.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace phone::graphics {

TEST(Fonts, SystemFontAt17HasTheLineHeightOfSanFrancisco)
{
    FontMetrics const metrics = systemFont(17).metrics();

    EXPECT_NEAR(metrics.lineHeight, 20.287, 0.001);
    EXPECT_NEAR(metrics.ascender, 16.187, 0.001);
    EXPECT_NEAR(metrics.descender, -4.101, 0.001);
    EXPECT_EQ(metrics.leading, 0);
}

TEST(Fonts, MetricsGrowWithTheSize)
{
    EXPECT_DOUBLE_EQ(systemFont(34).metrics().lineHeight, 2 * systemFont(17).metrics().lineHeight);
    EXPECT_DOUBLE_EQ(systemFont(17).withSize(34).metrics().ascender, systemFont(34).metrics().ascender);
}

TEST(Fonts, KnowTheNamesThatIosInstalls)
{
    auto const font = fontNamed("HelveticaNeue-BoldItalic", 10.5);

    ASSERT_TRUE(font);
    EXPECT_EQ(font->name, "HelveticaNeue-BoldItalic");
    EXPECT_EQ(font->family, "Helvetica Neue");
    EXPECT_EQ(font->weight, FontWeight::kBold);
    EXPECT_TRUE(font->italic);
    EXPECT_EQ(font->size, 10.5);
    EXPECT_EQ(fontNamed("Georgia", 12)->typeface, Typeface::serif);
    EXPECT_EQ(fontNamed("Menlo-Regular", 12)->typeface, Typeface::monospace);
    EXPECT_EQ(fontNamed("AvenirNext-DemiBold", 12)->weight, FontWeight::kSemibold);
    EXPECT_EQ(fontNamed(".SFUI-Medium", 12)->typeface, Typeface::system);
}

TEST(Fonts, FamilyNameMeansItsRegularFace)
{
    EXPECT_EQ(fontNamed("Helvetica Neue", 12)->name, "HelveticaNeue");
    EXPECT_EQ(fontNamed("Times New Roman", 12)->name, "TimesNewRomanPSMT");
}

TEST(Fonts, AnswerNoneForNamesThatIosDoesNotKnow)
{
    EXPECT_FALSE(fontNamed("", 12));
    EXPECT_FALSE(fontNamed("NoSuchFont-Bold", 12));
    EXPECT_FALSE(fontNamed("Inter", 12));
    EXPECT_FALSE(fontNamed("helveticaneue-bold ", 12));
}

TEST(Fonts, EveryNameIsListedOnceAndFound)
{
    std::set<std::string> seen;
    for (std::string const& name : fontNames()) {
        EXPECT_TRUE(seen.insert(name).second) << name;
        auto const font = fontNamed(name, 12);
        ASSERT_TRUE(font) << name;
        EXPECT_EQ(font->name, name);
        EXPECT_GT(font->metrics().lineHeight, 11);
        EXPECT_LT(font->metrics().descender, 0);
    }
    EXPECT_GT(seen.size(), 150u);
}

TEST(Fonts, UselessSizesBecome17)
{
    EXPECT_EQ(systemFont(0).size, 17);
    EXPECT_EQ(systemFont(-3).size, 17);
    EXPECT_EQ(systemFont(std::nan("")).size, 17);
    EXPECT_EQ(fontNamed("Georgia", -1)->size, 17);
}

TEST(Fonts, SystemFontIsNamedAfterItsWeight)
{
    EXPECT_EQ(systemFont(17).name, ".SFUI-Regular");
    EXPECT_EQ(systemFont(17, FontWeight::kMedium).name, ".SFUI-Medium");
    EXPECT_EQ(systemFont(17, 0.38).name, ".SFUI-Bold");
    EXPECT_EQ(systemFont(17, std::nan("")).name, ".SFUI-Regular");
    EXPECT_TRUE(italicSystemFont(17).italic);
    EXPECT_TRUE(monospacedDigitSystemFont(17).tabularDigits);
}

}   // namespace phone::graphics
