// The card of an application that was opened: its icon and name, and what it was given. It shows the touches that reach it, each
// with its number. Main thread.
#pragma once

#include "phone/apps/layout_view.hpp"

#include <string>

namespace phone {

// As large as its superview makes it. No URL: opened by its icon.
objc::ref<UIView> makeAppCard(std::string const& identifier, std::string const& url);

void defineAppCard();

}
