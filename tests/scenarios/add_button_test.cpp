// The button of an empty strip: on what the picker comes up, and what becomes of a picker that can't; and a strip that was
// hidden by the gesture before the phone came up with the new list.
#include "tests/scenarios/actions.hpp"
#include "tests/scenarios/empty_strip.hpp"

#include "phone/foundation/strings.hpp"

namespace phone {

class AddButton : public EmptyStripStory, public testing::WithParamInterface<char const*> {
protected:
    static BootOptions emptyStrip() { return options(GetParam(), Json::object(), Json::array()); }
    static void openPicker()
    {
        EmptyStripStory::openPicker(Json::array({ { { "contactFirstName", "Ada" },
            { "contactLastName", "Lund" }, { "contactUniqueIdentifier", "ada" } } }));
    }
};

TEST_P(AddButton, PresentsThePickerOnTheStripsController)
{
    boot(emptyStrip());
    openPicker();

    Json last;
    for (Json const& event : phone().trace().events())
        if (event["kind"] == "present")
            last = event;
    EXPECT_EQ(last["class"], "CNContactPickerViewController");
    EXPECT_EQ(last["presenter"], "CSNotificationAdjunctListViewController");
    EXPECT_EQ(last["animated"], true);
    EXPECT_EQ(last["completion"], true);
}

TEST_P(AddButton, PresentsNothingOnAStripThatHasNoController)
{
    boot(emptyStrip());
    UIView const strip = phone().strip();
    objc::ref<UIView> const kept = objc::retain(strip);
    strip.removeFromSuperview();

    strip.send<"addButton:">(objc::handle {});
    wait();

    EXPECT_EQ(effects(), (Effects { "passcodeTest no", "hold CVL" }));
}

// Nobody would ever let the screen go again.
TEST_P(AddButton, DoesNotKeepTheScreenOnWhereThereIsNoPicker)
{
    auto options = emptyStrip();
    options.absent = { "CNContactPickerViewController" };
    boot(options);

    touch(addButton());
    wait();

    EXPECT_EQ(effects(), (Effects { "passcodeTest no", "hold CVL", "release CVL" }));
    EXPECT_FALSE(phone().idleTimer().isDisabled());
}

TEST_P(AddButton, LeavesTheStripHiddenThatWasHiddenBeforeTheRestart)
{
    bootAfterRespring(emptyStrip(), [] {
        openPicker();
        for (UIView const row : { pickerRow("Ada Lund"), button("Done") })
            touch(row);
        wait();
        ASSERT_TRUE(phone().activate("com.orvane.corvelLS").delivered);
        touch(alertRow("Respring"));
        wait();
    });

    ASSERT_TRUE(phone().strip());
    EXPECT_TRUE(phone().strip().isHidden());
    EXPECT_FALSE(contactButton());
    ASSERT_TRUE(phone().activate("com.orvane.corvelLS").delivered);
    wait();
    EXPECT_FALSE(phone().strip().isHidden());
    EXPECT_TRUE(contactButton());
    EXPECT_TRUE(shows("Ada"));
}

INSTANTIATE_TEST_SUITE_P(EverySystemWithThePicker, AddButton, testing::Values("13.7", "14.8", "15.4", "16.1"),
    [](auto const& info) { return versionName(info.param); });

}
