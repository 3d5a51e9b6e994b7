// The card of a call that is being placed: over everything but alerts, the lock screen too. A button ends it.
// Main thread.
#pragma once

#include <string>

namespace phone {

struct Application;

// Takes the place of a call that is shown already.
void showCall(Application const& application, std::string const& number);
void hideCall();   // none: nothing
bool isCallShown();
void layOutCall();   // the screen has turned

void defineCallCard();

}
