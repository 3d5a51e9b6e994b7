// `phone: send` and `phone: value`: targets, messages, keys, and what is refused.
#include "tests/phone/automation/scripts/scripts_fixture.hpp"

namespace phone {

class ScriptSend : public ScriptsTest { };

TEST_F(ScriptSend, FindsEveryKindOfTarget)
{
    boot(usual());
    m_context.elements["e1"] = phone().strip();
    EXPECT_EQ(send("strip", "class")["class"], "CVLView");
    EXPECT_EQ(send("host", "class")["class"], "CSNotificationAdjunctListViewController");
    EXPECT_EQ(send("manager", "class")["class"], "SBLockScreenManager");
    EXPECT_EQ(send("passcode", "class")["class"], "CSPasscodeViewController");
    EXPECT_EQ(send(element("e1"), "class")["class"], "CVLView");
    EXPECT_EQ(send("e1", "class")["class"], "CVLView");
    EXPECT_EQ(send(Json::object({ { "ELEMENT", "e1" } }), "class")["class"], "CVLView");
    EXPECT_EQ(send("UIColor", "redColor"), Json::parse(R"({"color":[1.0,0.0,0.0,1.0]})"));
}

TEST_F(ScriptSend, TellsWhatIsNotThere)
{
    boot(usual());
    for (char const* const target : { R"("overlay")", R"("object-7")", R"({"handle":"object-1-2"})",
             R"("NoSuchClass")", R"({"element-6066-11e4-a52e-4f735466cecf":"gone"})" }) {
        std::string const said =
            refusal("send", (std::string(R"({"selector":"self","target":)") + target + "}").c_str());
        EXPECT_TRUE(said.starts_with("no such element: ")) << said;
    }
}

TEST_F(ScriptSend, SendsWithArgumentsOfEveryKind)
{
    boot(usual());
    Json const view = send("UIView", "new")["handle"];
    EXPECT_EQ(send(view, "setFrame:", R"([{"rect":[10,20,30,40]}])"), nullptr);
    EXPECT_EQ(send(view, "frame"), Json::parse(R"({"rect":[10.0,20.0,30.0,40.0]})"));
    send(view, "setAlpha:", "[0.5]");
    EXPECT_EQ(send(view, "alpha"), 0.5);
    send(view, "setHidden:", "[true]");
    EXPECT_EQ(send(view, "isHidden"), true);
    send(view, "setTag:", "[-3]");
    EXPECT_EQ(send(view, "tag"), -3);
    send(view, "setTransform:", R"([{"transform":[2,0,0,2,1,1]}])");
    EXPECT_EQ(send(view, "transform"), Json::parse(R"({"transform":[2.0,0.0,0.0,2.0,1.0,1.0]})"));
    send(view, "setBackgroundColor:", R"([{"color":[0,1,0,1]}])");
    EXPECT_EQ(send(view, "backgroundColor"), Json::parse(R"({"color":[0.0,1.0,0.0,1.0]})"));
    send(view, "setBackgroundColor:", "[null]");
    EXPECT_EQ(send(view, "backgroundColor"), nullptr);
    send(view, "setAccessibilityLabel:", R"(["Name"])");
    EXPECT_EQ(send(view, "accessibilityLabel"), "Name");
    EXPECT_EQ(send(view, "respondsToSelector:", R"(["setAlpha:"])"), true);
    EXPECT_EQ(send(view, "isKindOfClass:", R"(["UIResponder"])"), true);
    EXPECT_EQ(send(view, "isKindOfClass:", R"(["UILabel"])"), false);
    EXPECT_EQ(send("NSString", "stringWithUTF8String:", R"(["text"])"), "text");
    EXPECT_EQ(send("UIImage", "imageNamed:", R"(["nothing"])"), nullptr);
}

TEST_F(ScriptSend, TakesElementsAndHandlesAsArguments)
{
    boot(usual());
    m_context.elements["e1"] = phone().strip();
    Json const strip = send("strip", "self");
    std::string const handle = R"([{"handle":")" + strip["handle"].get<std::string>() + R"("}])";
    EXPECT_EQ(send("strip", "isEqual:", handle.c_str()), true);
    EXPECT_EQ(send("strip", "isEqual:", R"([{"element-6066-11e4-a52e-4f735466cecf":"e1"}])"), true);
    EXPECT_EQ(send("strip", "isEqual:", "[null]"), false);
    EXPECT_TRUE(refusal("send",
        R"({"target":"strip","selector":"isEqual:","arguments":[{"element-6066-11e4-a52e-4f735466cecf":"e2"}]})")
                    .starts_with("invalid argument: "));
}

TEST_F(ScriptSend, WhatUIKitAnswersThePhoneAnswers)
{
    boot(usual());
    Json const strip = send("strip", "self");
    EXPECT_GT(send("strip", "subviews").size(), 0u);
    EXPECT_TRUE(send("strip", "superview").contains("handle"));
    EXPECT_EQ(
        send(send("strip", "superview")["handle"], "class")["class"].type_name(), std::string("string"));
    EXPECT_TRUE(send("strip", "nextResponder").contains("handle"));
    EXPECT_TRUE(
        send("strip", "gestureRecognizers").is_null() || send("strip", "gestureRecognizers").is_array());
    EXPECT_TRUE(send("strip", "window").contains("handle"));
    Json const application = send("UIApplication", "sharedApplication")["handle"];
    EXPECT_GE(send(application, "windows").size(), 2u);
    Json const window = send("strip", "window")["handle"];
    Json const root = send(window, "rootViewController");
    EXPECT_TRUE(root.contains("handle"));
    EXPECT_EQ(send(root["handle"], "presentedViewController"), nullptr);
    Json const list = send("strip", "collectionView")["handle"];
    EXPECT_EQ(send(list, "visibleCells").size(), 3u);
    EXPECT_EQ(send(list, "delegate"), strip);
    EXPECT_EQ(send(list, "dataSource"), strip);
    EXPECT_TRUE(send(list, "tintColor").contains("color"));
    Json const alert = send("UIAlertController",
        "alertControllerWithTitle:message:preferredStyle:", R"(["Title","Message",1])")["handle"];
    EXPECT_EQ(send(alert, "preferredStyle"), 1);
    EXPECT_EQ(send(alert, "title"), "Title");
    Json const action = send("UIAlertAction", "actionWithTitle:style:handler:", R"(["Go",2,null])");
    std::string const handle = R"([{"handle":")" + action["handle"].get<std::string>() + R"("}])";
    send(alert, "addAction:", handle.c_str());
    EXPECT_EQ(send(alert, "actions"), Json::array({ action }));
    EXPECT_EQ(send(action["handle"], "title"), "Go");
    EXPECT_EQ(send(action["handle"], "style"), 2);
    Json const recognizer = send("UILongPressGestureRecognizer", "new")["handle"];
    send(recognizer, "setState:", "[1]");
    EXPECT_EQ(send(recognizer, "state"), 1);
}

TEST_F(ScriptSend, RefusesWithoutSending)
{
    boot(usual());
    auto const before = phone().views().dump();
    struct Case {
        char const* selector;
        char const* arguments;
        char const* says;
    };
    for (auto const& [selector, arguments, says] : std::initializer_list<Case> {
             { "setAlfa:", "[1]", "CVLView does not answer to `setAlfa:`; near: setAlpha:" },
             { "setAlpha:", "[]", "setAlpha: takes 1 arguments, not 0" },
             { "setAlpha:", "[1,2]", "setAlpha: takes 1 arguments, not 2" },
             { "setAlpha:", R"(["a"])", "arguments[0] takes a number, not \"a\"" },
             { "setFrame:", R"([{"size":[1,2]}])", "arguments[0] takes {\"rect\"" },
             { "frame", "[1]", "frame takes 0 arguments, not 1" } }) {
        std::string const said = refusal("send",
            Json::object({ { "target", "strip" }, { "selector", selector },
                { "arguments", Json::parse(arguments) } }));
        EXPECT_TRUE(said.starts_with("invalid argument: " + std::string(says))) << said;
    }
    EXPECT_EQ(phone().views().dump(), before);
}

TEST_F(ScriptSend, TellsWhatAMethodRaises)
{
    boot(usual());
    Json const array = send("NSMutableArray", "new");
    EXPECT_EQ(array, Json::array());
    std::string const said =
        refusal("send", R"({"target":"NSString","selector":"stringWithString:","arguments":[null]})");
    EXPECT_TRUE(said.starts_with("unknown error: stringWithString: raised ")) << said;
    // And the phone goes on.
    EXPECT_EQ(send("strip", "class")["class"], "CVLView");
}

TEST_F(ScriptSend, AFurtherHostLoadsWithItsView)
{
    boot(usual());
    std::size_t const before = phone().trace().count();
    Json const host = send("CSNotificationAdjunctListViewController", "new")["handle"];
    send(host, "view");
    EXPECT_EQ(told("previous", "selector", before), (std::vector<std::string> { "viewDidLoad" }));
}

TEST_F(ScriptSend, AHookedMethodRunsTheHookAndTheOwnPart)
{
    boot(usual());
    std::size_t const before = phone().trace().count();
    send("manager", "lockScreenViewControllerWillDismiss");
    EXPECT_EQ(told("previous", "selector", before),
        (std::vector<std::string> { "lockScreenViewControllerWillDismiss" }));
    EXPECT_TRUE(phone().isLocked());   // the own part alone shows and hides nothing
    EXPECT_TRUE(events("lock", before).empty());
}

TEST_F(ScriptSend, ReadsKeysOfEveryKind)
{
    boot(usual());
    EXPECT_EQ(value("strip", "isViewNonLS"), false);
    EXPECT_EQ(value("strip", "viewNonLS"), false);   // by its question
    EXPECT_EQ(value("strip", "_list").size(), 3u);   // by the instance variable
    EXPECT_EQ(value("strip", "list").size(), 3u);
    EXPECT_TRUE(value("strip", "frame").contains("rect"));
    EXPECT_EQ(value("strip", "superview.frame").begin().key(), "rect");
    EXPECT_EQ(value("strip", "list.contactFirstName"), Json::parse(R"(["Anna","Bora","Carl"])"));
    EXPECT_EQ(value("strip", "list.@count"), 3);
    EXPECT_EQ(value("host", "presentedViewController.title"), nullptr);
    std::string const said = refusal("value", R"({"target":"strip","key":"collectionVeiw"})");
    EXPECT_EQ(
        said, "invalid argument: CVLView has no value for the key `collectionVeiw`; near: collectionView");
    EXPECT_TRUE(
        refusal("value", R"({"target":"strip","key":"frame.origin"})").starts_with("invalid argument: "));
    EXPECT_TRUE(refusal("value", R"({"target":"strip","key":"list."})").starts_with("invalid argument: "));
}

}
