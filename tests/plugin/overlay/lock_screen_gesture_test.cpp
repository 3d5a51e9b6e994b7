// The gesture that puts the lock screen's strip away for good and brings it back: what becomes of the list, and of the settings
// file, whatever state that is in.
#include "phone/foundation/method_replacement.hpp"
#include "phone/springboard/adjunct_list.hpp"
#include "tests/plugin/overlay/overlay_fixture.hpp"

#include <filesystem>

namespace phone {

namespace {

struct HeightChange {
    double before, after;
};
std::vector<HeightChange> g_heights;
Replaced<void(id, SEL, CGRect)> g_setFrame;

void noteFrame(id self, SEL cmd, CGRect frame)
{
    CGRect const now = UIView { self }.frame();
    if (objc::cast<UIStackView>(objc::handle { self }) && frame.origin == now.origin
        && frame.size.width == now.size.width)
        g_heights.push_back({ now.size.height, frame.size.height });
    g_setFrame(self, cmd, frame);
}

UIStackView stack() { return adjunctStack(phone().adjunctController()); }

Lines arranged()
{
    Lines names;
    for (UIView const view : stack().arranged())
        names.push_back(class_getName(objc::boundary::class_of(view.object)));
    return names;
}

Bytes bytesOf(std::string_view text) { return { text.begin(), text.end() }; }

// Every kind that a property list has.
PropertyListDictionary everything()
{
    return { { "isEnabled", true }, { "titlePos", 3 }, { "styleCustomTitle", "Üst başlık דנה 王芳" },
        { "viewAlpha", 0.5 }, { "unknown number", -9007199254740993 }, { "unknown date", Date { 700000000 } },
        { "unknown data", Bytes { 0, 1, 2, 255 } },
        { "unknown list", PropertyListArray { true, "7", PropertyListDictionary { { "deep", 1 } } } },
        { "unknown dictionary",
            PropertyListDictionary { { "a", PropertyListArray {} }, { "", "empty key" } } },
        { "hideLSView", false } };
}

std::string utf16(std::string const& ascii, bool isBigEndian)
{
    std::string text = isBigEndian ? "\xfe\xff" : "\xff\xfe";
    for (char const c : ascii)
        text += isBigEndian ? std::string { '\0', c } : std::string { c, '\0' };
    return text;
}

}

class LockScreenGesture : public OverlayTest {
protected:
    static void toggle()
    {
        gesture(kLockScreenGesture);
        wait(0.5);
    }
    static std::vector<HeightChange> heightsAt(void (*what)())
    {
        if (!g_setFrame.function)
            replace<"setFrame:">("UIStackView", &noteFrame, g_setFrame);
        g_heights.clear();
        what();
        return g_heights;
    }
    // In order: files read and written, what was done to the list, and SpringBoard's own loading.
    static Lines story(std::size_t since)
    {
        Lines lines;
        for (Json const& event : phone().trace().events(since)) {
            std::string const kind = event["kind"];
            bool const isSettings = event.contains("path") && event["path"] == kSettingsFile;
            if ((kind == "read" || kind == "write") && isSettings)
                lines.push_back(kind);
            else if (kind == "stack" && event["view"] == "CVLView")
                lines.push_back(event["call"]);
            else if (kind == "previous" && event["selector"] == "viewDidLoad")
                lines.push_back("viewDidLoad");
            else if (kind == "post")
                lines.push_back("post " + event["name"].get<std::string>());
        }
        return lines;
    }
    static bool storedHidden()
    {
        auto const file = settingsFile();
        auto const* const value = file.find("hideLSView");
        EXPECT_TRUE(value);
        return value && *value == PropertyList { true };
    }
};

struct ListCase {
    char const* version;
    bool isAlwaysOnTop;
    bool playsMusic;
    int style;
};

void PrintTo(ListCase const& each, std::ostream* stream)
{
    *stream << each.version << (each.isAlwaysOnTop ? " top" : "") << (each.playsMusic ? " music" : "")
            << " style " << each.style;
}

class LockScreenGestureOn : public LockScreenGesture, public testing::WithParamInterface<ListCase> { };

TEST_P(LockScreenGestureOn, BringsTheStripBackWhereItWas)
{
    ListCase const& each = GetParam();
    boot(options(each.version, { { "isAlwaysOnTop", each.isAlwaysOnTop }, { "bannerStyle", each.style } }));
    phone().setMusicPlaying(each.playsMusic);
    wait(0.5);
    UIView const strip = phone().strip();
    CGRect const place = onScreen(strip);
    CGRect const list = onScreen(stack());
    Lines const items = arranged();
    EXPECT_EQ(place.size.width, each.style == 2 ? 390 : 370);

    for (int time = 0; time < 3; ++time) {
        toggle();
        EXPECT_TRUE(strip.isHidden());
        EXPECT_FALSE(strip.superview());
        EXPECT_EQ(arranged().size(), items.size() - 1);
        EXPECT_TRUE(storedHidden());

        toggle();
        EXPECT_FALSE(strip.isHidden());
        EXPECT_EQ(phone().strip(), strip);
        EXPECT_EQ(arranged(), items);
        EXPECT_EQ(onScreen(strip), place);
        EXPECT_EQ(onScreen(stack()), list);
        EXPECT_FALSE(storedHidden());
        EXPECT_TRUE(touchedAt(middleOnScreen(contactButton(strip))).isDescendantOfView(strip));
    }
}

INSTANTIATE_TEST_SUITE_P(Lists, LockScreenGestureOn,
    testing::Values(ListCase { "12.4", false, false, 1 }, ListCase { "13.7", false, true, 1 },
        ListCase { "15.4", true, false, 1 }, ListCase { "15.4", true, true, 2 },
        ListCase { "15.4", false, false, 2 }, ListCase { "16.1", false, true, 0 }));

TEST_F(LockScreenGesture, ReadsTheFileFirstAndWritesItLast)
{
    boot(options("15.4"));
    phone().setMusicPlaying(true);
    std::size_t before = phone().trace().count();
    gesture(kLockScreenGesture);
    // The post is the listener's; that the settings changed is not told.
    EXPECT_EQ(
        story(before), (Lines { "post com.orvane.corvelLS", "read", "removeArrangedSubview:", "write" }));

    before = phone().trace().count();
    gesture(kLockScreenGesture);
    EXPECT_EQ(story(before), (Lines { "post com.orvane.corvelLS", "read", "addArrangedSubview:", "write" }));
    for (Json const& write : events("write")) {
        EXPECT_EQ(write["atomically"], true);
        EXPECT_EQ(write["written"], true);
    }
}

TEST_F(LockScreenGesture, LoadsTheListAnewWhereTheStripWasAlone)
{
    boot(options("15.4"));
    gesture(kLockScreenGesture);
    std::size_t const before = phone().trace().count();
    gesture(kLockScreenGesture);

    EXPECT_EQ(story(before),
        (Lines { "post com.orvane.corvelLS", "read", "viewDidLoad", "addArrangedSubview:", "write" }));
    EXPECT_EQ(told("constraint", "what", before).size(), 3u);   // the height is still the one that it had
}

TEST_F(LockScreenGesture, TakesAndGivesTheListTheStripsHeight)
{
    boot(options("15.4"));
    phone().setMusicPlaying(true);
    wait(0.5);
    ASSERT_EQ(phone().strip().frame().size.height, 90);
    auto const taken = heightsAt([] { gesture(kLockScreenGesture); });
    ASSERT_EQ(taken.size(), 1u);
    EXPECT_EQ(taken[0].before - taken[0].after, 90);
    auto const given = heightsAt([] { gesture(kLockScreenGesture); });
    ASSERT_EQ(given.size(), 1u);
    EXPECT_EQ(given[0].after - given[0].before, 90);
}

TEST_F(LockScreenGesture, FollowsTheSwitchToTheTop)
{
    boot(options("15.4"));
    phone().setMusicPlaying(true);
    EXPECT_EQ(arranged().back(), "CVLView");
    toggle();
    ASSERT_TRUE(phone().changeSettings({ { "isAlwaysOnTop", true } }, {}));
    toggle();
    EXPECT_EQ(arranged().front(), "CVLView");
    EXPECT_EQ(arranged().size(), 2u);
}

TEST_F(LockScreenGesture, SummonsAStripThatStartedHidden)
{
    boot(options("15.4", { { "hideLSView", true } }));
    UIView const strip = phone().strip();
    ASSERT_TRUE(strip.isHidden());

    toggle();

    EXPECT_FALSE(strip.isHidden());
    EXPECT_EQ(strip.frame(), CGRectMake(10, 0, 370, 90));
    EXPECT_FALSE(storedHidden());
}

// Hidden where it stood it was pinned for the old style still, and the new pins contradicted the old ones.
TEST_F(LockScreenGesture, PinsAStripThatStartedHiddenForTheStyleOfTheDay)
{
    boot(options("15.4", { { "hideLSView", true } }));
    ASSERT_TRUE(phone().changeSettings({ { "bannerStyle", 2 } }, {}));
    toggle();
    EXPECT_EQ(phone().strip().frame().size.width, 390);
}

// SpringBoard's update puts the hidden strip back into the list; shown again it had no pins.
TEST_F(LockScreenGesture, PinsAStripThatCameBackHidden)
{
    boot(options("15.4"));
    CGRect const place = onScreen(phone().strip());
    toggle();
    phone().setMusicPlaying(true);
    wait(0.5);
    ASSERT_TRUE(phone().strip());
    EXPECT_TRUE(phone().strip().isHidden());
    toggle();
    phone().setMusicPlaying(false);
    wait(0.5);
    EXPECT_EQ(onScreen(phone().strip()), place);
}

TEST_F(LockScreenGesture, SurvivesARestartOfSpringBoard)
{
    boot(options("15.4"));
    toggle();
    ASSERT_TRUE(storedHidden());
    // What the next SpringBoard reads.
    ASSERT_TRUE(phone().changeSettings({}, {}));
    toggle();
    EXPECT_FALSE(storedHidden());
}

TEST_F(LockScreenGesture, DoesNothingWithoutAStrip)
{
    BootOptions system = options("15.4", { { "isEnabled", false } });
    boot(system);
    Bytes const before = settingsBytes();
    phone().adjunctController().send<"activatorLS">();
    EXPECT_EQ(settingsBytes(), before);
    EXPECT_TRUE(events("write").empty());
}

class SettingsFileOf : public LockScreenGesture,
                       public testing::WithParamInterface<std::pair<char const*, Bytes (*)()>> { };

TEST_P(SettingsFileOf, KeepsEveryOtherKey)
{
    boot(options("15.4"));
    putSettings(GetParam().second());
    PropertyListDictionary expected = settingsFile();
    ASSERT_EQ(expected, everything());

    for (bool const isHidden : { true, false, true }) {
        toggle();
        expected.set("hideLSView", isHidden);
        EXPECT_EQ(settingsFile(), expected);
        // As the platform writes it: XML.
        EXPECT_EQ(settingsBytes()[0], '<');
    }
}

INSTANTIATE_TEST_SUITE_P(Encodings, SettingsFileOf,
    testing::Values(std::pair<char const*, Bytes (*)()> { "XML",
                        [] { return bytesOf(*writePropertyListXml(everything())); } },
        std::pair<char const*, Bytes (*)()> {
            "BinaryFormat", [] { return *writePropertyListBinary(everything()); } },
        std::pair<char const*, Bytes (*)()> { "XMLWithByteOrderMark",
            [] { return bytesOf("\xef\xbb\xbf" + *writePropertyListXml(everything())); } }),
    [](auto const& info) { return info.param.first; });

TEST_F(LockScreenGesture, KeepsTheKeysOfAFileInWideCharacters)
{
    boot(options("15.4"));
    for (bool const isBigEndian : { true, false }) {
        putSettings(bytesOf(utf16("<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<plist version=\"1.0\"><dict>"
                                  "<key>titlePos</key><integer>3</integer></dict></plist>\n",
            isBigEndian)));
        toggle();
        EXPECT_EQ(
            settingsFile(), (PropertyListDictionary { { "titlePos", 3 }, { "hideLSView", isBigEndian } }));
    }
}

TEST_F(LockScreenGesture, ReplacesAFileThatCannotBeRead)
{
    boot(options("15.4"));
    std::string const xml = *writePropertyListXml(everything());
    bool isHidden = false;
    for (Bytes const& contents :
        { Bytes {}, bytesOf("no property list"), bytesOf(xml.substr(0, xml.size() / 2)), bytesOf("bplist00"),
            bytesOf(*writePropertyListXml(PropertyListArray { 1, 2 })), Bytes(100, 0xff) }) {
        putSettings(contents);
        toggle();
        isHidden = !isHidden;
        EXPECT_EQ(settingsFile(), (PropertyListDictionary { { "hideLSView", isHidden } }));
        EXPECT_EQ(phone().strip() ? phone().strip().isHidden() : true, isHidden);
    }
    ASSERT_TRUE(phone().root().setFault(kSettingsFile, FileFault::absent));
    toggle();
    EXPECT_EQ(settingsFile(), (PropertyListDictionary { { "hideLSView", !isHidden } }));
}

TEST_F(LockScreenGesture, LosesNothingWhenTheFileCannotBeWritten)
{
    boot(options("15.4"));
    std::filesystem::path const path = *phone().root().map(kSettingsFile);
    auto const neighbours = [&path] {
        std::size_t count = 0;
        for (auto const& each : std::filesystem::directory_iterator(path.parent_path()))
            count += each.exists();
        return count;
    };
    std::string const folder = std::string(kSettingsFile).substr(0, std::string(kSettingsFile).rfind('/'));
    struct Row {
        std::string path;
        FileFault fault;
    };
    for (Bytes const& contents :
        { bytesOf(*writePropertyListXml(everything())), *writePropertyListBinary(everything()) }) {
        for (Row const& row :
            { Row { kSettingsFile, FileFault::full }, Row { kSettingsFile, FileFault::readonly },
                Row { folder, FileFault::readonly }, Row { folder, FileFault::full } }) {
            putSettings(contents);
            std::size_t const files = neighbours();
            ASSERT_TRUE(phone().root().setFault(row.path, row.fault));
            std::size_t const before = phone().trace().count();
            bool const wasHidden = !phone().strip() || phone().strip().isHidden();
            toggle();
            auto const writes = events("write", before);
            ASSERT_EQ(writes.size(), 1u);
            EXPECT_EQ(writes[0]["written"], false);
            ASSERT_TRUE(phone().root().setFault(row.path, FileFault::none));
            EXPECT_EQ(settingsBytes(), contents);
            EXPECT_EQ(neighbours(), files);
            // The strip goes or comes all the same.
            EXPECT_EQ(!phone().strip() || phone().strip().isHidden(), !wasHidden);
        }
    }
}

TEST_F(LockScreenGesture, MeetsAFolderInTheFilesPlace)
{
    boot(options("15.4"));
    ASSERT_TRUE(phone().root().setFault(kSettingsFile, FileFault::directory));
    toggle();
    EXPECT_EQ(events("write").back()["written"], false);
    EXPECT_FALSE(phone().strip());
    toggle();
    EXPECT_TRUE(phone().strip());
}

}
