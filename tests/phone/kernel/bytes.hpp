// Bytes and texts, one for one.
#pragma once

#include "phone/kernel/result.hpp"

#include <string>
#include <string_view>

namespace phone {

inline Bytes bytesOf(std::string_view text) { return { text.begin(), text.end() }; }
inline std::string textOf(Bytes const& bytes) { return { bytes.begin(), bytes.end() }; }

}
