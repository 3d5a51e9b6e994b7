// A phone behind WebDriver: real sockets, the phone in its own process, the real plug-in.
#include "phone/automation/actions.hpp"
#include "phone/automation/automation_server.hpp"
#include "phone/springboard/base64.hpp"
#include "tests/phone/automation/http_client.hpp"
#include "tests/support/phone_fixture.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>

namespace phone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kPath[] = "/session/";

class WebDriver : public testing::Test {
protected:
    ~WebDriver() override
    {
        m_client.reset();
        if (m_server)
            m_server->stop();
    }

    // A locked phone of that version with three contacts, whose clock is moved by hand.
    static BootOptions options(std::string const& version = "15.4")
    {
        BootOptions options;
        options.ios = *SystemVersion::parse(version);
        options.passcode = "1234";
        options.settings = Json::object();
        options.contacts = Json::array();
        for (char const* const name : { "Anna", "Bora", "Carl" })
            options.contacts->push_back(
                Json::object({ { "contactFirstName", name }, { "contactLastName", "X" },
                    { "contactUniqueIdentifier", name }, { "contactImage", "" }, { "contactBirthday", "" },
                    { "contactPhoneNumber", "+1 555 0100" }, { "contactEmail", "a@example.com" } }));
        return options;
    }

    void serve(BootOptions const& boot = options(), HttpOptions const& http = {})
    {
        m_setup.boot = boot;
        auto root = DeviceRoot::makeTemporary();
        ASSERT_TRUE(root);
        auto server = AutomationServer::start(m_setup, std::move(*root), http);
        ASSERT_TRUE(server) << server.message();
        m_server = std::move(*server);
        m_client = std::make_unique<HttpClient>(m_server->port());
    }
    void openSession()
    {
        auto const reply = m_client->ask(
            "POST", "/session", R"({"capabilities": {"alwaysMatch": {"platformName": "iOS"}}})");
        ASSERT_EQ(reply.status, 200) << reply.body;
        m_session = reply.value()["sessionId"].get<std::string>();
    }
    void start(BootOptions const& boot = options())
    {
        ASSERT_NO_FATAL_FAILURE(serve(boot));
        ASSERT_NO_FATAL_FAILURE(openSession());
    }

    HttpReply get(std::string const& path) { return m_client->ask("GET", kPath + m_session + path); }
    HttpReply post(std::string const& path, Json const& body = Json::object())
    {
        return m_client->ask("POST", kPath + m_session + path, body.dump());
    }
    HttpReply script(std::string const& name, Json const& arguments = Json::object())
    {
        return post(
            "/execute/sync", Json::object({ { "script", name }, { "args", Json::array({ arguments }) } }));
    }
    HttpReply find(std::string const& strategy, std::string const& value)
    {
        return post("/element", Json::object({ { "using", strategy }, { "value", value } }));
    }
    // The id of the first; empty for none.
    std::string element(std::string const& strategy, std::string const& value)
    {
        Json const found = find(strategy, value).value();
        return found.is_object() ? found.value(kElementKey, "") : "";
    }
    std::size_t count(std::string const& strategy, std::string const& value)
    {
        return post("/elements", Json::object({ { "using", strategy }, { "value", value } })).value().size();
    }
    HttpReply ofElement(std::string const& id, std::string const& what)
    {
        return get("/element/" + id + "/" + what);
    }
    void advance(double seconds)
    {
        EXPECT_EQ(script("phone: advance", Json::object({ { "seconds", seconds } })).status, 200);
    }
    Json press(std::string const& id, int milliseconds)
    {
        return Json::parse(
            R"({"actions":[{"id":"finger","type":"pointer","parameters":{"pointerType":"touch"},"actions":[
            {"type":"pointerMove","x":0,"y":0,"duration":100,"origin":{")"
            + std::string(kElementKey) + R"(":")" + id + R"("}},
            {"type":"pointerDown","button":0},{"type":"pause","duration":)"
            + std::to_string(milliseconds) + R"(},{"type":"pointerUp","button":0}]}]})");
    }
    std::vector<std::string> kinds(std::size_t since = 0)
    {
        std::vector<std::string> kinds;
        for (Json const& event : script("phone: trace", Json::object({ { "since", since } })).value())
            kinds.push_back(event["kind"]);
        return kinds;
    }

    PhoneSetup m_setup;
    std::unique_ptr<AutomationServer> m_server;
    std::unique_ptr<HttpClient> m_client;
    std::string m_session;
};

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

// ---- the connection

