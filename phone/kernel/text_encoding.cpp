#include "phone/kernel/text_encoding.hpp"

#include <cstddef>

namespace phone {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Windows-1252 from 0x80 to 0x9F (https://encoding.spec.whatwg.org/index-windows-1252.txt).
constexpr char16_t kWindows1252[32] = {
    0x20AC,
    0x0081,
    0x201A,
    0x0192,
    0x201E,
    0x2026,
    0x2020,
    0x2021,
    0x02C6,
    0x2030,
    0x0160,
    0x2039,
    0x0152,
    0x008D,
    0x017D,
    0x008F,
    0x0090,
    0x2018,
    0x2019,
    0x201C,
    0x201D,
    0x2022,
    0x2013,
    0x2014,
    0x02DC,
    0x2122,
    0x0161,
    0x203A,
    0x0153,
    0x009D,
    0x017E,
    0x0178,
};

// Length of the well-formed sequence at the front of a text that is not empty; 0 when there is none.
std::size_t sequenceLength(std::string_view text)
{
    auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char const first = byte(0);
    if (first < 0x80)
        return 1;
    std::size_t const length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    }
    // Overlong forms, surrogates, and what lies past U+10FFFF.
    if ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F)
        || (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F))
        return 0;
    return length;
}

}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        std::size_t const length = sequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string repairedUtf8(std::string_view text)
{
    std::string repaired;
    repaired.reserve(text.size());
    while (!text.empty()) {
        std::size_t const length = sequenceLength(text);
        if (length == 0) {
            appendUtf8(repaired, kReplacement);
            text.remove_prefix(1);
        } else {
            repaired.append(text.substr(0, length));
            text.remove_prefix(length);
        }
    }
    return repaired;
}

std::string utf8FromUtf16(std::string_view bytes, ByteOrder order)
{
    auto const unit = [&](std::size_t i) -> char32_t {
        auto const first = static_cast<unsigned char>(bytes[i]);
        auto const second = static_cast<unsigned char>(bytes[i + 1]);
        return order == ByteOrder::bigEndian ? first << 8 | second : second << 8 | first;
    };
    std::string text;
    text.reserve(bytes.size());
    std::size_t i = 0;
    for (; i + 1 < bytes.size(); i += 2) {
        char32_t character = unit(i);
        if (character >= 0xD800 && character < 0xDC00 && i + 3 < bytes.size()) {
            char32_t const low = unit(i + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                character = 0x10000 + ((character - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            }
        }
        appendUtf8(text, character);
    }
    if (i < bytes.size())
        appendUtf8(text, kReplacement);
    return text;
}

std::string utf8FromWindows1252(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    for (char c : bytes) {
        auto const byte = static_cast<unsigned char>(c);
        appendUtf8(text, byte >= 0x80 && byte < 0xA0 ? kWindows1252[byte - 0x80] : byte);
    }
    return text;
}

void appendUtf8(std::string& text, char32_t character)
{
    if (character > 0x10FFFF || (character >= 0xD800 && character < 0xE000))
        character = kReplacement;
    auto const append = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | character >> 6);
        append(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        append(0x80 | (character >> 6 & 0x3F));
        append(0x80 | (character & 0x3F));
    } else {
        append(0xF0 | character >> 18);
        append(0x80 | (character >> 12 & 0x3F));
        append(0x80 | (character >> 6 & 0x3F));
        append(0x80 | (character & 0x3F));
    }
}

}
