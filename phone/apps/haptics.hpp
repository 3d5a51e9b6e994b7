// Taps of the phone's motor, seen: a mark at the screen's edges for a moment. Main thread.
#pragma once

namespace phone {

void startHaptics();

}
