#include "phone/kernel/clock.hpp"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace phone {
namespace {

class ClockTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(clock.start({})); }

    std::function<void()> note(std::string name)
    {
        return [this, name = std::move(name)] {
            log.push_back(name + "@" + std::to_string(clock.now()).substr(0, 6));
        };
    }

    Clock clock;
    std::vector<std::string> log;
};

using Names = std::vector<std::string>;

TEST_F(ClockTest, StandsStillUntilMoved)
{
    EXPECT_EQ(clock.now(), 0);
    EXPECT_EQ(isoDate(clock.date()), "2026-06-18T09:41:00Z");

    ASSERT_TRUE(clock.advance(90));

    EXPECT_EQ(clock.now(), 90);
    EXPECT_EQ(isoDate(clock.date()), "2026-06-18T09:42:30Z");
}

TEST_F(ClockTest, AnUnstartedClockHasTheSameDate)
{
    EXPECT_EQ(isoDate(Clock().date()), "2026-06-18T09:41:00Z");
}

TEST_F(ClockTest, TakesLocalTimeOfTheTimeZoneItIsGiven)
{
    ASSERT_TRUE(clock.start({ .timezone = "Asia/Tokyo" }));
    EXPECT_EQ(isoDate(clock.date()), "2026-06-18T00:41:00Z");
    EXPECT_EQ(clock.timezone(), "Asia/Tokyo");

    ASSERT_TRUE(clock.start({ .date = "2026-01-02T03:04:05Z", .timezone = "Asia/Tokyo", .now = 10 }));
    EXPECT_EQ(isoDate(clock.date()), "2026-01-02T03:04:15Z");
    EXPECT_EQ(clock.now(), 10);
    ASSERT_TRUE(clock.start({}));
}

TEST_F(ClockTest, RefusesADateOrZoneItCannotRead)
{
    ASSERT_TRUE(clock.advance(5));
    EXPECT_EQ(clock.start({ .date = "tomorrow" }).message(), "not an ISO 8601 date: 'tomorrow'");
    EXPECT_EQ(clock.start({ .timezone = "Mars/Olympus" }).message(), "unknown time zone 'Mars/Olympus'");
    EXPECT_FALSE(clock.start({ .now = -1 }));
    EXPECT_EQ(clock.now(), 5);
}

TEST_F(ClockTest, GoesOnFromItsStateInAnotherClock)
{
    ASSERT_TRUE(clock.start({ .date = "2026-06-18T12:00:00Z" }));
    ASSERT_TRUE(clock.advance(61.5));

    Clock next;
    ASSERT_TRUE(next.start(clock.state()));

    EXPECT_EQ(next.now(), 61.5);
    EXPECT_EQ(next.date(), clock.date());
}

TEST_F(ClockTest, FiresTimersAtTheirTimeInOrder)
{
    clock.at(0.5, 0, note("second"));
    clock.at(0.25, 0, note("first"));
    clock.at(0.5, 0, note("third"));

    ASSERT_TRUE(clock.advance(0.3));
    EXPECT_EQ(log, Names({ "first@0.2500" }));

    ASSERT_TRUE(clock.advance(0.2));
    EXPECT_EQ(log, Names({ "first@0.2500", "second@0.5000", "third@0.5000" }));
}

