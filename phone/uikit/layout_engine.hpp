// From views to equations and back: the constraints and stacks of a tree, for layout_solver.hpp. UIKit's own
// files only.
#pragma once

#include "phone/uikit/ns_layout.hpp"
#include "phone/uikit/ui_stack_view.hpp"

namespace phone {

// In the order in which they became active.
std::vector<NSLayoutConstraint> activeConstraints();

// Stack views that arrange something, in the order in which they were made.
std::vector<UIStackView> activeStacks();
double stackSpacingAfter(UIStackView stack, UIView view);

}
