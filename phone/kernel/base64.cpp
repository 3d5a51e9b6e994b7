#include "phone/kernel/base64.hpp"

#include <cctype>

namespace phone {

namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}

std::string base64(void const* start, std::size_t count)
{
    auto const* const bytes = static_cast<std::uint8_t const*>(start);
    std::string text;
    text.reserve((count + 2) / 3 * 4);
    for (std::size_t i = 0; i < count; i += 3) {
        std::size_t const left = count - i;
        unsigned const second = left > 1 ? bytes[i + 1] : 0u;
        unsigned const third = left > 2 ? bytes[i + 2] : 0u;
        unsigned const bits = unsigned { bytes[i] } << 16 | second << 8 | third;
        text.push_back(kDigits[bits >> 18]);
        text.push_back(kDigits[(bits >> 12) & 63]);
        text.push_back(left > 1 ? kDigits[(bits >> 6) & 63] : '=');
        text.push_back(left > 2 ? kDigits[bits & 63] : '=');
    }
    return text;
}

std::optional<Bytes> bytesOfBase64(std::string_view text)
{
    Bytes bytes;
    bytes.reserve(text.size() / 4 * 3);
    unsigned bits = 0;
    int count = 0;   // of bits that are no byte yet
    bool isOver = false;
    for (char const c : text) {
        if (std::isspace(static_cast<unsigned char>(c)))
            continue;
        if (c == '=') {
            isOver = true;
            continue;
        }
        auto const digit = kDigits.find(c == '-' ? '+' : c == '_' ? '/' : c);
        if (digit == kDigits.npos || isOver)
            return std::nullopt;
        bits = (bits << 6) | static_cast<unsigned>(digit);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes.push_back(static_cast<std::uint8_t>(bits >> count));
            bits &= (1u << count) - 1;
        }
    }
    if (count == 6)   // a letter by itself
        return std::nullopt;
    return bytes;
}

}
