// The finger of a scene: it touches what the screen shows, by what it says. Each touch is noted for the transcript.
#pragma once

#include "phone/phone.hpp"

#include <string>
#include <vector>

namespace phone {

// What the finger did, and how many events the trace had by then.
struct FingerNote {
    std::size_t event;
    std::string text;
};

class Finger {
public:
    // `pause`: seconds on the phone's clock after each touch, for what comes of it.
    explicit Finger(Phone& device, double pause = 1)
        : m_phone(device)
        , m_pause(pause)
    {
    }

    void wait(double seconds) const;

    // The contact's button: 0 is the one at the strip's leading end.
    void tapContact(std::size_t index = 0) const;
    void holdContact(std::size_t index = 0) const;   // a long press
    void pressContact(std::size_t index, double seconds) const;
    void tapStrip() const;   // its middle: the button of an empty list

    // A button, a row of an alert or of the picker, by its text.
    void tap(std::string const& text) const;
    void typePasscode(std::string const& code) const;

    // Notes of this process, oldest first; and those of a phone that this one takes over from.
    static std::vector<FingerNote> const& notes();
    static void takeOver(std::vector<FingerNote> notes);

private:
    void touch(UIView view, std::string const& what) const;

    Phone& m_phone;
    double m_pause;
};

}
