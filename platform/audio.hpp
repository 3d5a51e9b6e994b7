// AudioToolbox.
#pragma once

#include <cstdint>

inline constexpr std::uint32_t kHapticTapSound = 1519;   // a short tap of the haptic engine

extern "C" void AudioServicesPlaySystemSound(std::uint32_t sound);
