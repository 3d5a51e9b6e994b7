// The action menu: its rows under every single-tap setting and every switch, and each entry, by touches alone.
#include "tests/scenarios/actions.hpp"

#include <algorithm>
#include <set>

namespace phone {

namespace {

// The menu's vocabulary.
struct Entry {
    char const* title;
    char const* setting;   // that shows it; null: always
    int hiddenByTap;
    bool needs13;
    char const* icon;
    int tapCode;   // of the same action
};
constexpr Entry kEntries[] {
    { "Call Contact", nullptr, 0, false, "com.apple.mobilephone", 0 },
    { "Send WhatsApp Message", "showWAmsg", 1, false, "net.whatsapp.WhatsApp", 1 },
    { "Send Telegram Message", "showTGmsg", 2, false, "ph.telegra.Telegraph", 2 },
    { "Call via WhatsApp", "showWACall", 2, true, "net.whatsapp.WhatsApp", 3 },
    { "Call via Telegram", "showTGCall", 4, true, "ph.telegra.Telegraph", 4 },
    { "New SMS Message", "showSMS", 3, false, "com.apple.MobileSMS", 5 },
    { "Facetime Call", "showFacetime", 4, false, "com.apple.facetime", 6 },
    { "Email (anna@example.com)", "showMail", 5, false, "com.apple.mobilemail", 7 },
};
constexpr char kBirthdayRow[] = "Birthday: Mar 09, 1990";
constexpr char kSheet[] = "sheet Anna - +44 20 7946-0958";

bool isBefore13(std::string const& version) { return version == "12.4"; }

std::vector<std::string> expectedRows(
    std::string const& version, int tap, std::set<std::string> const& off = {})
{
    std::vector<std::string> titles;
    for (Entry const& each : kEntries)
        if (each.hiddenByTap != tap && !(each.needs13 && isBefore13(version))
            && !(each.setting && off.contains(each.setting)))
            titles.push_back(each.title);
    if (!off.contains("showBirthday"))
        titles.push_back(kBirthdayRow);
    titles.push_back("Cancel");
    return titles;
}

}

class MenuRows : public Story, public testing::WithParamInterface<std::tuple<char const*, int>> { };

TEST_P(MenuRows, AreThoseThatTheSettingLeaves)
{
    auto const [version, tap] = GetParam();
    boot(options(version, { { "singleTapAction", tap } }));

    hold(contactButton());
    wait();

    EXPECT_EQ(alertRows(), expectedRows(version, tap));
    EXPECT_EQ(only(effects(), { "sheet" }), Effects { kSheet });
}

INSTANTIATE_TEST_SUITE_P(EverySystem, MenuRows,
    testing::Combine(testing::ValuesIn(kStoryVersions), testing::Range(0, 10)), [](auto const& info) {
        return versionName(std::get<0>(info.param)) + "Tap" + std::to_string(std::get<1>(info.param));
    });

class MenuSwitch : public Story, public testing::WithParamInterface<char const*> { };

TEST_P(MenuSwitch, HidesItsRow)
{
    boot(options("15.4", { { "singleTapAction", 9 }, { GetParam(), false } }));

    hold(contactButton());
    wait();

    EXPECT_EQ(alertRows(), expectedRows("15.4", 9, { GetParam() }));
}

INSTANTIATE_TEST_SUITE_P(Every, MenuSwitch,
    testing::Values("showWAmsg", "showTGmsg", "showWACall", "showTGCall", "showSMS", "showFacetime",
        "showMail", "showBirthday"),
    [](auto const& info) { return std::string(info.param); });

class Menu : public Story {
protected:
    static Json trace(std::string const& kind)
    {
        Json events = Json::array();
        for (Json const& event : phone().trace().events())
            if (event["kind"] == kind)
                events.push_back(event);
        return events;
    }
};

TEST_F(Menu, HasAnIconForEachRow)
{
    boot(options("15.4", { { "singleTapAction", 9 } }));

    hold(contactButton());
    wait();

    Json const icons = trace("icon");
    ASSERT_EQ(icons.size(), std::size(kEntries));
    for (std::size_t i = 0; i < icons.size(); ++i) {
        EXPECT_EQ(icons[i]["bundle"], kEntries[i].icon);
        EXPECT_EQ(icons[i]["format"], 0);
        EXPECT_EQ(icons[i]["scale"], 3.0);
    }
    Json const sheet = trace("present").back();
    EXPECT_EQ(sheet["message"], nullptr);
    ASSERT_EQ(sheet["actions"].size(), std::size(kEntries) + 2);
    for (Json const& action : sheet["actions"]) {
        bool const isCancel = action["title"] == "Cancel";
        EXPECT_EQ(action["style"], isCancel ? 1 : 0);
        EXPECT_EQ(action["image"].is_null(), isCancel) << action;
        if (!isCancel) {   // it keeps its own colours
            EXPECT_EQ(action["image"]["renderingMode"], 1);
        }
    }
}

TEST_F(Menu, OpensOnceForALongPressThatGoesOn)
{
    boot(options("15.4", { { "singleTapAction", 9 } }));

    hold(contactButton(), 2);
    wait();

    EXPECT_EQ(effects(), (Effects { "passcodeTest no", "hold CVL", "sound 1519", kSheet }));
}

TEST_F(Menu, OpensOnceForALongPressThatMoves)
{
    boot(options("15.4", { { "singleTapAction", 9 } }));
    UIView const contact = contactButton();
    CGPoint const start = contact.convertPointToView({ 22, 22 }, {});

    phone().touchDown(start);
    wait(0.4);
    for (double const by : { 4.0, 8.0, 120.0 }) {
        phone().touchMove({ start.x + by, start.y });
        wait(0.1);
    }
    phone().touchUp({ start.x + 120, start.y });
    wait();

    EXPECT_EQ(effects(), (Effects { "passcodeTest no", "hold CVL", "sound 1519", kSheet }));
}

TEST_F(Menu, LeavesOutAMailRowWithoutAddressAndABirthdayRowWithoutBirthday)
{
    boot(options("15.4", { { "singleTapAction", 9 } }, Json::array({ emptyEntry() })));

    hold(contactButton());
    wait();

    EXPECT_EQ(alertRows(),
        (std::vector<std::string> { "Call Contact", "Send WhatsApp Message", "Send Telegram Message",
            "Call via WhatsApp", "Call via Telegram", "New SMS Message", "Facetime Call", "Cancel" }));
    EXPECT_EQ(only(effects(), { "sheet" }), Effects { "sheet Nobody - " });
}

TEST_F(Menu, LetsTheScreenGoWithCancelAndWithTheBirthday)
{
    boot(options("15.4", { { "singleTapAction", 9 } }));
    for (char const* const row : { "Cancel", kBirthdayRow }) {
        hold(contactButton());
        wait();
        EXPECT_TRUE(phone().idleTimer().holds("CVL"));
        forget();

        touch(alertRow(row));
        wait();

        EXPECT_EQ(only(effects(), { "release", "passcodeTest", "openURL" }), Effects { "release CVL" });
        EXPECT_FALSE(phone().idleTimer().isDisabled());
        EXPECT_FALSE(alert());
    }
}

TEST_F(Menu, ShowsTheCakeWithTheBirthday)
{
    boot(options("15.4", { { "singleTapAction", 9 } }));
    hold(contactButton());
    wait();

    Json const actions = trace("present").back()["actions"];
    Json const birthday = actions[actions.size() - 2];
    ASSERT_EQ(birthday["title"], kBirthdayRow);
    EXPECT_EQ(birthday["image"]["size"], Json::array({ 29.0, 29.0 }));
}

// Without birthday frames no strip has made a cake.
TEST_F(Menu, TellsTheBirthdayAlsoWhereThereIsNoCake)
{
    boot(options("15.4", { { "singleTapAction", 9 }, { "birthdayFrame", false } }));
    hold(contactButton());
    wait();

    EXPECT_EQ(alertRows(), expectedRows("15.4", 9));
    Json const actions = trace("present").back()["actions"];
    EXPECT_EQ(actions[actions.size() - 2]["title"], kBirthdayRow);
    EXPECT_EQ(actions[actions.size() - 2]["image"], nullptr);
}

TEST_F(Menu, OffersCallsBySiriFromThirteenOn)
{
    boot(options("13.0", { { "singleTapAction", 9 } }));
    hold(contactButton());
    wait();

    EXPECT_EQ(alertRows(), expectedRows("13.0", 9));
}

TEST_F(Menu, OffersNoCallsBySiriJustBelowThirteen)
{
    boot(options("12.5", { { "singleTapAction", 9 } }));
    hold(contactButton());
    wait();

    EXPECT_EQ(alertRows(), expectedRows("12.4", 9));
}

TEST_F(Menu, TellsTheBirthdayInThePhonesLanguage)
{
    auto hebrew = options("15.4", { { "singleTapAction", 9 } });
    hebrew.language = "he";
    boot(hebrew);
    hold(contactButton());
    wait();

    EXPECT_TRUE(alertRow("Birthday: מרץ 09, 1990"));
}

TEST_F(Menu, OfNobodyHasRowsAllTheSame)
{
    boot(options("15.4", { { "singleTapAction", 9 }, { "askBeforeCall", false } }));

    phone().strip().send<"showMenu:">(objc::handle {});
    wait();

    EXPECT_EQ(only(effects(), { "hold", "sheet" }), (Effects { "hold CVL", "sheet  - " }));
    // Nil is not the empty text: a mail can be written to it.
    EXPECT_EQ(alertRows(),
        (std::vector<std::string> { "Call Contact", "Send WhatsApp Message", "Send Telegram Message",
            "Call via WhatsApp", "Call via Telegram", "New SMS Message", "Facetime Call", "Email ()",
            "Cancel" }));
    touch(alertRow("New SMS Message"));
    wait();
    EXPECT_EQ(only(effects(), { "hold", "release", "present" }),
        (Effects { "hold CVL", "present MFMessageComposeViewControllerCVL", "release CVL" }));
}

TEST_F(Menu, IsReopenedForTheOneWhoWasPressedAndThenForNobody)
{
    auto options = Story::options("15.4", { { "singleTapAction", 9 }, { "validateUnlockBeforeCall", true } });
    options.passcode = kStoryPasscode;
    boot(options);
    hold(contactButton());
    wait();
    typePasscode();
    wait();
    EXPECT_EQ(only(effects(), { "sheet" }), Effects { kSheet });
    touch(alertRow("Cancel"));
    wait();

    phone().strip().send<"showMenu:">(objc::handle {});
    wait();
    EXPECT_EQ(only(effects(), { "sheet" }), Effects { "sheet  - " });
}

TEST_F(Menu, GoesOnWaitingWhenItIsReopenedOnAPhoneThatIsLockedAgain)
{
    auto options = Story::options("15.4", { { "singleTapAction", 9 }, { "validateUnlockBeforeCall", true } });
    options.passcode = kStoryPasscode;
    boot(options);
    hold(contactButton());
    wait();
    cancelPasscode();
    wait();
    forget();

    phone().strip().send<"showMenu:">(objc::handle {});
    wait();
    EXPECT_EQ(effects(), (Effects { "passcodeTest yes", "unlockRequest", "passcode shown" }));
    typePasscode();
    wait();

    EXPECT_EQ(only(effects(), { "sheet" }), Effects { kSheet });
}

// Each entry on each system.
class MenuEntry : public Story, public testing::WithParamInterface<std::tuple<char const*, Entry>> {
protected:
    static std::string version() { return std::get<0>(GetParam()); }
    static Entry entry() { return std::get<1>(GetParam()); }
    static ActionRow const& action() { return actionOfTap(entry().tapCode); }
    static bool opensApp() { return action().group == ActionGroup::messagingApp; }
    static bool isCall() { return action().group == ActionGroup::call; }

