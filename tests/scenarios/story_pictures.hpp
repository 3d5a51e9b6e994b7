// The screens of a story, to be looked at: with CORVEL_PICTURES=FOLDER in the environment each test leaves pictures in
// FOLDER/SUITE.TEST, the screen as each touch of the finger meets it and as the test leaves it, numbered in their order. A folder
// that is there already is added to.
#pragma once

namespace phone {

// Of the screen as it is now. Nothing without that variable, and nothing before the phone has booted.
void takePicture();

}
