// SpringBoard's idle timer: the screen does not dim while our reason is held.
#pragma once

#include "platform/springboard.hpp"

// The cover sheet's provider, by the way that the running system has to it; nil where it has none, and the calls below then do
// nothing.
IdleTimerProvider currentIdleTimerProvider();

void holdIdleTimer();      // adds the reason "CVL"
void releaseIdleTimer();   // removes it
