// Siri on the screen: what she was asked, over everything but alerts. A touch sends her away. Main thread.
#pragma once

#include <string>

namespace phone {

// On a later turn of the main loop, as Siri comes on a phone. Takes the place of an earlier request.
void showSiri(std::string const& text);
void hideSiri();   // also one that is still to come
bool isSiriShown();
void layOutSiri();   // the screen has turned

void defineSiriCard();

}
