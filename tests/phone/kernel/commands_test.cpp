#include "phone/kernel/commands.hpp"

#include "phone/kernel/clock.hpp"
#include "phone/kernel/trace.hpp"

#include <cerrno>
#include <gtest/gtest.h>

namespace phone {
namespace {

class CommandsTest : public testing::Test {
protected:
    using Texts = std::vector<std::string>;

    Clock clock;
    Trace trace { clock };
    Commands commands { clock, trace };
    int restarts { 0 };

    void SetUp() override
    {
        commands.setRestartHandler([this] { ++restarts; });
    }
};

TEST_F(CommandsTest, KillallAsksForARestartOnALaterTurn)
{
    auto const started = commands.spawn(kKillallPath, Texts { "killall", "backboardd" }, std::nullopt);
    EXPECT_EQ(started.result, 0);
    EXPECT_GT(started.pid, 0);
    EXPECT_EQ(restarts, 0);
    ASSERT_TRUE(clock.advance(0));
    EXPECT_EQ(restarts, 1);
}

TEST_F(CommandsTest, KillallOfAnythingElseEndsNothing)
{
    commands.spawn(kKillallPath, Texts { "killall", "mediaserverd" }, std::nullopt);
    commands.spawn(kKillallPath, Texts { "backboardd" }, std::nullopt);
    commands.spawn(kKillallPath, Texts {}, std::nullopt);
    ASSERT_TRUE(clock.advance(1));
    EXPECT_EQ(restarts, 0);
    EXPECT_EQ(trace.count(), 3U);
}

TEST_F(CommandsTest, AMissingCommandIsRecordedAndRefused)
{
    commands.remove(kKillallPath);
    auto const started = commands.spawn(kKillallPath, Texts { "killall", "backboardd" }, Texts { "A=B" });
    EXPECT_EQ(started.result, ENOENT);
    ASSERT_TRUE(clock.advance(1));
    EXPECT_EQ(restarts, 0);
    EXPECT_EQ(trace.events().dump(),
        R"([{"n":0,"t":0.0,"kind":"spawn","path":"/var/jb/usr/bin/killall","arguments":["killall","backboardd"],)"
        R"("environment":["A=B"],"result":2}])");
}

TEST_F(CommandsTest, RunsProgramsThatAreMadeKnown)
{
    Texts got;
    commands.add("/var/jb/usr/bin/uicache", [&](Texts const& arguments) { got = arguments; });
    EXPECT_TRUE(commands.isKnown("/var/jb/usr/bin/uicache"));
    auto const first = commands.spawn("/var/jb/usr/bin/uicache", Texts { "uicache", "-a" }, std::nullopt);
    auto const second = commands.spawn("/var/jb/usr/bin/uicache", Texts { "uicache" }, std::nullopt);
    EXPECT_NE(first.pid, second.pid);
    commands.remove("/var/jb/usr/bin/uicache");   // what has started goes on
    clock.runLoopTurn();
    EXPECT_EQ(got, Texts { "uicache" });
}

TEST_F(CommandsTest, NullsAreAFault)
{
    EXPECT_EQ(commands.spawn(std::nullopt, std::nullopt, std::nullopt).result, EFAULT);
    EXPECT_EQ(trace.events()[0]["path"], nullptr);
}

}
}
