// The command line of corvel-phone.
#include "phone/main/program_options.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace phone {

using testing::HasSubstr;

TEST(ProgramOptions, HaveUsualValues)
{
    auto const options = parseProgramOptions({});

    ASSERT_TRUE(options) << options.message();
    EXPECT_EQ(options->boot.ios, (SystemVersion { 16, 1 }));
    EXPECT_EQ(options->boot.width, 390);
    EXPECT_EQ(options->boot.passcode, kUsualPasscode);
    EXPECT_EQ(options->boot.appearance, Appearance::dark);
    EXPECT_TRUE(options->boot.locked);
    EXPECT_FALSE(options->root);
    EXPECT_FALSE(options->shot);
}

TEST(ProgramOptions, ReadEveryOption)
{
    auto const options = parseProgramOptions(
        { "--ios", "15.4.1", "--size=375x812", "--scale", "2", "--language", "he", "--rtl", "--light",
            "--landscape", "--unlocked", "--passcode", "0000", "--music", "--date", "2026-01-02T03:04",
            "--timezone", "Europe/Istanbul", "--root", "/tmp/a", "--contacts", "b.vcf", "--plugin", "c.so",
            "--plugin", "d.so", "--no-activator", "--trace", "--shot", "e.png", "--frame" });

    ASSERT_TRUE(options) << options.message();
    EXPECT_EQ(options->boot.ios, (SystemVersion { 15, 4, 1 }));
    EXPECT_EQ(options->boot.width, 375);
    EXPECT_EQ(options->boot.height, 812);
    EXPECT_EQ(options->boot.scale, 2);
    EXPECT_EQ(options->boot.language, "he");
    EXPECT_EQ(options->boot.direction, LayoutDirection::rightToLeft);
    EXPECT_EQ(options->boot.appearance, Appearance::light);
    EXPECT_EQ(options->orientation, 3);
    EXPECT_FALSE(options->boot.locked);
    EXPECT_EQ(options->boot.passcode, "0000");
    EXPECT_TRUE(options->playsMusic);
    EXPECT_EQ(options->boot.date, "2026-01-02T03:04");
    EXPECT_EQ(options->boot.timezone, "Europe/Istanbul");
    EXPECT_EQ(options->root, "/tmp/a");
    EXPECT_EQ(options->contacts, "b.vcf");
    EXPECT_EQ(options->boot.plugins.size(), 2u);
    EXPECT_TRUE(options->boot.isAbsent("activator"));
    EXPECT_TRUE(options->printsTrace);
    EXPECT_EQ(options->shot, "e.png");
    EXPECT_TRUE(options->drawsFrame);
}

TEST(ProgramOptions, ReadWhatConcernsWebDriver)
{
    auto const options = parseProgramOptions(
        { "--webdriver", "0", "--headless", "--clock", "manual", "--host", "0.0.0.0", "--allow-origin",
            "http://localhost:3000", "--allow-origin", "http://a", "--inspector", "/tmp/i" });

    ASSERT_TRUE(options) << options.message();
    EXPECT_EQ(options->webDriverPort, 0);
    EXPECT_TRUE(options->isHeadless);
    EXPECT_EQ(options->clock, ClockMode::manual);
    EXPECT_EQ(options->host, "0.0.0.0");
    EXPECT_EQ(options->allowedOrigins.size(), 2u);
    EXPECT_EQ(options->inspector, "/tmp/i");
    EXPECT_FALSE(parseProgramOptions({})->webDriverPort);
}

TEST(ProgramOptions, RefuseWrongWordsAboutWebDriver)
{
    for (char const* const port : { "-1", "65536", "x", "1.5", "" })
        EXPECT_FALSE(parseProgramOptions({ "--webdriver", port })) << port;
    EXPECT_FALSE(parseProgramOptions({ "--webdriver", "1", "--clock", "fast" }));
    EXPECT_FALSE(parseProgramOptions({ "--clock", "manual" }));
    EXPECT_FALSE(parseProgramOptions({ "--allow-origin", "http://a" }));
    EXPECT_FALSE(parseProgramOptions({ "--webdriver", "1", "--shot", "x.png" }));
    EXPECT_FALSE(parseProgramOptions({ "--webdriver", "1", "--console" }));
}

TEST(ProgramOptions, TakeThePasscodeAway)
{
    auto const options = parseProgramOptions({ "--no-passcode" });

    ASSERT_TRUE(options);
    EXPECT_FALSE(options->boot.passcode);
}

TEST(ProgramOptions, NameWhatIsWrongInOneLine)
{
    struct Case {
        std::vector<std::string> arguments;
        char const* word;
    };
    Case const cases[] {
        { { "--size", "12" }, "--size 12" },
        { { "--size", "844x390" }, "upright" },
        { { "--size", "axb" }, "--size axb" },
        { { "--ios", "x" }, "--ios x" },
        { { "--scale", "two" }, "--scale two" },
        { { "--scale", "2", "--scale" }, "--scale needs a value" },
        { { "--shot=" }, "--shot needs a value" },
        { { "--passcode", "12a4" }, "digits" },
        { { "--language", "../x" }, "--language" },
        { { "--orientation", "5" }, "--orientation 5" },
        { { "--frame" }, "--shot" },
        { { "--nonsense" }, "--nonsense" },
        { { "-x" }, "-x" },
        { { "--dark=yes" }, "--dark" },
        { { "stray" }, "stray" },
        { { "--dark", "stray" }, "stray" },
    };
    for (Case const& each : cases) {
        auto const options = parseProgramOptions(each.arguments);

        ASSERT_FALSE(options) << each.word;
        EXPECT_THAT(options.message(), HasSubstr(each.word));
        EXPECT_EQ(options.message().find('\n'), std::string::npos);
    }
}

TEST(ProgramOptions, HelpTellsEveryOptionButTheInnerOne)
{
    std::string const help = programHelp();

    for (char const* option : { "--ios", "--size", "--root", "--contacts", "--shot", "--trace", "--plugin" })
        EXPECT_THAT(help, HasSubstr(option));
    EXPECT_EQ(help.find("--resume"), std::string::npos);
    auto const options = parseProgramOptions({ "--help" });
    ASSERT_TRUE(options);
    EXPECT_TRUE(options->asksForHelp);
}

}
