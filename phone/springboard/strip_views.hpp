// StripViews: the plug-in's two strips as the phone sees them, by class name. Main thread only.
#pragma once

#include "phone/uikit/ui_view.hpp"

namespace phone {

enum class StripKind { strip, overlay };   // on the lock screen, and the one outside it

// The first of its kind in any window, back to front; nil while there is none.
UIView findStrip(StripKind);

// From now on the trace has a `frame` event for each geometry call that a strip gets by message. Which strip it
// is, it tells after its initialiser only: the event of `initWithFrame:` is completed with the strip's next
// geometry call, or else on the next turn of the main loop.
void recordStripFrames();

}
