// A string as a template argument: selectors, class names and encodings are known when we compile.
#pragma once

#include <cstddef>
#include <string_view>

namespace objc {

template <std::size_t N>
struct fixed_string {
    char text[N + 1] {};

    constexpr fixed_string() = default;
    constexpr fixed_string(char const (&literal)[N + 1])
    {
        for (std::size_t i = 0; i <= N; ++i)
            text[i] = literal[i];
    }

    static constexpr std::size_t size() { return N; }
    constexpr char const* c_str() const { return text; }
    constexpr std::string_view view() const { return { text, N }; }

    constexpr std::size_t count(char wanted) const
    {
        std::size_t found = 0;
        for (char c : view())
            found += c == wanted;
        return found;
    }
};
template <std::size_t N>
fixed_string(char const (&)[N]) -> fixed_string<N - 1>;

template <std::size_t A, std::size_t B>
constexpr fixed_string<A + B> operator+(fixed_string<A> a, fixed_string<B> b)
{
    fixed_string<A + B> joined;
    for (std::size_t i = 0; i < A; ++i)
        joined.text[i] = a.text[i];
    for (std::size_t i = 0; i < B; ++i)
        joined.text[A + i] = b.text[i];
    return joined;
}

// The platform's accessor names: "label" is set by "setLabel:" and kept in "_label".
template <std::size_t N>
constexpr auto setter_name(fixed_string<N> property)
{
    if (property.text[0] >= 'a' && property.text[0] <= 'z')
        property.text[0] = static_cast<char>(property.text[0] - 'a' + 'A');
    return fixed_string { "set" } + property + fixed_string { ":" };
}
template <std::size_t N>
constexpr auto ivar_name(fixed_string<N> property)
{
    return fixed_string { "_" } + property;
}

}
