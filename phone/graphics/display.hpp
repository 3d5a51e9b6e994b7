// Display: the shape of a phone's display, known by its size. Any thread.
#pragma once

#include "phone/graphics/geometry.hpp"

namespace phone::graphics {

// Points, the phone held upright.
struct Display {
    enum class CutOut { none, notch, island };

    double cornerRadius = 0;   // of the continuous corners; 0 on phones with a home button
    CutOut cutOut = CutOut::none;
    double cutOutWidth = 0;   // in the middle of the upper edge

    // A size that no phone has: round and with a notch where it is tall, else with a home button.
    static Display of(Size portrait);
};

}
