#include "phone/graphics/text.hpp"

#include "phone/graphics/bitmap.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace phone::graphics {

namespace {

TextStyle styled(double size, int maxLines = 1)
{
    TextStyle style;
    style.font = systemFont(size);
    style.maxLines = maxLines;
    return style;
}

constexpr char kLong[] = "The quick brown fox jumps over the lazy dog and goes on running";

// Columns of the bitmap that the text touches.
struct Extent {
    int left { -1 };
    int right { -1 };
    int top { -1 };
    int bottom { -1 };
    bool isColored { false };
};

Extent drawn(std::string_view text, TextStyle const& style, Rect const& rect, double scale = 1,
    VerticalAlignment vertical = VerticalAlignment::center)
{
    Bitmap const bitmap = Bitmap::withPoints({ 300, 100 }, scale);
    drawText(bitmap.newContext().get(), text, style, rect, Color::black(), vertical);
    Extent extent;
    for (int y = 0; y < bitmap.pixelHeight(); ++y) {
        for (int x = 0; x < bitmap.pixelWidth(); ++x) {
            std::uint32_t const pixel = bitmap.row(y)[x];
            if (pixel >> 24 < 40)
                continue;
            extent.left = extent.left < 0 ? x : std::min(extent.left, x);
            extent.right = std::max(extent.right, x);
            extent.top = extent.top < 0 ? y : extent.top;
            extent.bottom = y;
            extent.isColored = extent.isColored || (pixel & 0xffffff) != 0;
        }
    }
    return extent;
}

}   // namespace

TEST(Text, EmptyTextHasNoSizeAndDrawsNothing)
{
    EXPECT_EQ(measureText("", styled(17)), Size {});
    EXPECT_EQ(TextLayout("", styled(17)).lineCount(), 0);
    EXPECT_EQ(drawn("", styled(17), { 0, 0, 300, 100 }).left, -1);
}

TEST(Text, HeightComesFromTheFontWhateverTheScript)
{
    for (char const* const text : { "Zoë", "דנה", "王芳", "👩‍🚀", "Ådg" })
        EXPECT_NEAR(measureText(text, styled(17)).height, 20.287, 0.001) << text;
}

TEST(Text, WidthGrowsWithTheSizeAndTheWeight)
{
    TextStyle heavy = styled(17);
    heavy.font = systemFont(17, FontWeight::kBold);

    EXPECT_NEAR(
        measureText("Hamburg", styled(16)).width * 17 / 16, measureText("Hamburg", styled(17)).width, 0.01);
    EXPECT_GT(measureText("Hamburg", heavy).width, measureText("Hamburg", styled(17)).width * 1.03);
}

TEST(Text, DisplayCutIsTighterFromTwentyPointsOn)
{
    double const text = measureText("Hamburg", styled(19.99)).width / 19.99;
    double const display = measureText("Hamburg", styled(20)).width / 20;

    EXPECT_LT(display, text * 0.99);
}

TEST(Text, FitsTheWidthItWasMeasuredAt)
{
    for (double size = 9; size < 40; size += 0.7) {
        for (char const* const text :
            { "Hamburgefonstiv", "İbrahim Çağrı", "שלום עולם", "王芳 楽しみ", "A 👩‍🚀 B" }) {
            double const width = measureText(text, styled(size)).width;
            TextLayout const layout(text, styled(size), width);
            EXPECT_FALSE(layout.isTruncated()) << text << " at " << size;
            EXPECT_EQ(TextLayout(text, styled(size, 0), width).lineCount(), 1) << text << " at " << size;
        }
    }
}

TEST(Text, TruncatesAtTheTail)
{
    TextLayout const layout(kLong, styled(17), 120);

    EXPECT_TRUE(layout.isTruncated());
    EXPECT_EQ(layout.lineCount(), 1);
    EXPECT_LE(layout.size().width, 120.01);
    EXPECT_GT(layout.size().width, 90);
}

