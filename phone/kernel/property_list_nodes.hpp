// libplist's nodes with an owner, and the few exact conversions that its functions lack. For the property-list
// reader and writer alone. Any thread.
#pragma once

#include <plist/plist.h>

#include <cstdlib>
#include <memory>
#include <type_traits>

namespace phone::plist {

struct NodeDeleter {
    void operator()(plist_t node) const { plist_free(node); }
};
// A node without a parent, with all below it.
using Node = std::unique_ptr<std::remove_pointer_t<plist_t>, NodeDeleter>;

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
// What libplist hands out as the caller's: texts, iterators, whole files.
template <class T>
using Malloced = std::unique_ptr<T, FreeDeleter>;

}
