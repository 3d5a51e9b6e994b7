// What comes over the wire before any phone is asked: paths and verbs, capabilities, who may ask, sessions.
#include "phone/automation/access_check.hpp"
#include "phone/automation/actions.hpp"
#include "phone/automation/session_server.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace phone {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string commandOf(char const* verb, char const* target)
{
    auto const route = routeOf(verb, target);
    return route ? route->command : errorName(route.error().code);
}

TEST(Routes, FindTheCommandOfAPath)
{
    EXPECT_EQ(commandOf("GET", "/status"), "status");
    EXPECT_EQ(commandOf("GET", "/status/"), "status");
    EXPECT_EQ(commandOf("GET", "/wd/hub/status?x=1"), "status");
    EXPECT_EQ(commandOf("POST", "/session"), "newSession");
    EXPECT_EQ(commandOf("POST", "/session/s/element"), "findElement");
    EXPECT_EQ(commandOf("GET", "/session/s/element/active"), "activeElement");
    EXPECT_EQ(commandOf("POST", "/session/s/appium/device/is_locked"), "mobile: isLocked");
    auto const route = routeOf("GET", "/session/a%20b/element/c%2Fd/attribute/l%61bel/");
    ASSERT_TRUE(route);
    EXPECT_EQ(route->session, "a b");
    EXPECT_EQ(route->element, "c/d");
    EXPECT_EQ(route->argument, "label");
    EXPECT_TRUE(route->isForPhone);
}

TEST(Routes, TellAWrongVerbFromAWrongPath)
{
    EXPECT_EQ(commandOf("DELETE", "/status"), "unknown method");
    EXPECT_EQ(commandOf("GET", "/session"), "unknown method");
    EXPECT_EQ(commandOf("PUT", "/session/s/source"), "unknown method");
    EXPECT_EQ(commandOf("GET", "/session/s/url"), "unknown method");
    EXPECT_EQ(commandOf("POST", "/session/s/execute/async"), "unknown method");
    for (char const* const path :
        { "/", "", "/nothing", "/session//element", "/session/s/element/e", "//status",
            "/session/s/element//text", "/STATUS", "/session/s/source/x", "/%00", "/%zz", "/wd/status" })
        EXPECT_EQ(commandOf("GET", path), "unknown command") << path;
}

// ---- capabilities

Answer<SessionRequest> requested(char const* text)
{
    return requestedSession(Json::parse(text), { "16.1", "com.apple.springboard" });
}
std::string refusalOf(char const* text)
{
    auto const request = requested(text);
    return request ? "" : std::string(errorName(request.error().code)) + ": " + request.error().message;
}

TEST(Capabilities, OfEveryClientAreAccepted)
{
    for (char const* const text :
        { R"({"capabilities": {"alwaysMatch": {"platformName": "iOS", "appium:automationName": "XCUITest"}, "firstMatch": [{}]}})",
            R"({"capabilities": {"firstMatch": [{}], "alwaysMatch": {"browserName": "", "platformName": "iOS", "appium:deviceName": "x"}}})",
            R"({"capabilities": {"firstMatch": [{}], "alwaysMatch": {"platformName": "iOS", "pageLoadStrategy": "normal"}}})",
            R"({"capabilities": {"alwaysMatch": {"browserName": "", "webSocketUrl": true, "unhandledPromptBehavior": "ignore", "appium:newCommandTimeout": 3600, "wdio:x": 1}}})",
            R"({"capabilities": {}})",
            R"({"capabilities": {"firstMatch": [{"platformName": "Android"}, {"platformName": "ios"}]}, "desiredCapabilities": {}})",
            R"({"capabilities": {"alwaysMatch": {"appium:options": {"automationName": "xcuitest", "deviceName": "y"}, "appium:platformName": "ios"}}})",
            R"({"capabilities": {"alwaysMatch": {"platformName": null, "appium:platformVersion": "16.1", "proxy": {"proxyType": "direct"}}}})" })
        EXPECT_EQ(refusalOf(text), "") << text;
}

