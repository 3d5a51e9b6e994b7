// Scripts by name: `mobile: …` as Appium's XCUITest driver has them, and the way to `phone: …`.
#include "phone/automation/phone_commands.hpp"
#include "phone/automation/scripts/script_arguments.hpp"
#include "phone/automation/scripts/script_targets.hpp"
#include "phone/automation/source_document.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/base64.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_scroll_view.hpp"

#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

constexpr double kTapSeconds = 0.05;
constexpr double kBetweenTaps = 0.1;
constexpr double kLongestPress = 600;   // seconds
constexpr double kUnlockSeconds = 2;    // in which an unlock has happened, or never will
constexpr double kSwipeSeconds = 0.15;
constexpr double kScrollSeconds = 0.6;
constexpr double kFingersApart = 40;   // points, of two that tap at once
constexpr std::size_t kLargestFile = 16u << 20;

std::string trimmed(std::string_view text)
{
    auto const isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\n'; };
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return std::string(text);
}

std::string lower(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

CommandError unknownScript(std::string const& script)
{
    return { ErrorCode::unknownMethod, "no script \"" + script + "\"; the phone has no web context" };
}

}

// One script's run: its arguments and the phone that it speaks to.
class MobileScripts {
public:
    MobileScripts(
        PhoneCommands& commands, std::string const& name, Json const& arguments, Json const& settings)
        : m_commands(commands)
        , m_name(name)
        , m_settings(settings)
        , m_in(name, arguments, "mobile: ")
    {
    }

    Answer<Json> run()
    {
        for (Row const& row : rows())
            if (row.name == m_name)
                return (this->*row.script)();
        return unknownScript("mobile: " + m_name);
    }

private:
    using Script = Answer<Json> (MobileScripts::*)();
    struct Row {
        std::string_view name;
        Script script;
    };
    static std::vector<Row> const& rows();

    // The element that the arguments name; none when they name none. After reading every argument.
    std::optional<std::string> elementId()
    {
        for (char const* const key : { "elementId", "element" }) {
            Json const* const value = m_in.optionalAny(key);
            if (!value || value->is_null())
                continue;
            if (value->is_string())
                return value->get<std::string>();
            if (auto const id = elementIdOf(*value))
                return id;
            m_in.refuse(std::string("`") + key + "` is an element");
        }
        return {};
    }

    // The element's rectangle, or the whole screen's.
    Answer<CGRect> area(std::optional<std::string> const& element)
    {
        if (!element)
            return screenBounds();
        return m_commands.placeOf(*element);
    }

    // x and y from the corner of the element or of the screen; without them the middle.
    Answer<CGPoint> point(
        std::optional<std::string> const& element, std::optional<double> x, std::optional<double> y)
    {
        auto const rect = area(element);
        if (!rect)
            return rect.error();
        if (element && !x && !y) {
            auto const object = m_commands.objectOfElement(*element);
            if (!object)
                return object.error();
            return m_commands.touchablePoint(*object);
        }
        CGPoint const at = x || y ? CGPoint { rect->origin.x + x.value_or(0), rect->origin.y + y.value_or(0) }
                                  : center(*rect);
        if (!contains(screenBounds(), at))
            return CommandError { ErrorCode::moveTargetOutOfBounds, "the point is not on the screen" };
        return at;
    }

    double seconds(char const* name)
    {
        double const value = m_in.number(name);
        if (!(value >= 0 && value <= kLongestPress))
            m_in.refuse(std::string("`") + name + "` is a number of seconds up to 600");
        return value;
    }

    Answer<Json> lock()
    {
        double const seconds = m_in.optionalNumber("seconds").value_or(0);
        if (!(seconds >= 0 && seconds <= kLongestPress))
            m_in.refuse("`seconds` is a number up to 600");
        if (!m_in.isGood())
            return m_in.error();
        phone().lock();
        if (!(seconds > 0))
            return Json();
        m_commands.passTime(seconds);
        phone().requestUnlock();
        return m_commands.waitUntilUnlocked();
    }

