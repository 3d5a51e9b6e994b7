// What taps and menus go by is the record of the strip that was made last: a change of the settings reaches them with a new
// strip, which then decides for the older one as well.
#include "tests/scenarios/actions.hpp"

namespace phone {

class StripRecord : public Story {
protected:
    static void bootPhone(Json settings, bool hasPasscode)
    {
        settings["askBeforeCall"] = false;
        auto options = Story::options("15.4", settings);
        if (hasPasscode)
            options.passcode = kStoryPasscode;
        boot(options);
    }
    static void change(PropertyListDictionary const& settings)
    {
        ASSERT_TRUE(phone().changeSettings(settings, {}));
        forget();
    }
    // The overlay's, with the record filled from the settings as they are.
    static void makeAnotherStrip()
    {
        phone().adjunctController().send<"viewDidLoad">();
        phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        wait();
        ASSERT_TRUE(phone().overlay());
        forget();
    }
    static Effects tapped()
    {
        touch(contactButton());
        wait();
        return effects();
    }
    static Effects held()
    {
        hold(contactButton());
        wait();
        return effects();
    }

    static inline Effects const s_atOnce { "sound 1519", "passcodeTest yes", "openURL tel:+44207946-0958",
        "completion yes" };
    static inline Effects const s_parked { "sound 1519", "passcodeTest yes", "unlockRequest",
        "passcode shown" };
    static inline Effects const s_sheet { "passcodeTest yes", "hold CVL", "sound 1519",
        "sheet Anna - +44 20 7946-0958" };
    static inline Effects const s_menuWaits { "passcodeTest yes", "unlockRequest", "passcode shown" };
};

TEST_F(StripRecord, LetsACallBePlacedAtOnceAlsoWhenCallsAreToWaitNow)
{
    bootPhone({ { "singleTapAction", 0 } }, true);
    change({ { "validateUnlockBeforeCall", true } });
    EXPECT_EQ(tapped(), s_atOnce);
}

TEST_F(StripRecord, LetsACallWaitAlsoWhenCallsNeedNotWaitAnyMore)
{
    bootPhone({ { "singleTapAction", 0 }, { "validateUnlockBeforeCall", true } }, true);
    change({ { "validateUnlockBeforeCall", false } });
    EXPECT_EQ(tapped(), s_parked);
}

TEST_F(StripRecord, LetsTheMenuOpenAndCallAtOnceAlsoWhenCallsAreToWaitNow)
{
    bootPhone({ { "singleTapAction", 9 } }, true);
    change({ { "validateUnlockBeforeCall", true } });
    EXPECT_EQ(held(), s_sheet);

    touch(alertRow("Call Contact"));
    wait();
    EXPECT_EQ(only(effects(), { "openURL", "unlockRequest" }), Effects { "openURL tel:+44207946-0958" });
}

TEST_F(StripRecord, LetsTheMenuWaitAlsoWhenCallsNeedNotWaitAnyMore)
{
    bootPhone({ { "singleTapAction", 9 }, { "validateUnlockBeforeCall", true } }, true);
    change({ { "validateUnlockBeforeCall", false } });
    EXPECT_EQ(held(), s_menuWaits);
}

TEST_F(StripRecord, KeepsTheMenusRows)
{
    bootPhone({ { "singleTapAction", 9 } }, false);
    hold(contactButton());
    wait();
    std::vector<std::string> const rows = alertRows();
    EXPECT_EQ(rows.size(), 10u);
    touch(alertRow("Cancel"));
    wait();

    change({ { "singleTapAction", 2 }, { "showWAmsg", false }, { "showTGmsg", false },
        { "showWACall", false }, { "showTGCall", false }, { "showSMS", false }, { "showFacetime", false },
        { "showMail", false }, { "showBirthday", false } });
    hold(contactButton());
    wait();
    EXPECT_EQ(alertRows(), rows);
}

TEST_F(StripRecord, OfALaterStripDecidesForTheEarlierOnesTap)
{
    bootPhone({ { "singleTapAction", 1 } }, true);
    change({ { "singleTapAction", 0 } });
    makeAnotherStrip();
    EXPECT_EQ(tapped(), s_atOnce);
}

TEST_F(StripRecord, OfALaterStripDecidesWhetherTheEarlierOnesCallsWait)
{
    bootPhone({ { "singleTapAction", 0 } }, true);
    change({ { "validateUnlockBeforeCall", true } });
    makeAnotherStrip();
    EXPECT_EQ(tapped(), s_parked);
}

TEST_F(StripRecord, OfALaterStripDecidesWhetherTheEarlierOnesMenuWaits)
{
    bootPhone({ { "singleTapAction", 0 } }, true);
    change({ { "validateUnlockBeforeCall", true } });
    makeAnotherStrip();
    EXPECT_EQ(held(), s_menuWaits);
}

TEST_F(StripRecord, OfALaterStripDecidesOnTheEarlierOnesMenu)
{
    bootPhone({ { "singleTapAction", 9 } }, false);
    change({ { "singleTapAction", 5 }, { "showWAmsg", false }, { "showBirthday", false } });
    makeAnotherStrip();
    hold(contactButton());
    wait();
    EXPECT_EQ(alertRows(),
        (std::vector<std::string> { "Call Contact", "Send Telegram Message", "Call via WhatsApp",
            "Call via Telegram", "New SMS Message", "Facetime Call", "Cancel" }));
}

}