TEST(Capabilities, AreAnsweredWithPrefixes)
{
    auto const request = requested(
        R"({"capabilities": {"alwaysMatch": {"platformName": "ios", "browserName": "", "appium:deviceName": "Mine", "webSocketUrl": true, "x:y": [1], "timeouts": {"implicit": 5}}}})");
    ASSERT_TRUE(request);
    Json const& answer = request->capabilities;
    EXPECT_EQ(answer["platformName"], "iOS");
    EXPECT_EQ(answer["appium:automationName"], "XCUITest");
    EXPECT_EQ(answer["appium:platformVersion"], "16.1");
    EXPECT_EQ(answer["appium:deviceName"], "Mine");
    EXPECT_EQ(answer["x:y"], Json::array({ 1 }));
    EXPECT_EQ(answer["timeouts"], Json::parse(R"({"script": 30000, "pageLoad": 300000, "implicit": 5})"));
    EXPECT_FALSE(answer.contains("browserName"));
    EXPECT_FALSE(answer.contains("webSocketUrl"));
    EXPECT_EQ(flatCapabilities(answer)["deviceName"], "Mine");
    EXPECT_EQ(flatCapabilities(answer)["platformName"], "iOS");
}

TEST(Capabilities, ThatAreMalformedAreInvalidArguments)
{
    for (char const* const text :
        { R"({})", R"({"capabilities": null})", R"({"capabilities": []})",
            R"({"capabilities": {"alwaysMatch": []}})", R"({"capabilities": {"alwaysMatch": null}})",
            R"({"capabilities": {"firstMatch": []}})", R"({"capabilities": {"firstMatch": [1]}})",
            R"({"capabilities": {"firstMatch": {}}})",
            R"({"capabilities": {"alwaysMatch": {"deviceName": "x"}}})",
            R"({"capabilities": {"alwaysMatch": {"platformName": 1}}})",
            R"({"capabilities": {"alwaysMatch": {"acceptInsecureCerts": "yes"}}})",
            R"({"capabilities": {"alwaysMatch": {"pageLoadStrategy": "slow"}}})",
            R"({"capabilities": {"alwaysMatch": {"timeouts": {"implicit": -1}}}})",
            R"({"capabilities": {"alwaysMatch": {"timeouts": 5}}})",
            R"({"capabilities": {"alwaysMatch": {"proxy": {"proxyType": "magic"}}}})",
            R"({"capabilities": {"alwaysMatch": {"unhandledPromptBehavior": "cry"}}})",
            R"({"capabilities": {"alwaysMatch": {"platformName": "iOS"}, "firstMatch": [{"platformName": "iOS"}]}})",
            R"({"capabilities": {"alwaysMatch": {"appium:options": 5}}})",
            R"({"capabilities": {"alwaysMatch": {"appium:newCommandTimeout": "x"}}})" })
        EXPECT_THAT(refusalOf(text), StartsWith("invalid argument")) << text;
    EXPECT_THAT(refusalOf(R"({"capabilities": {"alwaysMatch": {"deviceName": "x", "udid": "y"}}})"),
        HasSubstr("deviceName, udid"));
}

TEST(Capabilities, ThatThisPhoneLacksCreateNoSession)
{
    for (char const* const text : { R"({"platformName": "Android"})", R"({"browserName": "Safari"})",
             R"({"appium:automationName": "UiAutomator2"})", R"({"appium:platformVersion": "12.0"})",
             R"({"appium:bundleId": "com.example"})" }) {
        Json const body =
            Json::object({ { "capabilities", Json::object({ { "alwaysMatch", Json::parse(text) } }) } });
        EXPECT_THAT(refusalOf(body.dump().c_str()), StartsWith("session not created")) << text;
    }
}

TEST(Timeouts, AreMergedWholeOrNotAtAll)
{
    Json timeouts = Json::parse(R"({"script": 1, "pageLoad": 2, "implicit": 3})");
    EXPECT_TRUE(mergeTimeouts(Json::parse(R"({"implicit": 9007199254740991, "script": null})"), timeouts));
    EXPECT_EQ(timeouts, Json::parse(R"({"script": null, "pageLoad": 2, "implicit": 9007199254740991})"));
    for (char const* const text : { R"({"pageLoad": 5, "implicit": -1})", R"({"implicit": 1.5})",
             R"({"implicit": "1"})", R"({"implicit": 9007199254740992})", R"({"implicit": null})", R"([])",
             R"({"implicit": true})" }) {
        Json const before = timeouts;
        EXPECT_FALSE(mergeTimeouts(Json::parse(text), timeouts)) << text;
        EXPECT_EQ(timeouts, before);
    }
}