    Answer<Json> unlock()
    {
        if (!m_in.isGood())
            return m_in.error();
        if (phone().isLocked() && !phone().isPasscodeShown())
            phone().requestUnlock();
        return m_commands.waitUntilUnlocked();
    }

    Answer<Json> isLocked()
    {
        if (!m_in.isGood())
            return m_in.error();
        return Json(phone().isLocked());
    }

    Answer<Json> pressButton()
    {
        std::string const name = lower(m_in.text("name"));
        constexpr std::string_view kNames[] { "home", "volumeup", "volumedown", "action", "camera", "lock",
            "power" };
        if (std::ranges::find(kNames, name) == std::end(kNames))
            m_in.refuse("`name` is home, volumeup, volumedown, action, camera, lock or power");
        static_cast<void>(m_in.optionalNumber("durationSeconds"));
        if (!m_in.isGood())
            return m_in.error();
        if (name == "lock" || name == "power")
            phone().lock();
        else if (name == "home" && phone().isLocked())
            phone().requestUnlock();
        else if (name == "home")
            phone().launch(kSpringBoardIdentifier);
        return Json();   // nothing here listens to the others
    }

    Answer<Json> touchAndHold()
    {
        double const duration = seconds("duration");
        auto const x = m_in.optionalNumber("x");
        auto const y = m_in.optionalNumber("y");
        return tapAt(x, y, duration, 1, 1);
    }

    Answer<Json> tap()
    {
        double const x = m_in.number("x");
        double const y = m_in.number("y");
        return tapAt(x, y, kTapSeconds, 1, 1);
    }

    Answer<Json> doubleTap() { return tapAt(optional("x"), optional("y"), kTapSeconds, 2, 1); }

    Answer<Json> twoFingerTap() { return tapAt(optional("x"), optional("y"), kTapSeconds, 1, 2); }

    Answer<Json> tapWithNumberOfTaps()
    {
        auto const taps = m_in.integer("numberOfTaps", 1, 10);
        auto const touches = m_in.integer("numberOfTouches", 1, 5);
        return tapAt(optional("x"), optional("y"), kTapSeconds, taps, touches);
    }

    std::optional<double> optional(char const* name) { return m_in.optionalNumber(name); }

    Answer<Json> tapAt(
        std::optional<double> x, std::optional<double> y, double seconds, long long taps, long long touches)
    {
        auto const element = elementId();
        if (!m_in.isGood())
            return m_in.error();
        auto const at = point(element, x, y);
        if (!at)
            return at.error();
        std::vector<CGPoint> fingers;
        for (long long i = 0; i < touches; ++i)
            fingers.push_back({ at->x + kFingersApart * (double(i) - double(touches - 1) / 2), at->y });
        for (long long i = 0; i < taps; ++i) {
            if (i > 0)
                m_commands.passTime(kBetweenTaps);
            m_commands.m_gestures.press(fingers, seconds);
        }
        return Json();
    }

    static CGPoint directionOf(std::string const& name)
    {
        if (name == "up")
            return { 0, -1 };
        if (name == "down")
            return { 0, 1 };
        return { name == "left" ? -1.0 : 1.0, 0 };
    }

    // From one side of the middle of the rectangle to the other; `part` of it lies between.
    void dragAcross(CGRect rect, CGPoint direction, double part, double seconds, double rest)
    {
        CGRect const shown = intersection(rect, screenBounds());
        CGPoint const middle = center(shown);
        CGPoint const half { direction.x * shown.size.width * part / 2,
            direction.y * shown.size.height * part / 2 };
        m_commands.m_gestures.drag(middle - half, middle + half, 0, seconds, rest);
    }

    Answer<Json> swipe()
    {
        std::string const direction = m_in.oneOf("direction", { "up", "down", "left", "right" });
        auto const velocity = m_in.optionalNumber("velocity");
        if (velocity && !(*velocity > 0))
            m_in.refuse("`velocity` is a number of pixels a second above 0");
        auto const element = elementId();
        if (!m_in.isGood())
            return m_in.error();
        auto const rect = area(element);
        if (!rect)
            return rect.error();
        constexpr double kPart = 0.7;
        double duration = kSwipeSeconds;
        if (velocity) {
            CGPoint const way = directionOf(direction);
            double const length =
                kPart * (std::abs(way.x) * rect->size.width + std::abs(way.y) * rect->size.height);
            duration = std::clamp(length * screenScale() / *velocity, kFrameSeconds, 60.0);
        }
        dragAcross(*rect, directionOf(direction), kPart, duration, 0);
        return Json();
    }

