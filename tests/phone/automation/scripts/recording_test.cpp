// `phone: record`: messages in the trace, as long as it is asked for.
#include "tests/phone/automation/scripts/scripts_fixture.hpp"

namespace phone {

class ScriptRecording : public ScriptsTest {
protected:
    // The recorded messages of a selector.
    static std::vector<Json> messages(std::string const& selector, std::size_t since = 0)
    {
        std::vector<Json> chosen;
        for (Json const& event : events("message", since))
            if (event["selector"] == selector)
                chosen.push_back(event);
        return chosen;
    }
};

TEST_F(ScriptRecording, NothingIsRecordedUnasked)
{
    boot(usual());
    send("strip", "setAlpha:", "[0.5]");
    phone().advance(1);
    EXPECT_TRUE(events("message").empty());
}

TEST_F(ScriptRecording, MessagesToTheStripsHaveArgumentsAndResult)
{
    boot(usual());
    run("record", R"({"messages":true})");
    send("strip", "setFrame:", R"([{"rect":[1,2,300,90]}])");
    send("strip", "frame");
    send("strip", "isViewNonLS");
    ASSERT_EQ(messages("setFrame:").size(), 1u);
    Json const set = messages("setFrame:")[0];
    EXPECT_EQ(set["target"]["class"], "CVLView");
    EXPECT_EQ(set["target"]["handle"], send("strip", "self")["handle"]);
    EXPECT_EQ(set["arguments"], Json::parse(R"([{"rect":[1.0,2.0,300.0,90.0]}])"));
    EXPECT_EQ(set["result"], nullptr);
    EXPECT_EQ(messages("frame").back()["result"].begin().key(), "rect");
    send("strip", "setAlpha:", "[0.5]");
    send("strip", "alpha");
    EXPECT_EQ(messages("alpha").back()["result"], 0.5);
    EXPECT_EQ(messages("isViewNonLS").back()["result"], false);
}

TEST_F(ScriptRecording, MessagesToTheHostAreRecordedToo)
{
    boot(usual());
    run("record", R"({"messages":true})");
    std::size_t const before = phone().trace().count();
    send("host", "_updatePresentingContent");
    ASSERT_FALSE(messages("_updatePresentingContent", before).empty());
    EXPECT_EQ(messages("_updatePresentingContent", before)[0]["target"]["class"],
        "CSNotificationAdjunctListViewController");
    // It begins before what comes of it, and no memory management is told.
    for (Json const& event : events("message"))
        for (char const* const silent : { "retain", "release", "autorelease", "dealloc" })
            EXPECT_NE(event["selector"], silent);
}

TEST_F(ScriptRecording, WhatATouchTellsTheStripIsThere)
{
    boot(usual());
    run("record", R"({"messages":true})");
    auto const buttons = viewsOfClass(phone().strip(), "CVLButton");
    ASSERT_FALSE(buttons.empty());
    CGRect const bounds = buttons[0].bounds();
    phone().tap(buttons[0].convertPointToView({ bounds.size.width / 2, bounds.size.height / 2 }, {}));
    ASSERT_EQ(messages("buttonPressedAction:").size(), 1u);
    EXPECT_EQ(messages("buttonPressedAction:")[0]["arguments"][0]["class"], "CVLButton");
}

TEST_F(ScriptRecording, ClassesAreChosenByNameWithTheirSubclasses)
{
    boot(usual());
    run("record", R"({"classes":["UILabel"]})");
    Json const label = send("UILabel", "new")["handle"];
    send(label, "setText:", R"(["a text"])");
    send("strip", "alpha");
    ASSERT_EQ(messages("setText:").size(), 1u);
    EXPECT_EQ(messages("setText:")[0]["arguments"], Json::parse(R"(["a text"])"));
    EXPECT_TRUE(messages("alpha").empty());   // the strips were not asked for

    run("record", R"({"classes":["UIView"]})");
    send(label, "text");
    send("strip", "alpha");
    EXPECT_EQ(messages("text").back()["result"], "a text");
    EXPECT_FALSE(messages("alpha").empty());
}

TEST_F(ScriptRecording, EndsWhenItIsToldTo)
{
    boot(usual());
    run("record", R"({"messages":true,"classes":["UILabel"]})");
    run("record", R"({"messages":false,"classes":[]})");
    std::size_t const before = phone().trace().count();
    send("strip", "alpha");
    send("UILabel", "new");
    EXPECT_TRUE(events("message", before).empty());
}

TEST_F(ScriptRecording, ChangesNothingThatIsDrawnOrDone)
{
    boot(usual());
    Json const before = phone().views(true);
    run("record", R"({"messages":true,"classes":["UIView","UIViewController","UICollectionViewLayout"]})");
    phone().lock();
    phone().advance(2);
    phone().setMusicPlaying(true);
    phone().setMusicPlaying(false);
    phone().advance(2);
    run("record", "{}");
    auto const shape = [](Json const& trees) {
        std::string text;
        auto const walk = [&](auto const& self, Json const& tree) -> void {
            text += tree["class"].get<std::string>() + tree["frame"].dump();
            for (Json const& child : tree["children"])
                self(self, child);
        };
        for (Json const& tree : trees)
            walk(walk, tree);
        return text;
    };
    EXPECT_EQ(shape(phone().views(true)), shape(before));
    EXPECT_FALSE(events("message").empty());
}

TEST_F(ScriptRecording, ExceptionsPassThrough)
{
    boot(usual());
    run("record", R"({"classes":["NSMutableArray"]})");
    Json const view = send("UIView", "new")["handle"];
    static_cast<void>(view);
    objc::handle const array = objc::cls<"NSMutableArray">().send<"array", objc::handle>();
    bool hasRaised = false;
    try {
        array.send<"addObject:">(objc::handle {});
    } catch (...) {
        hasRaised = true;
    }
    EXPECT_TRUE(hasRaised);
}

}