// ---- who may ask

ErrorCode accessOf(RequestHead const& head, AccessRules rules = {})
{
    if (rules.port == 0)
        rules.port = 4723;
    auto const allowed = checkAccess(head, rules);
    return allowed ? ErrorCode::unknownError : allowed.error().code;
}
constexpr ErrorCode kAllowed = ErrorCode::unknownError;

TEST(Access, IsForRequestsThatNameThisServer)
{
    for (char const* const host : { "127.0.0.1:4723", "localhost:4723", "LOCALHOST:4723", "[::1]:4723" })
        EXPECT_EQ(accessOf({ { host }, {}, {}, false }), kAllowed) << host;
    for (char const* const host : { "127.0.0.1", "localhost", "127.0.0.1:4724", "example.org:4723",
             "localhost.example.org:4723", "a.localhost:4723", "127.0.0.2:4723", "[::1]", "", ":4723",
             "127.0.0.1:4723 ", "[::2]:4723", "127.0.0.1:04723" })
        EXPECT_EQ(accessOf({ { host }, {}, {}, false }), ErrorCode::forbidden) << host;
    EXPECT_EQ(accessOf({ {}, {}, {}, false }), ErrorCode::forbidden);
    EXPECT_EQ(accessOf({ { "localhost:4723", "localhost:4723" }, {}, {}, false }), ErrorCode::forbidden);
    AccessRules forOthers;
    forOthers.allowsAddresses = true;
    for (char const* const host : { "192.168.1.5:4723", "[fe80::1]:4723", "localhost:4723" })
        EXPECT_EQ(accessOf({ { host }, {}, {}, false }, forOthers), kAllowed) << host;
    for (char const* const host :
        { "192.168.1.5", "192.168.1:4723", "example.org:4723", "[x]:4723", ":4723" })
        EXPECT_EQ(accessOf({ { host }, {}, {}, false }, forOthers), ErrorCode::forbidden) << host;
    AccessRules onPort80;
    onPort80.port = 80;
    EXPECT_EQ(accessOf({ { "localhost" }, {}, {}, false }, onPort80), kAllowed);
}

TEST(Access, IsForNoPageOfAnotherOrigin)
{
    auto const from = [](char const* origin, AccessRules rules = {}) {
        return accessOf({ { "localhost:4723" }, { origin }, {}, false }, std::move(rules));
    };
    EXPECT_EQ(from("http://localhost:4723"), kAllowed);
    EXPECT_EQ(from("file://"), kAllowed);
    for (char const* const origin :
        { "null", "http://localhost:4724", "https://localhost:4723", "http://localhost",
            "http://127.0.0.1:4723", "http://example.org", "http://localhost:4723.example.org", "",
            "localhost:4723", "http://localhost:4723/", "file:///x" })
        EXPECT_EQ(from(origin), ErrorCode::forbidden) << origin;
    AccessRules rules;
    rules.origins = { "http://localhost:3000" };
    EXPECT_EQ(from("http://localhost:3000", rules), kAllowed);
    EXPECT_EQ(from("http://localhost:3001", rules), ErrorCode::forbidden);
    EXPECT_EQ(accessOf({ { "localhost:4723" }, { "file://", "file://" }, {}, false }), ErrorCode::forbidden);
}

TEST(Access, IsForJsonAlone)
{
    auto const with = [](char const* type) { return accessOf({ { "localhost:4723" }, {}, { type }, true }); };
    for (char const* const type : { "application/json", "application/json;charset=UTF-8",
             "Application/JSON; charset=\"utf-8\"", "application/json; x=y" })
        EXPECT_EQ(with(type), kAllowed) << type;
    for (char const* const type :
        { "text/plain", "application/x-www-form-urlencoded", "multipart/form-data; boundary=x", "",
            "application/json2", "application/json; charset=latin1", "text/plain; application/json" })
        EXPECT_EQ(with(type), ErrorCode::unsupportedMediaType) << type;
    EXPECT_EQ(accessOf({ { "localhost:4723" }, {}, {}, true }), ErrorCode::unsupportedMediaType);
    EXPECT_EQ(accessOf({ { "localhost:4723" }, {}, { "application/json", "text/plain" }, true }),
        ErrorCode::unsupportedMediaType);
}

