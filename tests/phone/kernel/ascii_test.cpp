#include "phone/kernel/ascii.hpp"

#include <gtest/gtest.h>

namespace phone {
namespace {

TEST(Ascii, TrimsSpacesAtTheEndsAlone)
{
    EXPECT_EQ(trimmed(" \t\n\v\f\r a b \r\n"), "a b");
    EXPECT_EQ(trimmed("ab"), "ab");
    EXPECT_EQ(trimmed(" \t "), "");
    EXPECT_EQ(trimmed(""), "");
    EXPECT_EQ(trimmed("\u00a0a"), "\u00a0a");
}

TEST(Ascii, TrimsTheCharactersGiven)
{
    EXPECT_EQ(trimmed(" \n5\n ", " "), "\n5\n");
    EXPECT_EQ(trimmed("xxaxx", "x"), "a");
}

TEST(Ascii, LowersItsOwnLettersAlone)
{
    EXPECT_EQ(lowercase("AZ az [@] 09"), "az az [@] 09");
    EXPECT_EQ(lowercase("ÄÉ"), "ÄÉ");
    EXPECT_EQ(lowercase(""), "");
}

}
}
