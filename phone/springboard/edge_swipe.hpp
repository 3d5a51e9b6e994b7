// EdgeSwipe: a finger that goes up from the screen's lower edge, as one leaves the lock screen or an
// application. State of a view that passes its touches on. Main thread.
#pragma once

#include "phone/uikit/ui_touch.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

class EdgeSwipe {
public:
    static constexpr double kEdge = 44;       // points from the bottom in which it begins
    static constexpr double kDistance = 60;   // points up that make it one

    void begin(UIView view, objc::handle touches)
    {
        m_start = pointOf(view, touches);
        m_isFollowed = m_start.y > view.bounds().size.height - kEdge;
    }
    // Once for each finger: it has gone far enough.
    bool isDone(UIView view, objc::handle touches)
    {
        if (!m_isFollowed || m_start.y - pointOf(view, touches).y < kDistance)
            return false;
        m_isFollowed = false;
        return true;
    }
    void end() { m_isFollowed = false; }

private:
    static CGPoint pointOf(UIView view, objc::handle touches)
    {
        return touches.send<"anyObject", UITouch>().locationInView(view);
    }

    CGPoint m_start {};
    bool m_isFollowed { false };
};

}
