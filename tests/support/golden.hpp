// Goldens: what a view tree or a picture looked like when somebody last looked at it and found it right. They lie in
// tests/golden. A test that differs leaves what it got beside the golden (pictures: the difference too) under
// golden/ in the build directory, and names the place.
//
// To accept new ones, run the test program with CORVEL_ACCEPT_GOLDENS=1, look at every picture that changed, and
// commit the files.
#pragma once

#include "phone/graphics/bitmap.hpp"
#include "phone/uikit/ui_view.hpp"

#include <string>

namespace phone {

// A line for each view, indented by depth: class, frame, and what differs from a plain view's. Without anything
// that differs from run to run.
std::string treeText(UIView root);

// `name` without ending: "strip/dark".
void expectGoldenText(std::string const& name, std::string const& actual);
// Edges of glyphs and curves may differ a little between versions of the drawing libraries.
void expectGoldenPicture(std::string const& name, graphics::Bitmap const& actual);

}
