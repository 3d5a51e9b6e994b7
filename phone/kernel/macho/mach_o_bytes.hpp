// Reading a Mach-O file's bytes without trusting them. The first thing that is wrong is kept as a reason; from then on every
// read answers zero, so that a parser asks once a loop whether all is well. Any thread.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string>

namespace phone {

class MachOBytes {
public:
    explicit MachOBytes(std::span<std::uint8_t const> bytes)
        : m_bytes(bytes)
    {
    }

    std::uint64_t size() const { return m_bytes.size(); }
    bool isGood() const { return m_problem.empty(); }
    std::string const& problem() const { return m_problem; }
    void fail(std::string problem)
    {
        if (m_problem.empty())
            m_problem = std::move(problem);
    }

    // Is the range inside the file? Fails with what it is if not.
    bool holds(std::uint64_t offset, std::uint64_t length, char const* what);

    // A little-endian integer, at any alignment.
    template <class T>
    T at(std::uint64_t offset)
    {
        T value {};
        if (holds(offset, sizeof value, "an integer"))
            std::memcpy(&value, m_bytes.data() + offset, sizeof value);
        return isGood() ? value : T {};
    }
    std::uint32_t bigEndianAt(std::uint64_t offset);

    // A text that ends with a zero before `end`.
    std::string textAt(std::uint64_t offset, std::uint64_t end);

    // LEB128 numbers (DWARF 7.6). They move the offset, never past the end.
    std::uint64_t unsignedNumber(std::uint64_t& offset, std::uint64_t end);
    std::int64_t signedNumber(std::uint64_t& offset, std::uint64_t end);

private:
    std::span<std::uint8_t const> m_bytes;
    std::string m_problem;
};

// 0x1f: how offsets are told in reasons.
std::string hexadecimal(std::uint64_t);

}
