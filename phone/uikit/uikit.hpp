// UIKit as a whole: what boot calls. Main thread.
#pragma once

namespace phone {

// Defines every class of the core, in the order of their superclasses: colours, fonts, images, views, windows,
// controllers, labels, controls, layout. Once a process, before anything else of UIKit; boot options set.
void defineUIKit();

}
