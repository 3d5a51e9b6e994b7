#include "phone/kernel/text_encoding.hpp"

#include <gtest/gtest.h>

namespace phone {
namespace {

using namespace std::string_literals;

TEST(Utf8, TellsWellFormedFromOther)
{
    EXPECT_TRUE(isUtf8("Gökçe 李 🎻"));
    EXPECT_TRUE(isUtf8(""));
    for (char const* text : { "\x80", "\xC3", "\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF0\x80\x80\x80",
             "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "a\xE2\x82" })
        EXPECT_FALSE(isUtf8(text));
}

TEST(Utf8, IsRepairedByteByByte)
{
    EXPECT_EQ(repairedUtf8("a\xE2\x82z"), "a\uFFFD\uFFFDz");
    EXPECT_EQ(repairedUtf8("Gökçe"), "Gökçe");
}

TEST(Utf16, BecomesUtf8)
{
    EXPECT_EQ(utf8FromUtf16("\0G\0\xF6\xD8\x3C\xDF\xBB"s, ByteOrder::bigEndian), "Gö🎻");
    EXPECT_EQ(utf8FromUtf16("G\0\xF6\0"s, ByteOrder::littleEndian), "Gö");
    EXPECT_EQ(utf8FromUtf16("\xD8\x3C\0A"s, ByteOrder::bigEndian), "\uFFFDA");
    EXPECT_EQ(utf8FromUtf16("\xDF\xBB\0"s, ByteOrder::bigEndian), "\uFFFD\uFFFD");
}

TEST(Windows1252, BecomesUtf8) { EXPECT_EQ(utf8FromWindows1252("J\xF6rg \x80 \x9F"), "Jörg € Ÿ"); }

}
}
