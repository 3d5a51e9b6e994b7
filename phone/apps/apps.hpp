// The phone's applications as boot sees them. Main thread.
#pragma once

namespace phone {

// Their classes: before plug-ins load.
void defineApplications();

// The screen has turned: windows over SpringBoard's own take its bounds.
void layOutApplications();

}
