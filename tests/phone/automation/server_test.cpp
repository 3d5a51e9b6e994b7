// What a WebDriver client does with a phone, request by request.
#include "phone/kernel/base64.hpp"
#include "tests/phone/automation/web_driver_fixture.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>

namespace phone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST_F(WebDriver, FindsContactsByWhatTheScreenSays)
{
    start();
    std::string const anna = element("accessibility id", "Anna");
    ASSERT_NE(anna, "") << get("/source").body;
    EXPECT_EQ(element("accessibility id", "Anna"), anna);   // the same object, the same id
    EXPECT_EQ(ofElement(anna, "name").value(), "XCUIElementTypeStaticText");
    EXPECT_EQ(ofElement(anna, "text").value(), "Anna");
    EXPECT_EQ(ofElement(anna, "attribute/label").value(), "Anna");
    EXPECT_EQ(ofElement(anna, "attribute/visible").value(), "true");
    EXPECT_EQ(ofElement(anna, "attribute/placeholderValue").value(), nullptr);
    EXPECT_EQ(ofElement(anna, "attribute/colour").error(), "invalid argument");
    EXPECT_EQ(ofElement(anna, "displayed").value(), true);
    EXPECT_EQ(ofElement(anna, "enabled").value(), true);
    EXPECT_EQ(ofElement(anna, "selected").value(), false);
    EXPECT_GT(ofElement(anna, "rect").value()["width"], 0);
    EXPECT_GE(count("class name", "XCUIElementTypeCell"), 3u);
    EXPECT_EQ(element("xpath", "//XCUIElementTypeStaticText[@name='Anna']"), anna);
    EXPECT_EQ(element("-ios class chain", "**/XCUIElementTypeStaticText[`label == 'Anna'`]"), anna);
    EXPECT_EQ(element("-ios predicate string", "label == 'Anna' AND visible == 1"), anna);
    EXPECT_NE(element("-ios class chain", "**/XCUIElementTypeCell[2]"), "");
    EXPECT_EQ(find("accessibility id", "Nobody").error(), "no such element");
    EXPECT_EQ(count("accessibility id", "Nobody"), 0u);
    EXPECT_EQ(find("tag name", "x").error(), "invalid selector");
    EXPECT_EQ(post("/element", Json::object({ { "using", 5 } })).error(), "invalid argument");
}

TEST_F(WebDriver, ShowsTheScreenAsTreeAndPicture)
{
    start();
    std::string const xml = get("/source").value().get<std::string>();
    EXPECT_THAT(xml,
        HasSubstr("<AppiumAUT>\n  <XCUIElementTypeApplication type=\"XCUIElementTypeApplication\" "
                  "name=\"SpringBoard\" label=\"SpringBoard\" enabled=\"true\" visible=\"true\" "
                  "accessible=\"false\" x=\"0\" y=\"0\" width=\"390\" height=\"844\""));
    EXPECT_THAT(xml, HasSubstr("label=\"Carl\""));
    EXPECT_EQ(get("/window/rect").value(), Json::parse(R"({"x": 0, "y": 0, "width": 390, "height": 844})"));
    std::string const application =
        element("-ios predicate string", "type == \"XCUIElementTypeApplication\"");
    EXPECT_EQ(ofElement(application, "rect").value(),
        Json::parse(R"({"x": 0, "y": 0, "width": 390, "height": 844})"));
    auto const picture = bytesOfBase64(get("/screenshot").value().get<std::string>());
    ASSERT_TRUE(picture);
    EXPECT_EQ(std::string(picture->begin() + 1, picture->begin() + 4), "PNG");
    auto const side = [](Bytes const& png, std::size_t at) { return png[at + 2] * 256 + png[at + 3]; };
    EXPECT_EQ(side(*picture, 16), 1170);
    EXPECT_EQ(side(*picture, 20), 2532);
    std::string const anna = element("accessibility id", "Anna");
    auto const part = bytesOfBase64(ofElement(anna, "screenshot").value().get<std::string>());
    ASSERT_TRUE(part);
    EXPECT_EQ(side(*part, 16), 3 * ofElement(anna, "rect").value()["width"].get<int>());
}