TEST(Text, WrapsAtWordsUpToTheLinesAllowed)
{
    TextLayout const any(kLong, styled(17, 0), 150);
    TextLayout const two(kLong, styled(17, 2), 150);

    EXPECT_EQ(any.lineCount(), 4);
    EXPECT_FALSE(any.isTruncated());
    EXPECT_EQ(two.lineCount(), 2);
    EXPECT_TRUE(two.isTruncated());
    EXPECT_NEAR(two.size().height, 2 * 20.287, 0.001);
}

TEST(Text, BreaksAWordThatIsWiderThanTheLine)
{
    TextLayout const layout("Donaudampfschifffahrtsgesellschaft", styled(17, 0), 80);

    EXPECT_GT(layout.lineCount(), 2);
    EXPECT_LE(layout.size().width, 80.01);
}

TEST(Text, HeightLimitsTheLinesButKeepsTheFirst)
{
    EXPECT_EQ(TextLayout(kLong, styled(17, 0), 150, 45).lineCount(), 2);
    EXPECT_TRUE(TextLayout(kLong, styled(17, 0), 150, 45).isTruncated());
    EXPECT_EQ(TextLayout(kLong, styled(17, 0), 150, 3).lineCount(), 1);
    EXPECT_EQ(TextLayout(kLong, styled(17, 3), 150, 2000).lineCount(), 3);
}

TEST(Text, ParagraphsBeginNewLines)
{
    EXPECT_EQ(TextLayout("one\ntwo\r\nthree", styled(17, 0)).lineCount(), 3);
    EXPECT_EQ(TextLayout("Thank you\n\nClick\n\nConfigure", styled(12, 7)).lineCount(), 5);
    EXPECT_FALSE(TextLayout("Thank you\n\nClick\n\nConfigure", styled(12, 7)).isTruncated());
}

TEST(Text, SaysWithAnEllipsisThatParagraphsAreMissing)
{
    TextLayout const cut("one\ntwo\nthree", styled(17, 2));
    TextLayout const plain("one\ntwo", styled(17, 2));

    EXPECT_TRUE(cut.isTruncated());
    EXPECT_EQ(cut.lineCount(), 2);
    EXPECT_FALSE(plain.isTruncated());
    EXPECT_GT(measureText("one\ntwo", styled(17, 1)).width, measureText("one", styled(17)).width + 5);
}

TEST(Text, ClipCutsLinesWithoutEllipsis)
{
    TextStyle style = styled(17);
    style.truncation = Truncation::clip;

    EXPECT_NEAR(TextLayout(kLong, style, 100).size().width, measureText(kLong, styled(17)).width, 0.01);
}

TEST(Text, ShrinksToFitDownToTheScaleAllowed)
{
    TextStyle style = styled(17);
    style.minimumScale = 0.5;
    double const natural = measureText("İbrahim", styled(17)).width;

    TextLayout const fits("İbrahim", style, natural + 1);
    TextLayout const shrunk("İbrahim", style, natural * 0.7);
    TextLayout const cut("İbrahim", style, natural * 0.3);

    EXPECT_EQ(fits.fontScale(), 1);
    EXPECT_NEAR(shrunk.fontScale(), 0.7, 0.01);
    EXPECT_LE(shrunk.size().width, natural * 0.7 + 0.01);
    EXPECT_FALSE(shrunk.isTruncated());
    EXPECT_EQ(cut.fontScale(), 0.5);
    EXPECT_TRUE(cut.isTruncated());
    EXPECT_NEAR(shrunk.size().height, 20.287 * shrunk.fontScale(), 0.001);
}

TEST(Text, SeveralLinesNeverShrink)
{
    TextStyle style = styled(17, 2);
    style.minimumScale = 0.5;

    EXPECT_EQ(TextLayout(kLong, style, 100).fontScale(), 1);
}

