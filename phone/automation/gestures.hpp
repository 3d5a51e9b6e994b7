// Gestures: fingers that move over the glass in the phone's time. Everything that touches the screen for a client goes through
// here. Points of the screen; main thread.
#pragma once

#include "phone/automation/actions.hpp"
#include "phone/uikit/geometry.hpp"

#include <functional>
#include <map>

namespace phone {

inline constexpr double kTapSeconds = 0.05;   // that a finger is down

class Gestures {
public:
    // Lets the phone's time pass, seconds: moves a manual clock, waits with a running one.
    using PassTime = std::function<void(double)>;
    // Where an element is on the screen now.
    using Place = std::function<Answer<CGRect>(std::string const& element)>;

    explicit Gestures(PassTime passTime)
        : m_passTime(std::move(passTime))
    {
    }

    // Ticks run over all sources at once, each as long as its longest item; a finger that moves is seen at every display frame.
    // Elements that are unknown and places outside of the screen are found before anything happens. Fingers that are down at the
    // end stay down.
    Answer<void> perform(std::vector<ActionSource> const& sources, Place const& place);
    // Lifts whatever is down.
    void release();

    // Fingers of their own, all lifted at the end.
    void press(CGPoint point, double seconds);
    void press(std::vector<CGPoint> const& points, double seconds);
    // Rests for `hold` seconds before it moves, and `rest` seconds at the end.
    void drag(CGPoint from, CGPoint to, double hold, double seconds, double rest = 0);

private:
    struct Finger {
        int number { 0 };
        CGPoint at {};
        bool isDown { false };
    };
    struct Motion {
        Finger* finger { nullptr };
        CGPoint from {};
        CGPoint to {};
        double seconds { 0 };
    };

    Finger& fingerOf(std::string const& source);
    Answer<void> check(std::vector<ActionSource> const& sources, Place const& place);
    Answer<CGPoint> target(ActionItem const& item, CGPoint pointer, Place const& place) const;
    void begin(
        ActionItem const& item, ActionSource const& source, Place const& place, std::vector<Motion>& motions);
    void run(double seconds, std::vector<Motion> const& motions);
    void press(std::string const& key);

    PassTime m_passTime;
    std::map<std::string, Finger> m_fingers;   // by source
    int m_nextFinger { 10 };                   // those below belong to press() and drag()
};

}