TEST_F(WebDriver, TapsAndThenAsksForThePasscode)
{
    BootOptions boot = options();
    boot.settings = Json::object({ { "singleTapAction", 5 }, { "askBeforeCall", false } });   // a message
    start(boot);
    std::size_t const before = kinds().size();
    EXPECT_EQ(
        post("/element/" + element("-ios class chain", "**/XCUIElementTypeCell[1]") + "/click").status, 200);
    advance(2);
    EXPECT_THAT(kinds(before), testing::Contains("unlockRequest"));
    std::string const key = element("accessibility id", "1");
    ASSERT_NE(key, "");
    EXPECT_EQ(ofElement(key, "name").value(), "XCUIElementTypeKey");
    EXPECT_EQ(script("phone: enterPasscode", Json::object({ { "code", "1234" } })).value(), true);
}

TEST_F(WebDriver, OpensTheMenuByALongPressAndAnswersIt)
{
    start();
    std::string const cell = element("-ios class chain", "**/XCUIElementTypeCell[1]");
    EXPECT_EQ(get("/alert/text").error(), "no such alert");
    EXPECT_EQ(post("/alert/accept").error(), "no such alert");
    EXPECT_EQ(post("/actions", press(cell, 800)).status, 200);
    EXPECT_EQ(m_client->ask("DELETE", kPath + m_session + "/actions").status, 200);
    advance(0.1);
    Json const buttons = script("mobile: alert", Json::object({ { "action", "getButtons" } })).value();
    ASSERT_TRUE(buttons.is_array()) << buttons;
    ASSERT_GE(buttons.size(), 2u);
    EXPECT_NE(element("class name", "XCUIElementTypeSheet"), "");
    EXPECT_EQ(get("/alert/text").status, 200);
    EXPECT_EQ(post("/alert/text", Json::object({ { "text", "x" } })).error(), "unsupported operation");
    EXPECT_EQ(script("mobile: alert", Json::object({ { "action", "accept" }, { "buttonLabel", "Nothing" } }))
                  .error(),
        "invalid element state");
    EXPECT_EQ(
        post("/alert/dismiss").status, 200);   // the last of a sheet, which an animation still brings in
    advance(1);
    EXPECT_EQ(get("/alert/text").error(), "no such alert");
    EXPECT_EQ(element("class name", "XCUIElementTypeSheet"), "");
}

TEST_F(WebDriver, SpeaksOfTheAlertPresentedLast)
{
    start();
    auto const send = [&](Json const& target, char const* selector, Json const& arguments = Json::array()) {
        return script("phone: send",
            Json::object({ { "target", target }, { "selector", selector }, { "arguments", arguments } }))
            .value();
    };
    auto const present = [&](Json const& presenter, char const* title) {
        Json const alert = send("UIAlertController",
            "alertControllerWithTitle:message:preferredStyle:", Json::array({ title, " indented", 1 }));
        send(alert, "addAction:",
            Json::array({ send(
                "UIAlertAction", "actionWithTitle:style:handler:", Json::array({ "OK", 0, nullptr })) }));
        send(presenter, "presentViewController:animated:completion:", Json::array({ alert, true, nullptr }));
    };
    Json const windows = send(send("UIApplication", "sharedApplication"), "windows");
    ASSERT_GE(windows.size(), 2u) << windows;
    present(send(windows.back(), "rootViewController"), "First");
    EXPECT_EQ(get("/alert/text").value(), "First\n indented");
    present(send(windows[0], "rootViewController"), "Second");   // further back
    EXPECT_EQ(get("/alert/text").value(), "Second\n indented");
    EXPECT_EQ(post("/alert/accept").error(), "element not interactable");   // it lies behind the lock screen
}

TEST_F(WebDriver, ForgetsNoElementAndKeepsNoneAlive)
{
    start();
    EXPECT_EQ(ofElement("element-7777", "text").error(), "no such element");
    EXPECT_EQ(ofElement("x", "text").error(), "no such element");
    std::string const anna = element("accessibility id", "Anna");
    EXPECT_EQ(script("phone: settings", Json::parse(R"({"set": {"isEnabled": false}})")).status, 200);
    EXPECT_EQ(script("phone: respring").status, 200);
    EXPECT_EQ(ofElement(anna, "text").error(), "stale element reference");
    EXPECT_EQ(post("/element/" + anna + "/click").error(), "stale element reference");
    EXPECT_EQ(ofElement("element-7777", "text").error(), "no such element");
}

