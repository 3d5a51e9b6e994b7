// AudioToolbox, as far as plug-ins use it: sounds and taps of the motor.
#include "phone/foundation/audio.hpp"

#include "phone/kernel/services.hpp"

namespace phone {

namespace {

std::function<void(std::uint32_t)>& soundObserver()
{
    static std::function<void(std::uint32_t)> observer;
    return observer;
}

}

void setSoundObserver(std::function<void(std::uint32_t)> observer) { soundObserver() = std::move(observer); }

}

extern "C" void AudioServicesPlaySystemSound(std::uint32_t sound)
{
    phone::trace().record("sound", { { "id", sound } });
    if (auto const& observer = phone::soundObserver())
        observer(sound);
}
