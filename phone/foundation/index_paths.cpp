// NSIndexPath as UIKit extends it: two numbers, section and item (or row).
#include "phone/foundation/index_paths.hpp"

#include "phone/foundation/method_replacement.hpp"
#include "platform/foundation.hpp"

namespace phone {

namespace {

id indexPath(id cls, SEL, NSInteger item, NSInteger section)
{
    NSUInteger const indexes[] { static_cast<NSUInteger>(section), static_cast<NSUInteger>(item) };
    return objc::handle { cls }
        .send<"indexPathWithIndexes:length:", objc::handle>(
            static_cast<NSUInteger const*>(indexes), NSUInteger { 2 })
        .object;
}

// A path that is too short has no such number: NSNotFound, as the platform answers.
NSInteger indexAt(id self, NSUInteger position)
{
    objc::handle const path { self };
    if (path.send<"length", NSUInteger>() <= position)
        return static_cast<NSInteger>(~NSUInteger { 0 } >> 1);
    return static_cast<NSInteger>(path.send<"indexAtPosition:", NSUInteger>(position));
}
NSInteger section(id self, SEL) { return indexAt(self, 0); }
NSInteger item(id self, SEL) { return indexAt(self, 1); }

}

void extendIndexPaths()
{
    replace<"indexPathForItem:inSection:">("NSIndexPath", &indexPath, MethodKind::ofClass);
    replace<"indexPathForRow:inSection:">("NSIndexPath", &indexPath, MethodKind::ofClass);
    replace<"section">("NSIndexPath", &section);
    replace<"item">("NSIndexPath", &item);
    replace<"row">("NSIndexPath", &item);
}

}
