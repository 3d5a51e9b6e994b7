// On what a composer, a picker or a prompt is presented.
#pragma once

#include "platform/uikit.hpp"

// The first responder after the view that is no view itself: the controller that owns it. Nil where the chain has none.
UIResponder responderChainPresenter(UIView view);

// The root view controller of the first window that is the key window; nil where none is.
UIResponder keyWindowPresenter();

// Compares by numbers: 13.10 is at least 13.7, 9.3 is below 13.
bool systemVersionIsAtLeast(NSString version);
