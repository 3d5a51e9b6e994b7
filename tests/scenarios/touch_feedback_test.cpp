// What a finger feels and sees of its touch: the motor's tap, and the button that fades.
#include "tests/scenarios/actions.hpp"

namespace phone {

class TouchFeedback : public Story {
protected:
    // Seconds of each animation since the last call, transitions with a T.
    static std::vector<std::string> animations()
    {
        std::vector<std::string> all;
        for (Json const& event : phone().trace().events(s_told))
            if (event["kind"] == "animate" && !event.contains("own")) {
                std::string const seconds = event["duration"].dump();
                all.push_back(seconds + (event.value("transition", false) ? "T" : ""));
                EXPECT_EQ(event["options"], 2 << 16);   // ease out
            }
        s_told = phone().trace().count();
        return all;
    }
    static void bootPhone(Json settings)
    {
        boot(options("15.4", settings));
        animations();
    }
    static CGPoint middle(UIView view)
    {
        CGRect const box = view.convertRectToView(view.bounds(), {});
        return { midX(box), midY(box) };
    }
    using Names = std::vector<std::string>;

private:
    static inline std::size_t s_told = 0;
};

TEST_F(TouchFeedback, FadesWhenTheFingerComesAndAgainWhenItGoes)
{
    bootPhone({ { "singleTapAction", 9 } });
    CGPoint const point = middle(contactButton());

    phone().touchDown(point);
    wait(0.2);
    EXPECT_EQ(animations(), Names { "0.2" });
    EXPECT_TRUE(effects().empty());
    EXPECT_NEAR(contactButton().alpha(), 0.1, 1e-9);

    phone().touchUp(point);
    EXPECT_EQ(effects(), Effects { "sound 1519" });
    wait(2);
    Names const later = animations();
    EXPECT_EQ(std::ranges::count(later, "0.2"), 1);
    EXPECT_EQ(std::ranges::count(later, "0.7T"), 2);
    EXPECT_EQ(contactButton().alpha(), 1);
    EXPECT_TRUE(effects().empty());
}

TEST_F(TouchFeedback, IsFeltBetweenTheTwoFadings)
{
    bootPhone({ { "singleTapAction", 9 } });
    CGPoint const point = middle(contactButton());
    phone().touchDown(point);
    std::size_t const before = phone().trace().count();

    phone().touchUp(point);

    std::vector<std::string> kinds;
    for (Json const& event : phone().trace().events(before))
        if (!event.contains("own") && (event["kind"] == "sound" || event["kind"] == "animate"))
            kinds.push_back(event["kind"]);
    // A short touch in a list reaches the button when it ends.
    EXPECT_EQ(kinds, (std::vector<std::string> { "animate", "sound", "animate" }));
}

TEST_F(TouchFeedback, FadesAndDoesNothingWhenTheFingerLeavesTheButton)
{
    bootPhone({ { "singleTapAction", 0 } });
    CGPoint const point = middle(contactButton());

    phone().touchDown(point);
    wait(0.2);
    phone().touchMove({ point.x, point.y - 300 });
    phone().touchUp({ point.x, point.y - 300 });
    wait(2);

    EXPECT_EQ(animations(), (Names { "0.2", "0.7T" }));
    EXPECT_TRUE(effects().empty());
}

TEST_F(TouchFeedback, IsNotFeltWhereTheSettingsSaySo)
{
    bootPhone({ { "singleTapAction", 0 }, { "isHapticFB", false } });

    touch(contactButton());
    wait();
    EXPECT_EQ(only(effects(), { "sound", "passcodeTest" }), Effects { "passcodeTest no" });
    touch(alertRow("No"));
    wait();

    hold(contactButton());
    wait();
    EXPECT_EQ(only(effects(), { "sound", "sheet" }), Effects { "sheet Anna - +44 20 7946-0958" });
}

TEST_F(TouchFeedback, FollowsTheSettingWithoutARestart)
{
    bootPhone({ { "singleTapAction", 9 } });

    ASSERT_TRUE(phone().changeSettings({ { "isHapticFB", false } }, {}));
    touch(contactButton());
    wait();

    EXPECT_TRUE(only(effects(), { "sound" }).empty());
}

}
