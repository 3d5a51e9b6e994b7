#include "phone/kernel/property_list.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>

namespace phone {
namespace {

namespace fs = std::filesystem;

using Dictionary = PropertyListDictionary;
using Array = PropertyListArray;

std::string xml(std::string const& body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n"
        + body + "</plist>\n";
}

PropertyList read(std::string const& body)
{
    auto const file = readPropertyList(xml(body));
    return file ? file->root : PropertyList("error: " + file.message());
}

std::string problem(std::string const& document)
{
    auto const file = readPropertyList(document);
    return file ? "none" : file.message();
}

// Every kind, with values at its edges.
PropertyList everyKind()
{
    return Dictionary {
        { "false", false },
        { "true", true },
        { "integer", -42 },
        { "largest", std::numeric_limits<std::int64_t>::max() },
        { "smallest", std::numeric_limits<std::int64_t>::min() },
        { "unsigned", std::numeric_limits<std::uint64_t>::max() },
        { "real", 0.1 },
        { "infinite", -std::numeric_limits<double>::infinity() },
        { "text", "Gökçe <&> \"李\" 🎻\n two lines " },
        { "empty text", "" },
        { "date", Date { 803468460 } },
        { "far date", Date { 63113904000 } },
        { "early date", Date { -63113904000 } },
        { "data", Bytes { 0, 1, 2, 253, 254, 255 } },
        { "empty data", Bytes {} },
        { "array", Array { 1, "two", Array {}, Dictionary {} } },
        { "dictionary", Dictionary { { "a", Dictionary { { "b", Array { true } } } } } },
    };
}

TEST(PropertyList, ReadsEachKindFromXml)
{
    EXPECT_EQ(read("<true/>"), PropertyList(true));
    EXPECT_EQ(read("<integer>-1</integer>"), PropertyList(-1));
    EXPECT_EQ(read("<integer> 0x1F </integer>"), PropertyList(31));
    EXPECT_EQ(read("<integer>18446744073709551615</integer>"), PropertyList(std::uint64_t(-1)));
    EXPECT_EQ(read("<real>1.5</real>"), PropertyList(1.5));
    EXPECT_TRUE(std::isnan(*read("<real>nan</real>").as<double>()));
    EXPECT_EQ(read("<real>+infinity</real>"), PropertyList(HUGE_VAL));
    EXPECT_EQ(read("<string> a &lt;&amp;&#65;&#x1F3BB; </string>"), PropertyList(" a <&A🎻 "));
    EXPECT_EQ(read("<string><![CDATA[<a> & b]]></string>"), PropertyList("<a> & b"));
    EXPECT_EQ(read("<string/>"), PropertyList(""));
    EXPECT_EQ(read("<date>2026-06-18T09:41:00Z</date>"), PropertyList(Date { 803468460 }));
    EXPECT_EQ(read("<date>4001-01-01T00:00:00Z</date>"), PropertyList(Date { 63113904000 }));
    EXPECT_EQ(read("<data>\n\tAAEC\n\t/f7/\n</data>"), PropertyList(Bytes { 0, 1, 2, 253, 254, 255 }));
    EXPECT_EQ(read("<array><true/><false/></array>"), PropertyList(Array { true, false }));
    EXPECT_EQ(read("<dict/>"), PropertyList(Dictionary {}));
}

TEST(PropertyList, KeepsTheOrderOfKeysAndTheLastOfTwo)
{
    auto const list =
        read("<dict><key>b</key><true/><key>a</key><false/><key>b</key><string>2</string></dict>");
    auto const* dictionary = list.as<Dictionary>();
    ASSERT_TRUE(dictionary);
    ASSERT_EQ(dictionary->size(), 2U);
    EXPECT_EQ(dictionary->begin()->key, "b");
    EXPECT_EQ(*dictionary->find("b"), PropertyList("2"));
    EXPECT_EQ(dictionary->find("c"), nullptr);
}

TEST(PropertyList, ReadsXmlAsEditorsLeaveIt)
{
    auto const expected = PropertyList(Dictionary { { "a", 1 } });
    EXPECT_EQ(readPropertyList("\xEF\xBB\xBF" + xml("<dict><key>a</key><integer>1</integer></dict>"))->root,
        expected);
    EXPECT_EQ(readPropertyList("<dict><key>a</key><integer>1</integer></dict>")->root, expected);
    EXPECT_EQ(read("<!-- </dict><array> --><dict>\r\n<key>a</key> <!-- - -- --><integer>1</integer ></dict>"),
        expected);
    EXPECT_EQ(
        readPropertyList(
            "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><dict ><key>a</key><integer>1</integer></dict></plist>")
            ->root,
        expected);
    std::string utf16 = "\xFF\xFE";
    for (char c : xml("<dict><key>a</key><integer>1</integer></dict>"))
        (utf16 += c) += '\0';
    EXPECT_EQ(readPropertyList(utf16)->root, expected);
}

TEST(PropertyList, SaysWhatIsWrong)
{
    EXPECT_EQ(problem(""), "not a property list: the file is cut short (line 1)");
    EXPECT_EQ(problem("hello"), "not a property list: text where none belongs (line 1)");
    EXPECT_EQ(problem("<html/>"), "not a property list: unknown element 'html' (line 1)");
    EXPECT_EQ(problem("<plist>\n<dict>\n"), "not a property list: the file is cut short (line 3)");
    EXPECT_EQ(problem("<plist><dict></array></plist>"), "not a property list: 'dict' is not closed (line 1)");
    EXPECT_EQ(problem("<plist><dict><key>a</key></dict></plist>"),
        "not a property list: a key without a value (line 1)");
    EXPECT_EQ(problem("<plist><dict><true/></dict></plist>"),
        "not a property list: a value without a key (line 1)");
    EXPECT_EQ(
        problem("<plist><true/><true/></plist>"), "not a property list: more than one root value (line 1)");
    EXPECT_EQ(problem("<plist><integer>ten</integer></plist>"),
        "not a property list: a 'integer' that is none (line 1)");
    EXPECT_EQ(
        problem("<plist><date>today</date></plist>"), "not a property list: a 'date' that is none (line 1)");
    EXPECT_EQ(problem("<plist><real></real></plist>"), "not a property list: a 'real' that is none (line 1)");
    EXPECT_EQ(problem("<plist><string a=\"></array>\">x</string></plist>"),
        "not a property list: 'string' has attributes (line 1)");
    EXPECT_EQ(problem("<plist><string>\xFF</string></plist>"), "not a property list: the text is not UTF-8");
    EXPECT_EQ(
        problem("<plist><string>a & b</string></plist>"), "not a property list: a value in it is damaged");
    EXPECT_EQ(problem("<plist></plist>"), "not a property list: 'plist' is closed but was not open (line 1)");
    EXPECT_EQ(problem("<plist><!-- "), "not a property list: a comment has no end (line 1)");
    EXPECT_EQ(problem("bplist00"), "not a binary property list: the file is cut short");
    EXPECT_EQ(problem("bplist15xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"),
        "not a binary property list: of an unknown version");
}

TEST(PropertyList, GoesThroughXmlUnchanged)
{
    auto const text = writePropertyListXml(everyKind());
    ASSERT_TRUE(text);
    auto const file = readPropertyList(*text);
    ASSERT_TRUE(file) << file.message();
    EXPECT_EQ(file->format, PropertyListFormat::xml);
    EXPECT_EQ(file->root, everyKind());
}

TEST(PropertyList, GoesThroughBinaryUnchanged)
{
    auto const bytes = writePropertyListBinary(everyKind());
    ASSERT_TRUE(bytes);
    auto const file = readPropertyList(*bytes);
    ASSERT_TRUE(file) << file.message();
    EXPECT_EQ(file->format, PropertyListFormat::binary);
    EXPECT_EQ(file->root, everyKind());
}

TEST(PropertyList, BinaryKeepsFractionsOfASecond)
{
    PropertyList const list = Array { Date { 12.75 }, Date { -0.125 }, std::nan("") };
    auto const file = readPropertyList(*writePropertyListBinary(list));
    ASSERT_TRUE(file);
    auto const& array = *file->root.as<Array>();
    EXPECT_EQ(array[0], PropertyList(Date { 12.75 }));
    EXPECT_EQ(array[1], PropertyList(Date { -0.125 }));
    EXPECT_TRUE(std::isnan(*array[2].as<double>()));
}

TEST(PropertyList, IsWrittenAsThePlatformWritesIt)
{
    PropertyList const list = Dictionary {
        { "b", Array { 1, 2.5, true } },
        { "a", "x & y" },
        { "data", Bytes(60, 0x41) },
        { "none", Dictionary {} },
        { "when", Date { 0 } },
    };
    EXPECT_EQ(*writePropertyListXml(list),
        xml("<dict>\n"
            "\t<key>a</key>\n"
            "\t<string>x &amp; y</string>\n"
            "\t<key>b</key>\n"
            "\t<array>\n"
            "\t\t<integer>1</integer>\n"
            "\t\t<real>2.5</real>\n"
            "\t\t<true/>\n"
            "\t</array>\n"
            "\t<key>data</key>\n"
            "\t<data>\n"
            "\tQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFBQUFB\n"
            "\tQUFBQUFBQUFB\n"
            "\t</data>\n"
            "\t<key>none</key>\n"
            "\t<dict/>\n"
            "\t<key>when</key>\n"
            "\t<date>2001-01-01T00:00:00Z</date>\n"
            "</dict>\n"));
}

TEST(PropertyList, RefusesToWriteWhatCannotBeReadAgain)
{
    PropertyList deep = 1;
    for (std::size_t i = 1; i < kPropertyListMaximumDepth; ++i)
        deep = Array { deep };
    EXPECT_TRUE(writePropertyListXml(deep));
    EXPECT_EQ(readPropertyList(*writePropertyListXml(deep))->root, deep);
    EXPECT_EQ(readPropertyList(*writePropertyListBinary(deep))->root, deep);

    deep = Array { deep };
    EXPECT_FALSE(writePropertyListXml(deep));
    EXPECT_FALSE(writePropertyListBinary(deep));
    EXPECT_FALSE(writePropertyListXml(std::string("a\0b", 3)));
    EXPECT_FALSE(writePropertyListBinary("only text"));
}

TEST(PropertyList, RepairsTextThatIsNotUtf8WhenWriting)
{
    EXPECT_EQ(readPropertyList(*writePropertyListXml("a\xFFz"))->root, PropertyList("a\uFFFDz"));
    EXPECT_EQ(readPropertyList(*writePropertyListBinary(Array { "a\xFFz" }))->root,
        PropertyList(Array { "a\uFFFDz" }));
}

// What Python's plistlib and libplist's own tool write is read, and they read what is written here.
class OtherPrograms : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "corvel-plist-XXXXXX").string();
        ASSERT_TRUE(mkdtemp(name.data()));
        folder = name;
    }
    void TearDown() override { fs::remove_all(folder); }

    bool run(std::string const& command)
    {
        return std::system(("cd '" + folder.string() + "' && " + command).c_str()) == 0;
    }
    bool python(std::string const& script)
    {
        std::ofstream(folder / "script.py") << "import plistlib, datetime\n" << script;
        return run("python3 script.py");
    }
    Result<PropertyListFile> readFile(char const* name)
    {
        std::ostringstream text;
        text << std::ifstream(folder / name, std::ios::binary).rdbuf();
        return readPropertyList(text.str());
    }
    void writeFile(char const* name, std::string_view bytes)
    {
        std::ofstream(folder / name, std::ios::binary)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    fs::path folder;
    PropertyList const expected = Dictionary {
        { "contacts",
            Array { Dictionary { { "contactFirstName", "Gökçe" }, { "contactImage", Bytes { 0xFF, 0xD8, 0 } },
                        { "contactBirthday", Date { 803468460 } } },
                Dictionary { { "contactFirstName", "🎻" } } } },
        { "enabled", true },
        { "alpha", -1.5 },
        { "size", std::int64_t { -7 } },
        { "big", std::uint64_t { 1 } << 63 },
    };
    std::string const inPython =
        "value = {'contacts': [{'contactFirstName': 'Gökçe', 'contactImage': b'\\xff\\xd8\\0',\n"
        "  'contactBirthday': datetime.datetime(2026, 6, 18, 9, 41)}, {'contactFirstName': '🎻'}],\n"
        "  'enabled': True, 'alpha': -1.5, 'size': -7, 'big': 1 << 63}\n";
};