    Answer<Json> scroll()
    {
        auto const direction = m_in.optionalOneOf("direction", { "up", "down", "left", "right" });
        double const distance = m_in.optionalNumber("distance").value_or(1);
        if (!(distance > 0 && distance <= 100))
            m_in.refuse("`distance` is a number of screens above 0");
        auto const name = m_in.optionalText("name");
        auto const predicate = m_in.optionalText("predicateString");
        bool const toVisible = m_in.optionalBoolean("toVisible").value_or(false);
        auto const element = elementId();
        if (!m_in.isGood())
            return m_in.error();
        if (direction) {
            auto const rect = area(element);
            if (!rect)
                return rect.error();
            // What lies further down comes into view by a finger that goes up; slowly, and at rest at the end.
            CGPoint const way = directionOf(*direction);
            for (double left = distance; left > 0; left -= 1)
                dragAcross(*rect, { -way.x, -way.y }, 0.8 * std::min(left, 1.0), kScrollSeconds, 0.2);
            return Json();
        }
        if (name)
            return scrollToFound("accessibility id", *name, element);
        if (predicate)
            return scrollToFound("-ios predicate string", *predicate, element);
        if (toVisible && element)
            return scrollTo(*element);
        return invalidArgument("`mobile: scroll` takes one of `direction`, `name`, `predicateString` and "
                               "`toVisible` with an element");
    }

    Answer<Json> scrollToFound(
        std::string const& strategy, std::string const& value, std::optional<std::string> const& element)
    {
        PhoneCommand command;
        command.element = element.value_or("");
        command.parameters = Json::object({ { "using", strategy }, { "value", value } });
        auto const found = m_commands.search(command, true);
        if (!found)
            return found.error();
        return scrollTo(m_commands.m_elements.nameOf(found->front()));
    }

    Answer<Json> scrollTo(std::string const& element)
    {
        auto const object = m_commands.objectOfElement(element);
        if (!object)
            return object.error();
        UIView const view = objc::cast<UIView>(*object);
        for (UIView each = view ? view.superview() : UIView {}; each; each = each.superview()) {
            if (auto const scroll = objc::cast<UIScrollView>(each)) {
                scroll.scrollRectToVisible(scroll.convertRectFromView(view.bounds(), view), false);
                phone().advance(0);
                return Json();
            }
        }
        return CommandError { ErrorCode::invalidElementState, "the element is in nothing that scrolls" };
    }

    Answer<Json> scrollToElement()
    {
        auto const element = elementId();
        if (!element)
            m_in.refuse("`elementId` is missing");
        if (!m_in.isGood())
            return m_in.error();
        return scrollTo(*element);
    }

    Answer<Json> dragFromTo()
    {
        double const hold = seconds("duration");
        double const fromX = m_in.number("fromX");
        double const fromY = m_in.number("fromY");
        double const toX = m_in.number("toX");
        double const toY = m_in.number("toY");
        auto const element = elementId();
        if (!m_in.isGood())
            return m_in.error();
        auto const from = point(element, fromX, fromY);
        if (!from)
            return from.error();
        auto const to = point(element, toX, toY);
        if (!to)
            return to.error();
        m_commands.m_gestures.drag(*from, *to, hold, kSwipeSeconds * 2);
        return Json();
    }

    Answer<Json> alert()
    {
        std::string const action = m_in.oneOf("action", { "accept", "dismiss", "getButtons" });
        auto const label = m_in.optionalText("buttonLabel");
        if (!m_in.isGood())
            return m_in.error();
        if (action == "getButtons")
            return m_commands.alertButtons();
        return m_commands.answerAlert(action == "accept", label ? Json(*label) : Json(), m_settings);
    }

