#include "phone/graphics/curves.hpp"

#include <algorithm>
#include <cmath>

namespace phone::graphics {

namespace {

// One coordinate of a cubic Bezier whose ends are 0 and 1.
double bezier(double p1, double p2, double t)
{
    double const u = 1 - t;
    return 3 * u * u * t * p1 + 3 * u * t * t * p2 + t * t * t;
}

double bezierSlope(double p1, double p2, double t)
{
    double const u = 1 - t;
    return 3 * u * u * p1 + 6 * u * t * (p2 - p1) + 3 * t * t * (1 - p2);
}

constexpr double kMillisecondsPerSecond = 1000;

// ln of the speed left after one second.
double logDecay(double rate) { return kMillisecondsPerSecond * std::log(rate); }

}   // namespace

double TimingCurve::at(double fraction) const
{
    if (!(fraction > 0))
        return 0;
    if (fraction >= 1)
        return 1;
    if (x1 == y1 && x2 == y2)
        return fraction;
    // x rises monotonically for control points within 0...1, so Newton steps kept inside a shrinking
    // bracket always arrive.
    double low = 0;
    double high = 1;
    double t = fraction;
    for (int step = 0; step < 60; ++step) {
        double const error = bezier(x1, x2, t) - fraction;
        if (std::abs(error) < 1e-12)
            break;
        (error > 0 ? high : low) = t;
        double const slope = bezierSlope(x1, x2, t);
        double const next = slope > 1e-9 ? t - error / slope : -1;
        t = next > low && next < high ? next : (low + high) / 2;
    }
    return bezier(y1, y2, t);
}

double decelerationOffset(double velocity, double seconds, double rate)
{
    if (seconds <= 0)
        return 0;
    return velocity * std::expm1(logDecay(rate) * seconds) / logDecay(rate);
}

double decelerationVelocity(double velocity, double seconds, double rate)
{
    return seconds <= 0 ? velocity : velocity * std::exp(logDecay(rate) * seconds);
}

double decelerationDistance(double velocity, double rate) { return -velocity / logDecay(rate); }

double decelerationDuration(double velocity, double rate, double threshold)
{
    double const speed = std::abs(velocity);
    if (!(speed > threshold) || threshold <= 0)
        return 0;
    return std::log(threshold / speed) / logDecay(rate);
}

double decelerationTimeTo(double distance, double velocity, double rate)
{
    if (distance == 0)
        return 0;
    double const remaining = 1 + distance * logDecay(rate) / velocity;
    if (velocity == 0 || distance / velocity < 0 || remaining <= 0)
        return -1;
    return std::log(remaining) / logDecay(rate);
}

double rubberBand(double overshoot, double dimension, double coefficient)
{
    if (!(dimension > 0) || overshoot == 0)
        return 0;
    double const shown = (1 - 1 / (std::abs(overshoot) * coefficient / dimension + 1)) * dimension;
    return std::copysign(shown, overshoot);
}

double rubberBandInverse(double shown, double dimension, double coefficient)
{
    if (!(dimension > 0) || shown == 0)
        return 0;
    // At the dimension itself the finger would be infinitely far away.
    double const fraction = std::min(std::abs(shown) / dimension, 1 - 1e-9);
    return std::copysign((1 / (1 - fraction) - 1) * dimension / coefficient, shown);
}

namespace {

struct Motion {
    double position;
    double velocity;
};

// Solution of m x'' + c x' + k x = 0.
Motion springMotion(Spring const& spring, double from, double velocity, double seconds)
{
    if (seconds <= 0)
        return { from, velocity };
    double const frequency = std::sqrt(spring.stiffness / spring.mass);
    double const ratio = spring.damping / (2 * std::sqrt(spring.stiffness * spring.mass));
    double const decay = ratio * frequency;
    // The standard spring's numbers are rounded: a ratio this near to one is meant as critical.
    if (std::abs(ratio - 1) < 1e-4) {
        double const slope = velocity + frequency * from;
        double const envelope = std::exp(-frequency * seconds);
        return { (from + slope * seconds) * envelope,
            (slope - frequency * (from + slope * seconds)) * envelope };
    }
    if (ratio < 1) {
        double const ringing = frequency * std::sqrt(1 - ratio * ratio);
        double const sine = (velocity + decay * from) / ringing;
        double const s = std::sin(ringing * seconds);
        double const c = std::cos(ringing * seconds);
        double const envelope = std::exp(-decay * seconds);
        return { envelope * (from * c + sine * s),
            envelope * ((sine * ringing - decay * from) * c - (from * ringing + decay * sine) * s) };
    }
    double const spread = frequency * std::sqrt(ratio * ratio - 1);
    double const slow = -decay + spread;
    double const fast = -decay - spread;
    double const fastPart = (velocity - slow * from) / (fast - slow);
    double const slowPart = from - fastPart;
    double const slowNow = slowPart * std::exp(slow * seconds);
    double const fastNow = fastPart * std::exp(fast * seconds);
    return { slowNow + fastNow, slow * slowNow + fast * fastNow };
}

}   // namespace

double Spring::displacement(double from, double velocity, double seconds) const
{
    return springMotion(*this, from, velocity, seconds).position;
}

double Spring::velocity(double from, double velocity, double seconds) const
{
    return springMotion(*this, from, velocity, seconds).velocity;
}

double Spring::settlingTime(double from, double velocity, double tolerance) const
{
    // The last moment outside the tolerance, found by walking back from a time by which even the
    // slowest part of the motion has died away. A 240th of a second is finer than any display.
    constexpr double kStep = 1.0 / 240;
    constexpr double kLongest = 60;
    double last = -kStep;
    double quiet = 0;
    for (double t = 0; t < kLongest && quiet < 2; t += kStep) {
        Motion const motion = springMotion(*this, from, velocity, t);
        bool const isNear = std::abs(motion.position) <= tolerance;
        quiet = isNear ? quiet + kStep : 0;
        if (!isNear)
            last = t;
    }
    return last + kStep;
}

Spring Spring::settlingIn(double duration, double dampingRatio)
{
    double const ratio = std::clamp(dampingRatio, 0.01, 1.0);
    double const time = std::max(duration, 1e-3);
    // The swing's envelope, exp(-ratio * frequency * time) / sqrt(1 - ratio^2), falls to 1/1000; near
    // critical damping it overrates the swing, and the critical spring's own time is enough.
    constexpr double kLogThousand = 6.907755278982137;
    constexpr double kCriticalLogThousand = 9.233412;   // root of (1 + x) exp(-x) = 1/1000
    bool const isNearCritical = ratio > 0.99;
    double const turns =
        isNearCritical ? kCriticalLogThousand : (kLogThousand - std::log(1 - ratio * ratio) / 2) / ratio;
    double const frequency = turns / time;
    return { 1, frequency * frequency, 2 * ratio * frequency };
}

}   // namespace phone::graphics
