#include "phone/kernel/macho/mach_o_bytes.hpp"

#include <algorithm>
#include <array>
#include <charconv>

namespace phone {

std::string hexadecimal(std::uint64_t value)
{
    std::array<char, 18> digits {};
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), value, 16).ptr;
    return "0x" + std::string(digits.data(), end);
}

bool MachOBytes::holds(std::uint64_t offset, std::uint64_t length, char const* what)
{
    if (offset > size() || length > size() - offset)
        fail(std::string(what) + " at " + hexadecimal(offset) + " lies past the end of the file");
    return isGood();
}

std::uint32_t MachOBytes::bigEndianAt(std::uint64_t offset)
{
    if (!holds(offset, 4, "an integer"))
        return 0;
    auto const byte = [&](std::size_t i) { return std::uint32_t { m_bytes[offset + i] }; };
    return byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
}

std::string MachOBytes::textAt(std::uint64_t offset, std::uint64_t end)
{
    if (!isGood())
        return {};
    end = std::min(end, size());
    if (offset < end) {
        auto const first = m_bytes.begin() + static_cast<std::ptrdiff_t>(offset);
        auto const last = m_bytes.begin() + static_cast<std::ptrdiff_t>(end);
        if (auto const zero = std::find(first, last, 0); zero != last)
            return { first, zero };
    }
    fail("a text at " + hexadecimal(offset) + " has no end");
    return {};
}

std::uint64_t MachOBytes::unsignedNumber(std::uint64_t& offset, std::uint64_t end)
{
    std::uint64_t value = 0;
    for (unsigned shift = 0; isGood(); shift += 7) {
        if (offset >= end || shift > 63) {
            fail("a number at " + hexadecimal(offset) + " has no end");
            break;
        }
        auto const byte = at<std::uint8_t>(offset++);
        value |= std::uint64_t { byte & 0x7fu } << shift;
        if (!(byte & 0x80))
            return isGood() ? value : 0;
    }
    return 0;
}

std::int64_t MachOBytes::signedNumber(std::uint64_t& offset, std::uint64_t end)
{
    std::uint64_t value = 0;
    for (unsigned shift = 0; isGood();) {
        if (offset >= end || shift > 63) {
            fail("a number at " + hexadecimal(offset) + " has no end");
            break;
        }
        auto const byte = at<std::uint8_t>(offset++);
        value |= std::uint64_t { byte & 0x7fu } << shift;
        shift += 7;
        if (byte & 0x80)
            continue;
        if (shift < 64 && (byte & 0x40))
            value |= ~std::uint64_t { 0 } << shift;
        return isGood() ? static_cast<std::int64_t>(value) : 0;
    }
    return 0;
}

}
