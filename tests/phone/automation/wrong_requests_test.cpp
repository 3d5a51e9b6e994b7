// Every wrong request gets the standard's error for it, and changes nothing.
#include "tests/phone/automation/web_driver_fixture.hpp"

#include <gmock/gmock.h>

namespace phone {
namespace {

using testing::StartsWith;

// In path and body, LIVE is an element on the screen, STALE one of an earlier phone, and NONE was never given out.
struct Wrong {
    char const* verb;
    char const* path;   // behind the session's
    std::string body;
    int status;
    char const* error;
};

constexpr char kInvalid[] = "invalid argument";
constexpr char kSelector[] = "invalid selector";

std::vector<Wrong> const& wrongRequests()
{
    static std::vector<Wrong> const all {
        // Paths and verbs
        { "GET", "/nothing", "", 404, "unknown command" },
        { "GET", "/element/LIVE", "", 404, "unknown command" },
        { "PUT", "/source", "{}", 405, "unknown method" },
        { "POST", "/source", "{}", 405, "unknown method" },
        { "DELETE", "/element/LIVE/click", "", 405, "unknown method" },
        { "POST", "/url", R"({"url": "http://example.org"})", 405, "unknown method" },
        { "GET", "/cookie", "", 405, "unknown method" },
        { "POST", "/execute/async", R"({"script": "", "args": []})", 405, "unknown method" },
        // Bodies
        { "POST", "/element/LIVE/click", "{", 400, kInvalid },
        { "POST", "/element/LIVE/click", "[]", 400, kInvalid },
        { "POST", "/element/LIVE/click", "\"text\"", 400, kInvalid },
        { "POST", "/element/LIVE/click", "{\"a\": \"\xff\"}", 400, kInvalid },
        { "POST", "/element/LIVE/click", "{\"a\": " + std::string(5000, '[') + std::string(5000, ']') + "}",
            400, kInvalid },
        // Locators
        { "POST", "/element", "{}", 400, kInvalid },
        { "POST", "/element", R"({"using": "xpath"})", 400, kInvalid },
        { "POST", "/elements", R"({"using": 1, "value": "x"})", 400, kInvalid },
        { "POST", "/elements", R"({"using": "xpath", "value": null})", 400, kInvalid },
        { "POST", "/elements", R"({"using": "tag name", "value": "a"})", 400, kSelector },
        { "POST", "/elements", R"({"using": "xpath", "value": "//*["})", 400, kSelector },
        { "POST", "/elements", R"~({"using": "xpath", "value": "count(//*)"})~", 400, kSelector },
        { "POST", "/elements", R"({"using": "-ios predicate string", "value": "label =="})", 400, kSelector },
        { "POST", "/elements", R"({"using": "-ios class chain", "value": "**"})", 400, kSelector },
        { "POST", "/elements", R"({"using": "css selector", "value": ".a"})", 400, kSelector },
        { "POST", "/element", R"({"using": "id", "value": "Nobody"})", 404, "no such element" },
        { "POST", "/element/NONE/element", R"({"using": "id", "value": "Anna"})", 404, "no such element" },
        { "POST", "/element/STALE/elements", R"({"using": "id", "value": "Anna"})", 404,
            "stale element reference" },
        { "GET", "/element/active", "", 404, "no such element" },
        // Elements
        { "GET", "/element/LIVE/attribute/colour", "", 400, kInvalid },
        { "POST", "/element/LIVE/value", "{}", 400, kInvalid },
        { "POST", "/element/LIVE/value", R"({"text": 5})", 400, kInvalid },
        { "POST", "/element/LIVE/value", R"({"value": ["a", 5]})", 400, kInvalid },
        { "POST", "/element/LIVE/value", R"({"text": "a"})", 400, "element not interactable" },
        { "POST", "/element/LIVE/clear", "{}", 400, "invalid element state" },
        // Fingers
        { "POST", "/actions", "{}", 400, kInvalid },
        { "POST", "/actions", R"({"actions": [{"type": "pointer", "actions": []}]})", 400, kInvalid },
        { "POST", "/actions",
            R"({"actions": [{"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 50, "y": 700},
                {"type": "pointerDown"}, {"type": "pause", "duration": 900}, {"type": "pointerUp"},
                {"type": "pointerMove", "x": -1, "y": 0}]}]})",
            500, "move target out of bounds" },
        { "POST", "/actions",
            R"({"actions": [{"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 50, "y": 700},
                {"type": "pointerDown"}, {"type": "pause", "duration": -900}, {"type": "pointerUp"}]}]})",
            400, kInvalid },
        { "POST", "/actions",
            R"({"actions": [{"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 0, "y": 0,
                "origin": {"ELEMENT": "NONE"}}, {"type": "pointerDown"}]}]})",
            404, "no such element" },
        { "POST", "/actions",
            R"({"actions": [{"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 0, "y": 0,
                "origin": {"ELEMENT": "STALE"}}, {"type": "pointerDown"}]}]})",
            404, "stale element reference" },
        // Alerts, of which there is none
        { "GET", "/alert/text", "", 404, "no such alert" },
        { "POST", "/alert/accept", "{}", 404, "no such alert" },
        { "POST", "/alert/dismiss", R"({"name": "Cancel"})", 404, "no such alert" },
        { "POST", "/alert/accept", R"({"name": 5})", 400, kInvalid },
        { "POST", "/alert/text", "{}", 400, kInvalid },
        { "POST", "/alert/text", R"({"text": "a"})", 404, "no such alert" },
        // The session
        { "POST", "/timeouts", R"({"pageLoad": 5, "implicit": "x"})", 400, kInvalid },
        { "POST", "/timeouts", R"({"implicit": -1})", 400, kInvalid },
        { "POST", "/appium/settings", R"({"settings": 5})", 400, kInvalid },
        { "POST", "/appium/settings", R"({"settings": {"other": 1, "includeHittableInPageSource": 5}})", 400,
            kInvalid },
        { "POST", "/context", R"({"name": 5})", 400, kInvalid },
        { "POST", "/context", R"({"name": "WEBVIEW_1"})", 404, "no such window" },
        { "POST", "/orientation", "{}", 400, kInvalid },
        { "POST", "/orientation", R"({"orientation": "UP"})", 400, kInvalid },
        { "POST", "/appium/device/lock", R"({"seconds": "x"})", 400, kInvalid },
        // Scripts
        { "POST", "/execute/sync", "{}", 400, kInvalid },
        { "POST", "/execute/sync", R"({"script": "mobile: lock", "args": {}})", 400, kInvalid },
        { "POST", "/execute/sync", R"({"script": "return document.title", "args": []})", 405,
            "unknown method" },
        { "POST", "/execute/sync", R"({"script": "phone: fly", "args": []})", 405, "unknown method" },
        { "POST", "/execute/sync",
            R"~({"script": "/* isDisplayed */return (0)", "args": [{"ELEMENT": "STALE"}]})~", 404,
            "stale element reference" },
    };
    return all;
}

