// The block runtime of a phone that runs the iPhone's library: copies move signatures along, which no library on Linux knows of.
// Linked into the executable, whose symbols win over those of the libraries.
#include "objc/block.hpp"

#include <cstdlib>
#include <cstring>

namespace {

using objc::block_header;

// The published ABI: bits of a block's flags.
constexpr int kReferences = 0xfffe;   // counted in twos
constexpr int kOneReference = 2;
constexpr int kNeedsFree = 1 << 24;   // it is on the heap
constexpr int kHasCopyDispose = 1 << 25;
constexpr int kIsGlobal = 1 << 28;

template <class F>
F* helper(F* const* field)
{
    return objc::boundary::load_code(field);
}

}

extern "C" {
void* corvel_host_malloc_block_class[32];

void* _Block_copy(void const* argument)
{
    if (!argument)
        return nullptr;
    auto* const block = static_cast<block_header*>(const_cast<void*>(argument));
    if (block->flags & kIsGlobal)
        return block;
    if (block->flags & kNeedsFree) {
        block->flags += kOneReference;
        return block;
    }
    auto* const copy = static_cast<block_header*>(std::malloc(block->descriptor->size));
    if (!copy)
        return nullptr;
    std::memcpy(static_cast<void*>(copy), block, block->descriptor->size);
    objc::boundary::store_isa(&copy->isa, corvel_host_malloc_block_class);
    copy->flags = (copy->flags & ~kReferences) | kNeedsFree | kOneReference;
    // The signature holds for the field that it was made in.
    objc::boundary::store_code(&copy->invoke, objc::boundary::load_code(&block->invoke));
    if (block->flags & kHasCopyDispose)
        helper (&block->descriptor->copy)(copy, block);
    return copy;
}

void _Block_release(void const* argument)
{
    auto* const block = static_cast<block_header*>(const_cast<void*>(argument));
    if (!block || block->flags & kIsGlobal || !(block->flags & kNeedsFree))
        return;
    block->flags -= kOneReference;
    if (block->flags & kReferences)
        return;
    if (block->flags & kHasCopyDispose)
        helper (&block->descriptor->dispose)(block);
    std::free(block);
}
}