TEST_F(WebDriver, KeepsTheSessionThroughARestart)
{
    start();
    std::size_t const before = kinds().size();
    advance(5);
    EXPECT_EQ(
        script("phone: file", Json::parse(R"({"path": "/var/mobile/x", "kind": "directory"})")).status, 200);
    EXPECT_EQ(script("phone: respring").value(), nullptr);
    Json const events = script("phone: trace").value();
    EXPECT_GT(events.size(), before);
    for (std::size_t i = 0; i < events.size(); ++i)
        ASSERT_EQ(events[i]["n"], i);
    EXPECT_GE(events.back()["t"].get<double>(), 5);
    EXPECT_EQ(script("mobile: isLocked").value(), true);
    EXPECT_NE(element("accessibility id", "Anna"), "");
}

TEST_F(WebDriver, BootsAnotherPhoneForTheSameSession)
{
    start();
    EXPECT_EQ(
        script("phone: boot",
            Json::parse(
                R"({"ios": "12.4", "contacts": [], "width": 375, "height": 667, "scale": 2, "locked": false})"))
            .value(),
        nullptr);
    EXPECT_EQ(get("/window/rect").value()["width"], 375);
    EXPECT_EQ(script("mobile: isLocked").value(), false);
    EXPECT_EQ(element("accessibility id", "Anna"), "");
    EXPECT_EQ(m_client->ask("GET", "/status").value()["os"]["version"], "12.4");
    // One that can't boot: this one stays.
    EXPECT_EQ(
        script("phone: boot", Json::parse(R"({"timezone": "Mars/Olympus"})")).error(), "invalid argument");
    EXPECT_EQ(script("phone: boot", Json::parse(R"({"moon": 1})")).error(), "invalid argument");
    EXPECT_EQ(get("/window/rect").value()["width"], 375);
}

TEST_F(WebDriver, LocksUnlocksAndTurns)
{
    BootOptions boot = options();
    boot.passcode.reset();
    start(boot);
    EXPECT_EQ(script("mobile: isLocked").value(), true);
    EXPECT_EQ(script("mobile:unlock").value(), nullptr);
    EXPECT_EQ(script("mobile: isLocked").value(), false);
    EXPECT_EQ(post("/appium/device/lock", Json::object({ { "seconds", 0 } })).status, 200);
    EXPECT_EQ(post("/appium/device/is_locked").value(), true);
    EXPECT_EQ(script("mobile: pressButton", Json::object({ { "name", "HOME" } })).status, 200);
    advance(1);
    EXPECT_EQ(script("mobile: isLocked").value(), false);
    EXPECT_EQ(
        script("mobile: pressButton", Json::object({ { "name", "bell" } })).error(), "invalid argument");
    EXPECT_EQ(get("/orientation").value(), "PORTRAIT");
    EXPECT_EQ(post("/orientation", Json::object({ { "orientation", "landscape" } })).status, 200);
    EXPECT_EQ(get("/orientation").value(), "LANDSCAPE");
    EXPECT_EQ(get("/window/rect").value()["width"], 844);
    EXPECT_EQ(
        post("/orientation", Json::object({ { "orientation", "upwards" } })).error(), "invalid argument");
}

TEST_F(WebDriver, SaysThatAPasscodeIsAskedFor)
{
    start();
    auto const reply = script("mobile: unlock");
    EXPECT_EQ(reply.error(), "timeout");
    EXPECT_THAT(reply.body, HasSubstr("passcode"));
    // Keys reach the pad, as a keyboard's do.
    Json keys = Json::array();
    for (char const* const key : { "1", "2", "3", "4" }) {
        keys.push_back(Json::object({ { "type", "keyDown" }, { "value", key } }));
        keys.push_back(Json::object({ { "type", "keyUp" }, { "value", key } }));
    }
    EXPECT_EQ(
        post("/actions",
            Json::object({ { "actions",
                Json::array({ Json::object({ { "type", "key" }, { "id", "k" }, { "actions", keys } }) }) } }))
            .status,
        200);
    advance(2);
    EXPECT_EQ(script("mobile: isLocked").value(), false);
}

