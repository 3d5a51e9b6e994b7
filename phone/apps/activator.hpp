// Activator: the user's gestures, each assigned to a listener that a plug-in has registered under a name. In the boot options'
// `absent` it is `activator`: a plug-in then finds no class LAActivator. Main thread.
#pragma once

#include <string>

namespace phone {

struct ActivatorAnswer {
    bool delivered { false };   // a listener stands under the name, and it was told
    bool handled { false };     // and it has marked the event as handled
};

// The gesture that is assigned to this listener: LAListener's -activator:receiveEvent:, or the form of it that is also given the
// listener's name. Nothing without a listener under the name, or while Activator is absent.
ActivatorAnswer sendActivatorEvent(std::string const& listenerName);

// LAActivator and LAEvent; before plug-ins load.
void defineActivator();

}
