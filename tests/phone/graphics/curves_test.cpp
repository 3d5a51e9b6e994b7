#include "phone/graphics/curves.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace phone::graphics {

TEST(TimingCurve, IsExactAtBothEndsAndHeldOutside)
{
    for (TimingCurve const& curve : { kLinear, kEaseIn, kEaseOut, kEaseInOut, kDefaultTiming }) {
        EXPECT_EQ(curve.at(0), 0);
        EXPECT_EQ(curve.at(1), 1);
        EXPECT_EQ(curve.at(-3), 0);
        EXPECT_EQ(curve.at(7), 1);
        EXPECT_EQ(curve.at(std::nan("")), 0);
    }
}

TEST(TimingCurve, LinearIsTheFractionItself) { EXPECT_DOUBLE_EQ(kLinear.at(0.3), 0.3); }

TEST(TimingCurve, EaseInOutIsSymmetricAboutItsMiddle)
{
    EXPECT_NEAR(kEaseInOut.at(0.5), 0.5, 1e-9);
    for (double x = 0.05; x < 0.5; x += 0.05)
        EXPECT_NEAR(kEaseInOut.at(x) + kEaseInOut.at(1 - x), 1, 1e-9);
}

TEST(TimingCurve, EaseInAndEaseOutMirrorEachOther)
{
    EXPECT_NEAR(kEaseIn.at(0.25), 1 - kEaseOut.at(0.75), 1e-9);
    EXPECT_LT(kEaseIn.at(0.25), 0.25);
    EXPECT_GT(kEaseOut.at(0.25), 0.25);
}

TEST(TimingCurve, AnswersThePointOfTheBezierAboveX)
{
    // At parameter 0.4: x = 3*0.36*0.4*x1 + 3*0.6*0.16*x2 + 0.064, and y likewise.
    double const x = 0.432 * 0.25 + 0.288 * 0.25 + 0.064;
    double const y = 0.432 * 0.1 + 0.288 * 1 + 0.064;

    EXPECT_NEAR(kDefaultTiming.at(x), y, 1e-9);
}

TEST(TimingCurve, NeverFallsBack)
{
    for (TimingCurve const& curve :
        { kEaseIn, kEaseOut, kEaseInOut, kDefaultTiming, TimingCurve { 1, 0, 0, 1 } }) {
        double before = 0;
        for (int i = 1; i <= 200; ++i) {
            double const now = curve.at(i / 200.0);
            EXPECT_GE(now, before);
            before = now;
        }
    }
}

TEST(Deceleration, TravelsHalfASecondOfItsVelocityAtTheNormalRate)
{
    EXPECT_NEAR(decelerationDistance(1000), 499.5, 0.01);
    EXPECT_NEAR(decelerationDistance(1000, kDecelerationFast), 99.5, 0.01);
    EXPECT_NEAR(decelerationDistance(-1000), -499.5, 0.01);
}

TEST(Deceleration, LosesARateOfItsSpeedEachMillisecond)
{
    EXPECT_NEAR(decelerationVelocity(1000, 0.001), 998, 1e-9);
    EXPECT_NEAR(decelerationVelocity(1000, 0.002), 998 * 0.998, 1e-9);
}

TEST(Deceleration, OffsetIsTheSumOfVelocity)
{
    double sum = 0;
    for (int i = 0; i < 3000; ++i)
        sum += decelerationVelocity(1000, (i + 0.5) / 10000) / 10000;

    EXPECT_NEAR(decelerationOffset(1000, 0.3), sum, 0.01);
}

TEST(Deceleration, EndsWhenTheSpeedReachesTheThreshold)
{
    double const duration = decelerationDuration(-1000, kDecelerationNormal, 10);

    EXPECT_NEAR(decelerationVelocity(-1000, duration), -10, 1e-6);
    EXPECT_EQ(decelerationDuration(5, kDecelerationNormal, 10), 0);
}

