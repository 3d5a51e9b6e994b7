#include "phone/automation/mobile_scripts.hpp"

#include "phone/automation/scripts/script_targets.hpp"
#include "phone/automation/source_document.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/ui_screen.hpp"

#include <unistd.h>

#include <algorithm>

namespace phone {

namespace {

constexpr std::size_t kLargestFile = 16u << 20;

}

MobileScripts::MobileScripts(
    PhoneCommands& commands, std::string const& name, Json const& arguments, Json const& settings)
    : m_commands(commands)
    , m_name(name)
    , m_settings(settings)
    , m_in(name, arguments, "mobile: ")
{
}

Answer<Json> MobileScripts::run()
{
    for (Row const& row : rows())
        if (row.name == m_name)
            return (this->*row.script)();
    return unknownScript("mobile: " + m_name);
}

std::optional<std::string> MobileScripts::elementId()
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

Answer<CGRect> MobileScripts::area(std::optional<std::string> const& element)
{
    if (!element)
        return screenBounds();
    return m_commands.placeOf(*element);
}

Answer<CGPoint> MobileScripts::point(
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
    CGPoint const at =
        x || y ? CGPoint { rect->origin.x + x.value_or(0), rect->origin.y + y.value_or(0) } : center(*rect);
    if (!contains(screenBounds(), at))
        return CommandError { ErrorCode::moveTargetOutOfBounds, "the point is not on the screen" };
    return at;
}

double MobileScripts::seconds(char const* name)
{
    double const value = m_in.number(name);
    if (!(value >= 0 && value <= kLongestPress))
        m_in.refuse(std::string("`") + name + "` is a number of seconds up to 600");
    return value;
}

std::optional<double> MobileScripts::optional(char const* name) { return m_in.optionalNumber(name); }

Answer<Json> MobileScripts::alert()
{
    std::string const action = m_in.oneOf("action", { "accept", "dismiss", "getButtons" });
    auto const label = m_in.optionalText("buttonLabel");
    if (!m_in.isGood())
        return m_in.error();
    if (action == "getButtons")
        return m_commands.alertButtons();
    return m_commands.answerAlert(action == "accept", label ? Json(*label) : Json(), m_settings);
}

Answer<Json> MobileScripts::activeAppInfo()
{
    if (!m_in.isGood())
        return m_in.error();
    std::string const bundle = phone().frontMostApplication();
    bool const isSpringBoard = bundle == kSpringBoardIdentifier;
    return Json::object({ { "pid", getpid() }, { "bundleId", bundle },
        { "name", isSpringBoard ? "SpringBoard" : bundle.substr(bundle.rfind('.') + 1) },
        { "processArguments", Json::object({ { "args", Json::array() }, { "env", Json::object() } }) } });
}

std::string MobileScripts::bundleId()
{
    // Some clients send it by Android's name, or by both.
    auto const byOldName = m_in.optionalText("appId");
    auto const byName = m_in.optionalText("bundleId");
    std::string const bundle = byName ? *byName : byOldName.value_or("");
    if (!byName && !byOldName)
        m_in.refuse("`bundleId` is missing");
    else if (bundle.empty())
        m_in.refuse("`bundleId` is not empty");
    return bundle;
}

Answer<Json> MobileScripts::launchApp()
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

Answer<Json> MobileScripts::terminateApp()
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

Answer<Json> MobileScripts::queryAppState()
{
    std::string const bundle = bundleId();
    if (!m_in.isGood())
        return m_in.error();
    if (phone().frontMostApplication() == bundle)
        return Json(4);
    return Json(bundle == kSpringBoardIdentifier || m_commands.m_launched.contains(bundle) ? 3 : 1);
}

Answer<Json> MobileScripts::backgroundApp()
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

Answer<Json> MobileScripts::deepLink()
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

Answer<Json> MobileScripts::deviceInfo()
{
    if (!m_in.isGood())
        return m_in.error();
    BootOptions const& options = phone().options();
    return Json::object({ { "name", "iPhone" }, { "model", "iPhone" }, { "currentLocale", options.language },
        { "timeZone", phone().clock().timezone() },
        { "userInterfaceStyle", options.appearance == Appearance::dark ? "dark" : "light" },
        { "userInterfaceIdiom", 0 }, { "isSimulator", true }, { "systemVersion", options.ios.text() } });
}

Answer<Json> MobileScripts::deviceScreenInfo()
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

Answer<Json> MobileScripts::batteryInfo()
{
    if (!m_in.isGood())
        return m_in.error();
    constexpr int kUnplugged = 1;   // UIDeviceBatteryStateUnplugged
    return Json::object({ { "level", 0.8 }, { "state", kUnplugged } });
}

Answer<Json> MobileScripts::getAppearance()
{
    if (!m_in.isGood())
        return m_in.error();
    return Json::object({ { "style", phone().options().appearance == Appearance::dark ? "dark" : "light" } });
}

Answer<Json> MobileScripts::getDeviceTime()
{
    auto const format = m_in.optionalText("format");
    if (format && *format != "YYYY-MM-DDTHH:mm:ssZ")
        m_in.refuse("the time comes as YYYY-MM-DDTHH:mm:ssZ alone");
    if (!m_in.isGood())
        return m_in.error();
    return Json(isoDate(phone().clock().date()));
}

Answer<Json> MobileScripts::getContexts()
{
    static_cast<void>(m_in.optionalAny("waitForWebviewMs"));
    if (!m_in.isGood())
        return m_in.error();
    return Json::array({ Json::object({ { "id", "NATIVE_APP" } }) });
}

Answer<Json> MobileScripts::source()
{
    std::string const format = m_in.optionalOneOf("format", { "xml", "json", "description" }).value_or("xml");
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

Answer<Json> MobileScripts::pushFile()
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

Answer<Json> MobileScripts::pullFile()
{
    std::string const path = m_in.text("remotePath");
    if (!m_in.isGood())
        return m_in.error();
    auto const bytes = phone().root().read(path);
    if (!bytes)
        return invalidArgument("`remotePath`: " + bytes.message());
    return Json(base64(bytes->data(), bytes->size()));
}

Answer<Json> MobileScripts::unsupported()
{
    return CommandError { ErrorCode::unsupportedOperation, "the phone keeps no permissions" };
}

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

std::vector<std::string> MobileScripts::names()
{
    std::vector<std::string> names;
    for (Row const& row : rows())
        names.emplace_back(row.name);
    return names;
}

}
