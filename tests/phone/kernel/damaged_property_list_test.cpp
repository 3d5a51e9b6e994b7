// Damaged and hostile property lists: each gives a value or one error, quickly, and nothing else. Run under
// AddressSanitizer and UndefinedBehaviorSanitizer as well.
#include "phone/kernel/property_list.hpp"
#include "tests/phone/kernel/bytes.hpp"

#include <gtest/gtest.h>
#include <random>

namespace phone {
namespace {

using Dictionary = PropertyListDictionary;
using Array = PropertyListArray;

PropertyList contacts(std::size_t count, std::size_t photoSize)
{
    Array list;
    for (std::size_t i = 0; i < count; ++i) {
        list.push_back(Dictionary {
            { "contactFirstName", "First " + std::to_string(i) },
            { "contactLastName", i % 2 ? "Łukasz 李" : "Last" },
            { "contactBirthday", Date { static_cast<double>(i) * 86400 } },
            { "contactImage", Bytes(photoSize, static_cast<std::uint8_t>(i)) },
            { "index", static_cast<std::int64_t>(i) - 5 },
            { "weight", 0.5 },
            { "flag", i % 3 == 0 },
        });
    }
    return Dictionary { { "contactsArray", list } };
}

// Reads it and tells whether there was a value. A crash, a hang or a sanitizer's report fails the test.
bool survives(std::string_view file)
{
    auto const list = readPropertyList(file);
    if (!list) {
        EXPECT_FALSE(list.message().empty());
        EXPECT_EQ(list.message().find('\n'), std::string::npos);
    }
    return list.hasValue();
}

// A binary property list of these objects, with one-byte references and the first as its root.
std::string binary(std::vector<std::string> const& objects)
{
    std::string file = "bplist00";
    std::string table;
    for (std::string const& object : objects) {
        table += static_cast<char>(file.size() >> 8);
        table += static_cast<char>(file.size() & 0xFF);
        file += object;
    }
    auto const append64 = [&](std::size_t value) {
        for (int shift = 56; shift >= 0; shift -= 8)
            file += static_cast<char>(value >> shift & 0xFF);
    };
    std::size_t const place = file.size();
    file += table;
    file.append(6, '\0');
    file += "\x02\x01";
    append64(objects.size());
    append64(0);
    append64(place);
    return file;
}

std::string nested(std::string const& open, std::string const& close, std::size_t depth)
{
    std::string text = "<plist version=\"1.0\">";
    for (std::size_t i = 0; i < depth; ++i)
        text += open;
    text += "<true/>";
    for (std::size_t i = 0; i < depth; ++i)
        text += close;
    return text + "</plist>";
}

TEST(DamagedPropertyList, CutShortAnywhere)
{
    std::string const xml = *writePropertyListXml(contacts(3, 40));
    std::size_t const end = xml.rfind("</plist>") + std::string("</plist>").size();
    for (std::size_t size = 0; size <= xml.size(); ++size)
        EXPECT_EQ(survives(std::string_view(xml).substr(0, size)), size >= end) << size;

    std::string const bytes = textOf(*writePropertyListBinary(contacts(3, 40)));
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(survives(std::string_view(bytes).substr(0, size))) << size;
    EXPECT_TRUE(survives(bytes));
}

TEST(DamagedPropertyList, EachByteFlipped)
{
    std::string const xml = *writePropertyListXml(contacts(2, 10));
    std::string const bytes = textOf(*writePropertyListBinary(contacts(2, 10)));
    for (std::string const& good : { xml, bytes }) {
        for (std::size_t place = 0; place < good.size(); ++place) {
            for (int change : { 0x01, 0x80, 0xFF, 0x10 }) {
                std::string damaged = good;
                damaged[place] = static_cast<char>(damaged[place] ^ change);
                survives(damaged);
            }
        }
    }
}

TEST(DamagedPropertyList, ManyBytesReplacedByChance)
{
    std::mt19937 random(20260618);
    std::string const xml = *writePropertyListXml(contacts(4, 20));
    std::string const bytes = textOf(*writePropertyListBinary(contacts(4, 20)));
    for (int round = 0; round < 3000; ++round) {
        std::string damaged = round % 2 ? xml : bytes;
        int const changes = 1 + static_cast<int>(random() % 20);
        for (int i = 0; i < changes; ++i)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        if (round % 5 == 0)
            damaged.erase(random() % damaged.size(), random() % 50);
        survives(damaged);
    }
}

TEST(DamagedPropertyList, NoiseAfterTheMark)
{
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string noise = "bplist00";
        std::size_t const size = 32 + random() % 200;
        for (std::size_t i = 0; i < size; ++i)
            noise += static_cast<char>(random() % 4 ? random() % 24 : random());
        survives(noise);
    }
}

TEST(DamagedPropertyList, WrongRoots)
{
    EXPECT_EQ(readPropertyList("<plist><string>settings</string></plist>")->root, PropertyList("settings"));
    EXPECT_EQ(readPropertyList("<plist><array/></plist>")->root, PropertyList(Array {}));
    EXPECT_FALSE(survives("{ a = 1; }"));
    EXPECT_FALSE(survives("{\"a\": 1}"));
    EXPECT_FALSE(survives("PK\x03\x04"));
    EXPECT_FALSE(survives(std::string_view("\0\0\0\0", 4)));
}

TEST(DamagedPropertyList, NestedTenThousandDeep)
{
    EXPECT_TRUE(survives(nested("<array>", "</array>", 510)));
    for (std::size_t depth : { 513, 10'000, 1'000'000 }) {
        EXPECT_FALSE(survives(nested("<array>", "</array>", depth))) << depth;
        EXPECT_FALSE(survives(nested("<dict><key>a</key>", "</dict>", depth))) << depth;
        // Comments that seem to close what they do not.
        EXPECT_FALSE(survives(nested("<array><!-- </array> -->", "</array>", depth))) << depth;
        EXPECT_FALSE(survives(nested("<array x=\"></array>\">", "</array>", depth))) << depth;
    }
}

TEST(DamagedPropertyList, BinaryNestedTenThousandDeep)
{
    for (bool isBackwards : { false, true }) {
        // Each object is an array of the next, with two-byte references.
        constexpr std::size_t kDepth = 10'000;
        std::string file = "bplist00";
        std::string table;
        for (std::size_t i = 0; i < kDepth; ++i) {
            table += static_cast<char>(file.size() >> 16 & 0xFF);
            table += static_cast<char>(file.size() >> 8 & 0xFF);
            table += static_cast<char>(file.size() & 0xFF);
            bool const isLast = isBackwards ? i == 0 : i == kDepth - 1;
            std::size_t const next = isBackwards ? i - 1 : i + 1;
            if (isLast)
                file += '\x09';
            else
                (((file += '\xA1') += static_cast<char>(next >> 8 & 0xFF)) += static_cast<char>(next & 0xFF));
        }
        std::size_t const place = file.size();
        file += table;
        file.append(6, '\0');
        file += "\x03\x02";
        for (std::size_t value : { kDepth, isBackwards ? kDepth - 1 : 0, place }) {
            for (int shift = 56; shift >= 0; shift -= 8)
                file += static_cast<char>(value >> shift & 0xFF);
        }
        EXPECT_EQ(readPropertyList(file).message(), "not a binary property list: nested too deeply");
    }
}

TEST(DamagedPropertyList, ValuesThatHoldThemselves)
{
    EXPECT_EQ(readPropertyList(binary({ std::string("\xA1\x00", 2) })).message(),
        "not a binary property list: a value holds itself");
    EXPECT_EQ(readPropertyList(binary({ "\xA1\x01", std::string("\xD1\x02\x00", 3),
                                   "\x51"
                                   "k" }))
                  .message(),
        "not a binary property list: a value holds itself");
    EXPECT_TRUE(survives(binary({ "\xA2\x01\x01", "\xA1\x02", "\x09" }))) << "shared values are no circle";
}

TEST(DamagedPropertyList, SharedValuesThatWouldExplode)
{
    // Thirty arrays, each of ten references to the next: 10^30 values once copied, which would not end.
    std::vector<std::string> objects;
    for (char i = 1; i <= 30; ++i)
        objects.push_back("\xAA" + std::string(10, i));
    objects.push_back("\x09");
    EXPECT_EQ(readPropertyList(binary(objects)).message(), "not a binary property list: too many values");
}

TEST(DamagedPropertyList, LengthsAndReferencesThatLeadOutside)
{
    using namespace std::string_literals;
    for (std::string const& object : {
             "\x4F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s,   // data of 2^63 - 1 bytes
             "\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s,   // text
             "\x6F\x13\x80\x00\x00\x00\x00\x00\x00\x01"s,   // UTF-16: twice the length overflows
             "\xAF\x13\x20\x00\x00\x00\x00\x00\x00\x00"s,   // array
             "\xDF\x13\x10\x00\x00\x00\x00\x00\x00\x00"s,   // dictionary
             "\x4F\x14"s,
             "\x4F"s,
             "\x4F\x22"s,
             "\xA1\x09"s,
             "\xD1\x01"s,
             "\x1F"s,
             "\x27"s,
             "\x00"s,
             "\x0F"s,
             "\x70"s,
             "\xB0"s,
             "\xC1\x00"s,
             "\xE0"s,
             "\xF0"s,
             "\x30"s,
             "\x8F"s,
         })
        EXPECT_FALSE(survives(binary({ object })));
    EXPECT_FALSE(survives(binary({ "\xD1\x01\x01", "\x09" }))) << "a key that is no text";
}

TEST(DamagedPropertyList, OddTextInBinary)
{
    using namespace std::string_literals;
    EXPECT_EQ(readPropertyList(binary({ "\xA1\x01", "\x62\xD8\x3C\0A"s }))->root.as<Array>()->size(), 1U);
    EXPECT_TRUE(survives(binary({ "\xA1\x01",
        "\x53"
        "a\xFFz" })));
    EXPECT_TRUE(survives(binary({ "\xA1\x01",
        "\x53"
        "a\0z"s })));
}

TEST(LargePropertyList, TenThousandEntries)
{
    PropertyList const list = contacts(10'000, 16);
    EXPECT_EQ(readPropertyList(*writePropertyListXml(list))->root, list);
    EXPECT_EQ(readPropertyList(*writePropertyListBinary(list))->root, list);
}

TEST(LargePropertyList, AFiftyMegabytePhoto)
{
    PropertyList const list = contacts(1, 50'000'000);
    EXPECT_EQ(readPropertyList(*writePropertyListXml(list))->root, list);
    EXPECT_EQ(readPropertyList(*writePropertyListBinary(list))->root, list);
}

TEST(LargePropertyList, ManyKeysInOneDictionary)
{
    std::string text = "<plist><dict>";
    for (int i = 0; i < 20'000; ++i)
        text += "<key>k" + std::to_string(i) + "</key><true/>";
    text += "</dict></plist>";
    auto const file = readPropertyList(text);
    ASSERT_TRUE(file) << file.message();
    EXPECT_EQ(file->root.as<Dictionary>()->size(), 20'000U);
}

TEST(LargePropertyList, FiveMillionValuesAreRefused)
{
    std::string text = "<plist><array>";
    for (int i = 0; i < 5'000'000; ++i)
        text += "<true/>";
    EXPECT_FALSE(survives(text + "</array></plist>"));
}

}
}