TEST(Deceleration, TellsWhenItPassesADistanceOrThatItNeverDoes)
{
    double const time = decelerationTimeTo(200, 1000);

    EXPECT_NEAR(decelerationOffset(1000, time), 200, 1e-9);
    EXPECT_LT(decelerationTimeTo(600, 1000), 0);
    EXPECT_LT(decelerationTimeTo(-200, 1000), 0);
    EXPECT_LT(decelerationTimeTo(1, 0), 0);
    EXPECT_EQ(decelerationTimeTo(0, 0), 0);
}

TEST(RubberBand, FollowsTheFormulaAndNeverReachesTheDimension)
{
    EXPECT_NEAR(rubberBand(100, 400), (1 - 1 / (100 * 0.55 / 400 + 1)) * 400, 1e-12);
    EXPECT_NEAR(rubberBand(1, 400), 0.55, 0.001);
    EXPECT_LT(rubberBand(1e9, 400), 400);
    EXPECT_EQ(rubberBand(-100, 400), -rubberBand(100, 400));
    EXPECT_EQ(rubberBand(0, 400), 0);
    EXPECT_EQ(rubberBand(50, 0), 0);
}

TEST(RubberBand, InverseGivesTheFingerBack)
{
    EXPECT_NEAR(rubberBandInverse(rubberBand(123, 300), 300), 123, 1e-9);
    EXPECT_NEAR(rubberBandInverse(rubberBand(-7, 300), 300), -7, 1e-9);
    EXPECT_TRUE(std::isfinite(rubberBandInverse(300, 300)));
}

TEST(Spring, StandardOneComesToRestWithoutCrossing)
{
    Spring const spring;

    EXPECT_EQ(spring.displacement(100, 0, 0), 100);
    double before = 100;
    for (int i = 1; i < 240; ++i) {
        double const now = spring.displacement(100, 0, i / 120.0);
        EXPECT_LT(now, before);
        EXPECT_GT(now, 0);
        before = now;
    }
    EXPECT_NEAR(spring.settlingTime(100, 0), 0.42, 0.05);
}

TEST(Spring, VelocityIsTheSlopeOfDisplacementBelowAtAndAboveCriticalDamping)
{
    for (double const damping : { 10.0, 45.71, 90.0 }) {
        Spring const spring { 1, 522.35, damping };
        for (double const time : { 0.01, 0.1, 0.3 }) {
            double const slope =
                (spring.displacement(80, -300, time + 1e-6) - spring.displacement(80, -300, time - 1e-6))
                / 2e-6;
            EXPECT_NEAR(spring.velocity(80, -300, time), slope, 0.01) << damping << " at " << time;
        }
    }
}

TEST(Spring, ObeysItsEquationOfMotion)
{
    for (double const damping : { 10.0, 45.71, 90.0 }) {
        Spring const spring { 1, 522.35, damping };
        double const h = 1e-5;
        double const t = 0.07;
        double const acceleration =
            (spring.velocity(50, 200, t + h) - spring.velocity(50, 200, t - h)) / (2 * h);
        double const force =
            -spring.stiffness * spring.displacement(50, 200, t) - damping * spring.velocity(50, 200, t);
        EXPECT_NEAR(acceleration, force, std::abs(force) * 1e-3) << damping;
    }
}

TEST(Spring, UnderDampedOneSwingsPastRest)
{
    Spring const spring { 1, 522.35, 10 };

    EXPECT_LT(spring.displacement(100, 0, 3.14159 / std::sqrt(522.35)), 0);
}

TEST(Spring, MadeForADurationHasSettledByThen)
{
    for (double const ratio : { 0.3, 0.7, 1.0 }) {
        Spring const spring = Spring::settlingIn(0.5, ratio);
        EXPECT_LE(std::abs(spring.displacement(1, 0, 0.5)), 0.0011) << ratio;
        EXPECT_GE(std::abs(spring.displacement(1, 0, 0.1)), 0.01) << ratio;
    }
}

}   // namespace phone::graphics
