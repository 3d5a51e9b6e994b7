// Texts of protocols and files, whose white space and letters are ASCII's. Any thread.
#pragma once

#include <string>
#include <string_view>

namespace phone {

inline constexpr std::string_view kAsciiSpaces = " \t\n\v\f\r";

// Without the characters of `spaces` at both ends: a part of `text`.
std::string_view trimmed(std::string_view text, std::string_view spaces = kAsciiSpaces);

// A to Z in lower case; all else stays.
std::string lowercase(std::string_view text);

}
