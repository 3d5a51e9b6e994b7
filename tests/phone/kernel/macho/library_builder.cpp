#include "tests/phone/kernel/macho/library_builder.hpp"

namespace phone::test {
namespace {

constexpr std::uint64_t kUnwind = 0x1100;
constexpr std::uint64_t kOffsets = 0x1800;

class Commands {
public:
    explicit Commands(Bytes& bytes)
        : m_bytes(bytes)
    {
    }
    std::uint64_t segment(char const* name, std::uint64_t place, std::uint64_t fileSize,
        std::uint32_t protection, std::uint32_t sections)
    {
        std::uint64_t const at = open(0x19, 72 + 80 * sections);
        text(at + 8, name);
        put(m_bytes, at + 24, place);
        put<std::uint64_t>(m_bytes, at + 32, 0x4000);
        put(m_bytes, at + 40, place);
        put(m_bytes, at + 48, fileSize);
        put(m_bytes, at + 56, protection);
        put(m_bytes, at + 60, protection);
        put(m_bytes, at + 64, sections);
        m_section = at + 72;
        return at;
    }
    std::uint64_t section(char const* name, std::uint64_t place, std::uint64_t size, std::uint32_t kind)
    {
        std::uint64_t const at = m_section;
        text(at, name);
        put(m_bytes, at + 32, place);
        put(m_bytes, at + 40, size);
        put(m_bytes, at + 48, static_cast<std::uint32_t>(place));
        put(m_bytes, at + 64, kind);
        m_section += 80;
        return at;
    }
    void named(std::uint32_t command, std::uint32_t fields, char const* name)
    {
        auto const start = 8 + 4 * fields;
        std::uint64_t const at = open(command, (start + std::strlen(name) + 8) / 8 * 8);
        put(m_bytes, at + 8, start);
        text(at + start, name);
    }
    std::uint64_t plain(std::uint32_t command, std::initializer_list<std::uint32_t> fields)
    {
        std::uint64_t const at = open(command, 8 + 4 * fields.size());
        std::uint64_t field = at + 8;
        for (std::uint32_t const value : fields) {
            put(m_bytes, field, value);
            field += 4;
        }
        return at;
    }
    void finish()
    {
        put(m_bytes, 16, m_count);
        put(m_bytes, 20, static_cast<std::uint32_t>(m_end - 32));
    }

private:
    std::uint64_t open(std::uint32_t command, std::uint64_t size)
    {
        std::uint64_t const at = m_end;
        put(m_bytes, at, command);
        put(m_bytes, at + 4, static_cast<std::uint32_t>(size));
        m_end += size;
        ++m_count;
        return at;
    }
    void text(std::uint64_t at, char const* value)
    {
        for (; *value; ++value)
            m_bytes[at++] = static_cast<std::uint8_t>(*value);
    }

