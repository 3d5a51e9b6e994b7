// What a single tap on a contact does: the values of the setting singleTapAction. Any other value does nothing.
//
// They are not the codes of pending actions, and the numbers by which the menu hides its entries are neither.
#pragma once

#include <cstdint>

enum class SingleTap : std::uint64_t {
    callPhone = 0,
    msgWA = 1,
    msgTG = 2,
    callWA = 3,
    callTG = 4,
    msgSMS = 5,
    callFacetime = 6,
    sndEmail = 7,
};