TEST(Text, AlignsAsTold)
{
    TextStyle style = styled(17);
    Rect const rect { 100, 0, 100, 100 };
    double const width = measureText("Ill", style).width;

    style.alignment = TextAlignment::left;
    EXPECT_NEAR(drawn("Ill", style, rect).left, 101, 2);
    style.alignment = TextAlignment::right;
    EXPECT_NEAR(drawn("Ill", style, rect).right, 198, 2);
    style.alignment = TextAlignment::center;
    EXPECT_NEAR(drawn("Ill", style, rect).left, 150 - width / 2 + 1, 2);
}

TEST(Text, NaturalAlignmentFollowsTheInterfaceAndNotTheText)
{
    TextStyle style = styled(17);
    Rect const rect { 50, 0, 200, 100 };

    EXPECT_LT(drawn("דנה", style, rect).left, 55);
    EXPECT_LT(drawn("Dana", style, rect).left, 55);
    style.direction = WritingDirection::rightToLeft;
    EXPECT_GT(drawn("Dana", style, rect).right, 245);
    EXPECT_GT(drawn("דנה", style, rect).right, 245);
}

TEST(Text, BaseDirectionFollowsTheFirstStrongCharacter)
{
    // A narrow dot after the Hebrew word is drawn to its left, after the Latin one to its right.
    TextStyle const style = styled(40);
    Rect const rect { 20, 0, 250, 100 };
    double const dot = measureText("…", style).width;

    Extent const hebrew = drawn("ווו…", style, rect);
    Extent const latin = drawn("lll…", style, rect);

    auto lowestInkColumn = [&](std::string_view text, bool fromLeft) {
        Bitmap const bitmap = Bitmap::withPixels(300, 100);
        drawText(bitmap.newContext().get(), text, style, rect, Color::black());
        int tall = -1;   // outermost column with ink well above the baseline
        for (int i = 0; i < 300; ++i) {
            int const x = fromLeft ? i : 299 - i;
            for (int y = 0; y < 52 && tall < 0; ++y) {
                if (bitmap.row(y)[x] >> 24 > 128)
                    tall = x;
            }
        }
        return tall;
    };
    EXPECT_GT(lowestInkColumn("ווו…", true) - hebrew.left, dot * 0.6);
    EXPECT_GT(latin.right - lowestInkColumn("lll…", false), dot * 0.6);
}

TEST(Text, StandsAtTopMiddleOrBottom)
{
    TextStyle const style = styled(17);
    Rect const rect { 0, 0, 300, 100 };

    EXPECT_LT(drawn("H", style, rect, 1, VerticalAlignment::top).bottom, 20);
    EXPECT_NEAR(drawn("H", style, rect, 1, VerticalAlignment::center).bottom, 55, 3);
    EXPECT_GT(drawn("H", style, rect, 1, VerticalAlignment::bottom).top, 78);
}

TEST(Text, LiesAtTheSamePointsAtEveryScale)
{
    TextStyle const style = styled(17, 2);
    Rect const rect { 10, 5, 180, 90 };
    Extent const once = drawn(kLong, style, rect, 1);
    Extent const thrice = drawn(kLong, style, rect, 3);

    EXPECT_NEAR(thrice.left / 3.0, once.left, 1.1);
    EXPECT_NEAR(thrice.right / 3.0, once.right, 1.1);
    EXPECT_NEAR(thrice.top / 3.0, once.top, 1.1);
    EXPECT_NEAR(thrice.bottom / 3.0, once.bottom, 1.1);
}

TEST(Text, EmojiHaveColourAndLettersDoNot)
{
    EXPECT_TRUE(drawn("🎂", styled(30), { 0, 0, 300, 100 }).isColored);
    EXPECT_FALSE(drawn("cake", styled(30), { 0, 0, 300, 100 }).isColored);
}

