#include "phone/demo/telling.hpp"

#include <map>

namespace phone {

namespace {

std::string text(Json const& event, char const* key)
{
    auto const found = event.find(key);
    if (found == event.end() || found->is_null())
        return "nothing";
    return found->is_string() ? found->get<std::string>() : found->dump();
}

std::string quoted(Json const& event, char const* key)
{
    auto const found = event.find(key);
    return found == event.end() ? "nothing" : found->dump(-1, ' ', false, Json::error_handler_t::replace);
}

bool isTrue(Json const& event, char const* key) { return event.value(key, false); }

std::string ofLock(Json const& event)
{
    std::string const what = text(event, "event");
    if (what == "unlockFinished")
        return "SpringBoard finishes the unlock";
    if (what == "willDismiss")
        return "the lock screen is about to go";
    if (what == "dismissed")
        return "the lock screen has gone";
    return "the lock screen has come";
}

std::string ofPresentation(Json const& event)
{
    if (!event.contains("style"))
        return text(event, "class") + " comes up";
    std::string line = event["style"] == 0 ? "a sheet comes up: " : "an alert comes up: ";
    line += quoted(event, "title");
    if (!event["message"].is_null())
        line += " " + quoted(event, "message");
    std::string titles;
    for (Json const& action : event["actions"])
        titles += (titles.empty() ? "" : ", ") + text(action, "title");
    return line + "; to choose from: " + titles;
}

std::string ofSpawn(Json const& event)
{
    std::string line = "a program is started: " + text(event, "path");
    for (std::size_t i = 1; i < event["arguments"].size(); ++i)
        line += " " + event["arguments"][i].get<std::string>();
    return line;
}

using Teller = std::string (*)(Json const& event);

std::map<std::string, Teller> const& tellers()
{
    static std::map<std::string, Teller> const all {
        { "sound",
            [](Json const& event) {
                std::string const id = text(event, "id");
                return id == "1519" ? std::string("the motor taps") : "system sound " + id;
            } },
        { "passcodeTest",
            [](Json const& event) {
                return std::string("is the phone locked by its passcode? ")
                    + (isTrue(event, "answer") ? "yes" : "no");
            } },
        { "unlockRequest", [](Json const&) { return std::string("the unlock is asked for"); } },
        { "passcode", [](Json const& event) { return "the passcode screen: " + text(event, "event"); } },
        { "lock", ofLock },
        { "openURL", [](Json const& event) { return "a URL is opened: " + text(event, "url"); } },
        { "completion",
            [](Json const& event) {
                return std::string("  and ") + (isTrue(event, "success") ? "was opened" : "nothing took it");
            } },
        { "canSend",
            [](Json const& event) {
                return "can " + text(event, "class") + " send? " + (isTrue(event, "answer") ? "yes" : "no");
            } },
        { "composer",
            [](Json const& event) {
                return event["value"].is_array() ? "  it is addressed to " + event["value"].dump()
                                                 : std::string();
            } },
        { "present", ofPresentation },
        { "dismiss", [](Json const& event) { return text(event, "class") + " goes away"; } },
        { "assertion",
            [](Json const& event) {
                return std::string(event["action"] == "add" ? "the screen is kept awake for "
                                                            : "the screen may sleep again for ")
                    + text(event, "reason");
            } },
        { "siri", [](Json const& event) { return "Siri hears " + quoted(event, "text"); } },
        { "spawn", ofSpawn },
        { "write", [](Json const& event) { return "a file is written: " + text(event, "path"); } },
        { "post", [](Json const& event) { return "a notification: " + text(event, "name"); } },
    };
    return all;
}

}

std::string inWords(Json const& event)
{
    auto const found = tellers().find(event["kind"].get<std::string>());
    return found == tellers().end() ? std::string() : found->second(event);
}

}
