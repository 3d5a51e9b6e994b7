// Every script refuses what it was not meant to be given, names it, and changes nothing.
#include "tests/phone/automation/scripts/scripts_fixture.hpp"

#include "phone/automation/scripts/scripts.hpp"

namespace phone {

namespace {

struct Wrong {
    char const* script;
    char const* arguments;
    char const* says;   // part of the message
};

// Missing, of a wrong kind, out of range; unknown ones are tried with every script below.
constexpr Wrong kWrong[] {
    { "boot", R"({"ios":13})", "`ios`" },
    { "boot", R"({"ios":"thirteen"})", "`ios`" },
    { "boot", R"({"coreFoundation":"1600"})", "`coreFoundation`" },
    { "boot", R"({"coverSheet":"dashboard"})", "`coverSheet`" },
    { "boot", R"({"width":"390"})", "`width`" },
    { "boot", R"({"width":100})", "240" },
    { "boot", R"({"scale":9})", "scale" },
    { "boot", R"({"language":"english please"})", "language" },
    { "boot", R"({"direction":"left"})", "`direction`" },
    { "boot", R"({"appearance":"grey"})", "`appearance`" },
    { "boot", R"({"passcode":1234})", "`passcode`" },
    { "boot", R"({"passcode":""})", "passcode" },
    { "boot", R"({"locked":"yes"})", "`locked`" },
    { "boot", R"({"timezone":"Mars/North"})", "`timezone`" },
    { "boot", R"({"timezone":"../../../etc/passwd"})", "`timezone`" },
    { "boot", R"({"date":"yesterday"})", "`date`" },
    { "boot", R"({"clock":"stopped"})", "`clock`" },
    { "boot", R"({"contacts":{}})", "`contacts`" },
    { "boot", R"({"contacts":[{"contactFirstName":null}]})", "contacts[0]" },
    { "boot", R"({"settings":[]})", "`settings`" },
    { "boot", R"({"settings":{"a":{"date":"never"}}})", "settings.a" },
    { "boot", R"({"absent":"mail"})", "`absent`" },
    { "boot", R"({"absent":[1]})", "`absent`" },
    { "boot", R"({"present":[null]})", "`present`" },
    { "boot", R"({"plugins":["/nowhere/at/all.so"]})", "/nowhere/at/all.so" },
    { "trace", R"({"since":-1})", "`since`" },
    { "trace", R"({"since":"0"})", "`since`" },
    { "trace", R"({"since":1.5})", "`since`" },
    { "record", R"({"messages":1})", "`messages`" },
    { "record", R"({"classes":"UIView"})", "`classes`" },
    { "record", R"({"classes":["NoSuchClass"]})", "NoSuchClass" },
    { "advance", R"({})", "`seconds` is missing" },
    { "advance", R"({"seconds":"1"})", "`seconds`" },
    { "advance", R"({"seconds":-1})", "`seconds`" },
    { "advance", R"({"seconds":1e10})", "`seconds`" },
    { "settings", R"({"set":[1]})", "`set`" },
    { "settings", R"({"set":{"key":null}})", "`set`.key" },
    { "settings", R"({"remove":"key"})", "`remove`" },
    { "settings", R"({"notify":"no"})", "`notify`" },
    { "notify", R"({"center":"darwin"})", "`name` is missing" },
    { "notify", R"({"name":"a"})", "`center` is missing" },
    { "notify", R"({"name":"a","center":"global"})", "`center`" },
    { "enterPasscode", R"({})", "`code` is missing" },
    { "enterPasscode", R"({"code":1234})", "`code`" },
    { "activator", R"({})", "`name` is missing" },
    { "orientation", R"({})", "`value` is missing" },
    { "orientation", R"({"value":5})", "`value`" },
    { "orientation", R"({"value":"1"})", "`value`" },
    { "orientation", R"({"value":1,"notify":["turn"]})", "turn" },
    { "music", R"({})", "`playing` is missing" },
    { "music", R"({"playing":0})", "`playing`" },
    { "launch", R"({})", "`bundleId` is missing" },
    { "launch", R"({"bundleId":""})", "identifier" },
    { "available", R"({"name":"mail"})", "`value` is missing" },
    { "available", R"({"name":"fax","value":true})", "fax" },
    { "available", R"({"name":"UIView nothing:","value":false})", "nothing:" },
    { "keyWindow", R"({})", "`window` is missing" },
    { "keyWindow", R"({"window":1})", "not 1" },
    { "keyWindow", R"({"window":"host"})", "is a window" },
    { "addressBook", R"({})", "`contacts` is missing" },
    { "addressBook", R"({"contacts":"all"})", "contacts" },
    { "addressBook", R"({"contacts":[{"contactBirthday":{"day":1}}]})", "contactBirthday" },
    { "file", R"({"path":"/a"})", "`kind` is missing" },
    { "file", R"({"path":"/a","kind":"none"})", "`kind`" },
    { "file", R"({"path":"a","kind":"absent"})", "'a'" },
    { "file", R"({"path":"/a/../../b","kind":"absent"})", "holds `..`" },
    { "file", R"({"path":"/a","kind":"link"})", "needs `to`" },
    { "file", R"({"path":"/a","kind":"absent","to":"/b"})", "links alone" },
    { "file", R"({"path":"/a/b","kind":"link","to":"../../c"})", "leaves the device root" },
    { "send", R"({"target":"strip"})", "`selector` is missing" },
    { "send", R"({"selector":"self"})", "`target` is missing" },
    { "send", R"({"target":7,"selector":"self"})", "`target`" },
    { "send", R"({"target":"strip","selector":""})", "selector" },
    { "send", R"({"target":"strip","selector":"self","arguments":{}})", "`arguments`" },
    { "value", R"({"target":"strip"})", "`key` is missing" },
    { "value", R"({"target":"strip","key":""})", "no key" },
    { "class", R"({})", "`name` is missing" },
    { "class", R"({"name":"NoSuchClass"})", "NoSuchClass" },
    { "views", R"({"detail":1})", "`detail`" },
    { "views", R"({"presentation":"yes"})", "`presentation`" },
    { "views", R"({"target":"host"})", "is a view" },
};

}

class ScriptArgumentsTest : public ScriptsTest {
protected:
    // What a script could have changed.
    static std::string state()
    {
        return phone().views(true).dump() + phone().trace().events().dump()
            + std::to_string(phone().clock().now());
    }
};

TEST_F(ScriptArgumentsTest, RefusesWhatIsMissingOrWrongAndChangesNothing)
{
    boot(usual());
    std::string const before = state();
    for (Wrong const& wrong : kWrong) {
        std::string const said = refusal(wrong.script, wrong.arguments);
        EXPECT_TRUE(said.starts_with("invalid argument: "))
            << wrong.script << wrong.arguments << ": " << said;
        EXPECT_NE(said.find(wrong.says), said.npos) << wrong.script << wrong.arguments << ": " << said;
    }
    EXPECT_EQ(state(), before);
    EXPECT_TRUE(m_context.booted.is_null());
}

TEST_F(ScriptArgumentsTest, RefusesWhatNoScriptKnows)
{
    boot(usual());
    std::string const before = state();
    for (std::string const& script : phoneScriptNames()) {
        std::string const said = refusal(script, R"({"nonsense":1})");
        // Where something is missing too, either may be named.
        bool const isNamed = said.find("`nonsense`") != said.npos || said.find("is missing") != said.npos;
        EXPECT_TRUE(said.starts_with("invalid argument: ") && isNamed) << said;
    }
    EXPECT_NE(refusal("advance", R"({"seconds":0,"nonsense":1})").find("`nonsense`; it takes seconds"),
        std::string::npos);
    EXPECT_NE(refusal("respring", R"({"nonsense":1})").find("it takes none"), std::string::npos);
    EXPECT_FALSE(m_context.hasResprung);
    EXPECT_EQ(state(), before);
}

TEST_F(ScriptArgumentsTest, TakesAnObjectAlone)
{
    boot(usual());
    for (Json const& arguments : { Json(1), Json("a"), Json::array(), Json(true) })
        EXPECT_NE(refusal("trace", arguments).find("an object"), std::string::npos);
    EXPECT_TRUE(run("trace", Json()).is_array());
}

TEST_F(ScriptArgumentsTest, NamesWhatAnUnknownScriptWasMeantToBe)
{
    boot(usual());
    EXPECT_EQ(refusal("advanse"), "unknown method: there is no script `phone: advanse`; near: advance");
    EXPECT_TRUE(refusal("").starts_with("unknown method: "));
}

}
