// __unwind_info: an index of pages, each a sorted table of code and how its frames look.
#include "phone/kernel/macho/mach_o_parts.hpp"

namespace phone::macho {
namespace {

enum : std::uint32_t { kRegularPage = 2, kCompressedPage = 3 };

class Reader {
public:
    Reader(MachOBytes& bytes, Section const& section, MachOImage& image)
        : m_bytes(bytes)
        , m_section(section)
        , m_image(image)
    {
    }

    void run()
    {
        if (field(0) != 1)
            return m_bytes.fail("the unwind information is of an unknown version");
        m_common = field(4);
        m_commonCount = field(8);
        std::uint64_t const index = field(20), count = field(24);
        // The last entry only tells where the code ends.
        for (std::uint64_t i = 0; i + 1 < count && m_bytes.isGood(); ++i) {
            std::uint64_t const entry = index + 12 * i;
            if (std::uint64_t const page = field(entry + 4))
                readPage(page, field(entry), field(entry + 12));
        }
    }

private:
    // Fields are offsets into the section: whatever they lead to stays there.
    template <class T = std::uint32_t>
    T field(std::uint64_t offset)
    {
        if (offset > m_section.size || m_section.size - offset < sizeof(T)) {
            m_bytes.fail("the unwind information leads out of itself");
            return 0;
        }
        return m_bytes.at<T>(m_section.fileOffset + offset);
    }

    void readPage(std::uint64_t page, std::uint32_t start, std::uint32_t end)
    {
        auto const kind = field(page);
        std::uint64_t const entries = page + field<std::uint16_t>(page + 4);
        auto const count = field<std::uint16_t>(page + 6);
        std::uint64_t const encodings = page + field<std::uint16_t>(page + 8);
        if (kind != kRegularPage && kind != kCompressedPage)
            return m_bytes.fail("the unwind information has a page of kind " + std::to_string(kind));
        auto const functionAt = [&](std::uint64_t i) {
            if (i >= count)
                return end;
            return kind == kRegularPage ? field(entries + 8 * i)
                                        : start + (field(entries + 4 * i) & 0xffffff);
        };
        for (std::uint64_t i = 0; i < count && m_bytes.isGood(); ++i) {
            std::uint32_t encoding = 0;
            if (kind == kRegularPage) {
                encoding = field(entries + 8 * i + 4);
            } else {
                std::uint32_t const number = field(entries + 4 * i) >> 24;
                encoding = number < m_commonCount ? field(m_common + 4ull * number)
                                                  : field(encodings + 4ull * (number - m_commonCount));
            }
            addFrame({ functionAt(i), functionAt(i + 1), encoding });
        }
    }

    void addFrame(MachOFrame const& frame)
    {
        bool const isSorted = m_image.frames.empty() || frame.start >= m_image.frames.back().end;
        if (frame.end < frame.start || frame.end > m_image.size || !isSorted)
            return m_bytes.fail("the unwind information is not in the order of the code");
        m_image.frames.push_back(frame);
    }

    MachOBytes& m_bytes;
    Section const& m_section;
    MachOImage& m_image;
    std::uint32_t m_common = 0, m_commonCount = 0;
};

}

void readUnwindInfo(MachOBytes& bytes, Section const& section, MachOImage& image)
{
    Reader(bytes, section, image).run();
}

}
