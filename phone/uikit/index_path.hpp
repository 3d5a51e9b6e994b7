// NSIndexPath, as UIKit extends it: section and item of a list. Main thread.
#pragma once

#include "phone/uikit/flow_layout.hpp"
#include "platform/foundation.hpp"

namespace phone {

struct NSIndexPath : objc::subclass<NSIndexPath, "NSIndexPath", NSObject> {
    using subclass::subclass;
    // Lent.
    static NSIndexPath of(FlowIndex index)
    {
        return cls().send<"indexPathForItem:inSection:", NSIndexPath>(
            static_cast<NSInteger>(index.item), static_cast<NSInteger>(index.section));
    }
    NSInteger section() const { return send<"section", NSInteger>(); }
    NSInteger item() const { return send<"item", NSInteger>(); }
    // Negative numbers become very large ones, which no list has.
    FlowIndex index() const
    {
        return { static_cast<std::size_t>(section()), static_cast<std::size_t>(item()) };
    }
};

}
