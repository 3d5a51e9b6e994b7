// What the person reads and what Siri hears, to the letter.
#include "tests/scenarios/actions.hpp"

#include "phone/foundation/strings.hpp"

#include <unistd.h>

namespace phone {

class Texts : public Story {
protected:
    static Json lastPresented()
    {
        Json last;
        for (Json const& event : phone().trace().events())
            if (event["kind"] == "present")
                last = event;
        return last;
    }
    static Json lastSiri()
    {
        Json last;
        for (Json const& event : phone().trace().events())
            if (event["kind"] == "siri")
                last = event;
        return last;
    }
    static std::string siriText(int tap, Json settings)
    {
        settings["singleTapAction"] = tap;
        boot(options("15.4", settings));
        touch(contactButton());
        wait();
        return lastSiri()["text"];
    }
    static std::u16string units(std::string const& utf8)
    {
        NSString const text = toNSString(utf8);
        std::u16string units;
        for (NSUInteger i = 0; i < text.length(); ++i)
            units += text.characterAtIndex(i);
        return units;
    }
};

TEST_F(Texts, AskBeforeAPhoneCall)
{
    boot(options("15.4", { { "singleTapAction", 0 } }));
    touch(contactButton());
    wait();

    Json const alert = lastPresented();
    EXPECT_EQ(alert["title"], "Confirmation");
    EXPECT_EQ(alert["message"], "You are about to call:\nAnna, +44 20 7946-0958\n Are you sure?");
    EXPECT_EQ(alert["style"], 1);
    EXPECT_EQ(alert["actions"],
        Json::parse(R"([{"title":"Yes","style":0,"image":null},{"title":"No","style":1,"image":null}])"));
    // Cancel stands at the leading side.
    EXPECT_EQ(alertRows(), (std::vector<std::string> { "No", "Yes" }));
}

TEST_F(Texts, AskBeforeAFacetimeCall)
{
    boot(options("15.4", { { "singleTapAction", 6 } }));
    touch(contactButton());
    wait();

    Json const alert = lastPresented();
    EXPECT_EQ(alert["title"], "Confirmation");
    EXPECT_EQ(alert["message"], "You are about to facetime call:\nAnna, +44 20 7946-0958\n Are you sure?");
    EXPECT_EQ(alert["style"], 1);
    EXPECT_EQ(alert["actions"],
        Json::parse(R"([{"title":"Yes","style":0,"image":null},{"title":"No","style":1,"image":null}])"));
}

TEST_F(Texts, SiriInEnglish)
{
    EXPECT_EQ(siriText(3, Json::object()), "call +44 20 7946-0958 in whatsapp");
    Json const event = lastSiri();
    EXPECT_EQ(event["presentation"], "com.apple.siri.Siriland");
    EXPECT_EQ(event["source"], 0);
    EXPECT_EQ(event["wakeScreen"], false);
    EXPECT_EQ(event["hideOtherWindows"], false);
    EXPECT_EQ(event["timestamp"], event["buttonDownTimestamp"]);
    ASSERT_EQ(event["appInfos"].size(), 1u);
    EXPECT_EQ(event["appInfos"][0]["identifier"], "com.apple.springboard");
    EXPECT_EQ(event["appInfos"][0]["pid"], getpid());
    EXPECT_TRUE(shows("call +44 20 7946-0958 in whatsapp"));
}

TEST_F(Texts, SiriInEnglishForTelegram)
{
    EXPECT_EQ(siriText(4, Json::object()), "call +44 20 7946-0958 in telegram");
}

TEST_F(Texts, SiriInTurkish)
{
    EXPECT_EQ(siriText(3, { { "siriTurkish", true } }), "whatsapp'ta +44 20 7946-0958'i ara");
}

TEST_F(Texts, SiriInTurkishForTelegramAlsoWhenHebrewIsOnToo)
{
    EXPECT_EQ(siriText(4, { { "siriTurkish", true }, { "siriHebrew", true } }),
        "telegram'ta +44 20 7946-0958'i ara");
}

TEST_F(Texts, SiriInHebrewByCodeUnit)
{
    std::u16string const verb { 0x05EA, 0x05EA, 0x05E7, 0x05E9, 0x05E8, 0x05D9, 0x0020, 0x05DC };
    std::u16string const in { 0x0020, 0x05D1 };
    EXPECT_EQ(units(siriText(3, { { "siriHebrew", true } })), verb + u"+44 20 7946-0958" + in + u"whatsapp");
}

TEST_F(Texts, SiriInHebrewForTelegramNamesTheContact)
{
    std::u16string const verb { 0x05EA, 0x05EA, 0x05E7, 0x05E9, 0x05E8, 0x05D9, 0x0020, 0x05DC };
    std::u16string const in { 0x0020, 0x05D1 };
    EXPECT_EQ(units(siriText(4, { { "siriHebrew", true } })), verb + u"Anna" + in + u"telegram");
}

TEST_F(Texts, SiriWithASubjectOfSigns)
{
    Json contact = annasEntry();
    contact["contactPhoneNumber"] = "50% %@ %d";
    boot(options("15.4", { { "singleTapAction", 3 } }, Json::array({ contact })));
    touch(contactButton());
    wait();

    EXPECT_EQ(lastSiri()["text"], "call 50% %@ %d in whatsapp");
}

}
