#include "phone/springboard/adjunct_list.hpp"
#include "phone/springboard/lock_screen.hpp"
#include "phone/springboard/starter_set.hpp"
#include "tests/phone/springboard/phone_fixture.hpp"

#include <fstream>

namespace phone {

namespace {

bool hasClass(char const* name) { return objc_getClass(name) != nullptr; }

std::string textOf(Json const& tree, std::string const& identifier)
{
    if (tree.value("accessibilityIdentifier", Json()) == identifier)
        return tree["text"];
    for (Json const& child : tree["children"])
        if (std::string const text = textOf(child, identifier); !text.empty())
            return text;
    return {};
}

std::string textOnScreen(std::string const& identifier)
{
    for (Json const& window : phone().views(true))
        if (std::string const text = textOf(window, identifier); !text.empty())
            return text;
    return {};
}

}

struct VersionCase {
    char const* ios;
    std::optional<double> coreFoundation;
    bool isDashBoard;
};

class BootVersions : public PhoneTest, public testing::WithParamInterface<VersionCase> { };

TEST_P(BootVersions, HasTheClassesOfItsNumber)
{
    BootOptions options = version(GetParam().ios);
    options.coreFoundation = GetParam().coreFoundation;
    boot(options);

    EXPECT_EQ(hasClass("SBDashBoardNotificationAdjunctListViewController"), GetParam().isDashBoard);
    EXPECT_EQ(hasClass("SBDashBoardPasscodeViewController"), GetParam().isDashBoard);
    EXPECT_EQ(hasClass("CSNotificationAdjunctListViewController"), !GetParam().isDashBoard);
    EXPECT_EQ(hasClass("CSPasscodeViewController"), !GetParam().isDashBoard);
    EXPECT_TRUE(adjunctStack(phone().adjunctController()));
    EXPECT_EQ(phone().adjunctController().valueForKey(NSString::stringWithUTF8String("_stackView")),
        adjunctStack(phone().adjunctController()));
    EXPECT_TRUE(phone().isLocked());
    EXPECT_EQ(story(), "lock shown");
}

INSTANTIATE_TEST_SUITE_P(Versions, BootVersions,
    testing::Values(VersionCase { "12.4", {}, true }, VersionCase { "13.7", {}, false },
        VersionCase { "14.8", {}, false }, VersionCase { "15.4", {}, false },
        VersionCase { "16.1", {}, false }, VersionCase { "13.0", 1600.0, true },
        VersionCase { "12.4", 1600.5, false }));

class Boot : public PhoneTest { };

TEST_F(Boot, HappensOnceAProcess)
{
    boot();

    EXPECT_FALSE(phone().boot({}));
}

TEST_F(Boot, RefusesAScreenThatIsNone)
{
    BootOptions options;
    options.width = -1;

    EXPECT_FALSE(phone().boot(options));
    EXPECT_FALSE(phone().isBooted());
}

TEST_F(Boot, RefusesADateThatCannotBeRead)
{
    BootOptions options;
    options.date = "yesterday";

    EXPECT_FALSE(phone().boot(options));
}

TEST_F(Boot, ShowsTheTimeAndTheDateInThePhonesLanguage)
{
    BootOptions options;
    options.language = "tr";
    boot(options);

    EXPECT_EQ(textOnScreen("time"), "09:41");
    EXPECT_EQ(textOnScreen("date"), "18 Haziran Perşembe");
}

TEST_F(Boot, MovesTheClockOfTheLockScreenEachMinute)
{
    boot();

    phone().advance(60);

    EXPECT_EQ(textOnScreen("time"), "9:42");
}

TEST_F(Boot, FillsAnEmptyDiskWithTheStarterSet)
{
    boot();

    auto const list = readPropertyList(*phone().root().read(kContactListPath));
    auto const* contacts =
        list->root.as<PropertyListDictionary>()->find("contactsArray")->as<PropertyListArray>();
    EXPECT_EQ(contacts->size(), 13u);
    EXPECT_TRUE(phone().root().exists("/var/jb/Library/PreferenceBundles/CorvelPREF.bundle/happybd.png"));
    EXPECT_FALSE(phone().root().exists(kSettingsPath));
}

TEST_F(Boot, LeavesAFolderOfTheUsersAsItIs)
{
    auto scratch = *DeviceRoot::makeTemporary();
    std::ofstream(scratch.folder() / "mine.txt") << "mine";
    phone().useRoot(*DeviceRoot::openGiven(scratch.folder()));
    BootOptions options;
    options.contacts = Json::array();
    boot(options);

    EXPECT_FALSE(phone().root().exists(kContactListPath));
    EXPECT_TRUE(phone().root().exists("/mine.txt"));
}

TEST_F(Boot, TakesContactsAndSettingsFromTheOptions)
{
    BootOptions options;
    options.contacts = Json::parse(R"([{"contactFirstName": "A", "contactImage": {"data": "AAEC"}}])");
    options.settings = Json { { "bannerStyle", 2 } };
    boot(options);

    auto const list = readPropertyList(*phone().root().read(kContactListPath));
    auto const& entry =
        (*list->root.as<PropertyListDictionary>()->find("contactsArray")->as<PropertyListArray>())[0];
    EXPECT_EQ(*entry.as<PropertyListDictionary>()->find("contactImage"), PropertyList(Bytes { 0, 1, 2 }));
    auto const settings = readPropertyList(*phone().root().read(kSettingsPath));
    EXPECT_EQ(*settings->root.as<PropertyListDictionary>()->find("bannerStyle"), PropertyList(2));
}

TEST_F(Boot, CanLackTheStackVariable)
{
    BootOptions options;
    options.absent = { "CSNotificationAdjunctListViewController._stackView" };
    boot(options);

    EXPECT_FALSE(class_getInstanceVariable(
        objc::boundary::class_of(phone().adjunctController().object), "_stackView"));
    phone().setMusicPlaying(true);
    EXPECT_EQ(adjunctStack(phone().adjunctController()).arranged().size(), 1u);
}

TEST_F(Boot, CanLackAMethod)
{
    BootOptions options;
    options.absent = { "SBLockScreenManager lockScreenViewControllerWillDismiss" };
    boot(options);

    EXPECT_FALSE(phone().lockScreenManager().responds<"lockScreenViewControllerWillDismiss">());
}

TEST_F(Boot, NamesAMemberThatCannotBeMissing)
{
    BootOptions options;
    options.absent = { "SBLockScreenManager noSuchMethod" };

    Status const booted = phone().boot(options);

    ASSERT_FALSE(booted);
    EXPECT_NE(booted.message().find("noSuchMethod"), std::string::npos);
}

struct AnswerCase {
    std::optional<CoverSheetAnswer> answer;
    char const* ios;
    bool dashBoard;
    bool coverSheet;
};

class CoverSheetAnswers : public PhoneTest, public testing::WithParamInterface<AnswerCase> { };

TEST_P(CoverSheetAnswers, LeadToTheIdleTimerProvider)
{
    BootOptions options = version(GetParam().ios);
    options.coverSheet = GetParam().answer;
    boot(options);
    AutoreleasePool const pool;

    auto const manager =
        objc::cls<"SBCoverSheetPresentationManager">().send<"sharedInstance", objc::handle>();
    EXPECT_EQ(manager.responds<"dashBoardViewController">(), GetParam().dashBoard);
    EXPECT_EQ(manager.responds<"coverSheetViewController">(), GetParam().coverSheet);

    objc::handle provider;
    if (GetParam().dashBoard)
        provider =
            manager.send<"dashBoardViewController", objc::handle>().send<"safeValueForKey:", objc::handle>(
                NSString::stringWithUTF8String("_idleTimerProvider"));
    else if (GetParam().coverSheet)
        provider = manager.send<"coverSheetViewController", objc::handle>()
                       .send<"idleTimerController", objc::handle>()
                       .send<"safeValueForKey:", objc::handle>(
                           NSString::stringWithUTF8String("_dashBoardIdleTimerProvider"));
    ASSERT_EQ(bool(provider), GetParam().dashBoard || GetParam().coverSheet);
    if (!provider)
        return;

    provider.send<"addDisabledIdleTimerAssertionReason:">(NSString::stringWithUTF8String("test"));
    EXPECT_TRUE(phone().idleTimer().holds("test"));
    provider.send<"removeDisabledIdleTimerAssertionReason:">(NSString::stringWithUTF8String("test"));
    EXPECT_FALSE(phone().idleTimer().isDisabled());
    EXPECT_EQ(told("assertion", "action"), (std::vector<std::string> { "add", "remove" }));
}

INSTANTIATE_TEST_SUITE_P(Systems, CoverSheetAnswers,
    testing::Values(AnswerCase { {}, "12.4", true, false }, AnswerCase { {}, "13.0", false, true },
        AnswerCase { CoverSheetAnswer::both, "15.4", true, true },
        AnswerCase { CoverSheetAnswer::neither, "15.4", false, false }));

}
