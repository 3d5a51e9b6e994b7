// The arguments of `phone: boot`, each as it reaches the phone that boots.
#include "tests/phone/automation/scripts/scripts_fixture.hpp"

namespace phone {

namespace {

BootOptions read(char const* arguments, BootOptions const& usual = {})
{
    auto const options = bootOptionsOf(Json::parse(arguments), usual);
    if (options)
        return *options;
    ADD_FAILURE() << arguments << ": " << options.error().message;
    return {};
}

}

class BootArguments : public ScriptsTest { };

TEST_F(BootArguments, ReadsEachOne)
{
    EXPECT_EQ(read(R"({"ios":"13"})").ios, (SystemVersion { 13, 0, 0 }));
    EXPECT_EQ(read(R"({"ios":"16.1.2"})").ios, (SystemVersion { 16, 1, 2 }));
    EXPECT_EQ(read(R"({"coreFoundation":1600.5})").coreFoundationNumber(), 1600.5);
    EXPECT_EQ(read(R"({"ios":"12.4"})").coreFoundationNumber(), coreFoundationNumber({ 12, 4, 0 }));
    EXPECT_EQ(read(R"({"coverSheet":"neither"})").coverSheet, CoverSheetAnswer::neither);
    EXPECT_EQ(read(R"({"coverSheet":"both"})").coverSheet, CoverSheetAnswer::both);
    EXPECT_EQ(read("{}").coverSheet, std::nullopt);
    BootOptions const screen =
        read(R"({"width":375,"height":812,"scale":2,"language":"he","direction":"ltr"})");
    EXPECT_EQ(screen.width, 375);
    EXPECT_EQ(screen.height, 812);
    EXPECT_EQ(screen.scale, 2);
    EXPECT_EQ(screen.language, "he");
    EXPECT_EQ(screen.direction, LayoutDirection::leftToRight);
    EXPECT_EQ(read(R"({"appearance":"dark"})").appearance, Appearance::dark);
    EXPECT_EQ(read(R"({"passcode":"0000"})").passcode, "0000");
    EXPECT_FALSE(read(R"({"locked":false})").locked);
    EXPECT_EQ(read(R"({"timezone":"Europe/Istanbul"})").timezone, "Europe/Istanbul");
    EXPECT_EQ(read(R"({"date":"2030-01-02T03:04:05Z"})").date, "2030-01-02T03:04:05Z");
    EXPECT_EQ(read(R"({"clock":"running"})").clock, ClockMode::running);
    EXPECT_EQ(read(R"({"contacts":[]})").contacts, Json::array());
    EXPECT_EQ(read(R"({"settings":{"a":1}})").settings, Json::object({ { "a", 1 } }));
    EXPECT_EQ(read(R"({"absent":["mail","LAActivator"]})").absent,
        (std::vector<std::string> { "mail", "LAActivator" }));
    EXPECT_EQ(read(R"({"present":["SBLockScreenManager a:"]})").present,
        (std::vector<std::string> { "SBLockScreenManager a:" }));
    EXPECT_EQ(read(("{\"plugins\":[\"" TALKATIVE_PLUGIN "\"]}")).plugins.size(), 1u);
}

TEST_F(BootArguments, StandOverTheCommandLine)
{
    BootOptions usual;
    usual.ios = { 13, 7, 0 };
    usual.passcode = "1234";
    usual.contacts = Json::array();
    BootOptions const same = read("{}", usual);
    EXPECT_EQ(same.ios, usual.ios);
    EXPECT_EQ(same.passcode, "1234");
    BootOptions const other = read(R"({"passcode":null,"contacts":null})", usual);
    EXPECT_EQ(other.passcode, std::nullopt);
    EXPECT_EQ(other.contacts, std::nullopt);   // the starter set
}

TEST_F(BootArguments, ReachWhoeverBoots)
{
    CorvelTest::boot(usual());
    EXPECT_EQ(run("boot", R"({"ios":"13.7"})"), nullptr);
    EXPECT_EQ(m_context.booted, Json::object({ { "ios", "13.7" } }));
    EXPECT_EQ(run("respring"), nullptr);
    EXPECT_TRUE(m_context.hasResprung);
}

}
