// PhoneWindow: the phone on the desktop. The mouse is the finger, the wheel scrolls, keys are the buttons; a
// legend beside the phone tells them. Built without SDL it opens nowhere. Main thread.
#pragma once

#include "phone/graphics/geometry.hpp"
#include "phone/kernel/result.hpp"

#include <functional>
#include <memory>
#include <vector>

namespace phone {

class PhoneWindow {
public:
    enum class End { closed, restart };

    PhoneWindow();
    ~PhoneWindow();
    PhoneWindow(PhoneWindow const&) = delete;
    PhoneWindow& operator=(PhoneWindow const&) = delete;

    // For a screen of that size held upright, points. An error without a display, or without SDL.
    Status open(graphics::Size portrait);

    // Called on each turn of run()'s loop, several times a second, outside of the phone's own callbacks. False
    // closes the window.
    void onEachTurn(std::function<bool()> work);

    // Does the phone's clock follow the real one? It does unless it is moved by hand.
    void movesClock(bool moves) { m_movesClock = moves; }

    // Draws what has changed, from within work that lasts.
    void refresh();

    // The booted phone's clock follows the real one until the window is closed, or the phone wants to restart.
    End run();

    void close();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
    std::vector<std::function<bool()>> m_work;
    bool m_movesClock { true };
};

}
