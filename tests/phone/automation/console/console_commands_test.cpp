// The console's lines: what they mean, how values are printed, what a word may become.
#include "phone/automation/console/console_commands.hpp"

#include "tests/support/phone_fixture.hpp"

#include <algorithm>

namespace phone {

namespace {

ConsoleCommand parsed(std::string_view line)
{
    auto const command = parseConsoleLine(line);
    if (command)
        return *command;
    ADD_FAILURE() << line << ": " << command.error().message;
    return {};
}

std::string refused(std::string_view line)
{
    auto const command = parseConsoleLine(line);
    EXPECT_FALSE(command) << line;
    return command ? "" : std::string(errorName(command.error().code)) + ": " + command.error().message;
}

bool contains(std::vector<std::string> const& names, char const* name)
{
    return std::ranges::find(names, name) != names.end();
}

}

class ConsoleCommands : public CorvelTest { };

TEST_F(ConsoleCommands, BecomeScripts)
{
    ConsoleCommand const send = parsed(R"( send strip setFrame: {"rect": [1, 2, 3, 4]} "a b" word 7 null )");
    EXPECT_EQ(send.script, "send");
    EXPECT_EQ(send.arguments,
        Json::parse(
            R"({"target":"strip","selector":"setFrame:","arguments":[{"rect":[1,2,3,4]},"a b","word",7,null]})"));
    EXPECT_EQ(parsed(R"(send {"handle":"object-1-2"} self)").arguments["target"],
        Json::parse(R"({"handle":"object-1-2"})"));
    EXPECT_EQ(
        parsed("value host view.frame").arguments, Json::parse(R"({"target":"host","key":"view.frame"})"));
    EXPECT_EQ(parsed("class CVLView").arguments, Json::parse(R"({"name":"CVLView"})"));
    EXPECT_EQ(parsed("views").arguments, Json::object());
    EXPECT_EQ(parsed("views strip detail").arguments, Json::parse(R"({"target":"strip","detail":true})"));
    EXPECT_EQ(parsed("views presentation").arguments, Json::parse(R"({"presentation":true})"));
    EXPECT_EQ(parsed("trace").arguments, Json::object());
    EXPECT_EQ(parsed("trace 12").arguments["since"], 12);
    EXPECT_EQ(parsed("advance 0.5").arguments["seconds"], 0.5);
    EXPECT_TRUE(parsed("quit").quits);
    EXPECT_TRUE(parsed("help").asksForHelp);
    EXPECT_TRUE(parsed("   ").script.empty());
}

TEST_F(ConsoleCommands, SayWhatWasExpected)
{
    EXPECT_EQ(refused("send strip"), "invalid argument: send TARGET SELECTOR [VALUE]...");
    EXPECT_EQ(refused("class"), "invalid argument: class NAME");
    EXPECT_EQ(refused("advance soon"), "invalid argument: advance takes seconds, not `soon`");
    EXPECT_EQ(refused("trace all"), "invalid argument: trace begins at an event's number, not at `all`");
    EXPECT_EQ(refused("veiws"), "unknown command: `veiws`; near: views");
    EXPECT_EQ(refused("x"), "unknown command: `x`; help tells those there are");
    EXPECT_EQ(refused("send strip setFrame: {\"rect\": [1"), "invalid argument: `{\"rect\": [1` is no JSON");
    EXPECT_EQ(refused("views strip host"),
        "invalid argument: what is `host`? views [TARGET] [detail] [presentation]");
}

TEST_F(ConsoleCommands, PrintValuesForPeople)
{
    using Form = ConsoleCommand::Form;
    EXPECT_EQ(printedValue(0.5, Form::json), "0.5\n");
    EXPECT_EQ(printedValue(nullptr, Form::json), "null\n");
    EXPECT_EQ(printedValue(Json::parse(R"([{"n":0},{"n":1}])"), Form::lines), "{\"n\":0}\n{\"n\":1}\n");
    Json const tree =
        Json::parse(R"([{"class":"UIWindow","handle":"object-1-1","frame":{"rect":[0.0,0.0,390.0,844.5]},
        "alpha":1.0,"hidden":false,"text":null,"children":[{"class":"UILabel","handle":"object-1-2",
        "frame":{"rect":[1.0,2.0,3.0,4.0]},"alpha":0.5,"hidden":true,"text":"Anna","children":[]}]}])");
    EXPECT_EQ(printedValue(tree, Form::outline),
        "UIWindow (0 0 390 844.5)  object-1-1\n"
        "  UILabel (1 2 3 4) hidden alpha 0.5 \"Anna\"  object-1-2\n");
    std::string const names(200, 'n');
    EXPECT_EQ(printedValue(Json::array({ names }), Form::json), "[\n  \"" + names + "\"\n]\n");
}

TEST_F(ConsoleCommands, HelpTellsEachOne)
{
    std::string const help = "\n" + consoleHelp();
    for (char const* const name : { "send", "value", "class", "views", "trace", "advance", "help", "quit" })
        EXPECT_NE(help.find(std::string("\n") + name), help.npos) << name;
}

TEST_F(ConsoleCommands, CompletionKnowsClassesAndSelectors)
{
    boot(options("15.4"));
    EXPECT_EQ(consoleCompletions("v"), (std::vector<std::string> { "value", "views" }));
    EXPECT_TRUE(contains(consoleCompletions("class CVL"), "CVLView"));
    EXPECT_EQ(consoleCompletions("send str"), (std::vector<std::string> { "strip" }));
    EXPECT_TRUE(contains(consoleCompletions("value UILab"), "UILabel"));
    auto const selectors = consoleCompletions("send strip setBlurr");
    EXPECT_EQ(
        selectors, (std::vector<std::string> { "setBlurrEffectAlphaNonLS:", "setBlurrEffectColorNonLS:" }));
    EXPECT_TRUE(contains(consoleCompletions("send strip "), "frame"));
    auto const keys = consoleCompletions("value strip is");
    EXPECT_TRUE(contains(keys, "isViewNonLS"));
    EXPECT_TRUE(std::ranges::none_of(keys, [](std::string const& key) { return key.find(':') != key.npos; }));
    EXPECT_EQ(consoleCompletions("views strip d"), (std::vector<std::string> { "detail" }));
    EXPECT_TRUE(consoleCompletions("send nobody set").empty());
    EXPECT_TRUE(consoleCompletions("send UIColor redC").size() == 1);
}

}