// ---- actions

std::string actionsRefusal(std::string const& actions)
{
    auto const parsed = parseActions(Json::parse("{\"actions\":" + actions + "}"));
    return parsed ? "" : errorName(parsed.error().code);
}

TEST(Actions, OfEveryClientAreRead)
{
    auto const sources = parseActions(Json::parse(R"({"actions": [
        {"type": "key", "id": "default keyboard", "actions": [{"type": "pause", "duration": 800}, {"type": "keyDown", "value": "é"}]},
        {"type": "pointer", "id": "default mouse", "parameters": {"pointerType": "mouse"}, "actions": [
            {"type": "pointerMove", "origin": {"element-6066-11e4-a52e-4f735466cecf": "E", "ELEMENT": "E"}, "duration": 100, "x": -1.5, "y": 0, "pressure": 0},
            {"type": "pointerDown", "button": 0, "duration": 0}, {"type": "pause", "duration": 800}, {"type": "pointerUp", "button": 0}]},
        {"type": "wheel", "id": "default wheel", "actions": [{"type": "pause"}]}]})"));
    ASSERT_TRUE(sources);
    ASSERT_EQ(sources->size(), 3u);
    ActionItem const& move = (*sources)[1].items[0];
    EXPECT_EQ(move.kind, ActionItem::Kind::pointerMove);
    EXPECT_EQ(move.origin, ActionItem::Origin::element);
    EXPECT_EQ(move.element, "E");
    EXPECT_DOUBLE_EQ(move.x, -1.5);
    EXPECT_DOUBLE_EQ(move.seconds, 0.1);
    EXPECT_EQ((*sources)[0].items[1].key, "é");
    EXPECT_EQ(actionsRefusal("[]"), "");
}

TEST(Actions, AreCheckedWhole)
{
    for (char const* const actions :
        { "null", "{}", "5", "[5]", "[{}]", R"([{"type": "pointer", "actions": []}])",
            R"([{"type": "finger", "id": "a", "actions": []}])",
            R"([{"type": "none", "id": 5, "actions": []}])", R"([{"type": "none", "id": "a"}])",
            R"([{"type": "none", "id": "a", "actions": [5]}])",
            R"([{"type": "none", "id": "a", "actions": []}, {"type": "none", "id": "a", "actions": []}])",
            R"([{"type": "none", "id": "a", "actions": [{"type": "pause", "duration": -1}]}])",
            R"([{"type": "none", "id": "a", "actions": [{"type": "pause", "duration": 1.5}]}])",
            R"([{"type": "none", "id": "a", "actions": [{"type": "pause", "duration": "1"}]}])",
            R"([{"type": "none", "id": "a", "actions": [{"type": "keyDown", "value": "a"}]}])",
            R"([{"type": "key", "id": "a", "actions": [{"type": "keyDown", "value": "ab"}]}])",
            R"([{"type": "key", "id": "a", "actions": [{"type": "keyDown"}]}])",
            R"([{"type": "pointer", "id": "a", "parameters": 5, "actions": []}])",
            R"([{"type": "pointer", "id": "a", "parameters": {"pointerType": "nose"}, "actions": []}])",
            R"([{"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 1}]}])",
            R"([{"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 1, "y": "2"}]}])",
            R"([{"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 1, "y": 2, "origin": "moon"}]}])",
            R"([{"type": "pointer", "id": "a", "actions": [{"type": "pointerMove", "x": 1, "y": 2, "origin": {}}]}])",
            R"([{"type": "pointer", "id": "a", "actions": [{"type": "pointerDown", "button": -1}]}])",
            R"([{"type": "pointer", "id": "a", "actions": [{"type": "fly"}]}])",
            R"([{"type": "none", "id": "a", "actions": [{"type": "pause", "duration": 600001}]}])" })
        EXPECT_EQ(actionsRefusal(actions), "invalid argument") << actions;
    EXPECT_EQ(
        actionsRefusal(
            R"([{"type": "wheel", "id": "a", "actions": [{"type": "scroll", "x": 0, "y": 0, "deltaX": 0, "deltaY": 5}]}])"),
        "unsupported operation");
    Json many = Json::array();
    for (int i = 0; i < 11; ++i)
        many.push_back(
            Json::object({ { "type", "none" }, { "id", std::to_string(i) }, { "actions", Json::array() } }));
    EXPECT_EQ(actionsRefusal(many.dump()), "invalid argument");
}

