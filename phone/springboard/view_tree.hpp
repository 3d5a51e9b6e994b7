// View trees as values, for scripts and for text goldens. Main thread.
#pragma once

#include "phone/kernel/trace.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

struct ViewTreeOptions {
    bool detail { false };         // every further property that UIKit has for the class and the phone models
    bool presentation { false };   // values of the running animation rather than the model's
    bool handles { true };         // without them a tree reads the same in every run
};

// {"class","handle","frame","bounds","center","transform","alpha","hidden","text","children"}, the children
// back to front. Null for nil.
Json viewTree(UIView view, ViewTreeOptions const& = {});

// All windows, back to front.
Json viewTrees(ViewTreeOptions const& = {});

}