TEST_F(WebDriver, RunsAppsAndOpensLinks)
{
    BootOptions boot = options();
    boot.locked = false;
    start(boot);
    EXPECT_EQ(script("mobile: activeAppInfo").value()["bundleId"], "com.apple.springboard");
    Json const notes = Json::object({ { "bundleId", "com.apple.mobilenotes" } });
    EXPECT_EQ(script("mobile: queryAppState", notes).value(), 1);
    EXPECT_EQ(script("mobile: launchApp", notes).status, 200);
    EXPECT_EQ(script("mobile: queryAppState", notes).value(), 4);
    EXPECT_EQ(script("mobile: activeAppInfo").value()["bundleId"], "com.apple.mobilenotes");
    EXPECT_EQ(script("mobile: backgroundApp", Json::object({ { "seconds", -1 } })).status, 200);
    EXPECT_EQ(script("mobile: queryAppState", notes).value(), 3);
    EXPECT_EQ(script("mobile: terminateApp", notes).value(), true);
    EXPECT_EQ(script("mobile: terminateApp", notes).value(), false);
    // By the name that Android gives it, and by both, as a client sends it.
    Json both = notes;
    both["appId"] = notes["bundleId"];
    EXPECT_EQ(script("mobile: activateApp", both).status, 200);
    EXPECT_EQ(script("mobile: queryAppState", both).value(), 4);
    EXPECT_EQ(post("/appium/device/app_state", Json::object({ { "appId", notes["bundleId"] } })).value(), 4);
    EXPECT_EQ(script("mobile: terminateApp", both).value(), true);
    EXPECT_EQ(script("mobile: queryAppState").error(), "invalid argument");
    EXPECT_EQ(script("mobile: queryAppState", Json::object({ { "appId", 5 } })).error(), "invalid argument");
    std::size_t const before = kinds().size();
    EXPECT_EQ(script("mobile: deepLink", Json::object({ { "url", "tel:5550100" } })).status, 200);
    EXPECT_THAT(kinds(before), testing::Contains("openURL"));
    EXPECT_EQ(script("mobile: deepLink").error(), "invalid argument");
}

TEST_F(WebDriver, TellsOfTheDevice)
{
    start();
    EXPECT_EQ(script("mobile: deviceScreenInfo").value()["scale"], 3.0);
    EXPECT_EQ(script("mobile: deviceInfo").value()["isSimulator"], true);
    EXPECT_EQ(script("mobile: batteryInfo").value()["level"], 0.8);
    EXPECT_EQ(script("mobile: getContexts").value()[0]["id"], "NATIVE_APP");
    EXPECT_EQ(script("mobile: getAppearance").value()["style"], "light");
    EXPECT_EQ(script("mobile: getDeviceTime").value(), "2026-06-18T09:41:00Z");
    EXPECT_EQ(script("mobile: source", Json::object({ { "format", "json" } })).value()["type"],
        "XCUIElementTypeApplication");
    EXPECT_EQ(script("mobile: source", Json::object({ { "excludedAttributes", "visible,accessible" } }))
                  .value()
                  .get<std::string>()
                  .find("visible="),
        std::string::npos);
}

TEST_F(WebDriver, CarriesFilesWithinTheDeviceAndNowhereElse)
{
    start();
    Bytes const bytes(9 * 1024 * 1024, 0x5A);
    Json push = Json::object(
        { { "remotePath", "/var/mobile/big" }, { "payload", base64(bytes.data(), bytes.size()) } });
    EXPECT_EQ(script("mobile: pushFile", push).status, 200);
    auto const pulled =
        bytesOfBase64(script("mobile: pullFile", Json::object({ { "remotePath", "/var/mobile/big" } }))
                          .value()
                          .get<std::string>());
    EXPECT_EQ(pulled, bytes);
    for (char const* const path : { "/../x", "x", "/var/../../x", "" }) {
        push["remotePath"] = path;
        push["payload"] = "AAAA";
        EXPECT_EQ(script("mobile: pushFile", push).error(), "invalid argument") << path;
        EXPECT_EQ(
            script("mobile: pullFile", Json::object({ { "remotePath", path } })).error(), "invalid argument")
            << path;
    }
    push["payload"] = "!";
    EXPECT_EQ(script("mobile: pushFile", push).error(), "invalid argument");
}

TEST_F(WebDriver, RefusesWrongScriptsAndArguments)
{
    start();
    EXPECT_EQ(script("mobile: fly").error(), "unknown method");
    EXPECT_EQ(script("mobile: fly").status, 405);
    EXPECT_EQ(script("phone: fly").error(), "unknown method");
    EXPECT_EQ(script("return 5").error(), "unknown method");
    EXPECT_EQ(script("mobile: lock", Json::object({ { "moon", 1 } })).error(), "invalid argument");
    EXPECT_EQ(script("mobile: tap", Json::object({ { "x", 1 } })).error(), "invalid argument");
    EXPECT_EQ(script("mobile: tap", Json::object({ { "x", 1000 }, { "y", 1 } })).error(),
        "move target out of bounds");
    EXPECT_EQ(script("mobile: swipe", Json::object({ { "direction", "in" } })).error(), "invalid argument");
    EXPECT_EQ(script("mobile: scroll").error(), "invalid argument");
    EXPECT_EQ(
        script("mobile: touchAndHold", Json::object({ { "duration", -1 } })).error(), "invalid argument");
    EXPECT_EQ(post("/execute/sync", Json::object({ { "script", 5 } })).error(), "invalid argument");
    EXPECT_EQ(post("/execute/sync", Json::parse(R"({"script": "mobile: lock", "args": [1]})")).error(),
        "invalid argument");
    EXPECT_EQ(post("/execute/sync", Json::parse(R"({"script": "mobile: lock", "args": [{}, {}]})")).error(),
        "invalid argument");
    EXPECT_EQ(
        post("/execute/sync", Json::parse(R"({"script": "mobile: isLocked", "args": []})")).value(), true);
}