// ---- sessions, before a phone that only notes what it is asked

class Sessions : public testing::Test {
protected:
    WireAnswer ask(std::string_view verb, std::string const& target, std::string_view body = {})
    {
        return m_server.handle(verb, target, body);
    }
    std::string open(char const* capabilities = "{}")
    {
        auto const answer =
            ask("POST", "/session", std::string("{\"capabilities\":{\"alwaysMatch\":") + capabilities + "}}");
        return Json::parse(answer.body)["value"].value("sessionId", "");
    }
    static std::string errorIn(WireAnswer const& answer)
    {
        Json const value = Json::parse(answer.body)["value"];
        return value.is_object() ? value.value("error", "") : "";
    }

    std::vector<PhoneCommand> m_asked;
    SessionServer m_server { [this](PhoneCommand const& command) -> Answer<Json> {
                                m_asked.push_back(command);
                                if (command.name == "elementClick")
                                    return CommandError { ErrorCode::staleElement, "gone" };
                                return Json("done");
                            },
        [] {
            return PhoneFacts { "15.4", "com.apple.springboard" };
        } };
};

TEST_F(Sessions, AreOneAtATime)
{
    EXPECT_EQ(Json::parse(ask("GET", "/status").body)["value"]["ready"], true);
    std::string const id = open();
    EXPECT_EQ(id.size(), 32u);
    EXPECT_EQ(Json::parse(ask("GET", "/status").body)["value"]["ready"], false);
    auto const second = ask("POST", "/session", "{\"capabilities\":{}}");
    EXPECT_EQ(second.status, 500);
    EXPECT_EQ(errorIn(second), "session not created");
    EXPECT_EQ(Json::parse(ask("GET", "/appium/sessions").body)["value"][0]["id"], id);
    EXPECT_EQ(ask("DELETE", "/session/" + id).body, R"({"value":null})");
    EXPECT_EQ(Json::parse(ask("GET", "/sessions").body)["value"], Json::array());
    EXPECT_NE(open(), id);
}

TEST_F(Sessions, AreKnownByTheirIdAlone)
{
    std::string const id = open();
    for (std::string const path : { "/session/x/source", "/session/x", "/session/x/timeouts" }) {
        auto const answer = ask("GET", path);
        EXPECT_EQ(answer.status, 404) << path;
        EXPECT_EQ(errorIn(answer), "invalid session id") << path;
        EXPECT_THAT(answer.body, HasSubstr("\"message\":\"invalid session id: no session x\""));
    }
    EXPECT_TRUE(m_asked.empty());
    EXPECT_EQ(ask("GET", "/session/" + id + "/source").body, R"({"value":"done"})");
}

