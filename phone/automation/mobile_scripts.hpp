// MobileScripts: `mobile: …` as Appium's XCUITest driver has them. One script's run: its arguments and the phone that it
// speaks to. Every argument is read before anything is done. In the phone's process, main thread.
#pragma once

#include "phone/automation/phone_commands.hpp"
#include "phone/automation/scripts/script_arguments.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace phone {

class MobileScripts {
public:
    MobileScripts(
        PhoneCommands& commands, std::string const& name, Json const& arguments, Json const& settings);
    Answer<Json> run();
    static std::vector<std::string> names();   // as they follow `mobile: `

private:
    static constexpr double kLongestPress = 600;   // seconds

    using Script = Answer<Json> (MobileScripts::*)();
    struct Row {
        std::string_view name;
        Script script;
    };
    static std::vector<Row> const& rows();

    // The element that the arguments name; none when they name none. After reading every argument.
    std::optional<std::string> elementId();
    // The element's rectangle, or the whole screen's.
    Answer<CGRect> area(std::optional<std::string> const& element);
    // x and y from the corner of the element or of the screen; without them the middle.
    Answer<CGPoint> point(
        std::optional<std::string> const& element, std::optional<double> x, std::optional<double> y);
    double seconds(char const* name);
    std::optional<double> optional(char const* name);
    std::string bundleId();

    // Buttons and fingers: mobile_gestures.cpp.
    Answer<Json> lock();
    Answer<Json> unlock();
    Answer<Json> isLocked();
    Answer<Json> pressButton();
    Answer<Json> touchAndHold();
    Answer<Json> tap();
    Answer<Json> doubleTap();
    Answer<Json> twoFingerTap();
    Answer<Json> tapWithNumberOfTaps();
    Answer<Json> tapAt(
        std::optional<double> x, std::optional<double> y, double seconds, long long taps, long long touches);
    static CGPoint directionOf(std::string const& name);
    // Of the rectangle what is on the screen, for a finger; an error when nothing is.
    static Answer<CGRect> shownPart(Answer<CGRect> const& rect);
    // From one side of the middle of the rectangle to the other; `part` of it lies between.
    void dragAcross(CGRect shown, CGPoint direction, double part, double seconds, double rest);
    Answer<Json> swipe();
    Answer<Json> scroll();
    Answer<Json> scrollToFound(
        std::string const& strategy, std::string const& value, std::optional<std::string> const& element);
    Answer<Json> scrollTo(std::string const& element);
    Answer<Json> scrollToElement();
    Answer<Json> dragFromTo();

    Answer<Json> alert();
    Answer<Json> activeAppInfo();
    Answer<Json> launchApp();
    Answer<Json> terminateApp();
    // XCUIApplicationState: 1 not running, 3 in the background, 4 in front.
    Answer<Json> queryAppState();
    Answer<Json> backgroundApp();
    Answer<Json> deepLink();
    Answer<Json> deviceInfo();
    Answer<Json> deviceScreenInfo();
    Answer<Json> batteryInfo();
    Answer<Json> getAppearance();
    Answer<Json> getDeviceTime();
    Answer<Json> getContexts();
    Answer<Json> source();
    Answer<Json> pushFile();
    Answer<Json> pullFile();
    Answer<Json> unsupported();

    PhoneCommands& m_commands;
    std::string m_name;
    Json const& m_settings;
    ScriptArguments m_in;
};

// What a script answers that nobody has.
CommandError unknownScript(std::string const& script);

}
