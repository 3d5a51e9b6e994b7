// What the plug-in does when it is loaded, in order, as the trace tells it.
#include "phone/uikit/ui_label.hpp"
#include "tests/plugin/host/exit_handlers.hpp"
#include "tests/support/phone_fixture.hpp"

#include <algorithm>

namespace phone {

namespace {

constexpr char const* kNewList = "CSNotificationAdjunctListViewController";
constexpr char const* kOldList = "SBDashBoardNotificationAdjunctListViewController";
constexpr char const* kNewPasscode = "CSPasscodeViewController";
constexpr char const* kOldPasscode = "SBDashBoardPasscodeViewController";
constexpr char const* kManager = "SBLockScreenManager";

using Lines = std::vector<std::string>;

// One line for each event that belongs to start-up; the first eleven replaced or added methods end it.
Lines startUpStory()
{
    Lines lines;
    int rows = 0;
    for (Json const& event : phone().trace().events()) {
        std::string const kind = event["kind"];
        auto const field = [&](char const* name) {
            Json const value = event.value(name, Json());
            return value.is_string() ? value.get<std::string>() : value.dump();
        };
        // A class that is missing is looked for at every message.
        if (kind == "lookup" && field("class") == "LAActivator" && lines.empty())
            lines.push_back("lookup LAActivator");
        else if (kind == "read" && field("path").ends_with(".plist"))
            lines.push_back("read " + field("path").substr(field("path").rfind('/') + 1));
        else if (kind == "observe")
            lines.push_back("observe " + field("center") + ' ' + field("name") + ' ' + field("behaviour")
                + ' ' + field("observer") + ' ' + field("object"));
        else if (kind == "lookup"
            && (field("class").find("AdjunctList") != std::string::npos
                || field("class").find("Passcode") != std::string::npos || field("class") == kManager))
            lines.push_back("lookup " + field("class") + (event["found"] == true ? "" : " missing"));
        else if (kind == "hook" || kind == "addMethod") {
            lines.push_back(kind + ' ' + field("class") + ' ' + field("selector")
                + (event["installed"] == true ? "" : " not installed"));
            if (++rows == 11)
                break;
        }
    }
    return lines;
}

Lines hookRows(std::string const& list, std::string const& manager, std::string const& passcode)
{
    return { "hook " + list + " viewDidLoad", "addMethod " + list + " activatorNONLS",
        "addMethod " + list + " activatorLS", "hook " + list + " _updatePresentingContent",
        "hook " + list + " _insertItem:animated:", "hook " + list + " isPresentingContent",
        "addMethod " + list + " cvlViewSwipeUp", "addMethod " + list + " initFirstPreferences",
        "hook " + manager + " lockScreenViewControllerWillDismiss",
        "hook " + manager + " _finishUIUnlockFromSource:withOptions:",
        "hook " + passcode + " viewDidDisappear:" };
}

Lines onlyRows(Lines lines)
{
    std::erase_if(lines, [](std::string const& line) {
        return !line.starts_with("hook ") && !line.starts_with("addMethod ");
    });
    return lines;
}

// The rows of a class that is missing, or the one row that is, name no class and install nothing.
Lines without(Lines rows, std::string const& cls)
{
    for (std::string& row : rows)
        if (std::size_t const at = row.find(' ' + cls + ' '); at != std::string::npos)
            row = row.replace(at + 1, cls.size(), "null") + " not installed";
    return rows;
}

struct Family {
    char const* ios;
    std::optional<double> coreFoundation;
    bool isOld;
    char const* list() const { return isOld ? kOldList : kNewList; }
    char const* passcode() const { return isOld ? kOldPasscode : kNewPasscode; }
};

void PrintTo(Family const& each, std::ostream* stream)
{
    *stream << each.ios;
    if (each.coreFoundation)
        *stream << " with CoreFoundation " << *each.coreFoundation;
}

}

class StartUp : public CorvelTest, public testing::WithParamInterface<Family> {
protected:
    static BootOptions system()
    {
        BootOptions options = CorvelTest::options(GetParam().ios);
        options.coreFoundation = GetParam().coreFoundation;
        return options;
    }
};

TEST_P(StartUp, HappensInOrder)
{
    boot(system());

    Lines expected { "lookup LAActivator", "read com.orvane.corvelpref.plist",
        "read com.orvane.corvellist.plist",
        "observe darwin com.orvane.corvelpref.settingschanged 2 null null",
        std::string("lookup ") + GetParam().list(), std::string("lookup ") + GetParam().passcode() };
    Lines const rows = hookRows(GetParam().list(), kManager, GetParam().passcode());
    expected.insert(expected.end(), rows.begin(), rows.begin() + 8);
    expected.push_back(std::string("lookup ") + kManager);
    expected.insert(expected.end(), rows.begin() + 8, rows.end());
    EXPECT_EQ(startUpStory(), expected);
}

TEST_P(StartUp, AddsMethodsWithoutArgumentsAndResult)
{
    boot(system());

    auto const added = events("addMethod");
    ASSERT_EQ(added.size(), 4u);
    for (Json const& each : added) {
        EXPECT_EQ(each["encoding"], "v@:");
        Method const method = class_getInstanceMethod(
            objc_getClass(GetParam().list()), sel_registerName(each["selector"].get<std::string>().c_str()));
        ASSERT_TRUE(method) << each["selector"];
    }
}

TEST_P(StartUp, LeavesEverythingElseAloneWithoutTheListsClass)
{
    BootOptions options = system();
    options.absent = { GetParam().list() };
    boot(options);

    EXPECT_EQ(onlyRows(startUpStory()),
        without(hookRows(GetParam().list(), kManager, GetParam().passcode()), GetParam().list()));
    EXPECT_FALSE(phone().strip());
    phone().lockScreenManager().send<"lockScreenViewControllerWillDismiss">();
    EXPECT_FALSE(phone().strip());
}

TEST_P(StartUp, LeavesEverythingElseAloneWithoutThePasscodesClass)
{
    BootOptions options = system();
    options.absent = { GetParam().passcode() };
    boot(options);

    EXPECT_EQ(onlyRows(startUpStory()),
        without(hookRows(GetParam().list(), kManager, GetParam().passcode()), GetParam().passcode()));
    EXPECT_TRUE(phone().strip());
}

TEST_P(StartUp, LeavesEverythingElseAloneWithoutTheManagersClass)
{
    BootOptions options = system();
    options.absent = { kManager };
    boot(options);

    EXPECT_EQ(onlyRows(startUpStory()),
        without(hookRows(GetParam().list(), kManager, GetParam().passcode()), kManager));
    EXPECT_TRUE(phone().strip());
}

TEST_P(StartUp, SkipsAMethodThatIsMissing)
{
    BootOptions options = system();
    options.absent = { std::string(kManager) + " lockScreenViewControllerWillDismiss" };
    boot(options);

    Lines expected = hookRows(GetParam().list(), kManager, GetParam().passcode());
    expected[8] += " not installed";
    EXPECT_EQ(onlyRows(startUpStory()), expected);
    EXPECT_FALSE(phone().lockScreenManager().responds<"lockScreenViewControllerWillDismiss">());
}

TEST_P(StartUp, LeavesAMethodOfTheSameNameAsItIs)
{
    BootOptions options = system();
    for (char const* const selector :
        { "activatorNONLS", "activatorLS", "cvlViewSwipeUp", "initFirstPreferences" })
        options.present.push_back(std::string(GetParam().list()) + ' ' + selector);
    boot(options);

    Lines expected = hookRows(GetParam().list(), kManager, GetParam().passcode());
    for (std::size_t const row : { 1, 2, 6, 7 })
        expected[row] += " not installed";
    EXPECT_EQ(onlyRows(startUpStory()), expected);
    // The strip is there, made from a record that nobody filled; the gesture does what the method that was there does, which is
    // nothing.
    ASSERT_TRUE(phone().strip());
    for (UIView const child : phone().strip().children())
        EXPECT_EQ(className(child), "UICollectionView");
    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelLS");
    EXPECT_FALSE(phone().strip().isHidden());
}

TEST_P(StartUp, InstallsEveryHookWhenSwitchedOff)
{
    BootOptions options = system();
    options.settings = Json { { "isEnabled", false } };
    boot(options);

    EXPECT_EQ(onlyRows(startUpStory()), hookRows(GetParam().list(), kManager, GetParam().passcode()));
    EXPECT_FALSE(phone().strip());
    EXPECT_FALSE((phone().adjunctController().send<"isPresentingContent", BOOL>()));
    EXPECT_EQ(told("previous", "selector").back(), "isPresentingContent");
    phone().setMusicPlaying(true);
    EXPECT_TRUE((phone().adjunctController().send<"isPresentingContent", BOOL>()));
    phone().requestUnlock();
    phone().advance(1);
    EXPECT_FALSE(phone().isLocked());
}

TEST_P(StartUp, LooksAtTheSettingsAgainWhenTheyChange)
{
    boot(system());
    std::size_t const before = phone().trace().count();

    phone().postNotification(NotificationCenterKind::darwin, "com.orvane.corvelpref.settingschanged");

    EXPECT_EQ(told("read", "path", before),
        (Lines { "/var/jb/var/mobile/Library/Preferences/com.orvane.corvelpref.plist",
            "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist" }));
    EXPECT_TRUE(events("hook", before).empty());
}

TEST_P(StartUp, HasItsRecordsGiveUpTheirColoursAtTheEndOneByOne)
{
    BootOptions options = system();
    options.settings = Json { { "titleColor", "#010203" }, { "contactLabelColor", "#00ff00" } };
    std::size_t const before = exitHandlers().size();
    boot(options);
    layoutWindowsIfNeeded();
    auto const handlers = exitHandlers().subspan(before);
    ASSERT_EQ(handlers.size(), 2u);
    UIColor color;   // of the title: what both records own
    for (UIView const label : viewsOfClass(phone().strip(), "UILabel"))
        if (label.superview() == phone().strip())
            color = UILabel { label.object }.textColor();
    ASSERT_TRUE(color);
    auto const references = [color] { return color.send<"retainCount", NSUInteger>(); };
    NSUInteger const held = references();

    // The controller's record first: the strip's own still gives its cells their colour.
    handlers[0](nullptr);
    EXPECT_EQ(references(), held - 1);
    viewsOfClass(phone().strip(), "UICollectionView").at(0).send<"reloadData">();
    layoutWindowsIfNeeded();
    auto const cells = viewsOfClass(phone().strip(), "CVLContactCell");
    ASSERT_FALSE(cells.empty());
    EXPECT_TRUE(std::ranges::any_of(viewsOfClass(cells[0], "UILabel"), [](UIView label) {
        return UILabel { label.object }.textColor().rgba() == graphics::Color { 0, 1, 0, 1 };
    }));

    handlers[1](nullptr);
    EXPECT_EQ(references(), held - 2);
}

INSTANTIATE_TEST_SUITE_P(Systems, StartUp,
    testing::Values(Family { "12.4", {}, true }, Family { "13.7", {}, false }, Family { "14.8", {}, false },
        Family { "15.4", {}, false }, Family { "16.1", {}, false }, Family { "13.0", 1600.0, true },
        Family { "12.4", 1600.1, false }));

}
