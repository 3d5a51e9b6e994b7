// URLs that other applications serve.
#pragma once

#include "platform/uikit.hpp"

// Asks the system to open what the text says, with no options. A text that is no URL: the request carries none.
void openURL(NSString text, objc::block_ref<void(BOOL)> completion);
