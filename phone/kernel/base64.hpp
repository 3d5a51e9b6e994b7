// Base64 (RFC 4648), as scripts, property lists and vCards carry raw bytes. Any thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace phone {

// In one line, padded.
std::string base64(void const* bytes, std::size_t count);

// Takes the alphabet for URLs too. White space is passed over, the padding may be missing; none for anything else that is no
// base64.
std::optional<Bytes> bytesOfBase64(std::string_view text);

}
