// Who wants to know of sounds that are played. Main thread.
#pragma once

#include <cstdint>
#include <functional>

namespace phone {

// Called with the system sound's number each time, after the trace has it. nullptr: nobody.
void setSoundObserver(std::function<void(std::uint32_t sound)> observer);

}
