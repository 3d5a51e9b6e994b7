// Scripts that do something to the phone: each has the effect that it is named for, and no error says otherwise.
#include "tests/phone/automation/scripts/scripts_fixture.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/springboard/starter_set.hpp"

namespace phone {

class ScriptDeeds : public ScriptsTest {
protected:
    // The settings file's value of a key, as text.
    static std::string setting(char const* key)
    {
        auto const bytes = phone().root().read(kSettingsPath);
        auto const file = bytes ? readPropertyList(*bytes) : Result<PropertyListFile>(Error { "no file" });
        auto const* const settings = file ? file->root.as<PropertyListDictionary>() : nullptr;
        auto const* const found = settings ? settings->find(key) : nullptr;
        if (!found)
            return "none";
        auto const* const text = found->as<std::string>();
        return text ? *text : found->kindName();
    }
};

TEST_F(ScriptDeeds, TraceBeginsWhereItIsAsked)
{
    boot(usual());
    Json const all = run("trace");
    ASSERT_GT(all.size(), 3u);
    for (std::size_t n = 0; n < all.size(); ++n)
        EXPECT_EQ(all[n]["n"], n);
    EXPECT_EQ(run("trace", R"({"since":3})")[0], all[3]);
    EXPECT_EQ(run("trace", R"({"since":3.0})").size(), all.size() - 3);
    EXPECT_EQ(run("trace", R"({"since":100000})"), Json::array());
}

TEST_F(ScriptDeeds, AdvanceMovesTheClock)
{
    boot(usual());
    double const before = phone().clock().now();
    EXPECT_EQ(run("advance", R"({"seconds":3600})"), nullptr);
    EXPECT_DOUBLE_EQ(phone().clock().now(), before + 3600);
}

TEST_F(ScriptDeeds, SettingsAreWrittenAndTheNotificationArrives)
{
    boot(usual());
    std::size_t const before = phone().trace().count();
    EXPECT_EQ(
        run("settings",
            R"({"set":{"first":"1","second":{"date":"2026-06-18T09:41:00Z"},"third":{"data":"AAE="}}})"),
        nullptr);
    EXPECT_EQ(setting("first"), "1");
    EXPECT_EQ(setting("second"), "date");
    EXPECT_EQ(setting("third"), "data");
    // The plug-in reads the file again.
    EXPECT_FALSE(events("read", before).empty());

    std::size_t const quiet = phone().trace().count();
    run("settings", R"({"set":{"fourth":"4"},"remove":["first","never"],"notify":false})");
    EXPECT_EQ(setting("first"), "none");
    EXPECT_EQ(setting("second"), "date");
    EXPECT_EQ(setting("fourth"), "4");
    EXPECT_TRUE(events("read", quiet).empty());
}

TEST_F(ScriptDeeds, NotifyPostsAndDelivers)
{
    boot(usual());
    std::size_t const before = phone().trace().count();
    EXPECT_EQ(
        run("notify", R"({"name":"com.orvane.corvelpref.settingschanged","center":"darwin"})"), nullptr);
    EXPECT_FALSE(events("read", before).empty());
    std::size_t const elsewhere = phone().trace().count();
    run("notify", R"({"name":"com.orvane.corvelpref.settingschanged","center":"local"})");
    run("notify", R"({"name":"com.orvane.corvelpref.settingschanged","center":"default"})");
    EXPECT_TRUE(events("read", elsewhere).empty());
}

TEST_F(ScriptDeeds, PasscodesAreEnteredAndCancelled)
{
    boot(usual());
    EXPECT_TRUE(refusal("enterPasscode", R"({"code":"1234"})").starts_with("invalid element state: "));
    EXPECT_TRUE(refusal("cancelPasscode").starts_with("invalid element state: "));
    phone().requestUnlock();
    run("advance", R"({"seconds":1})");
    EXPECT_EQ(run("cancelPasscode"), nullptr);
    run("advance", R"({"seconds":1})");
    EXPECT_TRUE(phone().isLocked());
    phone().requestUnlock();
    run("advance", R"({"seconds":1})");
    // A few wrong codes lock nobody out.
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(run("enterPasscode", R"({"code":"0000"})"), false);
    EXPECT_EQ(run("enterPasscode", R"({"code":"1234"})"), true);
    run("advance", R"({"seconds":1})");
    EXPECT_FALSE(phone().isLocked());
}

TEST_F(ScriptDeeds, ActivatorReachesItsListener)
{
    boot(usual());
    Json const answer = run("activator", R"({"name":"com.orvane.corvelNONLS"})");
    EXPECT_EQ(answer["delivered"], true);
    EXPECT_EQ(answer.size(), 2u);
    EXPECT_TRUE(answer["handled"].is_boolean());
    EXPECT_TRUE(phone().overlay());
    EXPECT_EQ(
        run("activator", R"({"name":"nobody's"})"), Json::parse(R"({"delivered":false,"handled":false})"));
}

TEST_F(ScriptDeeds, OrientationTurnsTheScreenAndTellsWhomItNames)
{
    boot(usual());
    auto const bounds = [this] { return send(send("UIScreen", "mainScreen")["handle"], "bounds")["rect"]; };
    EXPECT_EQ(bounds(), Json::parse("[0.0,0.0,390.0,844.0]"));
    EXPECT_EQ(run("orientation", R"({"value":3})"), nullptr);
    EXPECT_EQ(phone().orientation(), 3);
    EXPECT_EQ(bounds(), Json::parse("[0.0,0.0,844.0,390.0]"));
    run("orientation", R"({"value":2,"notify":[]})");
    EXPECT_EQ(phone().orientation(), 2);
    EXPECT_EQ(bounds(), Json::parse("[0.0,0.0,390.0,844.0]"));
    run("orientation", R"({"value":4.0,"notify":["rotate"]})");
    EXPECT_EQ(phone().orientation(), 4);
}

TEST_F(ScriptDeeds, MusicEntersAndLeaves)
{
    boot(usual());
    run("music", R"({"playing":true})");
    EXPECT_TRUE(phone().isMusicPlaying());
    run("music", R"({"playing":false})");
    EXPECT_FALSE(phone().isMusicPlaying());
}

TEST_F(ScriptDeeds, LaunchBringsAnApplicationToTheFront)
{
    BootOptions options = usual();
    options.locked = false;
    boot(options);
    EXPECT_EQ(run("launch", R"({"bundleId":"com.apple.mobilesafari"})"), nullptr);
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.mobilesafari");
    run("launch", R"({"bundleId":"com.apple.springboard"})");
    EXPECT_EQ(phone().frontMostApplication(), "com.apple.springboard");
}

TEST_F(ScriptDeeds, WhatIsThereComesAndGoes)
{
    boot(usual());
    EXPECT_EQ(send("MFMailComposeViewController", "canSendMail"), true);
    EXPECT_EQ(run("available", R"({"name":"mail","value":false})"), nullptr);
    EXPECT_EQ(send("MFMailComposeViewController", "canSendMail"), false);
    run("available", R"({"name":"mail","value":true})");
    EXPECT_EQ(send("MFMailComposeViewController", "canSendMail"), true);
    run("available", R"({"name":"SBLockScreenManager isUILocked","value":false})");
    EXPECT_TRUE(
        refusal("send", R"({"target":"manager","selector":"isUILocked"})").starts_with("invalid argument: "));
    run("available", R"({"name":"SBLockScreenManager isUILocked","value":true})");
    EXPECT_EQ(send("manager", "isUILocked"), true);
}

TEST_F(ScriptDeeds, TheKeyWindowIsChosen)
{
    boot(usual());
    Json const application = send("UIApplication", "sharedApplication")["handle"];
    Json const windows = send(application, "windows");
    ASSERT_GE(windows.size(), 2u);
    for (Json const& window : windows) {
        EXPECT_EQ(run("keyWindow", Json::object({ { "window", window["handle"] } })), nullptr);
        EXPECT_EQ(send(application, "keyWindow"), window);
    }
    m_context.elements["e1"] = UIWindow::keyWindow();
    run("keyWindow", R"({"window":null})");
    EXPECT_EQ(send(application, "keyWindow"), nullptr);
    run("keyWindow", Json::object({ { "window", element("e1") } }));
    EXPECT_EQ(send(application, "keyWindow"), windows.back());
}

TEST_F(ScriptDeeds, TheAddressBookIsWhatThePickerOffers)
{
    boot(usual());
    EXPECT_EQ(
        run("addressBook",
            R"({"contacts":[{"contactFirstName":"Ada","contactPhoneNumber":["1",{"label":"home","value":"2"}],
        "contactBirthday":{"day":1,"month":2,"year":2000,"calendar":null}}]})"),
        nullptr);
    EXPECT_EQ(phone().restartState().addressBook.size(), 1u);
    run("addressBook", R"({"contacts":null})");
    EXPECT_TRUE(phone().restartState().addressBook.is_null());
}

