// ScrollMotion: how a scroll view's offset moves along one axis once the finger has left it, as a function
// of the seconds since then. Points, and points per second. UIScrollView (ui_scroll_view.hpp) uses two.
#pragma once

namespace phone {

// The offsets at which the content may rest.
struct ScrollRange {
    double minimum { 0 };
    double maximum { 0 };   // not below minimum

    double clamp(double offset) const;
    bool contains(double offset) const { return offset >= minimum && offset <= maximum; }
};

// The offset shown while the finger asks for `wanted`: past an end the content follows as a rubber band
// does, in a view `length` long, or stays at the end if it may not bounce.
double draggedOffset(double wanted, ScrollRange, double length, bool bounces);

// Which offset the finger asks for, so that `shown` is where the content is: a content that is caught in the
// middle of a bounce doesn't jump.
double wantedOffset(double shown, ScrollRange, double length);

// Where a paging scroll view comes to rest: on a multiple of `length`, at most one page on from where the
// finger left it, or at the end of the range. A slow finger leaves the nearer page.
double pageOffset(double offset, double velocity, ScrollRange, double length);

class ScrollMotion {
public:
    // At rest.
    explicit ScrollMotion(double offset = 0);

    // Coasts at the deceleration rate (per millisecond) and stops, or bounces at the end of the range. From
    // outside the range it springs back to its end.
    static ScrollMotion coasting(
        double offset, double velocity, ScrollRange, bool bounces, double decelerationRate);

    // Goes to `target` and rests there, without passing it (a page, an end).
    static ScrollMotion settling(double offset, double velocity, double target);

    // Asked for by code: eases in and out over a fixed time.
    static ScrollMotion easing(double offset, double target);

    double at(double seconds) const;
    double duration() const { return m_duration; }   // seconds until it rests
    double rest() const { return m_rest; }           // the offset where it ends
    bool moves() const { return m_duration > 0; }

private:
    double m_start { 0 };
    double m_velocity { 0 };
    double m_rate { 0 };
    double m_coastSeconds { 0 };   // from then on, if it still moves, a spring to m_rest
    double m_springStart { 0 };
    double m_springVelocity { 0 };
    double m_stiffness { 0 };
    double m_duration { 0 };
    double m_rest { 0 };
    bool m_isEasing { false };
};

}
