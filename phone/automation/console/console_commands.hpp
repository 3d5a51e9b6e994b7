// The console's commands: a line of text becomes one of the phone's scripts, and its value text again. Main thread,
// but for what takes and gives texts alone.
#pragma once

#include "phone/automation/error.hpp"
#include "phone/automation/scripts/scripts.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace phone {

// A line that has been understood.
struct ConsoleCommand {
    std::string script;   // of the phone; empty for `help`, `quit` and an empty line
    Json arguments = Json::object();
    enum class Form { json, lines, outline } form { Form::json };   // how the value is printed
    bool quits { false };
    bool asksForHelp { false };
};

// Words are divided by spaces; what stands in quotes or brackets is one word. The error says what was expected.
Answer<ConsoleCommand> parseConsoleLine(std::string_view line);

// The commands and what they take, for a person.
std::string consoleHelp();

// What a command's value looks like: JSON, a line an element, or the outline of a view tree. Ends with a line break unless
// it is empty.
std::string printedValue(Json const& value, ConsoleCommand::Form form);

// What the word that is being typed at the end of `line` may become, sorted: commands, targets, classes, selectors and
// keys. A phone has to be up.
std::vector<std::string> consoleCompletions(std::string_view line);

// What scripts ask of a server, without one: there are no elements, and a further boot is refused.
class ConsoleContext : public ScriptContext {
public:
    explicit ConsoleContext(BootOptions const& usual)
        : m_usual(usual)
    {
    }
    Answer<objc::handle> objectOfElement(std::string const& id) override;
    void passTime(double seconds) override;
    BootOptions const& usualBootOptions() const override { return m_usual; }
    void boot(Json const&) override { }
    void respring() override { }

private:
    BootOptions const& m_usual;
};

}
