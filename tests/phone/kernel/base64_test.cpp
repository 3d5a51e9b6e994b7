#include "phone/kernel/base64.hpp"

#include <gtest/gtest.h>

namespace {

using phone::Bytes;

std::string base64Of(std::string_view bytes) { return phone::base64(bytes.data(), bytes.size()); }

std::optional<std::string> decoded(std::string_view text)
{
    auto const bytes = phone::bytesOfBase64(text);
    return bytes ? std::optional(std::string(bytes->begin(), bytes->end())) : std::nullopt;
}

// RFC 4648, section 10.
TEST(Base64, WritesAndReadsTheStandardsExamples)
{
    for (auto const& [bytes, text] : { std::pair { "", "" }, { "f", "Zg==" }, { "fo", "Zm8=" },
             { "foo", "Zm9v" }, { "foob", "Zm9vYg==" }, { "fooba", "Zm9vYmE=" }, { "foobar", "Zm9vYmFy" } }) {
        EXPECT_EQ(base64Of(bytes), text);
        EXPECT_EQ(decoded(text), bytes);
    }
}

TEST(Base64, ReadsEveryByteAgain)
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    EXPECT_EQ(decoded(base64Of(all)), all);
}

TEST(Base64, ReadsWhatOthersWrite)
{
    EXPECT_EQ(decoded(" Zm9v\r\n\tYm Fy\n"), "foobar");
    EXPECT_EQ(decoded("Zm8"), "fo");
    EXPECT_EQ(decoded("Zg"), "f");
    EXPECT_EQ(decoded("-_-_"), decoded("+/+/"));
    EXPECT_EQ(decoded("+/+/"), "\xFB\xFF\xBF");
}

TEST(Base64, RefusesEverythingElse)
{
    for (char const* text : { "*", "Zm9v.", "Z", "Zm9vY", "Zg==Zg==", "=Zg", "Zm9v\xC3\xBC" })
        EXPECT_EQ(decoded(text), std::nullopt) << text;
}

}
