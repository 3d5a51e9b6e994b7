#include "phone/automation/routes.hpp"

#include <optional>
#include <vector>

namespace phone {

namespace {

enum class By { session, phone };

struct Row {
    char const* verb;
    char const* path;   // `:` stands for any segment: s the session, e the element, a an argument
    char const* command;
    By by;
};

constexpr Row kRows[] {
    { "GET", "status", "status", By::session },
    { "POST", "session", "newSession", By::session },
    { "GET", "sessions", "sessions", By::session },
    { "GET", "appium/sessions", "sessions", By::session },
    { "DELETE", "session/:s", "deleteSession", By::session },
    { "GET", "session/:s", "sessionCapabilities", By::session },
    { "GET", "session/:s/timeouts", "timeouts", By::session },
    { "POST", "session/:s/timeouts", "setTimeouts", By::session },
    { "POST", "session/:s/timeouts/implicit_wait", "setImplicitWait", By::session },
    { "POST", "session/:s/element", "findElement", By::phone },
    { "POST", "session/:s/elements", "findElements", By::phone },
    { "GET", "session/:s/element/active", "activeElement", By::phone },
    { "POST", "session/:s/element/active", "activeElement", By::phone },
    { "POST", "session/:s/element/:e/element", "findElement", By::phone },
    { "POST", "session/:s/element/:e/elements", "findElements", By::phone },
    { "GET", "session/:s/element/:e/text", "elementText", By::phone },
    { "GET", "session/:s/element/:e/attribute/:a", "elementAttribute", By::phone },
    { "GET", "session/:s/element/:e/property/:a", "elementAttribute", By::phone },
    { "GET", "session/:s/element/:e/name", "elementName", By::phone },
    { "GET", "session/:s/element/:e/rect", "elementRect", By::phone },
    { "GET", "session/:s/element/:e/displayed", "elementDisplayed", By::phone },
    { "GET", "session/:s/element/:e/enabled", "elementEnabled", By::phone },
    { "GET", "session/:s/element/:e/selected", "elementSelected", By::phone },
    { "POST", "session/:s/element/:e/click", "elementClick", By::phone },
    { "POST", "session/:s/element/:e/value", "elementSendKeys", By::phone },
    { "POST", "session/:s/element/:e/clear", "elementClear", By::phone },
    { "GET", "session/:s/element/:e/screenshot", "elementScreenshot", By::phone },
    { "GET", "session/:s/screenshot", "screenshot", By::phone },
    { "GET", "session/:s/source", "source", By::phone },
    { "GET", "session/:s/window/rect", "windowRect", By::phone },
    { "POST", "session/:s/window/rect", "windowRect", By::phone },
    { "GET", "session/:s/window", "windowHandle", By::session },
    { "GET", "session/:s/window/handles", "windowHandles", By::session },
    { "POST", "session/:s/actions", "performActions", By::phone },
    { "DELETE", "session/:s/actions", "releaseActions", By::phone },
    { "GET", "session/:s/alert/text", "alertText", By::phone },
    { "POST", "session/:s/alert/text", "alertSendText", By::phone },
    { "POST", "session/:s/alert/accept", "alertAccept", By::phone },
    { "POST", "session/:s/alert/dismiss", "alertDismiss", By::phone },
    { "GET", "session/:s/orientation", "orientation", By::phone },
    { "POST", "session/:s/orientation", "setOrientation", By::phone },
    { "POST", "session/:s/execute/sync", "executeScript", By::phone },
    { "POST", "session/:s/execute", "executeScript", By::phone },
    { "GET", "session/:s/appium/settings", "settings", By::session },
    { "POST", "session/:s/appium/settings", "setSettings", By::session },
    { "GET", "session/:s/appium/capabilities", "appiumCapabilities", By::session },
    { "GET", "session/:s/appium/commands", "appiumCommands", By::session },
    { "GET", "session/:s/appium/extensions", "appiumExtensions", By::session },
    { "GET", "session/:s/context", "context", By::session },
    { "POST", "session/:s/context", "setContext", By::session },
    { "GET", "session/:s/contexts", "contexts", By::session },
    { "GET", "session/:s/appium/context", "context", By::session },
    { "POST", "session/:s/appium/context", "setContext", By::session },
    { "GET", "session/:s/appium/contexts", "contexts", By::session },
    { "POST", "session/:s/appium/device/lock", "mobile: lock", By::phone },
    { "POST", "session/:s/appium/device/unlock", "mobile: unlock", By::phone },
    { "POST", "session/:s/appium/device/is_locked", "mobile: isLocked", By::phone },
    { "POST", "session/:s/appium/device/activate_app", "mobile: activateApp", By::phone },
    { "POST", "session/:s/appium/device/terminate_app", "mobile: terminateApp", By::phone },
    { "POST", "session/:s/appium/device/app_state", "mobile: queryAppState", By::phone },
    { "GET", "session/:s/appium/device/system_time", "mobile: getDeviceTime", By::phone },
    { "POST", "session/:s/appium/device/system_time", "mobile: getDeviceTime", By::phone },
    { "POST", "session/:s/appium/device/push_file", "mobile: pushFile", By::phone },
    { "POST", "session/:s/appium/device/pull_file", "mobile: pullFile", By::phone },
};

// The rest of the standard: there, for pages that a phone doesn't have.
constexpr char const* kWebPaths[] { "session/:s/url", "session/:s/back", "session/:s/forward",
    "session/:s/refresh", "session/:s/title", "session/:s/window/new", "session/:s/window/maximize",
    "session/:s/window/minimize", "session/:s/window/fullscreen", "session/:s/frame",
    "session/:s/frame/parent", "session/:s/cookie", "session/:s/cookie/:a", "session/:s/print",
    "session/:s/execute/async", "session/:s/element/:e/shadow", "session/:s/element/:e/css/:a",
    "session/:s/element/:e/computedrole", "session/:s/element/:e/computedlabel",
    "session/:s/shadow/:a/element", "session/:s/shadow/:a/elements" };

std::vector<std::string_view> segmentsOf(std::string_view path)
{
    std::vector<std::string_view> segments;
    for (std::size_t at = 0; at <= path.size();) {
        std::size_t const end = std::min(path.find('/', at), path.size());
        segments.push_back(path.substr(at, end - at));
        at = end + 1;
    }
    return segments;
}

int digitOf(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    char const letter = static_cast<char>(c | 0x20);
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

std::string decoded(std::string_view segment)
{
    std::string text;
    for (std::size_t i = 0; i < segment.size(); ++i) {
        int const high = segment[i] == '%' && i + 2 < segment.size() ? digitOf(segment[i + 1]) : -1;
        int const low = high >= 0 ? digitOf(segment[i + 2]) : -1;
        if (low < 0) {
            text += segment[i];
            continue;
        }
        text += static_cast<char>(high * 16 + low);
        i += 2;
    }
    return text;
}

bool matches(char const* pattern, std::vector<std::string> const& segments, Route& route)
{
    auto const parts = segmentsOf(pattern);
    if (parts.size() != segments.size())
        return false;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (parts[i] == ":s" && !segments[i].empty())
            route.session = segments[i];
        else if (parts[i] == ":e" && !segments[i].empty())
            route.element = segments[i];
        else if (parts[i] == ":a" && !segments[i].empty())
            route.argument = segments[i];
        else if (parts[i] != segments[i])
            return false;
    }
    return true;
}

}

Answer<Route> routeOf(std::string_view verb, std::string_view target)
{
    std::string_view path = target.substr(0, target.find_first_of("?#"));
    if (path.starts_with("/"))
        path.remove_prefix(1);
    if (path.ends_with("/"))
        path.remove_suffix(1);
    std::vector<std::string> segments;
    for (std::string_view const each : segmentsOf(path))
        segments.push_back(decoded(each));
    if (segments.size() > 1 && segments[0] == "wd" && segments[1] == "hub")
        segments.erase(segments.begin(), segments.begin() + 2);

    bool isKnown = false;
    for (Row const& row : kRows) {
        Route route;
        if (!matches(row.path, segments, route))
            continue;
        isKnown = true;
        if (row.verb != verb)
            continue;
        route.command = row.command;
        route.isForPhone = row.by == By::phone;
        return route;
    }
    std::string const shown = std::string(verb) + " " + std::string(path.substr(0, 200));
    if (isKnown)
        return CommandError { ErrorCode::unknownMethod, "no such verb for this path: " + shown };
    for (char const* const pattern : kWebPaths) {
        Route route;
        if (matches(pattern, segments, route))
            return CommandError { ErrorCode::unknownMethod, "the phone has no web context: " + shown };
    }
    return CommandError { ErrorCode::unknownCommand, "no such path: " + shown };
}

Json routeTable()
{
    Json table = Json::object();
    for (Row const& row : kRows) {
        std::string path;
        for (std::string_view const each : segmentsOf(row.path))
            path += "/"
                + (each == ":s"        ? ":sessionId"
                        : each == ":e" ? ":elementId"
                        : each == ":a" ? ":name"
                                       : std::string(each));
        table[path][row.verb] = Json::object({ { "command", row.command } });
    }
    return table;
}

}