TEST_F(Sessions, HandCommandsToThePhone)
{
    std::string const id = open();
    ask("POST", "/session/" + id + "/timeouts", R"({"implicit": 1500})");
    ask("POST", "/session/" + id + "/appium/settings",
        R"({"settings": {"pageSourceExcludedAttributes": "x", "other": 1}})");
    ask("POST", "/session/" + id + "/element/E/elements", R"({"using": "xpath", "value": "//*", "more": 1})");
    ask("POST", "/session/" + id + "/appium/device/lock", R"({"seconds": 0})");
    ask("POST", "/session/" + id + "/appium/device/push_file", R"({"path": "/x", "data": "AAAA"})");
    ask("GET", "/session/" + id + "/appium/device/system_time");
    ASSERT_EQ(m_asked.size(), 4u);
    EXPECT_EQ(m_asked[0].name, "findElements");
    EXPECT_EQ(m_asked[0].element, "E");
    EXPECT_EQ(m_asked[0].parameters["using"], "xpath");
    EXPECT_DOUBLE_EQ(m_asked[0].implicitSeconds, 1.5);
    EXPECT_EQ(m_asked[0].settings["pageSourceExcludedAttributes"], "x");
    EXPECT_EQ(m_asked[1].name, "executeScript");
    EXPECT_EQ(m_asked[1].parameters, Json::parse(R"({"script": "mobile: lock", "args": [{"seconds": 0}]})"));
    EXPECT_EQ(m_asked[2].parameters,
        Json::parse(R"({"script": "mobile: pushFile", "args": [{"remotePath": "/x", "payload": "AAAA"}]})"));
    EXPECT_EQ(m_asked[3].parameters, Json::parse(R"({"script": "mobile: getDeviceTime", "args": [{}]})"));
    auto const answer = ask("POST", "/session/" + id + "/element/E/click", "{}");
    EXPECT_EQ(answer.status, 404);
    EXPECT_EQ(answer.body,
        R"({"value":{"error":"stale element reference","message":"stale element reference: gone","stacktrace":""}})");
}

TEST_F(Sessions, AnswerWhatNeedsNoPhone)
{
    std::string const session = "/session/" + open();
    auto const value = [&](std::string const& path) {
        return Json::parse(ask("GET", session + path).body)["value"];
    };
    EXPECT_EQ(value("")["platformVersion"], "15.4");
    EXPECT_EQ(value("/timeouts"), Json::parse(R"({"script": 30000, "pageLoad": 300000, "implicit": 0})"));
    EXPECT_EQ(value("/context"), "NATIVE_APP");
    EXPECT_EQ(value("/appium/contexts"), Json::array({ "NATIVE_APP" }));
    EXPECT_EQ(value("/window/handles"), Json::array({ "1" }));
    EXPECT_EQ(value("/appium/capabilities")["capabilities"]["platformName"], "iOS");
    EXPECT_EQ(value("/appium/commands")["rest"]["base"]["/session/:sessionId/element/:elementId/click"]
                                       ["POST"]["command"],
        "elementClick");
    Json const scripts = value("/appium/extensions")["rest"]["driver"];
    EXPECT_TRUE(scripts.contains("mobile: lock") && scripts.contains("phone: boot")) << scripts;
    EXPECT_TRUE(value("/appium/settings").is_object());
    EXPECT_EQ(ask("POST", session + "/context", R"({"name": "NATIVE_APP"})").status, 200);
    EXPECT_EQ(errorIn(ask("POST", session + "/context", R"({"name": "WEBVIEW_1"})")), "no such window");
    EXPECT_EQ(errorIn(ask("POST", session + "/appium/settings", R"({"settings": []})")), "invalid argument");
    EXPECT_EQ(errorIn(ask("POST", session + "/appium/settings",
                  R"({"settings": {"includeHittableInPageSource": "yes"}})")),
        "invalid argument");
    EXPECT_TRUE(m_asked.empty());
}

TEST_F(Sessions, TakeNoBodyThatIsNoObjectOfJson)
{
    std::string const path = "/session/" + open() + "/element";
    for (std::string const& body :
        { std::string("{"), std::string("[]"), std::string("5"), std::string("\"x\""),
            std::string("{\"a\": \"\xff\"}"), std::string("{'a': 1}"), std::string("{} {}"),
            std::string("{\"a\": NaN}"), std::string("\0{}", 3), "{\"a\":" + std::string(100'000, '[') + "}",
            "{\"a\":" + std::string(70, '[') + std::string(70, ']') + "}" }) {
        auto const answer = ask("POST", path, body);
        EXPECT_EQ(answer.status, 400) << body.substr(0, 40);
        EXPECT_EQ(errorIn(answer), "invalid argument") << body.substr(0, 40);
    }
    EXPECT_TRUE(m_asked.empty());
    EXPECT_EQ(ask("POST", path, "").status, 200);   // leniently: nothing to say
}

TEST_F(Sessions, EndWhenNobodyAsksForLong)
{
    std::string const id = open(R"({"appium:newCommandTimeout": 0.05})");
    EXPECT_EQ(ask("GET", "/session/" + id + "/timeouts").status, 200);
    std::this_thread::sleep_for(std::chrono::milliseconds(80));
    EXPECT_EQ(errorIn(ask("GET", "/session/" + id + "/timeouts")), "invalid session id");
    EXPECT_NE(open(R"({"appium:newCommandTimeout": 0})"), "");
}

TEST_F(Sessions, ComeAndGoByTheThousand)
{
    for (int i = 0; i < 10'000; ++i) {
        std::string const id = open();
        ASSERT_NE(id, "");
        ASSERT_EQ(ask("DELETE", "/session/" + id).status, 200);
    }
    EXPECT_EQ(Json::parse(ask("GET", "/sessions").body)["value"], Json::array());
}

}
}
