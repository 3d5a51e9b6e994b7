// All that a day brings to the strip, for tests that look for crashes on a system that is not as it should be.
#pragma once

#include "tests/scenarios/story.hpp"

#include <cstdio>
#include <functional>
#include <string>

namespace phone {

class EverydayUse : public Story {
protected:
    static BootOptions usual(std::string const& version);
    // Taps, menus, composers, a call by Siri, picked contacts, both gestures, turning, unlocking, locking, music, a
    // call that is asked about, a message in another application.
    static void useEverything();

    // In a process of its own: empty, or how it failed (a signal's name, or that it raised). It writes to the pipe
    // what is to be said.
    static std::string inChild(std::function<void(std::FILE*)> const& work, std::string* said = nullptr);

private:
    static UIView firstPickerRow();
};

}
