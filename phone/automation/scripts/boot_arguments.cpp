// The arguments of `phone: boot`.
#include "phone/automation/scripts/script_arguments.hpp"
#include "phone/automation/scripts/scripts.hpp"
#include "phone/kernel/date.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/starter_set.hpp"

#include <map>

namespace phone {

namespace {

template <class T>
std::optional<T> chosen(
    ScriptArguments& in, char const* name, std::vector<std::pair<std::string_view, T>> const& choices)
{
    std::vector<std::string_view> words;
    for (auto const& [word, value] : choices)
        words.push_back(word);
    auto const word = in.optionalOneOf(name, words);
    if (word)
        for (auto const& [each, value] : choices)
            if (each == *word)
                return value;
    return std::nullopt;
}

void readVersion(ScriptArguments& in, BootOptions& options)
{
    if (auto const text = in.optionalText("ios")) {
        auto const version = SystemVersion::parse(*text);
        if (version)
            options.ios = *version;
        else
            in.refuse("`ios` is " + version.message());
    }
    if (auto const number = in.optionalNumber("coreFoundation"))
        options.coreFoundation = *number;
    if (auto const answer = chosen<CoverSheetAnswer>(in, "coverSheet",
            { { "dashBoard", CoverSheetAnswer::dashBoard }, { "coverSheet", CoverSheetAnswer::coverSheet },
                { "both", CoverSheetAnswer::both }, { "neither", CoverSheetAnswer::neither } }))
        options.coverSheet = *answer;
}

void readScreen(ScriptArguments& in, BootOptions& options)
{
    options.width = in.optionalNumber("width").value_or(options.width);
    options.height = in.optionalNumber("height").value_or(options.height);
    options.scale = in.optionalNumber("scale").value_or(options.scale);
    options.language = in.optionalText("language").value_or(options.language);
    if (auto const direction = chosen<LayoutDirection>(in, "direction",
            { { "ltr", LayoutDirection::leftToRight }, { "rtl", LayoutDirection::rightToLeft } }))
        options.direction = *direction;
    if (auto const appearance = chosen<Appearance>(
            in, "appearance", { { "light", Appearance::light }, { "dark", Appearance::dark } }))
        options.appearance = *appearance;
}

void readTime(ScriptArguments& in, BootOptions& options)
{
    if (auto const zone = in.optionalText("timezone")) {
        // As the C library looks zones up; no path that leads elsewhere.
        std::error_code failure;
        bool const isName = !zone->empty() && zone->front() != '/' && zone->find("..") == zone->npos
            && zone->find('\0') == zone->npos;
        if (*zone != "UTC"
            && !(isName && std::filesystem::is_regular_file("/usr/share/zoneinfo/" + *zone, failure)))
            in.refuse("`timezone` is the name of no time zone: " + *zone);
        options.timezone = *zone;
    }
    if (auto const date = in.optionalText("date")) {
        if (!parseIsoDate(*date))
            in.refuse("`date` is no ISO 8601 date: " + *date);
        options.date = *date;
    }
    if (auto const mode = chosen<ClockMode>(
            in, "clock", { { "manual", ClockMode::manual }, { "running", ClockMode::running } }))
        options.clock = *mode;
}

// What a property list can't hold is told before anything boots.
void checkList(ScriptArguments& in, Json const& value, char const* name)
{
    if (auto const list = propertyListOf(value, name); !list)
        in.refuse(list.message());
}

void readFiles(ScriptArguments& in, BootOptions& options)
{
    if (Json const* const given = in.optionalAny("contacts"); given && given->is_null())
        options.contacts.reset();
    else if (Json const* const contacts = in.optionalArray("contacts")) {
        checkList(in, *contacts, "contacts");
        options.contacts = *contacts;
    }
    if (Json const* const given = in.optionalAny("settings"); given && given->is_null())
        options.settings.reset();
    else if (Json const* const settings = in.optionalObject("settings")) {
        checkList(in, *settings, "settings");
        options.settings = *settings;
    }
}

void readPlugins(ScriptArguments& in, BootOptions& options)
{
    auto const paths = in.optionalTexts("plugins");
    if (!paths)
        return;
    options.plugins.clear();
    for (std::string const& path : *paths) {
        std::error_code failure;
        if (!std::filesystem::is_regular_file(path, failure))
            in.refuse("`plugins`: there is no library " + path);
        options.plugins.emplace_back(path);
    }
}

void readLock(ScriptArguments& in, BootOptions& options)
{
    if (Json const* const given = in.optionalAny("passcode"); given && given->is_null())
        options.passcode.reset();
    else if (auto const code = in.optionalText("passcode"))
        options.passcode = *code;
    options.locked = in.optionalBoolean("locked").value_or(options.locked);
}

}

Answer<BootOptions> bootOptionsOf(Json const& arguments, BootOptions const& usual)
{
    ScriptArguments in("boot", arguments);
    BootOptions options = usual;
    readVersion(in, options);
    readScreen(in, options);
    readLock(in, options);
    readTime(in, options);
    readFiles(in, options);
    options.absent = in.optionalTexts("absent").value_or(options.absent);
    options.present = in.optionalTexts("present").value_or(options.present);
    readPlugins(in, options);
    if (!in.isGood())
        return in.error();
    if (auto const checked = Phone::check(options); !checked)
        return invalidArgument("`phone: boot`: " + checked.message());
    return options;
}

}
