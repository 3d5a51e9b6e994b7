// Calls placed by asking Siri.
#pragma once

#include <cstdint>

// The argument of callUsingSiri:. Any other value presents a request without a text.
enum class SiriApp : std::int32_t { whatsapp = 0, telegram = 1 };
