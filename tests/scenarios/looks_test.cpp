// Everything that comes up over the strip, with names and lists that are too long for it, in light and dark, from left to right and
// from right to left: it stays on the screen and can be left by touch. To be looked at as well: see story_pictures.hpp.
#include "tests/scenarios/actions.hpp"
#include "tests/scenarios/story_pictures.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/uikit/geometry.hpp"
#include "phone/uikit/ui_label.hpp"

namespace phone {

namespace {

constexpr char kLongName[] = "Maximiliane-Alexandra Wolfeschlegelsteinhausenbergerdorff";

Json longEntry()
{
    Json entry = annasEntry();
    entry["contactFirstName"] = kLongName;
    entry["contactPhoneNumber"] = "+44 20 7946-0958 extension 1234567890 after the tone";
    entry["contactEmail"] =
        "maximiliane.alexandra.wolfeschlegelsteinhausenbergerdorff@departments.example.com";
    return entry;
}

struct Look {
    char const* version;
    Appearance appearance;
    char const* language;
};

void PrintTo(Look const& look, std::ostream* stream) { *stream << look.version << ' ' << look.language; }

std::vector<Look> looks()
{
    std::vector<Look> all;
    for (char const* const version : { "12.4", "15.4", "16.1" })
        for (Appearance const appearance : { Appearance::light, Appearance::dark })
            for (char const* const language : { "en", "he" })
                all.push_back({ version, appearance, language });
    return all;
}

}

class Looks : public Story, public testing::WithParamInterface<Look> {
protected:
    static BootOptions looking(Json const& settings, Json const& contacts)
    {
        auto options = Story::options(GetParam().version, settings, contacts);
        options.appearance = GetParam().appearance;
        options.language = GetParam().language;
        return options;
    }
    // Whatever the phone's language calls it.
    static UIView cancelButton()
    {
        UIView const english = button("Cancel");
        return english ? english : button("ביטול");
    }
    // But for the strip's own, no text leaves the screen at its sides, and `count` of them or more are there.
    static void expectOnScreen(std::size_t count)
    {
        takePicture();
        double const width = phone().options().width;
        std::size_t texts = 0;
        for (UIView const view : visibleViews()) {
            bool const isText = view.send<"isKindOfClass:", BOOL>(objc::cls<"UILabel">());
            if (!isText || view.isDescendantOfView(phone().strip()))
                continue;
            std::string const text = toString(UILabel { view.object }.text());
            CGRect const box = view.convertRectToView(view.bounds(), {});
            if (text.empty() || maxY(box) < 0 || box.origin.y > phone().options().height)
                continue;
            ++texts;
            EXPECT_GE(box.origin.x, -0.5) << text;
            EXPECT_LE(maxX(box), width + 0.5) << text;
        }
        EXPECT_GE(texts, count);
    }
    static void choose(char const* entry)
    {
        hold(contactButton());
        wait();
        touch(alertRow(entry));
        wait();
    }
};

TEST_P(Looks, OfTheConfirmation)
{
    boot(looking({ { "singleTapAction", 0 } }, Json::array({ longEntry() })));
    touch(contactButton());
    wait();
    expectOnScreen(4);
    touch(alertRow("No"));
    wait();
    EXPECT_FALSE(alert());
}

TEST_P(Looks, OfTheMenu)
{
    boot(looking({ { "singleTapAction", 9 } }, Json::array({ longEntry() })));
    hold(contactButton());
    wait();
    expectOnScreen(8);
    touch(alertRow("Cancel"));
    wait();
    EXPECT_FALSE(alert());
}

TEST_P(Looks, OfTheComposers)
{
    boot(looking({ { "singleTapAction", 9 } }, Json::array({ longEntry() })));
    std::string const mail = "Email (" + longEntry()["contactEmail"].get<std::string>() + ")";
    for (char const* const entry : { "New SMS Message", mail.c_str() }) {
        choose(entry);
        expectOnScreen(3);
        touch(cancelButton());
        wait();
        EXPECT_FALSE(presented("MFMessageComposeViewController"));
        EXPECT_FALSE(presented("MFMailComposeViewController"));
    }
}

TEST_P(Looks, OfThePasscode)
{
    auto options = looking({ { "singleTapAction", 5 } }, Json::array({ longEntry() }));
    options.passcode = kStoryPasscode;
    boot(options);
    touch(contactButton());
    wait();
    typePasscode("12");
    expectOnScreen(11);
    typePasscode("99");
    wait(0.2);
    takePicture();   // it shakes
    wait();
    touch(cancelButton());
    wait();
    EXPECT_FALSE(phone().isPasscodeShown());
}

TEST_P(Looks, OfThePickerAndOfWhatItSays)
{
    if (std::string(GetParam().version) == "12.4")   // the list is filled elsewhere there
        return;
    boot(looking(Json::object(), Json::array()));
    Json people = Json::array();
    for (int i = 0; i < 500; ++i)
        people.push_back({ { "contactFirstName", kLongName }, { "contactLastName", std::to_string(1000 + i) },
            { "contactUniqueIdentifier", std::to_string(i) } });
    ASSERT_TRUE(phone().setAddressBook(people));
    phone().strip().send<"addButton:">(objc::handle {});
    wait();
    expectOnScreen(8);
    touch(pickerRow(std::string(kLongName) + " 1003"));
    expectOnScreen(8);
    touch(button("Done"));
    wait();
    EXPECT_FALSE(presented("CNContactPickerViewController"));
    expectOnScreen(3);
    EXPECT_TRUE(alertRow("Respring"));
}

INSTANTIATE_TEST_SUITE_P(Every, Looks, testing::ValuesIn(looks()), [](auto const& info) {
    return versionName(info.param.version) + (info.param.appearance == Appearance::dark ? "Dark" : "Light")
        + (std::string(info.param.language) == "he" ? "RightToLeft" : "LeftToRight");
});

}
