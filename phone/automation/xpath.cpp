#include "phone/automation/xpath.hpp"

#include "phone/automation/source_nodes.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <csignal>
#include <functional>
#include <optional>
#include <unordered_map>

namespace phone {

namespace {

using Found = Answer<std::vector<std::size_t>>;

// Bounds of what is evaluated right here: some tenths of a second at worst.
constexpr std::size_t kQuickExpression = 1024;
constexpr std::size_t kQuickElements = 500;
constexpr int kQuickSteps = 6;   // in predicates

// `XCUIElementTypeAny` is no element's name; texts in quotes stay as they are.
std::string withAnyAsStar(std::string_view expression)
{
    constexpr std::string_view kAny = "XCUIElementTypeAny";
    std::string result;
    char quote = 0;
    for (std::size_t i = 0; i < expression.size();) {
        char const c = expression[i];
        if (quote ? c == quote : c == '\'' || c == '"')
            quote = quote ? 0 : c;
        bool const isWhole = i + kAny.size() >= expression.size()
            || !std::isalnum(static_cast<unsigned char>(expression[i + kAny.size()]));
        if (!quote && expression.substr(i).starts_with(kAny) && isWhole) {
            result += '*';
            i += kAny.size();
        } else {
            result += c;
            ++i;
        }
    }
    return result;
}

Found evaluated(
    pugi::xpath_query const& query, ElementTree const& tree, std::size_t start, std::string_view expression)
{
    pugi::xml_document document;
    auto const nodes =
        addSourceNodes(document, tree, { .hasRoot = false, .without = {}, .additional = { "hittable" } });
    std::unordered_map<void const*, std::size_t> numbers;
    for (std::size_t number = 0; number < nodes.size(); ++number)
        numbers[nodes[number].internal_object()] = number;
    pugi::xpath_node_set found =
        query.evaluate_node_set(start == 0 ? pugi::xml_node(document) : nodes[start]);
    found.sort();
    std::vector<std::size_t> result;
    for (pugi::xpath_node const& each : found) {
        if (each.attribute())
            return invalidSelector("this XPath gives attributes, not elements: " + std::string(expression));
        // The document itself, as `/` gives it, is no element.
        if (auto const at = numbers.find(each.node().internal_object()); at != numbers.end())
            result.push_back(at->second);
    }
    return result;
}

Json messageOf(Found const& found)
{
    if (found)
        return Json::object({ { "found", *found } });
    return Json::object({ { "error", errorName(found.error().code) }, { "message", found.error().message } });
}

Found answerIn(std::string const& text)
{
    Json const message = Json::parse(text, nullptr, false);
    if (!message.is_object())
        return CommandError { ErrorCode::unknownError, "the search ended before it found anything" };
    if (message.contains("found"))
        return message["found"].get<std::vector<std::size_t>>();
    return CommandError { errorCodeNamed(message.value("error", "")).value_or(ErrorCode::unknownError),
        message.value("message", "") };
}

// In the process that searches; it has this thread alone.
[[noreturn]] void searchAndEnd(int pipe, double seconds, std::function<Found()> const& search)
{
    // Ends by itself should nobody be left to end it; keeps nothing open that others wait for the end of.
    signal(SIGALRM, SIG_DFL);
    alarm(static_cast<unsigned>(std::ceil(seconds)) + 1);
    dup2(pipe, STDIN_FILENO);
    close_range(STDERR_FILENO + 1, UINT_MAX, 0);
    std::string const text = messageOf(search()).dump(-1, ' ', false, Json::error_handler_t::replace);
    for (std::size_t sent = 0; sent < text.size();) {
        ssize_t const count = write(STDIN_FILENO, text.data() + sent, text.size() - sent);
        if (count < 0 && errno != EINTR)
            break;
        sent += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    _exit(0);
}

// All that comes before the time is over; none when it is.
std::optional<std::string> readAll(int pipe, SearchLimit& limit)
{
    std::string text;
    while (!limit.isOver()) {
        pollfd entry { pipe, POLLIN, 0 };
        if (poll(&entry, 1, static_cast<int>(std::ceil(limit.secondsLeft() * 1000))) <= 0)
            continue;
        char bytes[4096];
        ssize_t const count = read(pipe, bytes, sizeof bytes);
        if (count == 0)
            return text;
        if (count > 0)
            text.append(bytes, static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return text;
    }
    return {};
}

// The library can't be told to stop: what may take for ever is searched by a process that can be ended.
Found searchedApart(SearchLimit& limit, std::function<Found()> const& search)
{
    CommandError const refused { ErrorCode::unknownError, "the system refuses another process" };
    int ends[2] { -1, -1 };
    if (pipe2(ends, O_CLOEXEC) != 0)
        return refused;
    pid_t const process = fork();
    if (process == 0)
        searchAndEnd(ends[1], limit.secondsLeft(), search);
    close(ends[1]);
    if (process < 0) {
        close(ends[0]);
        return refused;
    }
    auto const text = readAll(ends[0], limit);
    close(ends[0]);
    kill(process, SIGKILL);
    while (waitpid(process, nullptr, 0) < 0 && errno == EINTR) { }
    return text ? answerIn(*text) : SearchLimit::error();
}

}

bool isQuickXpath(std::string_view expression, std::size_t elements)
{
    if (expression.size() > kQuickExpression || elements > kQuickElements)
        return false;
    int depth = 0;
    int steps = 0;
    char quote = 0;
    for (std::size_t i = 0; i < expression.size(); ++i) {
        char const c = expression[i];
        if (quote) {
            quote = c == quote ? 0 : quote;
            continue;
        }
        bool const isDouble = i + 1 < expression.size() && expression[i + 1] == c;
        if (c == '\'' || c == '"')
            quote = c;
        else if (c == '[')
            ++depth;
        else if (c == ']')
            --depth;
        else if (depth > 0 && isDouble && (c == ':' || c == '.'))
            return false;
        else if (depth > 0 && c == '/' && (depth > 1 || ++steps > kQuickSteps))
            return false;
    }
    return true;
}

Found findByXpath(ElementTree const& tree, std::size_t start, std::string_view expression, SearchLimit& limit)
{
    if (expression.size() > kLongestQuery)
        return invalidSelector("an XPath has at most " + std::to_string(kLongestQuery) + " bytes");
    // The library's own texts end at a zero byte.
    if (expression.find('\0') != std::string_view::npos)
        return invalidSelector("an XPath has no zero byte");
    try {
        pugi::xpath_query const query(withAnyAsStar(expression).c_str());
        if (query.return_type() != pugi::xpath_type_node_set)
            return invalidSelector("this XPath gives a value, not elements: " + std::string(expression));
        auto const search = [&]() -> Found {
            try {
                return evaluated(query, tree, start, expression);
            } catch (std::bad_alloc const&) {
                return invalidSelector("this XPath is too large");
            }
        };
        return isQuickXpath(expression, tree.size()) ? search() : searchedApart(limit, search);
    } catch (pugi::xpath_exception const& failure) {
        return invalidSelector(
            "XPath, position " + std::to_string(failure.result().offset + 1) + ": " + failure.what());
    } catch (std::bad_alloc const&) {
        return invalidSelector("this XPath is too large");
    }
}

}