TEST_F(WebDriver, AnswersSeleniumsOwnQuestions)
{
    start();
    std::string const anna = element("accessibility id", "Anna");
    Json const object = Json::object({ { kElementKey, anna } });
    EXPECT_EQ(post("/execute/sync",
                  Json::object({ { "script", "/* isDisplayed */return (function(){…})" },
                      { "args", Json::array({ object }) } }))
                  .value(),
        true);
    EXPECT_EQ(post("/execute/sync",
                  Json::object({ { "script", "/* getAttribute */return (function(){…})" },
                      { "args", Json::array({ object, "label" }) } }))
                  .value(),
        "Anna");
    EXPECT_EQ(post("/execute/sync",
                  Json::object(
                      { { "script", "/* getAttribute */return (…)" }, { "args", Json::array({ object }) } }))
                  .error(),
        "invalid argument");
}

TEST_F(WebDriver, MovesFingersAtTheDisplaysRate)
{
    start();
    EXPECT_EQ(script("phone: record", Json::parse(R"({"messages": false})")).status, 200);
    Json const start = script("phone: value", Json::parse(R"({"target": "strip", "key": "frame"})")).value();
    ASSERT_TRUE(start.contains("rect")) << start;
    // Outside of the screen, and an element that is not there: before anything happens.
    std::size_t const before = kinds().size();
    Json away = press("element-9999", 10);
    EXPECT_EQ(post("/actions", away).error(), "no such element");
    away["actions"][0]["actions"][0] = Json::parse(R"({"type": "pointerMove", "x": 5000, "y": 5})");
    EXPECT_EQ(post("/actions", away).error(), "move target out of bounds");
    EXPECT_EQ(kinds().size(), before);
    // An up without a down does nothing; two fingers at once are two fingers.
    EXPECT_EQ(
        post("/actions",
            Json::parse(
                R"({"actions": [{"type": "pointer", "id": "a", "actions": [{"type": "pointerUp", "button": 0}]}]})"))
            .status,
        200);
    EXPECT_EQ(post("/actions", Json::parse(R"({"actions": [
        {"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 50, "y": 200}, {"type": "pointerDown"}, {"type": "pointerMove", "x": 60, "y": 220, "duration": 100}, {"type": "pointerUp"}]},
        {"type": "pointer", "id": "b", "actions": [{"type": "pointerMove", "x": 150, "y": 200}, {"type": "pointerDown"}, {"type": "pause", "duration": 50}, {"type": "pointerUp"}]}]})"))
                  .status,
        200);
}

TEST_F(WebDriver, SwipesOverWhatIsOnTheScreenAlone)
{
    start();
    std::string const anna = element("accessibility id", "Anna");
    Json const away = Json::parse(R"({"transform": [1, 0, 0, 1, 2000, 0]})");
    script("phone: send",
        Json::object({ { "target", "strip" }, { "selector", "setTransform:" },
            { "arguments", Json::array({ away }) } }));
    EXPECT_GT(ofElement(anna, "rect").value()["x"], 390);
    for (char const* const name : { "mobile: swipe", "mobile: scroll" })
        EXPECT_EQ(script(name, Json::object({ { "direction", "left" }, { "elementId", anna } })).error(),
            "element not interactable")
            << name;
}

TEST_F(WebDriver, EndsASearchThatWouldTakeForEver)
{
    start();
    std::string expression = "//*";
    for (int i = 0; i < 9; ++i)
        expression = "//*[count(" + expression + ") > 1]";
    auto const reply = find("xpath", expression);
    EXPECT_EQ(reply.status, 500);
    EXPECT_EQ(reply.error(), "timeout");
    EXPECT_NE(
        element("xpath", "//XCUIElementTypeStaticText[@name='Anna'][ancestor::XCUIElementTypeCell]"), "");
}

