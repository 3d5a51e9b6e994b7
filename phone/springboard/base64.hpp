// Base64 as scripts carry raw bytes. Any thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace phone {

std::string base64(void const* bytes, std::size_t count);

// Line breaks and spaces are passed over. None for anything else that is no base64.
std::optional<Bytes> bytesOfBase64(std::string_view text);

}
