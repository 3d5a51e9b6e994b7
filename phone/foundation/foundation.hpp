// Foundation as a whole: what GNUstep Base lacks or does in its own way. What boot calls first. Main thread.
#pragma once

namespace phone {

// NSTimer and NSDate on the phone's clock, locale and time zone from the boot options,
// property-list files through the device root, index paths, tracing of notification centres, and
// kCFCoreFoundationVersionNumber. Again: only what the boot options say is applied anew.
void defineFoundation();

// NSLocale and NSCalendar of the phone's language. A part of the above.
void replaceLocale();

// Applies language and time zone of the boot options again (a boot in the same process).
void applyLocaleOptions();

}
