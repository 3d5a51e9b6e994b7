#include "tests/phone/automation/scripts/scripts_fixture.hpp"

namespace phone {

Answer<objc::handle> TestContext::objectOfElement(std::string const& id)
{
    auto const found = elements.find(id);
    if (found == elements.end())
        return CommandError { ErrorCode::noSuchElement, id };
    return found->second;
}

void TestContext::passTime(double seconds) { static_cast<void>(phone().advance(seconds)); }

BootOptions ScriptsTest::usual(std::string const& version)
{
    BootOptions options = CorvelTest::options(version);
    options.passcode = "1234";
    return options;
}

Json ScriptsTest::run(std::string const& name, Json const& arguments)
{
    ScriptResult const result = runPhoneScript(name, arguments, m_context);
    if (result)
        return *result;
    ADD_FAILURE() << name << " " << arguments.dump() << ": " << errorName(result.error().code) << ": "
                  << result.error().message;
    return nullptr;
}

std::string ScriptsTest::refusal(std::string const& name, Json const& arguments)
{
    ScriptResult const result = runPhoneScript(name, arguments, m_context);
    if (!result)
        return std::string(errorName(result.error().code)) + ": " + result.error().message;
    ADD_FAILURE() << name << " " << arguments.dump() << " answers " << result->dump();
    return {};
}

Json ScriptsTest::send(Json const& target, char const* selector, char const* arguments)
{
    return run("send",
        Json::object(
            { { "target", target }, { "selector", selector }, { "arguments", Json::parse(arguments) } }));
}

Json ScriptsTest::value(Json const& target, char const* key)
{
    return run("value", Json::object({ { "target", target }, { "key", key } }));
}

Json ScriptsTest::element(std::string const& id)
{
    return Json::object({ { "element-6066-11e4-a52e-4f735466cecf", id } });
}

}
