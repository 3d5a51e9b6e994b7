// NSURL as the platform reads it. Main thread.
#pragma once

namespace phone {

// Does nothing the second time.
void replaceUrls();

}