    Bytes& m_bytes;
    std::uint64_t m_end = 32, m_section = 0;
    std::uint32_t m_count = 0;
};

void append(Bytes& bytes, std::uint64_t at, std::string_view text)
{
    for (char const character : text)
        put(bytes, at++, static_cast<std::uint8_t>(character));
}

// Two functions: one with a frame pointer that saves x19 and x20, one without a frame, 32 bytes of stack.
void writeUnwindInfo(Bytes& bytes)
{
    std::uint32_t const header[] = { 1, 28, 1, 32, 0, 32, 2, 0x04000001 };
    for (std::size_t i = 0; i < 8; ++i)
        put(bytes, kUnwind + 4 * i, header[i]);
    std::uint32_t const index[] = { kCode, 56, 0, 0x1080, 0, 0 };
    for (std::size_t i = 0; i < 6; ++i)
        put(bytes, kUnwind + 32 + 4 * i, index[i]);
    std::uint64_t const page = kUnwind + 56;
    put<std::uint32_t>(bytes, page, 3);
    put<std::uint16_t>(bytes, page + 4, 12);
    put<std::uint16_t>(bytes, page + 6, 2);
    put<std::uint16_t>(bytes, page + 8, 20);
    put<std::uint16_t>(bytes, page + 10, 1);
    put<std::uint32_t>(bytes, page + 12, 0);
    put<std::uint32_t>(bytes, page + 16, 1u << 24 | 0x40);
    put<std::uint32_t>(bytes, page + 20, 0x02002000);
}

}

Bytes LibraryBuilder::build()
{
    bool const isArm64e = architecture == MachOArchitecture::arm64e;
    Bytes bytes(kTables + 0x200);
    std::uint32_t const header[] = { 0xfeedfacf, 0x0100000c, isArm64e ? 0x80000002u : 0, 6, 0, 0, 0x85, 0 };
    for (std::size_t i = 0; i < 8; ++i)
        put(bytes, 4 * i, header[i]);

    Commands commands(bytes);
    textSegment = commands.segment("__TEXT", 0, 0x4000, 5, isArm64e ? 3 : 2);
    commands.section("__text", kCode, 0x80, 0);
    commands.section("__unwind_info", kUnwind, 0x50, 0);
    if (isArm64e)
        initialiserSection = commands.section("__init_offsets", kOffsets, 4, 0x16);
    dataSegment = commands.segment("__DATA", kData, 0x4000, 3, isArm64e ? 1 : 2);
    commands.section("__data", kData, 0x40, 0);
    if (!isArm64e)
        initialiserSection = commands.section("__mod_init_func", kData + 0x40, 8, 9);
    tablesSegment = commands.segment("__LINKEDIT", kTables, 0x200, 1, 0);
    commands.named(0xd, 4, "/Library/Corvel.dylib");
    commands.named(0xc, 4, "/usr/lib/libobjc.A.dylib");
    commands.named(0xc, 4, "/usr/lib/libSystem.B.dylib");
    commands.named(0x8000001c, 1, "/var/jb/usr/lib");
    commands.plain(0x32, { 2, isArm64e ? 14u << 16 : 12u << 16, 16u << 16, 0 });

    unwindInfo = kUnwind;
    writeUnwindInfo(bytes);
    if (isArm64e) {
        put<std::uint32_t>(bytes, kOffsets, kCode);
        chainedTable = kTables;
        fixups = commands.plain(0x80000034, { kTables, 0x100 });
        // Version, starts, imports, names, 2 imports of 4 bytes, plain names.
        std::uint32_t const table[] = { 0, 32, 80, 88, 2, 1, 0, 0 };
        for (std::size_t i = 0; i < 8; ++i)
            put(bytes, kTables + 4 * i, table[i]);
        std::uint32_t const starts[] = { 3, 0, 16, 0 };   // segments, and the offset of each one's starts
        for (std::size_t i = 0; i < 4; ++i)
            put(bytes, kTables + 32 + 4 * i, starts[i]);
        std::uint64_t const data = kTables + 48;
        put<std::uint32_t>(bytes, data, 24);
        put<std::uint16_t>(bytes, data + 4, 0x4000);
        put<std::uint16_t>(bytes, data + 6, 2);
        put<std::uint64_t>(bytes, data + 8, kData);
        put<std::uint16_t>(bytes, data + 20, 1);
        put<std::uint16_t>(bytes, data + 22, 0);
        put<std::uint32_t>(bytes, kTables + 80, 1 | 1 << 9);              // library 1, name at 1
        put<std::uint32_t>(bytes, kTables + 84, 2 | 1 << 8 | 15u << 9);   // library 2, weak
        append(bytes, kTables + 88 + 1, "_objc_msgSend");
        append(bytes, kTables + 88 + 15, "_rare");
        std::uint64_t const bind = 1ull << 63;
        put<std::uint64_t>(bytes, kData, kCode | 2ull << 51);
        put<std::uint64_t>(bytes, kData + 8, bind | 2ull << 51);
        put<std::uint64_t>(bytes, kData + 16, bind | 16ull << 24 | 4ull << 51);
        put<std::uint64_t>(bytes, kData + 32, bind | 1);
    } else {
        rebaseProgram = kTables;
        bindProgram = kTables + 0x10;
        fixups = commands.plain(
            0x80000022, { kTables, 0x10, kTables + 0x10, 0x40, 0, 0, kTables + 0x80, 0x20, 0, 0 });
        // Segment 1 from its start: a pointer, on by 7 others, the initialiser.
        append(bytes, rebaseProgram, std::string_view("\x11\x21\x00\x51\x47\x51\x00", 7));
        append(bytes, bindProgram,
            std::string_view("\x11\x40_objc_msgSend\0\x51\x71\x08\x90\x60\x10\x90\x00", 24));
        // Lazy: library 2, weak, at 32 of the segment; each part has an end of its own.
        append(bytes, kTables + 0x80, std::string_view("\x71\x20\x12\x41_rare\0\x90\x00", 11));
        put<std::uint64_t>(bytes, kData, kCode);
        put<std::uint64_t>(bytes, kData + 0x40, kCode);
    }
    commands.finish();
    return bytes;
}

Bytes fatFile(std::initializer_list<Bytes> slices)
{
    Bytes file;
    auto const putBig = [&](std::uint64_t at, std::uint32_t value) {
        put(file, at, __builtin_bswap32(value));
    };
    putBig(0, 0xcafebabe);
    putBig(4, static_cast<std::uint32_t>(slices.size()));
    std::uint64_t entry = 8, start = 0x4000;
    for (Bytes const& slice : slices) {
        std::uint32_t subtype = 0;
        std::memcpy(&subtype, slice.data() + 8, sizeof subtype);
        putBig(entry, 0x0100000c);
        putBig(entry + 4, subtype);
        putBig(entry + 8, static_cast<std::uint32_t>(start));
        putBig(entry + 12, static_cast<std::uint32_t>(slice.size()));
        putBig(entry + 16, 14);
        entry += 20;
        file.resize(std::max<std::size_t>(file.size(), start));
        file.insert(file.end(), slice.begin(), slice.end());
        start = (file.size() + 0x3fff) / 0x4000 * 0x4000;
    }
    return file;
}

}
