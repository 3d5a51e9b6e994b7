#include "phone/uikit/scroll_motion.hpp"

#include "phone/graphics/curves.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

// Points per second. UIKit stops a coast when a frame moves it by less than a fraction of a pixel; below
// this speed the rest of the way is under half a point.
constexpr double kCoastEndVelocity = 1;
// A lift below this speed is no flick. Chosen by us; UIKit's own number is not published.
constexpr double kCoastStartVelocity = 40;
constexpr double kPageFlickVelocity = 200;

// Critically damped springs. An end brings the content back in 0.4 to 0.6 s; a page turns a little faster.
constexpr double kEndStiffness = 130;
constexpr double kPageStiffness = 220;
constexpr double kRestTolerance = 0.1;     // points
constexpr double kEasingSeconds = 0.3;     // as setContentOffset:animated: takes
constexpr double kShortestMotion = 1e-3;   // seconds; so that what is a hair outside is brought back

graphics::Spring criticalSpring(double stiffness) { return { 1, stiffness, 2 * std::sqrt(stiffness) }; }

}

double ScrollRange::clamp(double offset) const { return std::min(std::max(offset, minimum), maximum); }

double draggedOffset(double wanted, ScrollRange range, double length, bool bounces)
{
    double const end = range.clamp(wanted);
    if (end == wanted)
        return wanted;
    return bounces && length > 0 ? end + graphics::rubberBand(wanted - end, length) : end;
}

double wantedOffset(double shown, ScrollRange range, double length)
{
    double const end = range.clamp(shown);
    if (end == shown || length <= 0)
        return shown;
    double const limit = length * 0.999;
    return end + graphics::rubberBandInverse(std::clamp(shown - end, -limit, limit), length);
}

double pageOffset(double offset, double velocity, ScrollRange range, double length)
{
    if (length <= 0 || !range.contains(offset))
        return range.clamp(offset);
    double const pages = offset / length;
    double page = std::round(pages);
    if (velocity > kPageFlickVelocity)
        page = std::floor(pages) + 1;
    else if (velocity < -kPageFlickVelocity)
        page = std::ceil(pages) - 1;
    double const target = range.clamp(page * length);
    // The end of the range may lie between two pages, and be the nearer one.
    if (std::abs(velocity) <= kPageFlickVelocity
        && std::abs(range.maximum - offset) < std::abs(target - offset))
        return range.maximum;
    return target;
}

ScrollMotion::ScrollMotion(double offset)
    : m_start(offset)
    , m_rest(offset)
{
}

ScrollMotion ScrollMotion::coasting(
    double offset, double velocity, ScrollRange range, bool bounces, double rate)
{
    ScrollMotion motion(offset);
    if (!range.contains(offset)) {
        motion.m_rest = range.clamp(offset);
        motion.m_stiffness = kEndStiffness;
        motion.m_springStart = offset - motion.m_rest;
        motion.m_springVelocity = velocity;
        motion.m_duration = std::max(
            criticalSpring(kEndStiffness).settlingTime(motion.m_springStart, velocity, kRestTolerance),
            kShortestMotion);
        return motion;
    }
    if (!(std::abs(velocity) >= kCoastStartVelocity))
        return motion;

    motion.m_velocity = velocity;
    motion.m_rate = rate;
    motion.m_coastSeconds = graphics::decelerationDuration(velocity, rate, kCoastEndVelocity);
    motion.m_duration = motion.m_coastSeconds;
    motion.m_rest = offset + graphics::decelerationOffset(velocity, motion.m_coastSeconds, rate);
    if (range.contains(motion.m_rest))
        return motion;

    double const end = range.clamp(motion.m_rest);
    motion.m_coastSeconds = std::max(graphics::decelerationTimeTo(end - offset, velocity, rate), 0.0);
    motion.m_duration = motion.m_coastSeconds;
    motion.m_rest = end;
    if (bounces) {
        motion.m_stiffness = kEndStiffness;
        motion.m_springVelocity = graphics::decelerationVelocity(velocity, motion.m_coastSeconds, rate);
        motion.m_duration +=
            criticalSpring(kEndStiffness).settlingTime(0, motion.m_springVelocity, kRestTolerance);
    }
    return motion;
}

ScrollMotion ScrollMotion::settling(double offset, double velocity, double target)
{
    ScrollMotion motion(offset);
    motion.m_rest = target;
    if (offset == target)
        return motion;
    // A critically damped spring passes its goal when it arrives too fast; it is then let go slower.
    double const distance = offset - target;
    double const fastest = std::sqrt(kPageStiffness) * std::abs(distance);
    motion.m_stiffness = kPageStiffness;
    motion.m_springStart = distance;
    motion.m_springVelocity = std::clamp(velocity, -fastest, fastest);
    motion.m_duration =
        criticalSpring(kPageStiffness).settlingTime(distance, motion.m_springVelocity, kRestTolerance);
    return motion;
}

ScrollMotion ScrollMotion::easing(double offset, double target)
{
    ScrollMotion motion(offset);
    motion.m_rest = target;
    motion.m_isEasing = true;
    motion.m_duration = offset == target ? 0 : kEasingSeconds;
    return motion;
}

double ScrollMotion::at(double seconds) const
{
    if (seconds >= m_duration)
        return m_rest;
    if (m_isEasing)
        return m_start + (m_rest - m_start) * graphics::kEaseInOut.at(seconds / m_duration);
    if (seconds < m_coastSeconds)
        return m_start + graphics::decelerationOffset(m_velocity, seconds, m_rate);
    return m_rest
        + criticalSpring(m_stiffness).displacement(m_springStart, m_springVelocity, seconds - m_coastSeconds);
}

}