TEST_F(WebDriver, WaitsForElementsOnThePhonesClock)
{
    start();
    double const before = script("phone: trace").value().back()["t"].get<double>();
    EXPECT_EQ(post("/timeouts", Json::object({ { "implicit", 600'000 } })).status, 200);
    EXPECT_EQ(find("accessibility id", "Nobody").error(), "no such element");   // ten minutes, at once
    EXPECT_EQ(script("mobile: getDeviceTime").value(), "2026-06-18T09:51:00Z");
    EXPECT_GE(before, 0);
}

TEST_F(WebDriver, GoesOnWithoutAPhoneThatDied)
{
    start();
    EXPECT_EQ(m_client->ask("GET", "/status").status, 200);
    Json const info = script("mobile: activeAppInfo").value();
    kill(info["pid"].get<pid_t>(), SIGKILL);
    auto const reply = get("/source");
    EXPECT_EQ(reply.status, 500);
    EXPECT_THAT(reply.body, HasSubstr("signal 9"));
    EXPECT_EQ(get("/source").error(), "unknown error");
    EXPECT_EQ(get("/timeouts").status, 200);
    EXPECT_EQ(post("/execute/sync", Json::parse(R"({"script": "phone: boot", "args": [5]})")).error(),
        "unknown error");
    EXPECT_EQ(script("phone: boot", Json::parse(R"({"moon": 1})")).error(), "invalid argument");
    EXPECT_EQ(script("phone: boot").value(), nullptr);
    EXPECT_EQ(get("/source").status, 200);
}

TEST_F(WebDriver, RunsAClockThatRuns)
{
    BootOptions boot = options();
    boot.clock = ClockMode::running;
    start(boot);
    std::string const first = script("mobile: getDeviceTime").value();
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    EXPECT_GT(script("mobile: getDeviceTime").value().get<std::string>(), first);
    EXPECT_EQ(
        post("/actions", press(element("-ios class chain", "**/XCUIElementTypeCell[1]"), 800)).status, 200);
    EXPECT_TRUE(script("mobile: alert", Json::object({ { "action", "getButtons" } })).value().is_array());
    EXPECT_EQ(post("/alert/dismiss").status, 200);
}

// From an empty strip to a contact: the plug-in restarts the phone, with a running clock on its own and with one that is moved by
// hand within a command.
class WebDriverRestart : public WebDriver, public testing::WithParamInterface<ClockMode> { };

TEST_P(WebDriverRestart, GoesOnWithThePhoneThatThePluginRestarts)
{
    BootOptions boot = options();
    boot.passcode.reset();
    boot.contacts = Json::array();
    boot.clock = GetParam();
    start(boot);
    bool const isRunning = GetParam() == ClockMode::running;
    auto const wait = [&] {
        if (isRunning)
            std::this_thread::sleep_for(std::chrono::milliseconds(1200));
        else
            advance(1.2);
    };
    auto const click = [&](std::string const& strategy, std::string const& value) {
        auto const reply = post("/element/" + element(strategy, value) + "/click");
        EXPECT_EQ(reply.status, 200) << value << reply.body;
        wait();
    };
    Json const before = script("mobile: activeAppInfo").value();
    ASSERT_EQ(
        script("phone: addressBook",
            Json::parse(
                R"({"contacts": [{"contactFirstName": "Taxi", "contactLastName": "", "contactPhoneNumber": "+1 555"}]})"))
            .status,
        200);
    click("-ios class chain", "**/XCUIElementTypeOther[`name == 'adjunct'`]/**/XCUIElementTypeButton[1]");
    click("accessibility id", "Taxi");
    click("accessibility id", "Done");
    std::size_t const events = kinds().size();
    EXPECT_EQ(
        script("mobile: alert", Json::parse(R"({"action": "accept", "buttonLabel": "Respring"})")).status,
        200);
    wait();
    wait();

    EXPECT_NE(script("mobile: activeAppInfo").value()["pid"], before["pid"]);
    EXPECT_NE(element("accessibility id", "Taxi"), "") << get("/source").body;
    EXPECT_EQ(script("mobile: isLocked").value(), true);
    EXPECT_GT(kinds().size(), events);
}

INSTANTIATE_TEST_SUITE_P(Clocks, WebDriverRestart, testing::Values(ClockMode::manual, ClockMode::running),
    [](auto const& each) { return each.param == ClockMode::manual ? "Manual" : "Running"; });

}
}
