#include "plugin/strip/colors.hpp"

#include "tests/support/phone_fixture.hpp"

#include <ostream>

namespace {

struct ColorRow {
    char const* text;
    unsigned rgba;   // 0xrrggbbaa
    friend std::ostream& operator<<(std::ostream& out, ColorRow const& row)
    {
        return out << '"' << row.text << '"';
    }
};

class ColourString : public phone::CorvelTest, public testing::WithParamInterface<ColorRow> { };

TEST_P(ColourString, IsReadAsWritten)
{
    boot();
    auto const component = [](int shift) -> CGFloat {
        return static_cast<float>(GetParam().rgba >> shift & 0xff) / 255.0f;
    };

    UIColor const color = colorWithHexString(NSString::stringWithUTF8String(GetParam().text));

    EXPECT_TRUE(
        color.isEqual(UIColor::colorWithRed(component(24), component(16), component(8), component(0))))
        << color.description().UTF8String();
}

INSTANTIATE_TEST_SUITE_P(Forms, ColourString,
    testing::Values(ColorRow { "#fff", 0xffffffff }, ColorRow { "#123", 0x112233ff },
        ColorRow { "abc", 0xaabbccff }, ColorRow { "#ff0000", 0xff0000ff },
        ColorRow { "ff000080", 0xff000080 }, ColorRow { "#00FF7f01", 0x00ff7f01 },
        ColorRow { "##f#f#f", 0xffffffff }, ColorRow { "#1234", 0x00001234 },
        ColorRow { "#abcde", 0x000abcde }, ColorRow { "#1234567", 0x01234567 },
        ColorRow { "#123456789", 0xffffffff }, ColorRow { "", 0 }, ColorRow { "#", 0 },
        ColorRow { "0xf0", 0xf0 }, ColorRow { "\u05D0\u05D1\u05D2", 0 }, ColorRow { "f", 0xf },
        ColorRow { "#ff00f", 0x000ff00f },
        // Six signs are opaque whatever they are, and are then read as far as they can be.
        ColorRow { "0xabcd", 0x00abcdff }, ColorRow { "ff00zz", 0x0000ff00 }, ColorRow { "zzz", 0 },
        ColorRow { " fff", 0x00000fff }));

class NoColourString : public phone::CorvelTest { };

TEST_F(NoColourString, IsClear)
{
    boot();
    EXPECT_TRUE(colorWithHexString(nullptr).isEqual(UIColor::colorWithRed(0, 0, 0, 0)));
}

}