TEST_F(ScriptDeeds, FilesTakeEveryKind)
{
    boot(usual());
    DeviceRoot& root = phone().root();
    std::string const path = "/var/tmp/thing";
    ASSERT_TRUE(root.write(path, Bytes { 1, 2, 3 }, { .makesFolders = true }));
    auto const make = [&](std::string const& kind, Json const& to = nullptr) {
        Json arguments { { "path", path }, { "kind", kind } };
        if (!to.is_null())
            arguments["to"] = to;
        return run("file", arguments);
    };
    EXPECT_EQ(make("full"), nullptr);
    EXPECT_EQ(root.write(path, Bytes { 4 }).kind(), FileErrorKind::full);
    make("readonly");
    EXPECT_EQ(root.write(path, Bytes { 4 }).kind(), FileErrorKind::refused);
    EXPECT_EQ(root.read(path)->size(), 3u);
    make("unreadable");
    EXPECT_EQ(root.read(path).kind(), FileErrorKind::refused);
    make("absent");
    EXPECT_FALSE(root.exists(path));
    make("directory");
    EXPECT_EQ(root.read(path).kind(), FileErrorKind::notAFile);
    make("pipe");
    EXPECT_EQ(root.read(path).kind(), FileErrorKind::notAFile);
    ASSERT_TRUE(root.write("/var/tmp/other", Bytes { 7 }));
    make("link", "other");
    EXPECT_EQ(*root.read(path), Bytes { 7 });
    make("link", "/var/tmp/other");
    EXPECT_EQ(*root.read(path), Bytes { 7 });
}

}