TEST_F(WebDriver, RefusesStrangersBeforeAnythingElse)
{
    start();
    std::string const post = "POST " + std::string(kPath) + m_session + "/appium/device/lock HTTP/1.1\r\n";
    auto const ask = [&](std::string const& head) {
        HttpClient client(m_server->port());
        client.send(post + head + "Content-Length: 2\r\n\r\n{}");
        return client.receive().status;
    };
    std::string const host = "Host: " + m_client->host() + "\r\n";
    std::string const json = "Content-Type: application/json\r\n";
    EXPECT_EQ(ask(host + json), 200);
    EXPECT_EQ(ask(json), 403);
    EXPECT_EQ(ask(host + host + json), 403);
    EXPECT_EQ(ask("Host: example.org\r\n" + json), 403);
    EXPECT_EQ(ask("Host: 127.0.0.1\r\n" + json), 403);
    EXPECT_EQ(ask(host + json + "Origin: http://example.org\r\n"), 403);
    EXPECT_EQ(ask(host + json + "Origin: null\r\n"), 403);
    EXPECT_EQ(ask(host + json + "Origin: file://\r\n"), 200);
    EXPECT_EQ(ask(host + json + "Origin: http://" + m_client->host() + "\r\n"), 200);
    EXPECT_EQ(ask(host), 415);
    EXPECT_EQ(ask(host + "Content-Type: text/plain\r\n"), 415);
    auto const options = m_client->ask("OPTIONS", "/session");
    EXPECT_EQ(options.status, 405);
    EXPECT_EQ(options.head.find("Access-Control"), std::string::npos);
}

TEST_F(WebDriver, TakesNoRequestOutOfARefusedBody)
{
    start();
    std::string const inner =
        "DELETE " + std::string(kPath) + m_session + " HTTP/1.1\r\nHost: " + m_client->host() + "\r\n\r\n";
    for (std::string const& head : { "POST /session HTTP/1.1\r\nHost: " + m_client->host()
                 + "\r\nOrigin: http://example.org\r\nContent-Type: text/plain\r\n",
             "GET /status HTTP/1.1\r\nHost: " + m_client->host() + "\r\nContent-Type: application/json\r\n",
             "OPTIONS /status HTTP/1.1\r\nHost: " + m_client->host()
                 + "\r\nContent-Type: application/json\r\n" }) {
        HttpClient client(m_server->port());
        client.send(head + "Content-Length: " + std::to_string(inner.size()) + "\r\n\r\n" + inner);
        EXPECT_NE(client.receive().status, 0);
        EXPECT_EQ(client.receive(2).status, 0) << head;   // no second answer
    }
    for (char const* const framing : { "Content-Length: 5\r\nTransfer-Encoding: chunked\r\n",
             "Content-Length: 0\r\nContent-Length: 50\r\n", "Transfer-Encoding: gzip, chunked\r\n",
             "Content-Length: +5\r\n", "Content-Length: x\r\n" }) {
        HttpClient client(m_server->port());
        client.send("POST /status HTTP/1.1\r\nHost: " + client.host()
            + "\r\nContent-Type: application/json\r\n" + framing + "\r\n0\r\n\r\n" + inner);
        EXPECT_EQ(client.receive().status, 400) << framing;
        EXPECT_EQ(client.receive(2).status, 0) << framing;
    }
    EXPECT_EQ(get("/timeouts").status, 200);   // the session is there
}