    Answer<Json> activeAppInfo()
    {
        if (!m_in.isGood())
            return m_in.error();
        std::string const bundle = phone().frontMostApplication();
        bool const isSpringBoard = bundle == kSpringBoardIdentifier;
        return Json::object({ { "pid", getpid() }, { "bundleId", bundle },
            { "name", isSpringBoard ? "SpringBoard" : bundle.substr(bundle.rfind('.') + 1) },
            { "processArguments", Json::object({ { "args", Json::array() }, { "env", Json::object() } }) } });
    }

    std::string bundleId()
    {
        Json const* const byOldName = m_in.optionalAny("appId");
        if (byOldName && byOldName->is_string())
            return byOldName->get<std::string>();
        std::string const bundle = m_in.text("bundleId");
        if (bundle.empty())
            m_in.refuse("`bundleId` is not empty");
        return bundle;
    }

    Answer<Json> launchApp()
    {
        std::string const bundle = bundleId();
        for (char const* const unused : { "arguments", "environment" })
            static_cast<void>(m_in.optionalAny(unused));
        if (!m_in.isGood())
            return m_in.error();
        if (auto const launched = phone().launch(bundle); !launched)
            return CommandError { ErrorCode::unknownError, launched.message() };
        m_commands.m_launched.insert(bundle);
        return Json();
    }

    Answer<Json> terminateApp()
    {
        std::string const bundle = bundleId();
        if (bundle == kSpringBoardIdentifier)
            m_in.refuse("SpringBoard is restarted by `phone: respring`");
        if (!m_in.isGood())
            return m_in.error();
        bool const isFront = phone().frontMostApplication() == bundle;
        bool const isRunning = m_commands.m_launched.erase(bundle) > 0 || isFront;
        if (isFront)
            phone().launch(kSpringBoardIdentifier);
        return Json(isRunning);
    }

    // XCUIApplicationState: 1 not running, 3 in the background, 4 in front.
    Answer<Json> queryAppState()
    {
        std::string const bundle = bundleId();
        if (!m_in.isGood())
            return m_in.error();
        if (phone().frontMostApplication() == bundle)
            return Json(4);
        return Json(bundle == kSpringBoardIdentifier || m_commands.m_launched.contains(bundle) ? 3 : 1);
    }

    Answer<Json> backgroundApp()
    {
        double const seconds = m_in.optionalNumber("seconds").value_or(-1);
        if (!(seconds <= kLongestPress))
            m_in.refuse("`seconds` is a number up to 600; below 0 the application stays behind");
        if (!m_in.isGood())
            return m_in.error();
        std::string const bundle = phone().frontMostApplication();
        if (bundle == kSpringBoardIdentifier)
            return Json();
        m_commands.m_launched.insert(bundle);
        phone().launch(kSpringBoardIdentifier);
        if (seconds >= 0) {
            m_commands.passTime(seconds);
            phone().launch(bundle);
        }
        return Json();
    }

    Answer<Json> deepLink()
    {
        std::string const text = m_in.text("url");
        static_cast<void>(m_in.optionalText("bundleId"));
        objc::handle const url = objc::cls<"NSURL">().send<"URLWithString:", objc::handle>(toNSString(text));
        if (text.empty() || !url)
            m_in.refuse("`url` is no URL");
        if (!m_in.isGood())
            return m_in.error();
        TraceOwnScope const own;
        if (!springBoard().application.get().openURL(url))
            return CommandError { ErrorCode::unknownError, "nothing opens " + text };
        phone().advance(0);
        return Json();
    }

    Answer<Json> deviceInfo()
    {
        if (!m_in.isGood())
            return m_in.error();
        BootOptions const& options = phone().options();
        return Json::object({ { "name", "iPhone" }, { "model", "iPhone" },
            { "currentLocale", options.language }, { "timeZone", phone().clock().timezone() },
            { "userInterfaceStyle", options.appearance == Appearance::dark ? "dark" : "light" },
            { "userInterfaceIdiom", 0 }, { "isSimulator", true }, { "systemVersion", options.ios.text() } });
    }

