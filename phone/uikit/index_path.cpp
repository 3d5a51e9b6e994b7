#include "phone/uikit/index_path.hpp"

#include <vector>

namespace phone {

namespace {

// Beyond this many a path is made each time; about a megabyte stays.
constexpr std::size_t kKeptPaths = 10'000;

NSIndexPath makePath(FlowIndex index)
{
    return NSIndexPath::cls().send<"indexPathForItem:inSection:", NSIndexPath>(
        static_cast<NSInteger>(index.item), static_cast<NSInteger>(index.section));
}

}

NSIndexPath NSIndexPath::of(FlowIndex index)
{
    if (index.section != 0 || index.item >= kKeptPaths)
        return makePath(index);
    // Never released: the process may end while views still lay themselves out.
    static auto* const kept = new std::vector<objc::ref<NSIndexPath>>;
    if (kept->size() <= index.item)
        kept->resize(index.item + 1);
    objc::ref<NSIndexPath>& path = (*kept)[index.item];
    if (!path)
        path = objc::retain(makePath(index));
    return path;
}

}
