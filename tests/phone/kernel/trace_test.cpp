#include "phone/kernel/trace.hpp"

#include "phone/kernel/clock.hpp"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace phone {
namespace {

class TraceTest : public testing::Test {
protected:
    Clock clock;
    Trace trace { clock };
};

TEST_F(TraceTest, NumbersEventsAndKeepsTheirFieldsInOrder)
{
    trace.record("sound", { { "id", 1519 } });
    ASSERT_TRUE(clock.advance(1.25));
    trace.record("openURL", { { "url", "tel:1" }, { "options", nullptr } });
    trace.record("unlockRequest");

    EXPECT_EQ(trace.events().dump(),
        R"([{"n":0,"t":0.0,"kind":"sound","id":1519},)"
        R"({"n":1,"t":1.25,"kind":"openURL","url":"tel:1","options":null},)"
        R"({"n":2,"t":1.25,"kind":"unlockRequest"}])");
    EXPECT_EQ(trace.events(2).dump(), R"([{"n":2,"t":1.25,"kind":"unlockRequest"}])");
    EXPECT_EQ(trace.events(3).dump(), "[]");
    EXPECT_EQ(trace.count(), 3U);
}

TEST_F(TraceTest, TimesAreWholeMicroseconds)
{
    ASSERT_TRUE(clock.advance(1 / 60.0));
    trace.record("sound");
    EXPECT_EQ(trace.events()[0]["t"].dump(), "0.016667");
}

TEST_F(TraceTest, MarksSpringBoardsOwnDoings)
{
    trace.record("a");
    {
        TraceOwnScope outer;
        TraceOwnScope inner;
        trace.record("b");
        {
            TracePluginScope plugin;
            trace.record("c");
            TraceOwnScope again;
            trace.record("d");
        }
        trace.record("e");
    }
    trace.record("f");

    std::string own;
    for (auto const& event : trace.events()) {
        if (event.value("own", false))
            own += event["kind"].get<std::string>();
    }
    EXPECT_EQ(own, "bde");
    EXPECT_FALSE(trace.events()[0].contains("own"));
}

TEST_F(TraceTest, NamesThreadsOtherThanTheMainOne)
{
    trace.record("main");
    TraceOwnScope own;
    std::thread([&] { trace.record("other"); }).join();
    EXPECT_FALSE(trace.events()[0].contains("thread"));
    EXPECT_EQ(trace.events()[1]["thread"], 1);
    EXPECT_FALSE(trace.events()[1].contains("own")) << "another thread is in no scope of this one";
}

TEST_F(TraceTest, StreamsEachEventAsALine)
{
    std::vector<std::string> lines;
    trace.setSink([&](std::string_view line) { lines.emplace_back(line); });
    trace.record("log", { { "text", "a\nb\xFF" } });
    trace.setSink(nullptr);
    trace.record("log");
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0], "{\"n\":0,\"t\":0.0,\"kind\":\"log\",\"text\":\"a\\nb\xEF\xBF\xBD\"}");
}

TEST_F(TraceTest, CountsOnAfterARespring)
{
    trace.record("one");
    ASSERT_TRUE(clock.advance(3));
    trace.record("two");

    Clock nextClock;
    ASSERT_TRUE(nextClock.start(clock.state()));
    Trace next(nextClock);
    next.restore(trace.state());
    next.record("three");

    EXPECT_EQ(next.events(1).dump(), R"([{"n":1,"t":3.0,"kind":"two"},{"n":2,"t":3.0,"kind":"three"}])");
}

TEST_F(TraceTest, StartsAtNoughtAfterABoot)
{
    trace.record("one");
    trace.reset();
    trace.record("two");
    EXPECT_EQ(trace.events()[0]["n"], 0);
    EXPECT_EQ(trace.count(), 1U);
}

TEST_F(TraceTest, TakesEventsFromManyThreads)
{
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 250; ++k)
                trace.record("x");
        });
    }
    for (auto& thread : threads)
        thread.join();
    ASSERT_EQ(trace.count(), 1000U);
    Json const events = trace.events();
    for (std::size_t n = 0; n < 1000; ++n)
        ASSERT_EQ(events[n]["n"], n);
}

}
}
