#include "phone/apps/haptics.hpp"

#include "phone/foundation/audio.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

namespace {

constexpr double kMarkSeconds = 0.35;

// System sounds that are taps of the motor rather than sounds: peek, pop, three taps, and vibration.
bool isHaptic(std::uint32_t sound) { return (sound >= 1519 && sound <= 1521) || sound == 4095; }

void showMark(bool shows)
{
    screenState().showsHapticMark = shows;
    noteDisplayChange();
}

}

void startHaptics()
{
    setSoundObserver([end = TimerId::none](std::uint32_t sound) mutable {
        if (!isHaptic(sound))
            return;
        showMark(true);
        clock().cancel(end);
        end = clock().at(kMarkSeconds, 0, [] { showMark(false); });
    });
}

}