    static void bootPhone(bool hasPasscode, bool validates, Json contact = annasEntry())
    {
        auto options = Story::options(version(),
            { { "singleTapAction", 9 }, { "askBeforeCall", false },
                { "validateUnlockBeforeCall", validates } },
            Json::array({ contact }));
        if (hasPasscode)
            options.passcode = kStoryPasscode;
        boot(options);
    }
    static void openMenu()
    {
        hold(contactButton());
        wait();
    }
    // What comes of the entry; the sheet's own going left out.
    static Effects chosen()
    {
        forget();
        touch(alertRow(entry().title));
        wait();
        return withoutSheet();
    }
    static Effects withoutSheet()
    {
        Effects lines = effects();
        std::erase(lines, "dismiss UIAlertController");
        return lines;
    }
    bool isMissing() const { return entry().needs13 && isBefore13(version()); }
};

TEST_P(MenuEntry, RunsOnAPhoneWithoutPasscode)
{
    if (isMissing())
        return;
    bootPhone(false, false);
    openMenu();

    Effects expected { "passcodeTest no" };
    if (opensApp())
        expected = expected + Effects { "unlockRequest", "lock unlockFinished", "lock willDismiss" };
    expected = expected + action().atOnce + Effects { "release CVL" } + action().later;
    if (opensApp())
        expected.push_back("lock dismissed");
    EXPECT_EQ(chosen(), expected);
    EXPECT_FALSE(phone().idleTimer().isDisabled());
}

TEST_P(MenuEntry, WaitsForThePasscodeUnlessItIsACall)
{
    if (isMissing())
        return;
    bootPhone(true, false);
    openMenu();

    if (isCall()) {
        EXPECT_EQ(chosen(),
            Effects { "passcodeTest yes" } + action().atOnce + Effects { "release CVL" } + action().later);
        return;
    }
    EXPECT_EQ(chosen(), (Effects { "passcodeTest yes", "unlockRequest", "passcode shown", "release CVL" }));
    typePasscode();
    wait();

    Effects expected { "passcode accepted" };
    if (opensApp())
        expected = expected + Effects { "lock unlockFinished", "lock willDismiss" };
    expected = expected + action().atOnce + action().later + Effects { "passcode disappeared" };
    if (opensApp())
        expected.push_back("lock dismissed");
    EXPECT_EQ(withoutSheet(), expected);
}

TEST_P(MenuEntry, RunsFromTheMenuThatWaitedForThePasscode)
{
    if (isMissing())
        return;
    bootPhone(true, true);
    openMenu();
    EXPECT_EQ(effects(), (Effects { "passcodeTest yes", "unlockRequest", "passcode shown" }));
    typePasscode();
    wait();
    EXPECT_EQ(effects(),
        (Effects { "passcode accepted", "passcodeTest no", "hold CVL", "sound 1519", kSheet,
            "passcode disappeared" }));
    EXPECT_TRUE(phone().isLocked());

    Effects expected { "passcodeTest no" };
    if (opensApp())
        expected = expected + Effects { "unlockRequest", "lock unlockFinished", "lock willDismiss" };
    expected = expected + action().atOnce + Effects { "release CVL" } + action().later;
    if (opensApp())
        expected.push_back("lock dismissed");
    EXPECT_EQ(chosen(), expected);
}

TEST_P(MenuEntry, IsForgottenWhenThePasscodeIsCancelled)
{
    if (isMissing() || isCall())
        return;
    bootPhone(true, false);
    openMenu();
    chosen();

    cancelPasscode();
    wait();
    EXPECT_EQ(withoutSheet(), (Effects { "passcode cancelled", "passcode disappeared" }));

    phone().requestUnlock();
    wait();
    typePasscode();
    wait();
    EXPECT_TRUE(only(effects(), { "openURL", "siri", "present", "hold" }).empty());
    EXPECT_FALSE(phone().isLocked());
}

// Other than a tap, an entry does not ask whether there is somebody to reach.
TEST_P(MenuEntry, RunsWithoutATargetAllTheSame)
{
    if (isMissing() || entry().tapCode == 7)   // there is no such row without an address
        return;
    bootPhone(true, false, emptyEntry());
    openMenu();
    Effects came = chosen();
    if (!isCall()) {
        EXPECT_EQ(came, (Effects { "passcodeTest yes", "unlockRequest", "passcode shown", "release CVL" }));
        typePasscode();
        wait();
        came = effects();
    }

    constexpr char const* kWithoutNumber[] { "openURL tel:", "openURL whatsapp://send?phone=",
        "openURL tg://msg?&to=", "siri call  in whatsapp", "siri call  in telegram",
        "MFMessageComposeViewControllerCVL setRecipients:([\"\"])", "openURL facetime:" };
    EXPECT_TRUE(std::ranges::count(came, kWithoutNumber[entry().tapCode])) << testing::PrintToString(came);
}

INSTANTIATE_TEST_SUITE_P(EverySystem, MenuEntry,
    testing::Combine(testing::ValuesIn(kStoryVersions), testing::ValuesIn(kEntries)), [](auto const& info) {
        std::string name = versionName(std::get<0>(info.param));
        for (char const* letter = std::get<1>(info.param).title; *letter && *letter != '('; ++letter)
            if (*letter != ' ')
                name += *letter;
        return name;
    });

}
