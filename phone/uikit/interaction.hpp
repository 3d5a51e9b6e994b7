// The part of UIKit that moves under a finger: touches, recognisers, scrolling, collection views, alerts.
// Main thread.
#pragma once

namespace phone {

// Defines its classes, in the order of their superclasses. After the core's (views, controls, controllers);
// once a process, further calls do nothing.
void defineInteraction();

}
