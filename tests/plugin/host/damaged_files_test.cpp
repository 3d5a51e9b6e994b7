// Damaged property lists, in the place of the settings and of the contact list: the phone boots, and the strip shows what can be
// read. Each file is made here, from a fixed seed, so that a failure can be repeated.
#include "tests/plugin/host/device_files.hpp"

#include <random>

namespace phone {

namespace {

constexpr std::size_t kCuts = 30;    // of each format
constexpr std::size_t kFlips = 30;   // of each format; files, each with a few bytes changed
constexpr std::size_t kEntriesWithPhoto = 12;

// Two files that hold everything that either of them may: settings and list in one. No `isEnabled`, so that no damage to its
// value can switch the strip off.
PropertyList wholeFile()
{
    PropertyListArray list;
    for (std::size_t i = 0; i < kEntriesWithPhoto; ++i)
        list.push_back(PropertyListDictionary { { "contactFirstName", "Anna" }, { "contactLastName", "דנה" },
            { "contactUniqueIdentifier", "id" }, { "contactImage", Bytes(40, std::uint8_t(i)) },
            { "contactBirthday", Date { 1e8 * double(i) } }, { "contactPhoneNumber", "112" },
            { "contactEmail", "" } });
    return PropertyListDictionary { { "contactsArray", list }, { "styleCustomTitle", "Title" },
        { "titleColor", "#ff0000" }, { "styleFont", "Georgia" }, { "titlePos", 3 }, { "bannerStyle", 2 },
        { "viewAlpha", 0.5 }, { "darkMode", false }, { "isPaging", true }, { "isAlwaysOnTop", true } };
}

Bytes xmlFile() { return bytesOf(*writePropertyListXml(wholeFile())); }
Bytes binaryFile() { return *writePropertyListBinary(wholeFile()); }

Bytes cutShort(Bytes file, std::size_t step, std::size_t steps)
{
    file.resize(file.size() * step / steps);
    return file;
}

Bytes flipped(Bytes file, unsigned seed)
{
    std::mt19937 random(seed);
    for (unsigned i = 0; i <= seed % 5; ++i)
        file[random() % file.size()] ^= std::uint8_t(1 + random() % 255);
    return file;
}

std::string repeated(std::string_view text, std::size_t count)
{
    std::string all;
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

Bytes xml(std::string const& body)
{
    return bytesOf(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + body + "</plist>\n");
}

// A binary file of these objects, all at most 255 bytes in; the first one is the root.
Bytes binary(std::vector<std::string> const& objects)
{
    std::string file = "bplist00";
    std::string offsets;
    for (std::string const& object : objects) {
        offsets += char(file.size());
        file += object;
    }
    std::size_t const table = file.size();
    file += offsets + std::string(6, '\0') + "\x01\x01";
    auto const number = [&](std::size_t value) {
        for (int shift = 56; shift >= 0; shift -= 8)
            file += char(value >> shift & 0xff);
    };
    number(objects.size());
    number(0);
    number(table);
    return bytesOf(file);
}

// Two contacts; the first one's birthday begins with these two bytes of a number, all others being zero.
Bytes birthdayOf(char const* firstBytes)
{
    return binary({ { "\xd1\x01\x02", 3 },
        "\x5d"
        "contactsArray",
        { "\xa2\x03\x06", 3 }, { "\xd1\x04\x05", 3 }, std::string("\x5f\x10\x0f") + "contactBirthday",
        "\x33" + std::string(firstBytes, 2) + std::string(6, '\0'), "\xd0" });
}

Bytes nestedBinary(std::size_t depth)
{
    // Each array holds the next one; two-byte references and offsets of four bytes.
    std::string file = "bplist00";
    std::string offsets;
    auto const place = [&] {
        for (int shift = 24; shift >= 0; shift -= 8)
            offsets += char(file.size() >> shift & 0xff);
    };
    for (std::size_t i = 0; i < depth; ++i) {
        place();
        file += '\xa1';
        file += char((i + 1) >> 8);
        file += char((i + 1) & 0xff);
    }
    place();
    file += '\x09';
    std::size_t const table = file.size();
    file += offsets + std::string(6, '\0') + "\x04\x02";
    auto const number = [&](std::size_t value) {
        for (int shift = 56; shift >= 0; shift -= 8)
            file += char(value >> shift & 0xff);
    };
    number(depth + 1);
    number(0);
    number(table);
    return bytesOf(file);
}

struct OddFile {
    char const* name;
    Bytes (*make)();
};

constexpr OddFile kOddFiles[] = {
    { "Empty", [] { return Bytes {}; } },
    { "OneZero", [] { return Bytes { 0 }; } },
    { "Blank", [] { return bytesOf(" \n\t\n"); } },
    { "NoPropertyList", [] { return bytesOf("isEnabled = YES;"); } },
    { "MagicAlone", [] { return bytesOf("bplist00"); } },
    { "DeclarationAlone", [] { return bytesOf("<?xml version=\"1.0\"?>"); } },
    { "RootIsArray", [] { return xml("<array><string>a</string></array>"); } },
    { "RootIsText", [] { return xml("<string>contactsArray</string>"); } },
    { "RootIsNumber", [] { return xml("<integer>7</integer>"); } },
    { "RootIsData", [] { return xml("<data>AAEC</data>"); } },
    { "RootIsDate", [] { return xml("<date>2020-01-01T00:00:00Z</date>"); } },
    { "RootIsNothing", [] { return xml(""); } },
    { "KeyWithoutValue", [] { return xml("<dict><key>contactsArray</key></dict>"); } },
    { "ValueWithoutKey", [] { return xml("<dict><array/></dict>"); } },
    { "NumberBeyondRange",
        [] { return xml("<dict><key>titlePos</key><integer>99999999999999999999</integer></dict>"); } },
    { "RealThatIsNone",
        [] {
            return xml(
                "<dict><key>viewAlpha</key><real>nan</real><key>viewAlphaLS</key><real>inf</real></dict>");
        } },
    { "DateThatIsNone",
        [] {
            return xml(
                "<dict><key>contactsArray</key><array><dict><key>contactBirthday</key><date>9999-99-99T99:99:99Z</date></dict></array></dict>");
        } },
    { "DateThatIsNoNumber", [] { return birthdayOf("\x7f\xf8"); } },
    { "DateAfterAllDays", [] { return birthdayOf("\x7f\xf0"); } },
    { "DateBeforeAllDays", [] { return birthdayOf("\xff\xf0"); } },
    { "EntityBomb",
        [] {
            return bytesOf("<?xml version=\"1.0\"?><!DOCTYPE p [<!ENTITY a \"" + std::string(1000, 'a')
                + "\"><!ENTITY b \"" + repeated("&a;", 1000) + "\"><!ENTITY c \"" + repeated("&b;", 1000)
                + "\">]><plist><dict><key>styleCustomTitle</key><string>&c;</string></dict></plist>");
        } },
    { "ArraysNestedDeep", [] { return xml(repeated("<array>", 10000) + repeated("</array>", 10000)); } },
    { "ArraysNeverClosed", [] { return xml(repeated("<array>", 10000)); } },
    { "DictionariesNestedDeep",
        [] {
            return xml(
                repeated("<dict><key>contactsArray</key>", 10000) + "<array/>" + repeated("</dict>", 10000));
        } },
    { "BinaryNestedDeep", [] { return nestedBinary(10000); } },
    { "ArrayInItself",
        [] {
            return binary({ { "\xa1\x00", 2 } });
        } },
    { "DictionaryInItself",
        [] {
            return binary({ { "\xd1\x01\x00", 3 },
                "\x5d"
                "contactsArray" });
        } },
    { "ListInItself",
        [] {
            return binary({ { "\xd1\x01\x02", 3 },
                "\x5d"
                "contactsArray",
                { "\xa2\x02\x00", 3 } });
        } },
    { "ReferenceBeyondTheTable",
        [] {
            return binary({ { "\xd1\x01\x63", 3 },
                "\x5d"
                "contactsArray" });
        } },
    { "CountBeyondTheFile",
        [] {
            return binary({ { "\xaf\x13\x7f\xff\xff\xff\xff\xff\xff\xff", 10 } });
        } },
    { "KeyThatIsNoText",
        [] {
            return binary({ { "\xd1\x01\x02", 3 }, "\x09", "\x08" });
        } },
    { "HalfASurrogate",
        [] {
            return binary({ { "\xd1\x01\x02", 3 }, "\x5f\x10\x10styleCustomTitle", { "\x61\xd8\x3d", 3 } });
        } },
    { "TextIsNotUtf8",
        [] { return xml("<dict><key>styleCustomTitle</key><string>\xff\xfe</string></dict>"); } },
    { "Utf16",
        [] {
            Bytes wide { 0xff, 0xfe };
            for (std::uint8_t const byte : xmlFile()) {
                wide.push_back(byte);
                wide.push_back(0);
            }
            return wide;
        } },
};

// What the list has to hold, by the file alone.
std::size_t readableEntries(Bytes const& file)
{
    auto const read = readPropertyList(file);
    if (!read)
        return 0;
    auto const* const root = read->root.as<PropertyListDictionary>();
    PropertyList const* const list = root ? root->find("contactsArray") : nullptr;
    auto const* const entries = list ? list->as<PropertyListArray>() : nullptr;
    return entries ? entries->size() : 0;
}

struct Damage {
    std::string name;
    Bytes (*make)(std::size_t index);
    std::size_t index;
};

void PrintTo(Damage const& damage, std::ostream* stream) { *stream << damage.name; }

std::vector<Damage> damages()
{
    std::vector<Damage> all;
    for (std::size_t i = 0; i < kCuts; ++i) {
        all.push_back({ "XmlCut" + std::to_string(i),
            [](std::size_t at) { return cutShort(xmlFile(), at, kCuts); }, i });
        all.push_back({ "BinaryCut" + std::to_string(i),
            [](std::size_t at) { return cutShort(binaryFile(), at, kCuts); }, i });
    }
    for (std::size_t i = 0; i < kFlips; ++i) {
        all.push_back({ "XmlFlipped" + std::to_string(i),
            [](std::size_t seed) { return flipped(xmlFile(), unsigned(seed)); }, i });
        all.push_back({ "BinaryFlipped" + std::to_string(i),
            [](std::size_t seed) { return flipped(binaryFile(), unsigned(seed)); }, i });
    }
    for (std::size_t i = 0; i < std::size(kOddFiles); ++i)
        all.push_back({ kOddFiles[i].name, [](std::size_t at) { return kOddFiles[at].make(); }, i });
    return all;
}

}

class DamagedFiles : public CorvelTest {
protected:
    // Boots, and does what a user would do to a strip.
    static void bootAndUse(std::optional<Bytes> const& settings, std::optional<Bytes> const& contacts)
    {
        putDeviceFiles(settings, contacts);
        BootOptions system;
        system.ios = { 15, 4, 0 };
        boot(system);
        layoutWindowsIfNeeded();
        ASSERT_TRUE(phone().strip());
        ASSERT_TRUE(stripList());
        phone().advance(0.1);
        phone().drag({ 300, phone().strip().center().y }, { 100, phone().strip().center().y }, 0.1);
        EXPECT_FALSE(phone().views().empty());
    }
};

class Damaged : public DamagedFiles, public testing::WithParamInterface<Damage> { };

// One boot for both: the same bytes as settings and as contact list.
TEST_P(Damaged, ShowsWhatCanBeRead)
{
    Bytes const file = GetParam().make(GetParam().index);

    bootAndUse(file, file);

    EXPECT_EQ(stripList().count(), readableEntries(file));
}

INSTANTIATE_TEST_SUITE_P(
    PropertyLists, Damaged, testing::ValuesIn(damages()), [](auto const& info) { return info.param.name; });

TEST_F(DamagedFiles, MayChangeUnderARunningPhone)
{
    bootAndUse(std::nullopt, xmlFile());
    for (Damage const& damage : damages()) {
        SCOPED_TRACE(damage.name);
        Bytes const file = damage.make(damage.index);
        ASSERT_TRUE(phone().root().write(kSettingsFile, file, { .atomically = false, .makesFolders = true }));
        ASSERT_TRUE(phone().root().write(kContactListFile, file, { .atomically = false }));
        phone().postNotification(NotificationCenterKind::darwin, "com.orvane.corvelpref.settingschanged");
        ASSERT_TRUE(phone().strip());
        EXPECT_EQ(stripList().count(), kEntriesWithPhoto);
    }
}

TEST_F(DamagedFiles, HoldTenThousandContacts)
{
    PropertyListArray list(
        10000, PropertyListDictionary { { "contactFirstName", "Anna" }, { "contactImage", "" } });
    bootAndUse(std::nullopt, *writePropertyListBinary(PropertyListDictionary { { "contactsArray", list } }));

    EXPECT_EQ(stripList().count(), 10000u);
    EXPECT_LT(viewsOfClass(phone().strip(), "CVLContactCell").size(), 12u);   // those in sight alone
}

TEST_F(DamagedFiles, HoldAPhotoOfFiftyMegabytesThatIsNone)
{
    PropertyListArray list { PropertyListDictionary {
        { "contactFirstName", "Anna" }, { "contactImage", Bytes(50u << 20, 0xff) } } };
    bootAndUse(std::nullopt, *writePropertyListBinary(PropertyListDictionary { { "contactsArray", list } }));

    EXPECT_EQ(stripList().count(), 1u);
}

}
