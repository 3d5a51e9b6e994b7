#include "phone/kernel/property_list_check.hpp"

#include "phone/kernel/property_list.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace phone {

namespace {

// The layout is documented in the source of CFBinaryPList.c: header `bplist00`, objects, a table of their
// offsets, and a trailer of 32 bytes: 6 unused, size of an offset, size of a reference, then three 64-bit
// numbers (objects, root, place of the table), most significant byte first.
constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;

Error damaged(std::string const& what) { return { "not a binary property list: " + what }; }

// One object, as its marker has it.
struct Object {
    enum class Kind { leaf, text, array, dictionary };
    Kind kind { Kind::leaf };
    std::uint64_t bytes { 0 };      // of text and data
    std::size_t references { 0 };   // place in the file of the first one
    std::uint64_t referenceCount { 0 };
};

// What is known of an object once all below it are known.
struct Measure {
    enum class State : std::uint8_t { unknown, open, known };
    State state { State::unknown };
    std::uint32_t height { 0 };   // 1 for a leaf
    std::uint64_t values { 0 };   // with copies of what is shared
    std::uint64_t bytes { 0 };
};

class Checker {
public:
    explicit Checker(std::string_view file)
        : m_file(file)
    {
    }

    Status check()
    {
        if (m_file.size() < kHeaderSize + kTrailerSize)
            return damaged("the file is cut short");
        std::size_t const trailer = m_file.size() - kTrailerSize;
        m_offsetSize = byte(trailer + 6);
        m_referenceSize = byte(trailer + 7);
        m_objectCount = number(trailer + 8, 8);
        std::uint64_t const root = number(trailer + 16, 8);
        std::uint64_t const table = number(trailer + 24, 8);
        if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8)
            return damaged("impossible sizes in its trailer");
        if (table < kHeaderSize || table > trailer || m_objectCount == 0
            || m_objectCount > (trailer - table) / m_offsetSize || root >= m_objectCount)
            return damaged("its table of offsets does not fit");
        m_table = static_cast<std::size_t>(table);
        m_measures.resize(static_cast<std::size_t>(m_objectCount));
        return walk(static_cast<std::size_t>(root));
    }

private:
    struct Visit {
        std::size_t index;
        Object object;
        std::uint64_t next { 0 };   // reference to look at next
    };

    std::uint8_t byte(std::size_t place) const { return static_cast<std::uint8_t>(m_file[place]); }

    // Big-endian; the caller has checked that it lies inside the file.
    std::uint64_t number(std::size_t place, std::size_t size) const
    {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | byte(place + i);
        return value;
    }

    // Depth first with a stack of our own: each object is opened once, and known once all below it are.
    Status walk(std::size_t root)
    {
        std::vector<Visit> path;
        if (auto status = enter(path, root); !status)
            return status;
        while (!path.empty()) {
            Visit& visit = path.back();
            if (visit.next < visit.object.referenceCount) {
                std::uint64_t const child =
                    number(visit.object.references + static_cast<std::size_t>(visit.next) * m_referenceSize,
                        m_referenceSize);
                if (child >= m_objectCount)
                    return damaged("a reference leads to no object");
                bool const isKey = visit.object.kind == Object::Kind::dictionary
                    && visit.next < visit.object.referenceCount / 2;
                auto const index = static_cast<std::size_t>(child);
                if (isKey) {
                    auto const key = object(index);
                    if (!key)
                        return key.error();
                    if (key->kind != Object::Kind::text)
                        return damaged("a key is no text");
                }
                switch (m_measures[index].state) {
                case Measure::State::known: ++visit.next; break;
                case Measure::State::open: return damaged("a value holds itself");
                case Measure::State::unknown:
                    if (auto status = enter(path, index); !status)
                        return status;
                }
                continue;
            }
            if (auto status = leave(visit); !status)
                return status;
            path.pop_back();
        }
        return {};
    }

    Status enter(std::vector<Visit>& path, std::size_t index)
    {
        if (path.size() == kPropertyListMaximumDepth)
            return damaged("nested too deeply");
        auto found = object(index);
        if (!found)
            return found.error();
        m_measures[index].state = Measure::State::open;
        path.push_back({ index, *found });
        return {};
    }

