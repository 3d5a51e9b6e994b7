// Text encodings met in files: checking and repairing UTF-8, and turning others into it. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace phone {

// Well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isUtf8(std::string_view);

// The text with U+FFFD for each byte that is no part of a well-formed sequence.
std::string repairedUtf8(std::string_view);

// UTF-16 code units, two bytes each, without a byte order mark; a half of a surrogate pair and a last odd
// byte become U+FFFD.
enum class ByteOrder { bigEndian, littleEndian };
std::string utf8FromUtf16(std::string_view bytes, ByteOrder);

// Windows-1252, and so ISO 8859-1. The five bytes without a meaning become the control characters that
// they are in ISO 8859-1, as web browsers read them.
std::string utf8FromWindows1252(std::string_view);

// Appends one character. Surrogates and values above U+10FFFF become U+FFFD.
void appendUtf8(std::string& text, char32_t character);

}
