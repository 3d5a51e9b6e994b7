// Snapshot: the views on the screen as elements, after XCUITest's rules. Main thread.
//
// Rules of the phone's own: hidden views, and those all but transparent, are left out with what is in them. What lies off the
// screen, is clipped away, or lies behind a window that takes the touch there, is in the tree as not visible. Positions are the
// model's: where an animation leads to.
#pragma once

#include "objc/handle.hpp"
#include "phone/automation/element_tree.hpp"
#include "phone/uikit/ui_alert_controller.hpp"

namespace phone {

// `object` of an element is the view, UIApplication's for number 0. Windows are laid out first.
ElementTree takeSnapshot();

// The number of the element that stands for the object; none when the snapshot has none.
std::optional<std::size_t> findObject(ElementTree const& tree, objc::handle object);

// Is the view (or the application) still part of what the phone shows or hides, in some window?
bool isOnPhone(objc::handle object);

// A view that a snapshot leaves out, on its own: as an element that is not visible.
Element describeHidden(objc::handle object);

// The alert or sheet that was presented last and is not on its way out; nil when there is none.
UIAlertController frontMostAlert();

}