TEST_F(WebDriver, LimitsWhatItReads)
{
    HttpOptions http;
    http.requestSeconds = 1;
    serve(options(), http);
    openSession();
    auto const statusOf = [&](std::string const& bytes) {
        HttpClient client(m_server->port());
        client.send(bytes);
        return client.receive().status;
    };
    std::string const host = "Host: " + m_client->host() + "\r\n";
    EXPECT_EQ(statusOf("POST /session HTTP/1.1\r\n" + host
                  + "Content-Type: application/json\r\nContent-Length: 17825792\r\n\r\n"
                  + std::string(17 * 1024 * 1024, ' ')),
        413);
    EXPECT_EQ(statusOf("GET /" + std::string(20'000, 'a') + " HTTP/1.1\r\n" + host + "\r\n") / 100, 4);
    EXPECT_NE(
        statusOf("GET /status HTTP/1.1\r\n" + host + "X: " + std::string(20'000, 'a') + "\r\n\r\n"), 200);
    std::string many;
    for (int i = 0; i < 20'000; ++i)
        many += "X: y\r\n";
    EXPECT_NE(statusOf("GET /status HTTP/1.1\r\n" + host + many + "\r\n"), 200);
    for (char const* const bytes :
        { "\r\n\r\n", "GET\r\n\r\n", "\x16\x03\x01\x02", "GET / HTTP/9.9\r\n\r\n", "FLY / HTTP/1.1\r\n\r\n" })
        EXPECT_NE(statusOf(bytes), 200);
    // A body that stops coming: its thread is free again once the request's time is over.
    HttpClient slow(m_server->port());
    slow.send("POST /session HTTP/1.1\r\n" + host
        + "Content-Type: application/json\r\nContent-Length: 100\r\n\r\n{");
    EXPECT_TRUE(slow.isClosedByServer());
    HttpClient dropped(m_server->port());
    dropped.send("POST /session HTTP/1.1\r\n" + host
        + "Content-Type: application/json\r\nContent-Length: 100\r\n\r\n{");
    dropped.close();
    EXPECT_EQ(get("/timeouts").status, 200);
    for (int i = 0; i < 50 && m_server->connectionCount() > 1; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(m_server->connectionCount(), 1u);
}

TEST_F(WebDriver, ServesChunkedAndPipelinedRequests)
{
    start();
    std::string const head = " HTTP/1.1\r\nHost: " + m_client->host() + "\r\n";
    m_client->send("POST " + std::string(kPath) + m_session + "/timeouts" + head
        + "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n11\r\n{\"implicit\": 1234\r\n1\r\n}\r\n0\r\n\r\n");
    EXPECT_EQ(m_client->receive().status, 200);
    HttpClient client(m_server->port());
    std::string const ask = "GET " + std::string(kPath) + m_session + "/timeouts" + head + "\r\n";
    client.send(ask + ask + ask);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client.receive().value()["implicit"], 1234);
    EXPECT_EQ(m_client->ask("DELETE", kPath + m_session, "{}").status, 200);   // with a body
    EXPECT_EQ(m_client->ask("GET", "/status").value()["ready"], true);
}

TEST_F(WebDriver, AnswersManyConnectionsAtOnce)
{
    start();
    std::vector<std::unique_ptr<HttpClient>> clients;
    for (int i = 0; i < 100; ++i) {   // more than there are threads: those that rest make room
        clients.push_back(std::make_unique<HttpClient>(m_server->port()));
        ASSERT_EQ(clients.back()->ask("GET", "/status").status, 200) << i;
    }
    EXPECT_EQ(m_client->ask("GET", "/status").status == 200
            || HttpClient(m_server->port()).ask("GET", "/status").status == 200,
        true);
}

TEST_F(WebDriver, LeavesNothingOfTenThousandSessions)
{
    ASSERT_NO_FATAL_FAILURE(serve());
    auto const descriptors = [] {
        auto const folder = std::filesystem::directory_iterator("/proc/self/fd");
        return std::distance(begin(folder), end(folder));
    };
    ASSERT_NO_FATAL_FAILURE(openSession());
    auto const before = descriptors();
    for (int i = 0; i < 10'000; ++i) {
        ASSERT_EQ(m_client->ask("DELETE", kPath + m_session).status, 200);
        ASSERT_NO_FATAL_FAILURE(openSession());
        // Some are dropped rather than closed, by clients that go away.
        if (i % 100 == 0)
            m_client->close();
    }
    EXPECT_EQ(m_client->ask("DELETE", kPath + m_session).status, 200);
    EXPECT_EQ(m_client->ask("GET", "/sessions").value(), Json::array());
    for (int i = 0; i < 50 && m_server->connectionCount() > 1; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(m_server->connectionCount(), 1u);
    EXPECT_EQ(descriptors(), before);
}

TEST_F(WebDriver, ServesTheFilesOfAnInspectorAndNoOthers)
{
    auto root = DeviceRoot::makeTemporary();
    ASSERT_TRUE(root);
    ASSERT_TRUE(root->write("/index.html", "hello", 5));
    HttpOptions http;
    http.inspector = root->folder();
    serve(options(), http);
    EXPECT_EQ(m_client->ask("GET", "/inspector/index.html").body, "hello");
    EXPECT_EQ(m_client->ask("GET", "/inspector/").body, "hello");
    EXPECT_EQ(m_client->ask("GET", "/inspector/nothing").status, 404);
    for (char const* const path :
        { "/inspector/../../etc/passwd", "/inspector/%2e%2e/%2e%2e/etc/passwd", "/inspector//etc/passwd" })
        EXPECT_EQ(m_client->ask("GET", path).body.find("root:"), std::string::npos) << path;
    HttpClient stranger(m_server->port());
    stranger.send("GET /inspector/index.html HTTP/1.1\r\nHost: example.org\r\n\r\n");
    EXPECT_EQ(stranger.receive().status, 403);
    HttpServer missing({ .host = {}, .port = 0, .allowedOrigins = {}, .inspector = "/nowhere" },
        [](std::string_view, std::string_view, std::string_view) { return WireAnswer {}; });
    EXPECT_FALSE(missing.start());
}

TEST_F(WebDriver, TakesAPortOfItsOwn)
{
    serve();
    HttpOptions same;
    same.port = m_server->port();
    HttpServer second(
        same, [](std::string_view, std::string_view, std::string_view) { return WireAnswer {}; });
    auto const started = second.start();
    ASSERT_FALSE(started);
    EXPECT_THAT(started.message(), HasSubstr(std::to_string(same.port)));
}

}
}
