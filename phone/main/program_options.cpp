#include "phone/main/program_options.hpp"

#include <getopt.h>

#include <algorithm>
#include <charconv>

namespace phone {

namespace {

using Value = std::string const&;
using Take = Status (*)(ProgramOptions&, Value);

// The whole text as a number; none for anything else.
std::optional<double> numberOf(std::string_view text)
{
    double value = 0;
    auto const [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc() || end != text.data() + text.size())
        return {};
    return value;
}

Status takeSystem(ProgramOptions& options, Value text)
{
    auto const version = SystemVersion::parse(text);
    if (!version)
        return version.error();
    options.boot.ios = *version;
    return {};
}

Status takeSize(ProgramOptions& options, Value text)
{
    auto const cross = text.find('x');
    // A number that is missing becomes a side of zero, which no screen has.
    double const width = numberOf(text.substr(0, cross)).value_or(0);
    double const height = cross == std::string::npos ? 0 : numberOf(text.substr(cross + 1)).value_or(0);
    if (!(width > 0 && height > 0))
        return Error { "a size is WIDTHxHEIGHT in points, as 390x844" };
    if (width > height)
        return Error { "a phone is held upright: width first; --landscape turns it" };
    options.boot.width = width;
    options.boot.height = height;
    return {};
}

Status takeScale(ProgramOptions& options, Value text)
{
    auto const scale = numberOf(text);
    if (!scale)
        return Error { "a scale is a number of pixels per point: 1, 2 or 3" };
    options.boot.scale = *scale;
    return {};
}

Status takeLanguage(ProgramOptions& options, Value text)
{
    bool const isTag =
        !text.empty() && text.size() <= 35 && std::all_of(text.begin(), text.end(), [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
        });
    if (!isTag)
        return Error { "a language is a code as en, he or zh-Hant" };
    options.boot.language = text;
    return {};
}

Status takePasscode(ProgramOptions& options, Value text)
{
    bool const isCode =
        !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!isCode)
        return Error { "a passcode is made of digits" };
    options.boot.passcode = text;
    return {};
}

Status takeOrientation(ProgramOptions& options, Value text)
{
    if (text.size() != 1 || text < "1" || text > "4")
        return Error { "an orientation is 1 (upright), 2 (upside down), 3 or 4 (on a side)" };
    options.orientation = text[0] - '0';
    return {};
}

Status takePort(ProgramOptions& options, Value text)
{
    double const port = numberOf(text).value_or(-1);
    if (!(port >= 0 && port <= 65535 && port == static_cast<int>(port)))
        return Error { "a port is a number from 1 to 65535, or 0 for a free one" };
    options.webDriverPort = static_cast<int>(port);
    return {};
}

Status takeClock(ProgramOptions& options, Value text)
{
    if (text != "manual" && text != "running")
        return Error { "a clock is manual (moved by scripts) or running" };
    options.clock = text == "manual" ? ClockMode::manual : ClockMode::running;
    return {};
}

struct Row {
    char const* name;
    char const* valueName;   // null: takes none
    char const* help;        // null: not for people
    Take take;
};

constexpr Row kRows[] {
    { "ios", "VERSION", "system version, as 12.4, 15.4 or 16.1 (16.1)", takeSystem },
    { "size", "WxH", "screen in points, as 375x812, 390x844, 430x932 (390x844)", takeSize },
    { "scale", "N", "pixels per point (3; the window takes the display's)", takeScale },
    { "language", "CODE", "en, tr, he, de, ja, zh-Hans, … (en)", takeLanguage },
    { "rtl", nullptr, "right to left, whatever the language",
        [](ProgramOptions& options, Value) {
            options.boot.direction = LayoutDirection::rightToLeft;
            return Status();
        } },
    { "dark", nullptr, "dark appearance (the usual one)",
        [](ProgramOptions& options, Value) {
            options.boot.appearance = Appearance::dark;
            return Status();
        } },
    { "light", nullptr, "light appearance",
        [](ProgramOptions& options, Value) {
            options.boot.appearance = Appearance::light;
            return Status();
        } },
    { "orientation", "N", "1 upright, 2 upside down, 3 or 4 on a side (1)", takeOrientation },
    { "landscape", nullptr, "the same as --orientation 3",
        [](ProgramOptions& options, Value) {
            options.orientation = 3;
            return Status();
        } },
    { "unlocked", nullptr, "begin on the home screen",
        [](ProgramOptions& options, Value) {
            options.boot.locked = false;
            return Status();
        } },
    { "passcode", "DIGITS", "the phone's passcode (1234)", takePasscode },
    { "no-passcode", nullptr, "no passcode",
        [](ProgramOptions& options, Value) {
            options.boot.passcode.reset();
            return Status();
        } },
    { "music", nullptr, "music plays",
        [](ProgramOptions& options, Value) {
            options.playsMusic = true;
            return Status();
        } },
    { "date", "ISO", "date and time at the start, as 2026-06-18T09:41",
        [](ProgramOptions& options, Value text) {
            options.boot.date = text;
            return Status();
        } },
    { "timezone", "NAME", "as Europe/Istanbul (UTC)",
        [](ProgramOptions& options, Value text) {
            options.boot.timezone = text;
            return Status();
        } },
    { "root", "DIR", "the phone's disk; never emptied. Else in your data folder",
        [](ProgramOptions& options, Value text) {
            options.root = text;
            return Status();
        } },
    { "contacts", "FILE.vcf", "contacts of a vCard file in place of the starter set",
        [](ProgramOptions& options, Value text) {
            options.contacts = text;
            return Status();
        } },
    { "plugin", "PATH", "load this library too (may be given again)",
        [](ProgramOptions& options, Value text) {
            options.boot.plugins.emplace_back(text);
            return Status();
        } },
    { "no-activator", nullptr, "Activator is not installed",
        [](ProgramOptions& options, Value) {
            options.boot.absent.emplace_back("activator");
            return Status();
        } },
    { "trace", nullptr, "print what happens, as JSON lines",
        [](ProgramOptions& options, Value) {
            options.printsTrace = true;
            return Status();
        } },
    { "shot", "FILE", "write a PNG picture of the screen and end; needs no display",
        [](ProgramOptions& options, Value text) {
            options.shot = text;
            return Status();
        } },
    { "frame", nullptr, "with --shot: the device around the screen",
        [](ProgramOptions& options, Value) {
            options.drawsFrame = true;
            return Status();
        } },
    { "console", nullptr, "a prompt into the running phone; `help` there tells more",
        [](ProgramOptions& options, Value) {
            options.opensConsole = true;
            return Status();
        } },
    { "headless", nullptr, "no window",
        [](ProgramOptions& options, Value) {
            options.isHeadless = true;
            return Status();
        } },
    { "webdriver", "PORT", "serve WebDriver on this port; 0 picks a free one", takePort },
    { "clock", "MODE", "with --webdriver: running or manual (running)", takeClock },
    { "host", "ADDRESS", "with --webdriver: serve others too, at this address",
        [](ProgramOptions& options, Value text) {
            options.host = text;
            return Status();
        } },
    { "allow-origin", "ORIGIN", "with --webdriver: a web page that may ask (may be given again)",
        [](ProgramOptions& options, Value text) {
            options.allowedOrigins.push_back(text);
            return Status();
        } },
    { "inspector", "DIR", "with --webdriver: a folder to serve under /inspector",
        [](ProgramOptions& options, Value text) {
            options.inspector = text;
            return Status();
        } },
    { "help", nullptr, "this text",
        [](ProgramOptions& options, Value) {
            options.asksForHelp = true;
            return Status();
        } },
    { "resume", "FILE", nullptr,
        [](ProgramOptions& options, Value text) {
            options.resume = text;
            return Status();
        } },
};

constexpr std::size_t kHelpColumn = 22;

}