    Answer<Json> deviceScreenInfo()
    {
        if (!m_in.isGood())
            return m_in.error();
        CGSize const size = screenBounds().size;
        double const barHeight = std::max(safeAreaOfScreen().top, phone().orientation() >= 3 ? 0.0 : 20.0);
        auto const whole = [](double width, double height) {
            return Json::object({ { "width", std::lround(width) }, { "height", std::lround(height) } });
        };
        return Json::object({ { "statusBarSize", whole(size.width, barHeight) }, { "scale", screenScale() },
            { "screenSize", whole(size.width, size.height) } });
    }

    Answer<Json> batteryInfo()
    {
        if (!m_in.isGood())
            return m_in.error();
        constexpr int kUnplugged = 1;   // UIDeviceBatteryStateUnplugged
        return Json::object({ { "level", 0.8 }, { "state", kUnplugged } });
    }

    Answer<Json> getAppearance()
    {
        if (!m_in.isGood())
            return m_in.error();
        return Json::object(
            { { "style", phone().options().appearance == Appearance::dark ? "dark" : "light" } });
    }

    Answer<Json> getDeviceTime()
    {
        auto const format = m_in.optionalText("format");
        if (format && *format != "YYYY-MM-DDTHH:mm:ssZ")
            m_in.refuse("the time comes as YYYY-MM-DDTHH:mm:ssZ alone");
        if (!m_in.isGood())
            return m_in.error();
        return Json(isoDate(phone().clock().date()));
    }

    Answer<Json> getContexts()
    {
        static_cast<void>(m_in.optionalAny("waitForWebviewMs"));
        if (!m_in.isGood())
            return m_in.error();
        return Json::array({ Json::object({ { "id", "NATIVE_APP" } }) });
    }

    Answer<Json> source()
    {
        std::string const format =
            m_in.optionalOneOf("format", { "xml", "json", "description" }).value_or("xml");
        std::string const excluded = m_in.optionalText("excludedAttributes").value_or("");
        if (!m_in.isGood())
            return m_in.error();
        if (format == "json")
            return sourceJson(takeSnapshot());
        if (format == "description")
            return Json(sourceDescription(takeSnapshot()));
        PhoneCommand command;
        command.settings = m_settings.is_object() ? m_settings : Json::object();
        if (!excluded.empty())
            command.settings["pageSourceExcludedAttributes"] = excluded;
        return m_commands.source(command);
    }

    Answer<Json> pushFile()
    {
        std::string const path = m_in.text("remotePath");
        auto const bytes = bytesOfBase64(m_in.text("payload"));
        if (!bytes)
            m_in.refuse("`payload` is base64");
        else if (bytes->size() > kLargestFile)
            m_in.refuse("`payload` is larger than 16 MiB");
        if (!m_in.isGood())
            return m_in.error();
        auto const written = phone().root().write(path, *bytes, { .atomically = true, .makesFolders = true });
        if (!written)
            return invalidArgument("`remotePath`: " + written.message());
        return Json();
    }

    Answer<Json> pullFile()
    {
        std::string const path = m_in.text("remotePath");
        if (!m_in.isGood())
            return m_in.error();
        auto const bytes = phone().root().read(path);
        if (!bytes)
            return invalidArgument("`remotePath`: " + bytes.message());
        return Json(base64(bytes->data(), bytes->size()));
    }

    Answer<Json> unsupported()
    {
        return CommandError { ErrorCode::unsupportedOperation, "the phone keeps no permissions" };
    }

    PhoneCommands& m_commands;
    std::string m_name;
    Json const& m_settings;
    ScriptArguments m_in;
};