struct WrongScript {
    char const* name;
    char const* arguments;
    char const* error;
};

constexpr WrongScript kWrongScripts[] {
    { "lock", R"({"seconds": -1})", kInvalid },
    { "lock", R"({"seconds": 601})", kInvalid },
    { "unlock", R"({"code": "1234"})", kInvalid },
    { "pressButton", "{}", kInvalid },
    { "pressButton", R"({"name": "bell"})", kInvalid },
    { "touchAndHold", R"({"x": 50, "y": 700})", kInvalid },
    { "touchAndHold", R"({"x": 50, "y": 7000, "duration": 1})", "move target out of bounds" },
    { "touchAndHold", R"({"elementId": "STALE", "duration": 1})", "stale element reference" },
    { "touchAndHold", R"({"elementId": 5, "duration": 1})", kInvalid },
    { "tap", R"({"x": 50})", kInvalid },
    { "tap", R"({"x": 50, "y": "700"})", kInvalid },
    { "doubleTap", R"({"elementId": "NONE"})", "no such element" },
    { "twoFingerTap", R"({"moon": 1})", kInvalid },
    { "tapWithNumberOfTaps", R"({"elementId": "LIVE", "numberOfTaps": 2})", kInvalid },
    { "tapWithNumberOfTaps", R"({"elementId": "LIVE", "numberOfTaps": 0, "numberOfTouches": 1})", kInvalid },
    { "swipe", "{}", kInvalid },
    { "swipe", R"({"direction": "in"})", kInvalid },
    { "swipe", R"({"direction": "up", "velocity": 0})", kInvalid },
    { "swipe", R"({"direction": "up", "elementId": "STALE"})", "stale element reference" },
    { "scroll", "{}", kInvalid },
    { "scroll", R"({"toVisible": true})", kInvalid },
    { "scroll", R"({"name": "Nobody"})", "no such element" },
    { "scroll", R"({"predicateString": "label ="})", kSelector },
    { "scrollToElement", "{}", kInvalid },
    { "dragFromToForDuration", R"({"duration": 1, "fromX": 1, "fromY": 1, "toX": 1})", kInvalid },
    { "dragFromToForDuration", R"({"duration": 1, "fromX": 1, "fromY": 1, "toX": 1, "toY": 9000})",
        "move target out of bounds" },
    { "alert", "{}", kInvalid },
    { "alert", R"({"action": "shout"})", kInvalid },
    { "alert", R"({"action": "getButtons"})", "no such alert" },
    { "activeAppInfo", R"({"moon": 1})", kInvalid },
    { "launchApp", "{}", kInvalid },
    { "terminateApp", R"({"bundleId": "com.apple.springboard"})", kInvalid },
    { "queryAppState", R"({"bundleId": 5})", kInvalid },
    { "backgroundApp", R"({"seconds": 1000})", kInvalid },
    { "deepLink", "{}", kInvalid },
    { "deepLink", R"({"url": ""})", kInvalid },
    { "source", R"({"format": "yaml"})", kInvalid },
    { "getDeviceTime", R"({"format": "h"})", kInvalid },
    { "pushFile", R"({"remotePath": "/../x", "payload": ""})", kInvalid },
    { "pushFile", R"({"remotePath": "/var/x", "payload": "!"})", kInvalid },
    { "pullFile", R"({"remotePath": "/nothing"})", kInvalid },
    { "getPermission", R"({"bundleId": "a", "service": "b"})", "unsupported operation" },
    { "fly", "{}", "unknown method" },
};