    Status leave(Visit const& visit)
    {
        Measure& measure = m_measures[visit.index];
        measure.state = Measure::State::known;
        measure.values = 1;
        measure.bytes = visit.object.bytes;
        for (std::uint64_t i = 0; i < visit.object.referenceCount; ++i) {
            auto const child = static_cast<std::size_t>(number(
                visit.object.references + static_cast<std::size_t>(i) * m_referenceSize, m_referenceSize));
            Measure const& below = m_measures[child];
            measure.height = std::max(measure.height, below.height);
            measure.values += below.values;
            measure.bytes += below.bytes;
            // Checked at each step: neither sum can overflow.
            if (measure.values > kPropertyListMaximumValues)
                return damaged("too many values");
            if (measure.bytes > kPropertyListMaximumBytes)
                return damaged("too large");
        }
        if (++measure.height > kPropertyListMaximumDepth)
            return damaged("nested too deeply");
        return {};
    }

    // Reads the marker of an object, and its length where it has one.
    Result<Object> object(std::size_t index) const
    {
        std::uint64_t const offset = number(m_table + index * m_offsetSize, m_offsetSize);
        if (offset < kHeaderSize || offset >= m_table)
            return damaged("an object lies outside");
        std::size_t place = static_cast<std::size_t>(offset);
        std::uint8_t const marker = byte(place++);
        std::uint8_t const kind = marker >> 4;
        std::uint64_t count = marker & 0xF;
        Object object;
        std::uint64_t size = 0;
        switch (kind) {
        case 0x0:
            if (marker != 0x08 && marker != 0x09)
                return damaged("an object of no known kind");
            return object;
        case 0x1:
        case 0x2:
            if (count > 4 || (kind == 0x2 && count != 2 && count != 3))
                return damaged("a number of impossible size");
            size = std::uint64_t { 1 } << count;
            break;
        case 0x3:
            if (marker != 0x33)
                return damaged("a date of impossible size");
            size = 8;
            break;
        case 0x8:
            if (count > 7)
                return damaged("a UID of impossible size");
            size = count + 1;
            break;
        case 0x4:
        case 0x5:
        case 0x6:
        case 0xA:
        case 0xD:
            if (count == 0xF) {
                auto length = readLength(place);
                if (!length)
                    return length.error();
                count = *length;
            }
            // Before any multiplication: nothing in the file is longer than the file.
            if (count > m_file.size())
                return damaged("an object lies outside");
            if (kind == 0x4 || kind == 0x5) {
                size = count;
            } else if (kind == 0x6) {
                size = count * 2;
            } else {
                object.kind = kind == 0xA ? Object::Kind::array : Object::Kind::dictionary;
                object.references = place;
                object.referenceCount = kind == 0xA ? count : count * 2;
                size = object.referenceCount * m_referenceSize;
            }
            if (kind == 0x5 || kind == 0x6)
                object.kind = Object::Kind::text;
            if (kind < 0xA)
                object.bytes = size;
            break;
        default: return damaged("an object of no known kind");
        }
        if (size > m_table - place)
            return damaged("an object lies outside");
        return object;
    }

    // The integer object that follows a marker whose length does not fit into it; moves past it.
    Result<std::uint64_t> readLength(std::size_t& place) const
    {
        if (place >= m_table || byte(place) >> 4 != 0x1 || (byte(place) & 0xF) > 3)
            return damaged("a length is no integer");
        std::size_t const size = std::size_t { 1 } << (byte(place) & 0xF);
        ++place;
        if (size > m_table - place)
            return damaged("an object lies outside");
        std::uint64_t const length = number(place, size);
        place += size;
        return length;
    }

    std::string_view m_file;
    std::size_t m_table { 0 };
    std::size_t m_offsetSize { 0 };
    std::size_t m_referenceSize { 0 };
    std::uint64_t m_objectCount { 0 };
    std::vector<Measure> m_measures;
};

}

Status checkPropertyListBinary(std::string_view file) { return Checker(file).check(); }

}
