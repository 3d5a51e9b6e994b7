#include "phone/kernel/elf_library.hpp"

#include "phone/kernel/file.hpp"

#include <algorithm>
#include <cstring>
#include <elf.h>
#include <optional>
#include <string_view>

namespace phone {

namespace {

class ElfReader {
public:
    explicit ElfReader(Bytes const& file)
        : m_file(file)
    {
    }

    // None when something in the file does not fit.
    std::optional<ElfLibrary> read() const
    {
        auto const header = at<Elf64_Ehdr>(0);
        if (!header || std::memcmp(header->e_ident, ELFMAG, SELFMAG) != 0
            || header->e_ident[EI_CLASS] != ELFCLASS64 || header->e_ident[EI_DATA] != ELFDATA2LSB
            || header->e_type != ET_DYN || header->e_shentsize != sizeof(Elf64_Shdr))
            return std::nullopt;
        ElfLibrary library;
        bool hasDynamicSection = false;
        for (std::uint64_t i = 0; i < header->e_shnum; ++i) {
            auto const section = at<Elf64_Shdr>(header->e_shoff, i);
            if (!section)
                return std::nullopt;
            if (section->sh_type != SHT_DYNAMIC && section->sh_type != SHT_DYNSYM)
                continue;
            auto const strings = at<Elf64_Shdr>(header->e_shoff, section->sh_link);
            if (!strings || section->sh_link >= header->e_shnum)
                return std::nullopt;
            hasDynamicSection = hasDynamicSection || section->sh_type == SHT_DYNAMIC;
            bool const isGood = section->sh_type == SHT_DYNAMIC
                ? readNeeded(*section, *strings, library.needed)
                : readImports(*section, *strings, library.imports);
            if (!isGood)
                return std::nullopt;
        }
        if (!hasDynamicSection)
            return std::nullopt;
        std::sort(library.imports.begin(), library.imports.end());
        library.imports.erase(
            std::unique(library.imports.begin(), library.imports.end()), library.imports.end());
        return library;
    }

private:
    // Element `index` of a table at `offset`, copied, since nothing in a file need be aligned.
    template <class T>
    std::optional<T> at(std::uint64_t offset, std::uint64_t index = 0) const
    {
        if (offset > m_file.size() || index > (m_file.size() - offset) / sizeof(T))
            return std::nullopt;
        std::uint64_t const place = offset + index * sizeof(T);
        if (m_file.size() - place < sizeof(T))
            return std::nullopt;
        T value;
        std::memcpy(&value, m_file.data() + place, sizeof value);
        return value;
    }

    std::optional<std::string> text(Elf64_Shdr const& strings, std::uint64_t index) const
    {
        if (strings.sh_offset > m_file.size() || strings.sh_size > m_file.size() - strings.sh_offset
            || index >= strings.sh_size)
            return std::nullopt;
        auto const* start = reinterpret_cast<char const*>(m_file.data() + strings.sh_offset + index);
        std::size_t const limit = static_cast<std::size_t>(strings.sh_size - index);
        std::size_t const length = strnlen(start, limit);
        if (length == limit)
            return std::nullopt;
        return std::string(start, length);
    }

    bool readNeeded(
        Elf64_Shdr const& section, Elf64_Shdr const& strings, std::vector<std::string>& needed) const
    {
        for (std::uint64_t i = 0; i < section.sh_size / sizeof(Elf64_Dyn); ++i) {
            auto const entry = at<Elf64_Dyn>(section.sh_offset, i);
            if (!entry)
                return false;
            if (entry->d_tag == DT_NULL)
                break;
            if (entry->d_tag != DT_NEEDED)
                continue;
            auto name = text(strings, entry->d_un.d_val);
            if (!name)
                return false;
            needed.push_back(*std::move(name));
        }
        return true;
    }

    bool readImports(
        Elf64_Shdr const& section, Elf64_Shdr const& strings, std::vector<std::string>& imports) const
    {
        for (std::uint64_t i = 1; i < section.sh_size / sizeof(Elf64_Sym); ++i) {   // entry 0 is none
            auto const symbol = at<Elf64_Sym>(section.sh_offset, i);
            if (!symbol)
                return false;
            if (symbol->st_shndx != SHN_UNDEF)
                continue;
            auto name = text(strings, symbol->st_name);
            if (!name)
                return false;
            if (!name->empty())
                imports.push_back(*std::move(name));
        }
        return true;
    }

    Bytes const& m_file;
};

}

Result<ElfLibrary> readElfLibrary(std::filesystem::path const& path)
{
    auto const file = readFile(path);
    if (!file)
        return file.error();
    auto library = ElfReader(*file).read();
    if (!library)
        return Error { "'" + path.string()
            + "' is not a shared library of this kind of computer, or it is damaged" };
    return *std::move(library);
}

}
