#include "phone/uikit/scroll_motion.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace phone {
namespace {

constexpr ScrollRange kRange { 0, 1000 };
constexpr double kNormal = 0.998;

TEST(ScrollMotion, CoastsAsFarAsTheRateSays)
{
    auto const motion = ScrollMotion::coasting(0, 1000, kRange, true, kNormal);

    // v0 / (1000 ln(1/d)) less what is left at a point per second.
    EXPECT_NEAR(motion.rest(), 499.5, 1);
    EXPECT_NEAR(motion.at(0.1), 1000 * (std::pow(kNormal, 100) - 1) / (1000 * std::log(kNormal)), 1e-6);
    EXPECT_DOUBLE_EQ(motion.at(100), motion.rest());
}

TEST(ScrollMotion, NeverMovesBackWhileItCoasts)
{
    auto const motion = ScrollMotion::coasting(100, 800, kRange, true, kNormal);

    for (double t = 0, last = 100; t < motion.duration(); t += 1.0 / 60) {
        EXPECT_GE(motion.at(t), last - 1e-9);
        last = motion.at(t);
    }
}

TEST(ScrollMotion, BouncesPastTheEndAndComesBack)
{
    auto const motion = ScrollMotion::coasting(900, 2000, kRange, true, kNormal);

    double furthest = 0;
    for (double t = 0; t < motion.duration(); t += 1.0 / 240)
        furthest = std::max(furthest, motion.at(t));
    EXPECT_GT(furthest, 1010);
    EXPECT_LT(furthest, 1150);
    EXPECT_DOUBLE_EQ(motion.rest(), 1000);
    EXPECT_NEAR(motion.at(motion.duration() - 1e-6), 1000, 0.2);
}

TEST(ScrollMotion, StopsAtTheEndWithoutBounces)
{
    auto const motion = ScrollMotion::coasting(900, 2000, kRange, false, kNormal);

    for (double t = 0; t < 2; t += 1.0 / 240)
        EXPECT_LE(motion.at(t), 1000 + 1e-6);
    EXPECT_DOUBLE_EQ(motion.rest(), 1000);
}

TEST(ScrollMotion, SpringsBackFromOutsideInHalfASecond)
{
    auto const motion = ScrollMotion::coasting(-80, 0, kRange, true, kNormal);

    EXPECT_DOUBLE_EQ(motion.at(0), -80);
    EXPECT_DOUBLE_EQ(motion.rest(), 0);
    EXPECT_GT(motion.duration(), 0.3);
    EXPECT_LT(motion.duration(), 1.0);
    EXPECT_GT(motion.at(0.5), -4);
}

TEST(ScrollMotion, RestsAfterASlowLift)
{
    EXPECT_FALSE(ScrollMotion::coasting(300, 10, kRange, true, kNormal).moves());
    EXPECT_FALSE(ScrollMotion::coasting(300, 0, kRange, true, kNormal).moves());
}

TEST(ScrollMotion, SettlesOnAPageWithoutPassingIt)
{
    auto const motion = ScrollMotion::settling(120, 5000, 375);

    for (double t = 0; t < motion.duration(); t += 1.0 / 240)
        EXPECT_LE(motion.at(t), 375 + 1e-6);
    EXPECT_DOUBLE_EQ(motion.rest(), 375);
    EXPECT_LT(motion.duration(), 1.0);
}

TEST(ScrollMotion, EasesInThreeTenthsOfASecond)
{
    auto const motion = ScrollMotion::easing(0, 100);

    EXPECT_DOUBLE_EQ(motion.duration(), 0.3);
    EXPECT_NEAR(motion.at(0.15), 50, 0.5);
    EXPECT_LT(motion.at(0.03), 5);
    EXPECT_FALSE(ScrollMotion::easing(5, 5).moves());
}

TEST(ScrollPages, TurnOneForAFlickAndNoneForASlowFinger)
{
    EXPECT_DOUBLE_EQ(pageOffset(100, 900, kRange, 375), 375);
    EXPECT_DOUBLE_EQ(pageOffset(100, 9000, kRange, 375), 375);
    EXPECT_DOUBLE_EQ(pageOffset(100, 50, kRange, 375), 0);
    EXPECT_DOUBLE_EQ(pageOffset(200, 0, kRange, 375), 375);
    EXPECT_DOUBLE_EQ(pageOffset(700, -900, kRange, 375), 375);
}

TEST(ScrollPages, EndWithTheRange)
{
    EXPECT_DOUBLE_EQ(pageOffset(990, 0, kRange, 375), 1000);
    EXPECT_DOUBLE_EQ(pageOffset(800, 900, kRange, 375), 1000);
    EXPECT_DOUBLE_EQ(pageOffset(-20, 0, kRange, 375), 0);
    EXPECT_DOUBLE_EQ(pageOffset(50, 0, kRange, 0), 50);
}

TEST(ScrollDrag, FollowsTheFingerInsideAndARubberBandOutside)
{
    EXPECT_DOUBLE_EQ(draggedOffset(400, kRange, 375, true), 400);
    double const pulled = draggedOffset(-100, kRange, 375, true);
    EXPECT_NEAR(pulled, -(1 - 1 / (100 * 0.55 / 375 + 1)) * 375, 1e-9);
    EXPECT_DOUBLE_EQ(draggedOffset(-100, kRange, 375, false), 0);
    EXPECT_NEAR(wantedOffset(pulled, kRange, 375), -100, 1e-6);
}

}
}
