// What every part of the phone reaches for: clock, trace and boot options of this process's phone, and the
// few services that a part above provides to UIKit. Main thread unless a member says otherwise.
#pragma once

#include "phone/kernel/boot_options.hpp"
#include "phone/kernel/clock.hpp"
#include "phone/kernel/trace.hpp"

namespace phone {

class DeviceRoot;

inline Clock& clock() { return deviceClock(); }
inline Trace& trace() { return deviceTrace(); }

// Written by boot, before any class is defined; read everywhere.
inline BootOptions& bootOptions()
{
    static BootOptions options;
    return options;
}

// The phone's disk. Set by boot; null before (and in tests of parts that need none): then there is no file
// under any device path.
inline DeviceRoot*& deviceRoot()
{
    static DeviceRoot* root = nullptr;
    return root;
}

// Points, as UIScreen's bounds have it: turned with the orientation (interface orientation codes 1 to 4).
struct ScreenState {
    int orientation { 1 };
    bool isDimmed { false };          // nobody has touched the phone for a while
    bool showsHapticMark { false };   // the motor has just tapped
};
inline ScreenState& screenState()
{
    static ScreenState state;
    return state;
}

}