std::vector<MobileScripts::Row> const& MobileScripts::rows()
{
    static std::vector<Row> const all {
        { "lock", &MobileScripts::lock },
        { "unlock", &MobileScripts::unlock },
        { "isLocked", &MobileScripts::isLocked },
        { "pressButton", &MobileScripts::pressButton },
        { "touchAndHold", &MobileScripts::touchAndHold },
        { "tap", &MobileScripts::tap },
        { "doubleTap", &MobileScripts::doubleTap },
        { "twoFingerTap", &MobileScripts::twoFingerTap },
        { "tapWithNumberOfTaps", &MobileScripts::tapWithNumberOfTaps },
        { "swipe", &MobileScripts::swipe },
        { "scroll", &MobileScripts::scroll },
        { "scrollToElement", &MobileScripts::scrollToElement },
        { "dragFromToForDuration", &MobileScripts::dragFromTo },
        { "alert", &MobileScripts::alert },
        { "activeAppInfo", &MobileScripts::activeAppInfo },
        { "launchApp", &MobileScripts::launchApp },
        { "activateApp", &MobileScripts::launchApp },
        { "terminateApp", &MobileScripts::terminateApp },
        { "queryAppState", &MobileScripts::queryAppState },
        { "backgroundApp", &MobileScripts::backgroundApp },
        { "deepLink", &MobileScripts::deepLink },
        { "deviceInfo", &MobileScripts::deviceInfo },
        { "deviceScreenInfo", &MobileScripts::deviceScreenInfo },
        { "batteryInfo", &MobileScripts::batteryInfo },
        { "getAppearance", &MobileScripts::getAppearance },
        { "getDeviceTime", &MobileScripts::getDeviceTime },
        { "getContexts", &MobileScripts::getContexts },
        { "source", &MobileScripts::source },
        { "pushFile", &MobileScripts::pushFile },
        { "pullFile", &MobileScripts::pullFile },
        { "getPermission", &MobileScripts::unsupported },
        { "setPermission", &MobileScripts::unsupported },
    };
    return all;
}

Answer<Json> PhoneCommands::waitUntilUnlocked()
{
    for (double waited = 0; phone().isLocked() && waited < kUnlockSeconds; waited += kFrameSeconds) {
        if (phone().isPasscodeShown())
            break;
        m_passTime(kFrameSeconds);
    }
    if (!phone().isLocked())
        return Json();
    return CommandError { ErrorCode::timeout,
        phone().isPasscodeShown() ? "the phone asks for its passcode; `phone: enterPasscode` gives it"
                                  : "the phone stays locked" };
}

Answer<Json> PhoneCommands::runMobileScript(
    std::string const& name, Json const& arguments, Json const& settings)
{
    return MobileScripts(*this, name, arguments, settings).run();
}

Answer<Json> PhoneCommands::executeScript(PhoneCommand const& command)
{
    auto const script = command.parameters.find("script");
    if (script == command.parameters.end() || !script->is_string())
        return invalidArgument("`script` is a text");
    static Json const kNoArguments = Json::array();
    auto const given = command.parameters.find("args");
    if (given != command.parameters.end() && !given->is_array())
        return invalidArgument("`args` is an array");
    Json const& arguments = given == command.parameters.end() ? kNoArguments : *given;
    std::string const text = *script;

    // Two of selenium's own functions come as JavaScript, which begins with the name of what it finds out.
    bool const asksDisplayed = text.starts_with("/* isDisplayed */return (");
    bool const asksAttribute = text.starts_with("/* getAttribute */return (");
    if (asksDisplayed || asksAttribute) {
        auto const element = arguments.empty() ? std::nullopt : elementIdOf(arguments[0]);
        if (!element || (asksAttribute && (arguments.size() < 2 || !arguments[1].is_string())))
            return invalidArgument("the arguments are an element and, for an attribute, its name");
        PhoneCommand asked;
        asked.element = *element;
        if (asksDisplayed)
            return elementDisplayed(asked);
        asked.argument = arguments[1].get<std::string>();
        return elementAttribute(asked);
    }

    auto const colon = text.find(':');
    std::string const prefix = colon == std::string::npos ? "" : trimmed(text.substr(0, colon));
    if (prefix != "mobile" && prefix != "phone")
        return unknownScript(text.substr(0, 80));
    std::string const name = trimmed(text.substr(colon + 1));
    if (arguments.size() > 1)
        return invalidArgument("`args` holds one object");
    Json const object = arguments.empty() || arguments[0].is_null() ? Json::object() : arguments[0];
    if (!object.is_object())
        return invalidArgument("`args` holds one object");
    if (prefix == "phone")
        return runPhoneScript(name, object, *this);
    return runMobileScript(name, object, command.settings);
}

}