Result<ProgramOptions> parseProgramOptions(std::vector<std::string> const& arguments)
{
    std::vector<option> table;
    for (Row const& row : kRows)
        table.push_back({ row.name, row.valueName ? required_argument : no_argument, nullptr, 0 });
    table.push_back({});

    std::string const program = "corvel-phone";
    std::vector<char*> words { const_cast<char*>(program.c_str()) };
    for (std::string const& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    int const count = static_cast<int>(words.size()) - 1;

    ProgramOptions options;
    options.boot.passcode = kUsualPasscode;
    options.boot.appearance = Appearance::dark;
    optind = 0;   // GNU: starts anew, whatever was parsed before
    opterr = 0;
    int index = -1;
    while (true) {
        int const at = std::max(optind, 1);
        int const found = getopt_long(count, words.data(), "+:h", table.data(), &index);
        if (found == -1)
            break;
        std::string const word = at < count ? words[static_cast<std::size_t>(at)] : "";
        if (found == 'h') {
            options.asksForHelp = true;
            continue;
        }
        if (found == ':')
            return Error { word + " needs a value; --help tells which" };
        if (found != 0)
            return Error { "unknown option " + word + "; --help tells those there are" };
        Row const& row = kRows[index];
        std::string const value = optarg ? optarg : "";
        if (row.valueName && value.empty())
            return Error { std::string("--") + row.name + " needs a value; --help tells which" };
        if (auto const taken = row.take(options, value); !taken)
            return Error { std::string("--") + row.name + " " + value + ": " + taken.message() };
    }
    if (optind < count)
        return Error { std::string("what is \"") + words[static_cast<std::size_t>(optind)]
            + "\"? --help tells the options" };
    if (options.drawsFrame && !options.shot)
        return Error { "--frame goes with --shot FILE" };
    bool const concernsWebDriver =
        options.clock || !options.host.empty() || !options.allowedOrigins.empty() || options.inspector;
    if (concernsWebDriver && !options.webDriverPort)
        return Error { "--clock, --host, --allow-origin and --inspector go with --webdriver PORT" };
    if (options.webDriverPort && (options.shot || options.opensConsole))
        return Error { "--webdriver runs until it is ended; leave --shot and --console out" };
    if (options.shot && options.opensConsole)
        return Error { "--shot ends the phone at once; leave --console out" };
    return options;
}

std::string programHelp()
{
    std::string text = "usage: corvel-phone [OPTION]...\n\n"
                       "Runs a phone with Corvel on its lock screen, in a window. The usual values stand in "
                       "brackets.\n\n";
    for (Row const& row : kRows) {
        if (!row.help)
            continue;
        std::string line = std::string("  --") + row.name;
        if (row.valueName)
            line += std::string(" ") + row.valueName;
        line.resize(std::max(line.size() + 1, kHelpColumn), ' ');
        text += line + row.help + "\n";
    }
    return text;
}

}
