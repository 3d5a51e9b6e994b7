// AudioToolbox, as far as plug-ins use it: sounds and taps of the motor.
#include "phone/kernel/services.hpp"

#include <cstdint>

extern "C" void AudioServicesPlaySystemSound(std::uint32_t sound)
{
    phone::trace().record("sound", { { "id", sound } });
}
