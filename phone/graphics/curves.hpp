// Motion as pure functions of time: timing curves, springs, scrolling. Times in seconds, lengths in
// points. Nothing here keeps state or looks at a clock.
#pragma once

namespace phone::graphics {

// CSS and CAMediaTimingFunction: a cubic Bezier from (0,0) to (1,1) with two control points.
struct TimingCurve {
    double x1 { 0 };
    double y1 { 0 };
    double x2 { 1 };
    double y2 { 1 };

    // Progress at a fraction of the duration; exact at 0 and 1, and held there outside.
    double at(double fraction) const;

    friend bool operator==(TimingCurve const&, TimingCurve const&) = default;
};

inline constexpr TimingCurve kLinear { 0, 0, 1, 1 };
inline constexpr TimingCurve kEaseIn { 0.42, 0, 1, 1 };
inline constexpr TimingCurve kEaseOut { 0, 0, 0.58, 1 };
inline constexpr TimingCurve kEaseInOut { 0.42, 0, 0.58, 1 };
inline constexpr TimingCurve kDefaultTiming { 0.25, 0.1, 0.25, 1 };   // Core Animation's default

// UIScrollView's deceleration rates, per millisecond.
inline constexpr double kDecelerationNormal = 0.998;
inline constexpr double kDecelerationFast = 0.99;

// Coasting from velocity v0 (points per second) at time 0.
double decelerationOffset(double velocity, double seconds, double rate = kDecelerationNormal);
double decelerationVelocity(double velocity, double seconds, double rate = kDecelerationNormal);
double decelerationDistance(double velocity, double rate = kDecelerationNormal);   // until it stops

// Seconds until the speed falls to `threshold` points per second; 0 if it is below already.
double decelerationDuration(double velocity, double rate = kDecelerationNormal, double threshold = 10);

// Seconds until a coast has gone `distance`; negative if it never gets there.
double decelerationTimeTo(double distance, double velocity, double rate = kDecelerationNormal);

// How far the content shows itself pulled when the finger is `overshoot` past the end of a scroll
// view `dimension` long. Odd in overshoot; never reaches dimension.
double rubberBand(double overshoot, double dimension, double coefficient = 0.55);
double rubberBandInverse(double shown, double dimension, double coefficient = 0.55);

// A damped spring pulling towards zero.
struct Spring {
    double mass { 1 };
    double stiffness { 522.35 };   // the system's standard spring: critically damped
    double damping { 45.71 };

    // Displacement and velocity after `seconds`, released at `from` with `velocity`.
    double displacement(double from, double velocity, double seconds) const;
    double velocity(double from, double velocity, double seconds) const;

    // Seconds after which the displacement stays within `tolerance` of rest.
    double settlingTime(double from, double velocity, double tolerance = 0.1) const;

    // +[UIView animateWithDuration:delay:usingSpringWithDamping:initialSpringVelocity:...]: the
    // spring of that damping ratio (0 to 1] that has settled to a thousandth after the duration.
    static Spring settlingIn(double duration, double dampingRatio);
};

}   // namespace phone::graphics
