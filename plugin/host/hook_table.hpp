// Every method of SpringBoard that we replace or add, in the order of installation.
#pragma once

// Once, at start-up, with the classes of hostState() chosen. A class that the system lacks leaves its rows without effect.
void installHooks();
