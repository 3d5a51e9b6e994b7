// Type encodings from C++ types, as the Objective-C compilers of 64-bit systems write them.
#pragma once

#include "objc/handle.hpp"

#include <type_traits>

namespace objc {

// A struct that travels in messages specialises this next to its definition:
//     template <> struct objc::encoding<CGSize> { static constexpr fixed_string value { "{CGSize=dd}" }; };
template <class T>
struct encoding {
    static constexpr auto make()
    {
        if constexpr (std::is_void_v<T>)
            return fixed_string { "v" };
        else if constexpr (std::is_same_v<T, class_handle> || std::is_same_v<T, Class>)
            return fixed_string { "#" };
        else if constexpr (std::is_base_of_v<handle, T> || std::is_same_v<T, id>)
            return fixed_string { "@" };
        else if constexpr (std::is_same_v<T, SEL>)
            return fixed_string { ":" };
        else if constexpr (std::is_enum_v<T>)
            return encoding<std::underlying_type_t<T>>::value;
        else if constexpr (std::is_same_v<T, bool>)
            return fixed_string { "B" };
        else if constexpr (std::is_same_v<T, float>)
            return fixed_string { "f" };
        else if constexpr (std::is_same_v<T, double>)
            return fixed_string { "d" };
        else if constexpr (std::is_same_v<T, char const*>)
            return fixed_string { "r*" };
        else if constexpr (std::is_pointer_v<T>)
            return fixed_string { "^v" };
        else if constexpr (std::is_integral_v<T> && std::is_signed_v<T>)
            return integer(
                fixed_string { "c" }, fixed_string { "s" }, fixed_string { "i" }, fixed_string { "q" });
        else {
            static_assert(std::is_integral_v<T>, "give this type an objc::encoding of its own");
            return integer(
                fixed_string { "C" }, fixed_string { "S" }, fixed_string { "I" }, fixed_string { "Q" });
        }
    }
    static constexpr auto integer(auto one, auto two, auto four, auto eight)
    {
        if constexpr (sizeof(T) == 1)
            return one;
        else if constexpr (sizeof(T) == 2)
            return two;
        else if constexpr (sizeof(T) == 4)
            return four;
        else
            return eight;
    }
    static constexpr auto value = make();
};
template <class Signature>
struct encoding<block_ref<Signature>> {
    static constexpr fixed_string value { "@?" };
};

template <class... T>
constexpr auto joined_encodings()
{
    return (fixed_string { "" } + ... + encoding<T>::value);
}

// A method's: result, receiver, selector, arguments.
template <class R, class... A>
inline constexpr auto method_encoding = joined_encodings<R, id, SEL, A...>();

}
