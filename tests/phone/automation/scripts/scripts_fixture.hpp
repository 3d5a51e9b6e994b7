// What tests of the phone's scripts have in common: a server that knows elements by name, and scripts by one call.
#pragma once

#include "phone/automation/scripts/scripts.hpp"
#include "tests/support/phone_fixture.hpp"

#include <map>

namespace phone {

class TestContext : public ScriptContext {
public:
    Answer<objc::handle> objectOfElement(std::string const& id) override;
    void passTime(double seconds) override;
    BootOptions const& usualBootOptions() const override { return usual; }
    void boot(Json const& arguments) override { booted = arguments; }
    void respring() override { hasResprung = true; }

    std::map<std::string, objc::handle> elements;
    BootOptions usual;
    Json booted;   // the arguments of the last boot; null: none
    bool hasResprung { false };
};

class ScriptsTest : public CorvelTest {
protected:
    // Options of a phone whose strip has three contacts.
    static BootOptions usual(std::string const& version = "15.4");

    // The script's value; a failed test, and null, where it is refused.
    Json run(std::string const& name, Json const& arguments = Json::object());
    Json run(std::string const& name, char const* arguments) { return run(name, Json::parse(arguments)); }
    // The error's code and message; a failed test where there is none.
    std::string refusal(std::string const& name, Json const& arguments = Json::object());
    std::string refusal(std::string const& name, char const* arguments)
    {
        return refusal(name, Json::parse(arguments));
    }

    // Scripts in short.
    Json send(Json const& target, char const* selector, char const* arguments = "[]");
    Json value(Json const& target, char const* key);

    static Json element(std::string const& id);

    TestContext m_context;
};

}
