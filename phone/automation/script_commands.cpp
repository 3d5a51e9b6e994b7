// Scripts by name: `mobile: …`, `phone: …`, and the two of selenium's own that come as JavaScript.
#include "phone/automation/mobile_scripts.hpp"

#include "phone/automation/scripts/script_targets.hpp"
#include "phone/kernel/ascii.hpp"
#include "phone/phone.hpp"

namespace phone {

namespace {

constexpr double kUnlockSeconds = 2;   // in which an unlock has happened, or never will

}

CommandError unknownScript(std::string const& script)
{
    return { ErrorCode::unknownMethod, "no script \"" + script + "\"; the phone has no web context" };
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
    std::string const prefix(colon == text.npos ? "" : trimmed(std::string_view(text).substr(0, colon)));
    if (prefix != "mobile" && prefix != "phone")
        return unknownScript(text.substr(0, 80));
    std::string const name(trimmed(std::string_view(text).substr(colon + 1)));
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