TEST(Text, EmojiFadeWithTheColoursAlpha)
{
    Bitmap const bitmap = Bitmap::withPixels(60, 60);

    drawText(bitmap.newContext().get(), "🎂", styled(40), { 0, 0, 60, 60 }, Color::black(0.25));

    std::uint32_t highest = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 60; ++x)
            highest = std::max(highest, bitmap.row(y)[x] >> 24);
    }
    EXPECT_NEAR(highest, 64u, 2);
}

TEST(Text, TabularDigitsAreAllAsWide)
{
    TextStyle style = styled(17);
    EXPECT_GT(measureText("88888", style).width, measureText("11111", style).width + 5);

    style.font = monospacedDigitSystemFont(17);

    EXPECT_NEAR(measureText("88888", style).width, measureText("11111", style).width, 0.01);
}

TEST(Text, TrackingWidensTheGapsBetweenLetters)
{
    TextStyle style = styled(10);
    double const plain = measureText("ABC", style).width;
    style.tracking = 2;

    EXPECT_NEAR(measureText("ABC", style).width, plain + 4, 0.01);
}

TEST(Text, NamedFontsLookDifferent)
{
    TextStyle style = styled(17);
    style.font = *fontNamed("Menlo-Regular", 17);

    EXPECT_NEAR(measureText("iiii", style).width, measureText("WWWW", style).width, 0.01);
    style.font = *fontNamed("Georgia", 17);
    EXPECT_NE(measureText("Hamburg", style).width, measureText("Hamburg", styled(17)).width);
}

TEST(Text, BadBytesShowAsReplacementCharacters)
{
    EXPECT_EQ(validUtf8("a\xff"
                        "b"),
        "a\uFFFDb");
    EXPECT_EQ(validUtf8(std::string_view("a\0b", 3)), "a\uFFFDb");
    EXPECT_EQ(validUtf8(""), "");
    EXPECT_GT(measureText("\xff\xfe", styled(17)).width, 0);
}

TEST(Text, HugeTextIsCutInsteadOfTakingForever)
{
    std::string const huge(3'000'000, 'x');

    TextLayout const layout(huge, styled(17), 100);

    EXPECT_TRUE(layout.isTruncated());
    EXPECT_LE(layout.size().width, 100.01);
}

TEST(Text, NonsensicalLimitsAreNoLimits)
{
    double const nan = std::nan("");
    double const width = measureText("Zoë", styled(17)).width;

    EXPECT_EQ(TextLayout("Zoë", styled(17), nan, nan).size().width, width);
    EXPECT_EQ(TextLayout("Zoë", styled(17), -5, -5).size().width, width);
    EXPECT_EQ(TextLayout("Zoë", styled(17), 1e300, 1e300).size().width, width);
}

TEST(Text, MakesThePathOfItsOutlines)
{
    Bitmap const bitmap = Bitmap::withPixels(100, 40);
    Context const context = bitmap.newContext();
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;

    TextLayout("Hill", styled(20)).addPath(context.get(), { 10, 0, 90, 40 });
    cairo_path_extents(context.get(), &left, &top, &right, &bottom);

    EXPECT_NEAR(left, 12, 2);
    EXPECT_NEAR(bottom - top, 15, 2);
}

TEST(FirstCharacter, IsWhatAReaderTakesForOne)
{
    EXPECT_EQ(firstCharacter("Zoë"), "Z");
    EXPECT_EQ(firstCharacter("王芳"), "王");
    EXPECT_EQ(firstCharacter("👩‍🚀 Ada"), "👩‍🚀");
    EXPECT_EQ(firstCharacter("🇹🇷 Türkiye"), "🇹🇷");
    EXPECT_EQ(firstCharacter("👍🏽!"), "👍🏽");
    EXPECT_EQ(firstCharacter("e\u0301a"), "e\u0301");
    EXPECT_EQ(firstCharacter(" x"), " ");
    EXPECT_EQ(firstCharacter(""), "");
    EXPECT_EQ(firstCharacter("\xff"), "\uFFFD");
}

}   // namespace phone::graphics