TEST_F(OtherPrograms, PythonsFilesAreRead)
{
    ASSERT_TRUE(python(inPython
        + "plistlib.dump(value, open('a.plist', 'wb'))\n"
          "plistlib.dump(value, open('b.plist', 'wb'), fmt=plistlib.FMT_BINARY)\n"));
    for (char const* name : { "a.plist", "b.plist" }) {
        auto const file = readFile(name);
        ASSERT_TRUE(file) << file.message();
        EXPECT_EQ(file->root, expected) << name;
    }
    EXPECT_EQ(readFile("b.plist")->format, PropertyListFormat::binary);
}

TEST_F(OtherPrograms, PythonReadsWhatIsWrittenHere)
{
    writeFile("a.plist", *writePropertyListXml(expected));
    auto const binary = *writePropertyListBinary(expected);
    writeFile("b.plist", { reinterpret_cast<char const*>(binary.data()), binary.size() });
    EXPECT_TRUE(python(inPython
        + "assert plistlib.load(open('a.plist', 'rb')) == value\n"
          "assert plistlib.load(open('b.plist', 'rb')) == value\n"));
}

TEST_F(OtherPrograms, PlistutilConvertsBothWays)
{
    writeFile("a.plist", *writePropertyListXml(expected));
    ASSERT_TRUE(run("plistutil -i a.plist -f bin -o b.plist && plistutil -i b.plist -f xml -o c.plist"));
    EXPECT_EQ(readFile("b.plist")->format, PropertyListFormat::binary);
    EXPECT_EQ(readFile("b.plist")->root, expected);
    EXPECT_EQ(readFile("c.plist")->root, expected);
}

TEST_F(OtherPrograms, UidsOfKeyedArchiversAreRead)
{
    ASSERT_TRUE(
        python("plistlib.dump({'$top': plistlib.UID(3)}, open('b.plist', 'wb'), fmt=plistlib.FMT_BINARY)\n"));
    EXPECT_EQ(
        readFile("b.plist")->root, PropertyList(Dictionary { { "$top", Dictionary { { "CF$UID", 3 } } } }));
}

}
}
