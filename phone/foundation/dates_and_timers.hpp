// NSDate and NSTimer on the phone's clock. Main thread.
#pragma once

namespace phone {

// Both do nothing the second time.
void replaceDates();
void replaceTimers();

}
