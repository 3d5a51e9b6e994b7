// Pictures of the starter set: files as they lie on the phone's disk. Any thread.
#pragma once

#include "phone/kernel/result.hpp"

namespace phone {

Bytes starterPortrait(int number);   // 1 to 10 (the last a JPEG, the others PNG); empty for another number
Bytes birthdayPicture();
Bytes emptyListPicture();

}
