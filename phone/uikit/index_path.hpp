// NSIndexPath, as UIKit extends it: section and item of a list. Main thread.
#pragma once

#include "phone/uikit/flow_layout.hpp"
#include "platform/foundation.hpp"

namespace phone {

struct NSIndexPath : objc::subclass<NSIndexPath, "NSIndexPath", NSObject> {
    using subclass::subclass;
    // Lent. Those of the first section are kept for the next time: a layout asks for all of a list's, again
    // and again, and making one costs ten times as much as handing it out.
    static NSIndexPath of(FlowIndex index);
    NSInteger section() const { return send<"section", NSInteger>(); }
    NSInteger item() const { return send<"item", NSInteger>(); }
    // Negative numbers become very large ones, which no list has.
    FlowIndex index() const
    {
        return { static_cast<std::size_t>(section()), static_cast<std::size_t>(item()) };
    }
};

}