TEST_F(ClockTest, SumsOfTenthsReachTheTimerTheyAddUpTo)
{
    clock.at(0.8, 0, note("due"));
    for (int i = 0; i < 8; ++i)
        ASSERT_TRUE(clock.advance(0.1));
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(ClockTest, RepeatsUntilCancelled)
{
    TimerId const timer = clock.at(1, 0.5, note("tick"));
    ASSERT_TRUE(clock.advance(2));
    EXPECT_EQ(log, Names({ "tick@1.0000", "tick@1.5000", "tick@2.0000" }));
    EXPECT_TRUE(clock.isPending(timer));

    clock.cancel(timer);
    ASSERT_TRUE(clock.advance(5));
    EXPECT_EQ(log.size(), 3U);
    EXPECT_FALSE(clock.isPending(timer));
}

TEST_F(ClockTest, ATimerMayCancelItselfAndOthers)
{
    TimerId other = clock.at(1, 0, note("never"));
    TimerId self {};
    self = clock.at(1, 1, [&] {
        note("self")();
        clock.cancel(self);
    });
    clock.at(0.5, 0, [&] { clock.cancel(other); });
    clock.cancel(TimerId::none);
    clock.cancel(TimerId { 12345 });

    ASSERT_TRUE(clock.advance(10));

    EXPECT_EQ(log, Names({ "self@1.0000" }));
}

TEST_F(ClockTest, LetsGoOfWhatATimerHeldOnceItIsDone)
{
    auto held = std::make_shared<int>(1);
    clock.at(1, 0, [held] {});
    TimerId const repeated = clock.at(1, 1, [held] {});
    EXPECT_EQ(held.use_count(), 3);

    ASSERT_TRUE(clock.advance(1));
    EXPECT_EQ(held.use_count(), 2);
    clock.cancel(repeated);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(ClockTest, OddDelaysHaveAMeaning)
{
    clock.at(-3, 0, note("negative"));
    clock.at(std::nan(""), 0, note("nan"));
    clock.at(std::numeric_limits<double>::infinity(), 0, note("never"));
    TimerId const fast = clock.at(1, 1e-9, note("fast"));

    ASSERT_TRUE(clock.advance(0));
    EXPECT_EQ(log, Names({ "negative@0.0000", "nan@0.0000" }));

    log.clear();
    ASSERT_TRUE(clock.advance(1.001));
    clock.cancel(fast);
    EXPECT_EQ(log.size(), 11U);
    ASSERT_TRUE(clock.advance(1e9));
    EXPECT_EQ(log.size(), 11U);
}

TEST_F(ClockTest, RunsPostedWorkInOrderOnTheNextTurn)
{
    clock.post([&] {
        note("one")();
        clock.post(note("three"));
    });
    clock.post(note("two"));
    EXPECT_TRUE(log.empty());
    EXPECT_TRUE(clock.hasWorkNow());

    clock.runLoopTurn();
    EXPECT_EQ(log, Names({ "one@0.0000", "two@0.0000" }));
    clock.runLoopTurn();
    EXPECT_EQ(log.back(), "three@0.0000");
    EXPECT_FALSE(clock.hasWorkNow());
}

TEST_F(ClockTest, RunsWhatATimerPostsBeforeTimeGoesOn)
{
    clock.at(1, 0, [&] { clock.post(note("posted")); });
    clock.at(1.0001, 0, note("later"));
    ASSERT_TRUE(clock.advance(2));
    EXPECT_EQ(log, Names({ "posted@1.0000", "later@1.0001" }));
}

TEST_F(ClockTest, ATimerSetByATimerFiresOnALaterTurn)
{
    clock.at(1, 0, [&] {
        clock.at(0, 0, note("inner"));
        clock.post(note("posted"));
    });
    clock.at(1, 0, note("outer"));
    ASSERT_TRUE(clock.advance(1));
    EXPECT_EQ(log, Names({ "outer@1.0000", "posted@1.0000", "inner@1.0000" }));
}

TEST_F(ClockTest, TakesPostedWorkFromOtherThreads)
{
    int count = 0;
    std::thread other([&] {
        for (int i = 0; i < 100; ++i)
            clock.post([&] { ++count; });
    });
    other.join();
    ASSERT_TRUE(clock.advance(0));
    EXPECT_EQ(count, 100);
}

TEST_F(ClockTest, ShowsFramesOnlyWhileSomethingAnimates)
{
    std::vector<double> frames;
    clock.addFrameObserver([&](double now) {
        frames.push_back(now);
        return now < 0.05 - 1e-9;
    });
    EXPECT_TRUE(clock.isAnimating());

    ASSERT_TRUE(clock.advance(10));

    EXPECT_EQ(frames, std::vector<double>({ 1 / 60.0, 2 / 60.0, 3 / 60.0 }));
    EXPECT_FALSE(clock.isAnimating());
}

TEST_F(ClockTest, DrawsTheMomentAtWhichItStops)
{
    std::vector<double> frames;
    clock.addFrameObserver([&](double now) {
        frames.push_back(now);
        return true;
    });
    ASSERT_TRUE(clock.advance(0.02));
    EXPECT_EQ(frames, std::vector<double>({ 1 / 60.0, 0.02 }));

    ASSERT_TRUE(clock.advance(0));
    EXPECT_EQ(frames.size(), 2U);

    // The grid of frames does not move with the stops.
    ASSERT_TRUE(clock.advance(2 / 60.0 - 0.02));
    EXPECT_EQ(frames.size(), 3U);
    EXPECT_NEAR(frames.back(), 2 / 60.0, 1e-12);
}

TEST_F(ClockTest, FrameObserversComeAndGoDuringAFrame)
{
    FrameObserverId second {};
    clock.addFrameObserver([&](double) {
        note("first")();
        clock.removeFrameObserver(second);
        clock.addFrameObserver([&](double) {
            note("new")();
            return false;
        });
        return false;
    });
    second = clock.addFrameObserver([&](double) {
        note("second")();
        return true;
    });
    ASSERT_TRUE(clock.advance(2 / 60.0));
    EXPECT_EQ(log, Names({ "first@0.0166", "new@0.0333" }));
}

TEST_F(ClockTest, SkipsStretchesInWhichNothingIsDue)
{
    // Thirty thousand years: frame by frame this would not end.
    clock.at(1800, 0, note("half an hour"));
    ASSERT_TRUE(clock.advance(1e12));
    EXPECT_EQ(log, Names({ "half an hour@1800.0" }));
    EXPECT_EQ(clock.now(), 1e12);
}

TEST_F(ClockTest, WorkThatNeverEndsGetsATurnAFrame)
{
    int turns = 0;
    std::function<void()> again = [&] {
        ++turns;
        clock.post(again);
    };
    clock.post(again);
    clock.at(0.1, 0, note("still comes"));

    ASSERT_TRUE(clock.advance(0.1));

    EXPECT_GT(turns, 1000);
    EXPECT_LT(turns, 20'000);
    EXPECT_EQ(log.size(), 1U);
}

TEST_F(ClockTest, ATimerThatRearmsItselfWithoutDelayDoesNotHang)
{
    int fired = 0;
    std::function<void()> again = [&] {
        ++fired;
        clock.at(0, 0, again);
    };
    clock.at(0, 0, again);
    ASSERT_TRUE(clock.advance(0.05));
    EXPECT_GE(fired, 1000);
    EXPECT_LT(fired, 20'000);
    EXPECT_EQ(clock.now(), 0.05);
}

TEST_F(ClockTest, RefusesToAdvanceInsideACallback)
{
    Status inner;
    Status restart;
    clock.at(1, 0, [&] {
        inner = clock.advance(1);
        restart = clock.start({});
    });
    testing::internal::CaptureStderr();
    ASSERT_TRUE(clock.advance(2));
    std::string const said = testing::internal::GetCapturedStderr();
    EXPECT_FALSE(inner);
    EXPECT_FALSE(restart);
    EXPECT_NE(said.find("from inside a callback"), std::string::npos);
    EXPECT_EQ(clock.now(), 2);
    EXPECT_FALSE(clock.isAdvancing());
}

TEST_F(ClockTest, RefusesToGoBackOrForEver)
{
    testing::internal::CaptureStderr();
    for (double seconds : { -1.0, std::nan(""), std::numeric_limits<double>::infinity() })
        EXPECT_FALSE(clock.advance(seconds));
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(clock.now(), 0);
}

TEST_F(ClockTest, CanAdvanceAgainAfterACallbackThrew)
{
    clock.at(1, 0, [] { throw 1; });
    clock.at(2, 0, note("after"));
    EXPECT_THROW((void)clock.advance(3), int);
    EXPECT_FALSE(clock.isAdvancing());
    ASSERT_TRUE(clock.advance(3));
    EXPECT_EQ(log, Names({ "after@2.0000" }));
}

TEST_F(ClockTest, StartDropsWhatWasPending)
{
    clock.at(1, 0, note("timer"));
    clock.post(note("posted"));
    clock.addFrameObserver([&](double) { return true; });
    ASSERT_TRUE(clock.start({}));
    ASSERT_TRUE(clock.advance(5));
    EXPECT_TRUE(log.empty());
    EXPECT_FALSE(clock.isAnimating());
}

}
}
