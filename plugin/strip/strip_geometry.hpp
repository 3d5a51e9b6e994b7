// Numbers that the strip's layout shares between its parts. Points.
#pragma once

#include "platform/core_graphics.hpp"

#include <cstdint>

// As seen by the user: five slots fill the strip.
inline constexpr CGFloat kSlots = 5.0;
inline constexpr CGFloat kScreenMargin = 20;   // both sides together

// In landscape the strip begins at this part of the screen's width. A single-precision constant: 3.200000047683716.
inline constexpr CGFloat kLandscapeDivisor = 3.2f;

// The banded style runs from edge to edge; every other style, and every overlay, keeps the margin.
inline constexpr std::uint64_t kBlurredStyle = 1;
inline constexpr std::uint64_t kBandedStyle = 2;