class WrongRequests : public WebDriver {
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(start());
        m_stale = element("accessibility id", "Anna");
        ASSERT_EQ(script("phone: respring").status, 200);
        m_live = element("accessibility id", "Anna");
        ASSERT_NE(m_live, "");
        ASSERT_NE(m_live, m_stale);
    }

    std::string filled(std::string text) const
    {
        for (auto const& [word, id] : { std::pair { "LIVE", m_live }, std::pair { "STALE", m_stale },
                 std::pair { "NONE", std::string("element-7777") } })
            for (auto at = text.find(word); at != text.npos; at = text.find(word))
                text.replace(at, std::string(word).size(), id);
        return text;
    }
    // Whatever a request could have changed.
    std::string state()
    {
        std::string state = script("phone: views", Json::object({ { "detail", true } })).body;
        for (char const* const name : { "phone: trace", "mobile: isLocked", "mobile: getDeviceTime",
                 "mobile: activeAppInfo", "mobile: getAppearance" })
            state += "\n" + script(name).body;
        for (char const* const path : { "/source", "/timeouts", "/appium/settings", "/orientation" })
            state += "\n" + get(path).body;
        return state;
    }
    static void expectError(
        HttpReply const& reply, int status, std::string const& error, std::string const& request)
    {
        EXPECT_EQ(reply.status, status) << request << reply.body;
        EXPECT_EQ(reply.error(), error) << request << reply.body;
        Json const value = reply.value();
        ASSERT_TRUE(value.is_object()) << request;
        EXPECT_THAT(value.value("message", ""), StartsWith(error + ": ")) << request;
        EXPECT_TRUE(value["stacktrace"].is_string()) << request;
    }

    std::string m_live;
    std::string m_stale;
};

TEST_F(WrongRequests, GetTheStandardsErrorAndChangeNothing)
{
    std::string const before = state();
    for (Wrong const& wrong : wrongRequests()) {
        std::string const path = filled(wrong.path);
        auto const reply = m_client->ask(wrong.verb, kPath + m_session + path, filled(wrong.body));
        expectError(
            reply, wrong.status, wrong.error, wrong.verb + (" " + path + " " + wrong.body.substr(0, 99)));
    }
    EXPECT_EQ(state(), before);
}

TEST_F(WrongRequests, OfScriptsGetTheStandardsErrorAndChangeNothing)
{
    std::string const before = state();
    for (auto const& [name, arguments, error] : kWrongScripts) {
        auto const reply = script("mobile: " + std::string(name), Json::parse(filled(arguments)));
        expectError(reply, httpStatus(*errorCodeNamed(error)), error, std::string(name) + arguments);
    }
    EXPECT_EQ(state(), before);
}

TEST_F(WrongRequests, OfElementsThatAreGoneOrWereNeverThere)
{
    std::string const before = state();
    for (char const* const path : { "text", "name", "rect", "displayed", "enabled", "selected", "screenshot",
             "attribute/label", "property/label" }) {
        expectError(ofElement(m_stale, path), 404, "stale element reference", path);
        expectError(ofElement("element-7777", path), 404, "no such element", path);
    }
    for (char const* const path : { "click", "clear" }) {
        expectError(post("/element/" + m_stale + "/" + path), 404, "stale element reference", path);
        expectError(post("/element/element-7777/" + std::string(path)), 404, "no such element", path);
    }
    EXPECT_EQ(state(), before);
}

TEST_F(WrongRequests, OfAnotherSessionReachNone)
{
    std::string const before = state();
    for (char const* const path : { "", "/source", "/timeouts", "/window/rect", "/appium/settings" })
        expectError(
            m_client->ask("GET", "/session/0123" + std::string(path)), 404, "invalid session id", path);
    for (char const* const path : { "/element/LIVE/click", "/actions", "/execute/sync", "/timeouts" })
        expectError(
            m_client->ask("POST", "/session/0123" + filled(path), R"({"actions": [], "implicit": 1})"), 404,
            "invalid session id", path);
    expectError(m_client->ask("DELETE", "/session/0123"), 404, "invalid session id", "DELETE");
    expectError(
        m_client->ask("POST", "/session", R"({"capabilities": {}})"), 500, "session not created", "POST");
    EXPECT_EQ(state(), before);
}

}
}
