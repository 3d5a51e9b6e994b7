#include "phone/automation/scripts/script_arguments.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

Json const kNone;

std::string ticked(std::string_view text) { return "`" + std::string(text) + "`"; }

std::string shortened(Json const& value)
{
    std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    constexpr std::size_t kLongest = 80;
    if (text.size() <= kLongest)
        return text;
    std::size_t end = kLongest;
    while (
        end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0) == 0x80)   // not in the middle of a letter
        --end;
    return text.substr(0, end) + "…";
}

std::string listed(std::vector<std::string_view> const& words)
{
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i)
        text += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + ticked(words[i]);
    return text;
}

}

ScriptArguments::ScriptArguments(std::string_view script, Json const& arguments, std::string_view prefix)
    : m_script(std::string(prefix) + std::string(script))
    , m_arguments(arguments.is_null() ? kNone : arguments)
{
    if (!arguments.is_object() && !arguments.is_null())
        refuse("its arguments are an object, not " + shortened(arguments));
}

void ScriptArguments::refuse(std::string const& message)
{
    if (!m_error)
        m_error = invalidArgument(ticked(m_script) + ": " + message);
}

void ScriptArguments::refuseKind(char const* name, std::string_view kind, Json const& value)
{
    refuse(ticked(name) + " is " + std::string(kind) + ", not " + shortened(value));
}

Json const* ScriptArguments::find(char const* name, bool isNeeded)
{
    m_asked.emplace_back(name);
    if (m_error)
        return nullptr;
    auto const found = m_arguments.find(name);
    if (found != m_arguments.end())
        return &*found;
    if (isNeeded)
        refuse(ticked(name) + " is missing");
    return nullptr;
}

std::string ScriptArguments::text(char const* name)
{
    Json const* const value = find(name, true);
    if (value && !value->is_string())
        refuseKind(name, "a text", *value);
    return value && value->is_string() ? value->get<std::string>() : std::string();
}

double ScriptArguments::number(char const* name)
{
    Json const* const value = find(name, true);
    if (value && !value->is_number())
        refuseKind(name, "a number", *value);
    return value && value->is_number() ? value->get<double>() : 0;
}

bool ScriptArguments::boolean(char const* name)
{
    Json const* const value = find(name, true);
    if (value && !value->is_boolean())
        refuseKind(name, "true or false", *value);
    return value && value->is_boolean() && value->get<bool>();
}

long long ScriptArguments::integer(char const* name, long long least, long long most)
{
    Json const* const value = find(name, true);
    if (!value)
        return 0;
    // JavaScript has no other numbers than these: 3.0 is 3.
    double const number = value->is_number() ? value->get<double>() : std::nan("");
    if (!(std::trunc(number) == number && number >= static_cast<double>(least)
            && number <= static_cast<double>(most))) {
        refuseKind(
            name, "a whole number from " + std::to_string(least) + " to " + std::to_string(most), *value);
        return 0;
    }
    return static_cast<long long>(number);
}

std::string ScriptArguments::oneOf(char const* name, std::vector<std::string_view> const& words)
{
    Json const* const value = find(name, true);
    if (!value)
        return {};
    if (value->is_string() && std::ranges::find(words, value->get_ref<std::string const&>()) != words.end())
        return value->get<std::string>();
    refuseKind(name, listed(words), *value);
    return {};
}

Json const& ScriptArguments::any(char const* name)
{
    Json const* const value = find(name, true);
    return value ? *value : kNone;
}

namespace {

bool isGiven(Json const& arguments, char const* name)
{
    auto const found = arguments.is_object() ? arguments.find(name) : arguments.end();
    return found != arguments.end() && !found->is_null();
}

}

std::optional<std::string> ScriptArguments::optionalText(char const* name)
{
    m_asked.emplace_back(name);
    return isGiven(m_arguments, name) ? std::optional(text(name)) : std::nullopt;
}
std::optional<double> ScriptArguments::optionalNumber(char const* name)
{
    m_asked.emplace_back(name);
    return isGiven(m_arguments, name) ? std::optional(number(name)) : std::nullopt;
}
std::optional<bool> ScriptArguments::optionalBoolean(char const* name)
{
    m_asked.emplace_back(name);
    return isGiven(m_arguments, name) ? std::optional(boolean(name)) : std::nullopt;
}
std::optional<long long> ScriptArguments::optionalInteger(char const* name, long long least, long long most)
{
    m_asked.emplace_back(name);
    return isGiven(m_arguments, name) ? std::optional(integer(name, least, most)) : std::nullopt;
}
std::optional<std::string> ScriptArguments::optionalOneOf(
    char const* name, std::vector<std::string_view> const& words)
{
    m_asked.emplace_back(name);
    return isGiven(m_arguments, name) ? std::optional(oneOf(name, words)) : std::nullopt;
}

std::optional<std::vector<std::string>> ScriptArguments::optionalTexts(char const* name)
{
    Json const* const array = optionalArray(name);
    if (!array)
        return std::nullopt;
    std::vector<std::string> texts;
    for (Json const& each : *array) {
        if (!each.is_string()) {
            refuseKind(name, "an array of texts", *array);
            return std::nullopt;
        }
        texts.push_back(each.get<std::string>());
    }
    return texts;
}

Json const* ScriptArguments::optionalObject(char const* name)
{
    Json const* const value = find(name, false);
    if (!value || value->is_null())
        return nullptr;
    if (value->is_object())
        return value;
    refuseKind(name, "an object", *value);
    return nullptr;
}

Json const* ScriptArguments::optionalArray(char const* name)
{
    Json const* const value = find(name, false);
    if (!value || value->is_null())
        return nullptr;
    if (value->is_array())
        return value;
    refuseKind(name, "an array", *value);
    return nullptr;
}

Json const* ScriptArguments::optionalAny(char const* name) { return find(name, false); }

bool ScriptArguments::isGood()
{
    if (m_error || !m_arguments.is_object())
        return !m_error;
    for (auto const& [name, value] : m_arguments.items()) {
        if (std::ranges::find(m_asked, name) != m_asked.end())
            continue;
        std::vector<std::string> known = m_asked;
        std::ranges::sort(known);
        known.erase(std::unique(known.begin(), known.end()), known.end());
        std::string text;
        for (std::string const& each : known)
            text += (text.empty() ? "" : ", ") + each;
        refuse("there is no argument " + ticked(name) + "; it takes " + (text.empty() ? "none" : text));
        break;
    }
    return !m_error;
}

}
