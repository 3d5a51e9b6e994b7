// ScriptArguments: what a client gave to one of the phone's scripts, read by name and kind. The first thing that is
// wrong is kept; the script asks isGood() before it does anything. Main thread.
#pragma once

#include "phone/automation/error.hpp"
#include "phone/kernel/trace.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace phone {

class ScriptArguments {
public:
    // Both have to outlive it. Anything but an object is the first thing that is wrong.
    ScriptArguments(std::string_view script, Json const& arguments, std::string_view prefix = "phone: ");

    // Missing ones are an error, and null is of the wrong kind. What is answered after an error means nothing.
    std::string text(char const* name);
    double number(char const* name);
    bool boolean(char const* name);
    long long integer(char const* name, long long least, long long most);
    std::string oneOf(char const* name, std::vector<std::string_view> const& words);
    Json const& any(char const* name);   // null too

    // None when missing or null.
    std::optional<std::string> optionalText(char const* name);
    std::optional<double> optionalNumber(char const* name);
    std::optional<bool> optionalBoolean(char const* name);
    std::optional<long long> optionalInteger(char const* name, long long least, long long most);
    std::optional<std::string> optionalOneOf(char const* name, std::vector<std::string_view> const& words);
    std::optional<std::vector<std::string>> optionalTexts(char const* name);
    Json const* optionalObject(char const* name);   // nullptr: none
    Json const* optionalArray(char const* name);
    Json const* optionalAny(char const* name);   // nullptr only when missing

    // Something that no kind tells: a number out of range, a name of nothing.
    void refuse(std::string const& message);

    // Every argument that there is has been asked for, and was right. Ask after the last one.
    bool isGood();
    CommandError error() const { return *m_error; }

private:
    Json const* find(char const* name, bool isNeeded);
    void refuseKind(char const* name, std::string_view kind, Json const& value);

    std::string m_script;
    Json const& m_arguments;
    std::vector<std::string> m_asked;
    std::optional<CommandError> m_error;
};

}
