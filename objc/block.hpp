// Blocks from lambdas, and blocks that were handed to us, after the published Block ABI.
#pragma once

#include "objc/encoding.hpp"

#include <new>
#include <utility>

namespace objc {

struct block_descriptor {
    unsigned long reserved;
    unsigned long size;
    void (*copy)(void* destination, void const* source);
    void (*dispose)(void const* block);
    char const* signature;
};

struct block_header {
    void* isa;
    int flags;
    int reserved;
    IMP invoke;
    block_descriptor const* descriptor;
};

// A block as an argument or a result: one pointer, lent. Calling none does nothing and answers zero.
template <class R, class... A>
struct block_ref<R(A...)> {
    block_header* block = nullptr;

    explicit operator bool() const { return block != nullptr; }

    R operator()(A... arguments) const
    {
        if (!block)
            return R();
        using wired = boundary::wired<R(block_header*, A...)>;
        return wired::call(
            boundary::function_cast<typename wired::function>(boundary::load_code(&block->invoke)), block,
            arguments...);
    }
};

template <class Member>
struct lambda_signature;
template <class F, class R, class... A>
struct lambda_signature<R (F::*)(A...) const> {
    using type = R(A...);
};

// A block literal on the stack: what the compiler of another language would have written for ^{ ... }.
// Whoever keeps it copies it, which copies the captures; they are destroyed with the last release.
//     UIView::animate(0.3, objc::block([view = objc::retain(view)] { view->setAlpha(0); }));
template <class F>
class block {
public:
    using signature = typename lambda_signature<decltype(&F::operator())>::type;

    explicit block(F code)
        : m_code(std::move(code))
    {
        boundary::store_isa(&m_header.isa, _NSConcreteStackBlock);
        m_header.flags = kHasCopyDispose | kHasSignature;
        m_header.reserved = 0;
        boundary::store_code(&m_header.invoke, boundary::any_function(&thunk<signature>::invoke));
        m_header.descriptor = descriptor();
    }
    block(block const&) = delete;
    block& operator=(block const&) = delete;

    operator block_ref<signature>() { return { &m_header }; }

private:
    static constexpr int kHasCopyDispose = 1 << 25;
    static constexpr int kHasSignature = 1 << 30;

    template <class Signature>
    struct thunk;
    template <class R, class... A>
    struct thunk<R(A...)> {
        static constexpr auto encoded = encoding<R>::value + fixed_string { "@?" } + joined_encodings<A...>();

        static boundary::wire_t<R> invoke(block_header* header, boundary::wire_t<A>... arguments)
        {
            F const& code = reinterpret_cast<block const*>(header)->m_code;
            if constexpr (std::is_void_v<R>)
                code(boundary::wire<A>::narrow(arguments)...);
            else
                return boundary::wire<R>::widen(code(boundary::wire<A>::narrow(arguments)...));
        }
    };

    // _Block_copy has moved the bytes already; the captures are then made properly.
    static void copyCaptures(void* destination, void const* source)
    {
        new (&static_cast<block*>(destination)->m_code) F(static_cast<block const*>(source)->m_code);
    }
    static void disposeCaptures(void const* heapBlock) { static_cast<block const*>(heapBlock)->m_code.~F(); }

    // Filled at run time: its code pointers are signed by their own address where pointers are signed.
    static block_descriptor const* descriptor()
    {
        static block_descriptor filled {};
        if (!filled.size) {
            filled.size = sizeof(block);
            boundary::store_code(&filled.copy, &copyCaptures);
            boundary::store_code(&filled.dispose, &disposeCaptures);
            filled.signature = thunk<signature>::encoded.c_str();
        }
        return &filled;
    }

    block_header m_header {};
    F m_code;
};

template <class F>
block_ref<typename block<F>::signature> lent(block<F> const& literal)
{
    return const_cast<block<F>&>(literal);
}

// A block that is kept beyond the call that brought it.
template <class Signature>
class block_copy {
public:
    block_copy() = default;
    explicit block_copy(block_ref<Signature> lent)
        : m_block { static_cast<block_header*>(lent.block ? _Block_copy(lent.block) : nullptr) }
    {
    }
    block_copy(block_copy const& other)
        : block_copy(other.m_block)
    {
    }
    block_copy(block_copy&& other) noexcept
        : m_block(std::exchange(other.m_block, {}))
    {
    }
    block_copy& operator=(block_copy other) noexcept
    {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~block_copy()
    {
        if (m_block)
            _Block_release(m_block.block);
    }

    explicit operator bool() const { return bool(m_block); }
    block_ref<Signature> get() const { return m_block; }
    template <class... A>
    auto operator()(A... arguments) const
    {
        return m_block(arguments...);
    }

private:
    block_ref<Signature> m_block {};
};

}
