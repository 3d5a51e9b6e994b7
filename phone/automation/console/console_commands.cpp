#include "phone/automation/console/console_commands.hpp"

#include "phone/automation/scripts/class_description.hpp"
#include "phone/automation/scripts/message_call.hpp"
#include "phone/automation/scripts/script_targets.hpp"
#include "phone/phone.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace phone {

namespace {

using Words = std::vector<std::string>;

// Where a word that begins at `start` ends: quotes and brackets hold together what is in them.
std::size_t endOfWord(std::string_view line, std::size_t start)
{
    int depth = 0;
    bool isQuoted = false;
    std::size_t at = start;
    for (; at < line.size(); ++at) {
        char const letter = line[at];
        if (isQuoted) {
            if (letter == '\\')
                ++at;
            else if (letter == '"')
                isQuoted = false;
            continue;
        }
        if (letter == '"')
            isQuoted = true;
        else if (letter == '{' || letter == '[')
            ++depth;
        else if (letter == '}' || letter == ']')
            --depth;
        else if (depth <= 0 && (letter == ' ' || letter == '\t'))
            break;
    }
    return std::min(at, line.size());
}

Words wordsOf(std::string_view line)
{
    Words words;
    for (std::size_t at = line.find_first_not_of(" \t"); at != line.npos;) {
        std::size_t const end = endOfWord(line, at);
        words.emplace_back(line.substr(at, end - at));
        at = line.find_first_not_of(" \t", end);
    }
    return words;
}

// JSON where it is some; a plain word is a text.
Answer<Json> valueOf(std::string const& word)
{
    Json value = Json::parse(word, nullptr, false);
    if (!value.is_discarded())
        return value;
    if (word.find_first_of("{}[]\"") != word.npos)
        return invalidArgument("`" + word + "` is no JSON");
    return Json(word);
}

std::optional<double> numberOf(std::string_view text)
{
    double value = 0;
    auto const [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc() || end != text.data() + text.size())
        return {};
    return value;
}

using Form = ConsoleCommand::Form;

Answer<ConsoleCommand> parseSend(Words const& words)
{
    auto target = valueOf(words[1]);
    if (!target)
        return target.error();
    Json arguments = Json::array();
    for (std::size_t i = 3; i < words.size(); ++i) {
        auto value = valueOf(words[i]);
        if (!value)
            return value.error();
        arguments.push_back(std::move(*value));
    }
    return ConsoleCommand { "send",
        Json::object({ { "target", std::move(*target) }, { "selector", words[2] },
            { "arguments", std::move(arguments) } }) };
}

Answer<ConsoleCommand> parseValue(Words const& words)
{
    auto target = valueOf(words[1]);
    if (!target)
        return target.error();
    return ConsoleCommand { "value",
        Json::object({ { "target", std::move(*target) }, { "key", words[2] } }) };
}

Answer<ConsoleCommand> parseClass(Words const& words)
{
    return ConsoleCommand { "class", Json::object({ { "name", words[1] } }) };
}

Answer<ConsoleCommand> parseViews(Words const& words)
{
    ConsoleCommand command { "views", Json::object(), Form::outline };
    for (std::size_t i = 1; i < words.size(); ++i) {
        if (words[i] == "detail" || words[i] == "presentation") {
            command.arguments[words[i]] = true;
        } else if (command.arguments.contains("target")) {
            return invalidArgument("what is `" + words[i] + "`? views [TARGET] [detail] [presentation]");
        } else {
            auto target = valueOf(words[i]);
            if (!target)
                return target.error();
            command.arguments["target"] = std::move(*target);
        }
    }
    if (command.arguments.contains("detail"))
        command.form = Form::json;
    return command;
}

Answer<ConsoleCommand> parseTrace(Words const& words)
{
    ConsoleCommand command { "trace", Json::object(), Form::lines };
    if (words.size() > 1) {
        auto const since = numberOf(words[1]);
        if (!since)
            return invalidArgument("trace begins at an event's number, not at `" + words[1] + "`");
        command.arguments["since"] = *since;
    }
    return command;
}

Answer<ConsoleCommand> parseAdvance(Words const& words)
{
    auto const seconds = numberOf(words[1]);
    if (!seconds)
        return invalidArgument("advance takes seconds, not `" + words[1] + "`");
    return ConsoleCommand { "advance", Json::object({ { "seconds", *seconds } }) };
}

Answer<ConsoleCommand> parseHelp(Words const&)
{
    ConsoleCommand command;
    command.asksForHelp = true;
    return command;
}

Answer<ConsoleCommand> parseQuit(Words const&)
{
    ConsoleCommand command;
    command.quits = true;
    return command;
}

constexpr std::size_t kAny = 1000;   // words

struct Row {
    std::string_view name;
    std::size_t least, most;   // words after the name
    char const* form;
    char const* help;
    Answer<ConsoleCommand> (*parse)(Words const&);
};
constexpr std::array kRows {
    Row { "send", 2, kAny, "send TARGET SELECTOR [VALUE]...",
        "a message, with its arguments as JSON or words", parseSend },
    Row { "value", 2, 2, "value TARGET KEY", "by key-value coding; a path with dots goes on", parseValue },
    Row { "class", 1, 1, "class NAME", "superclass, protocols, methods, instance variables", parseClass },
    Row { "views", 0, 3, "views [TARGET] [detail] [presentation]",
        "the windows, or one view, with what is in them", parseViews },
    Row { "trace", 0, 1, "trace [SINCE]", "what happened, from an event's number on", parseTrace },
    Row { "advance", 1, 1, "advance SECONDS", "moves the phone's clock", parseAdvance },
    Row { "help", 0, 0, "help", "this text", parseHelp },
    Row { "quit", 0, 0, "quit", "ends the phone; so does the end of the input", parseQuit },
};

constexpr std::array<std::string_view, 5> kNamedTargets { "strip", "overlay", "host", "manager", "passcode" };

std::string listed(std::vector<std::string> const& names)
{
    std::string text;
    for (std::string const& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

void addOutline(std::string& text, Json const& tree, int depth)
{
    auto const rect = [](Json const& frame) {
        std::string numbers;
        for (Json const& number : frame["rect"]) {
            char digits[32];
            auto const end = std::to_chars(digits, digits + sizeof digits, number.get<double>()).ptr;
            numbers += (numbers.empty() ? "" : " ") + std::string(digits, end);
        }
        return numbers;
    };
    text += std::string(static_cast<std::size_t>(2 * depth), ' ') + tree["class"].get<std::string>() + " ("
        + rect(tree["frame"]) + ")";
    if (tree["hidden"] == true)
        text += " hidden";
    if (tree["alpha"] != 1.0)
        text += " alpha " + tree["alpha"].dump();
    if (!tree["text"].is_null())
        text += " " + tree["text"].dump(-1, ' ', false, Json::error_handler_t::replace);
    text += "  " + tree["handle"].get<std::string>() + "\n";
    for (Json const& child : tree["children"])
        addOutline(text, child, depth + 1);
}

std::vector<std::string> selectorsOfTarget(std::string const& word)
{
    auto const target = valueOf(word);
    if (!target)
        return {};
    BootOptions const none;
    ConsoleContext context(none);
    auto const object = targetOf(*target, context);
    return object ? selectorsOf(*object) : std::vector<std::string> {};
}

}

Answer<ConsoleCommand> parseConsoleLine(std::string_view line)
{
    Words const words = wordsOf(line);
    if (words.empty())
        return ConsoleCommand {};
    auto const row = std::ranges::find(kRows, words[0], &Row::name);
    if (row == kRows.end()) {
        std::vector<std::string> names;
        for (Row const& each : kRows)
            names.emplace_back(each.name);
        auto const near = nearestNames(words[0], names);
        return CommandError { ErrorCode::unknownCommand,
            "`" + words[0] + "`; "
                + (near.empty() ? "help tells those there are" : "near: " + listed(near)) };
    }
    std::size_t const count = words.size() - 1;
    if (count < row->least || count > row->most)
        return invalidArgument(row->form);
    return row->parse(words);
}

std::string consoleHelp()
{
    constexpr std::size_t kColumn = 42;
    std::string text;
    for (Row const& row : kRows) {
        std::string form = row.form;
        form.resize(std::max(form.size() + 1, kColumn), ' ');
        text += form + row.help + "\n";
    }
    text +=
        "\nTARGET is strip, overlay, host (the adjunct-list controller), manager (of the lock screen), passcode\n"
        "(its controller), a class, or the handle of an object that was printed before.\n";
    return text;
}

std::string printedValue(Json const& value, ConsoleCommand::Form form)
{
    if (form == Form::outline) {
        std::string text;
        if (value.is_object())
            addOutline(text, value, 0);
        else
            for (Json const& tree : value)
                addOutline(text, tree, 0);
        return text;
    }
    if (form == Form::lines) {
        std::string text;
        for (Json const& each : value)
            text += each.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
        return text;
    }
    // Short ones on a line, others over several.
    constexpr std::size_t kLine = 100;
    std::string text = value.dump(-1, ' ', false, Json::error_handler_t::replace);
    if (text.size() > kLine && value.is_structured())
        text = value.dump(2, ' ', false, Json::error_handler_t::replace);
    return text + "\n";
}

std::vector<std::string> consoleCompletions(std::string_view line)
{
    Words words = wordsOf(line);
    bool const isNewWord = line.empty() || line.back() == ' ' || line.back() == '\t';
    std::string const typed = isNewWord || words.empty() ? "" : words.back();
    std::size_t const index = words.size() - (isNewWord ? 0 : 1);

    std::vector<std::string> names;
    auto const addTargets = [&] {
        for (std::string_view const name : kNamedTargets)
            names.emplace_back(name);
        std::ranges::copy(classNames(), std::back_inserter(names));
    };
    if (words.empty() || index == 0) {
        for (Row const& row : kRows)
            names.emplace_back(row.name);
    } else if (words[0] == "class" && index == 1) {
        names = classNames();
    } else if ((words[0] == "send" || words[0] == "value") && index == 1) {
        addTargets();
    } else if (words[0] == "send" && index == 2) {
        names = selectorsOfTarget(words[1]);
    } else if (words[0] == "value" && index == 2) {
        names = selectorsOfTarget(words[1]);
        std::erase_if(names, [](std::string const& name) { return name.find(':') != name.npos; });
    } else if (words[0] == "views") {
        names = { "detail", "presentation" };
        if (index == 1)
            addTargets();
    }
    std::erase_if(names, [&](std::string const& name) { return !name.starts_with(typed); });
    std::ranges::sort(names);
    return names;
}

Answer<objc::handle> ConsoleContext::objectOfElement(std::string const& id)
{
    return CommandError { ErrorCode::noSuchElement, id };
}

void ConsoleContext::passTime(double seconds) { static_cast<void>(phone().advance(seconds)); }

}
