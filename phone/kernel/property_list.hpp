// Property lists as plain C++ values, read from XML and binary files and written as the platform writes
// them. The stand-in for Foundation turns these values into objects. Any thread.
//
// Reading goes through libplist, which the iPhone's desktop tools use, behind checks of our own: a file is
// refused before libplist sees it when it is nested too deeply for a recursive reader, holds itself, or
// would grow far past its size.
#pragma once

#include "phone/kernel/date.hpp"
#include "phone/kernel/result.hpp"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace phone {

class PropertyList;
struct PropertyListEntry;

using PropertyListArray = std::vector<PropertyList>;

// Keys in the order of the file, each once: of two entries with one key the later one's value counts.
class PropertyListDictionary {
public:
    PropertyListDictionary();
    PropertyListDictionary(std::initializer_list<PropertyListEntry>);
    PropertyListDictionary(PropertyListDictionary const&);
    PropertyListDictionary(PropertyListDictionary&&) noexcept;
    PropertyListDictionary& operator=(PropertyListDictionary const&);
    PropertyListDictionary& operator=(PropertyListDictionary&&) noexcept;
    ~PropertyListDictionary();

    // nullptr when there is none. Lent until the dictionary changes. Time grows with the number of keys.
    PropertyList const* find(std::string_view key) const;
    PropertyList* find(std::string_view key);
    // Replaces the value in its place, or adds the key at the end.
    void set(std::string key, PropertyList value);
    void remove(std::string_view key);
    // Every key and value at once; takes care of keys that come twice. For readers of large files.
    static PropertyListDictionary of(std::vector<PropertyListEntry> entries);

    std::size_t size() const;
    bool empty() const { return size() == 0; }
    PropertyListEntry const* begin() const;
    PropertyListEntry const* end() const;

    friend bool operator==(PropertyListDictionary const&, PropertyListDictionary const&);

private:
    std::vector<PropertyListEntry> m_entries;
};

// One value. Never empty: a property list has no null. Integers from 2^63 on are unsigned, all others signed.
class PropertyList {
public:
    using Storage = std::variant<bool, std::int64_t, std::uint64_t, double, std::string, Date, Bytes,
        PropertyListArray, PropertyListDictionary>;

    PropertyList()
        : m_storage(PropertyListDictionary {})
    {
    }
    PropertyList(bool value)
        : m_storage(value)
    {
    }
    PropertyList(int value)
        : m_storage(std::int64_t { value })
    {
    }
    PropertyList(std::int64_t value)
        : m_storage(value)
    {
    }
    // Below 2^63 it becomes a signed one, as it would when read from a file.
    PropertyList(std::uint64_t value);
    PropertyList(double value)
        : m_storage(value)
    {
    }
    PropertyList(char const* text)
        : m_storage(std::string(text))
    {
    }
    PropertyList(std::string text)
        : m_storage(std::move(text))
    {
    }
    PropertyList(Date value)
        : m_storage(value)
    {
    }
    PropertyList(Bytes value)
        : m_storage(std::move(value))
    {
    }
    PropertyList(PropertyListArray value)
        : m_storage(std::move(value))
    {
    }
    PropertyList(PropertyListDictionary value)
        : m_storage(std::move(value))
    {
    }

    template <class T>
    bool is() const
    {
        return std::holds_alternative<T>(m_storage);
    }
    // nullptr when it is of another kind. Lent.
    template <class T>
    T const* as() const
    {
        return std::get_if<T>(&m_storage);
    }
    template <class T>
    T* as()
    {
        return std::get_if<T>(&m_storage);
    }

    Storage const& storage() const { return m_storage; }
    // `boolean`, `integer`, `real`, `text`, `date`, `data`, `array` or `dictionary`.
    char const* kindName() const;

    friend bool operator==(PropertyList const&, PropertyList const&);

private:
    Storage m_storage;
};

struct PropertyListEntry {
    std::string key;
    PropertyList value;
    friend bool operator==(PropertyListEntry const&, PropertyListEntry const&) = default;
};

enum class PropertyListFormat { xml, binary };

struct PropertyListFile {
    PropertyList root;
    PropertyListFormat format { PropertyListFormat::xml };
};

// Limits of what is read; a file beyond them is refused as damaged. The depth is the platform's own (its
// readers stop at 512); the others are chosen by us, well above a list of 10,000 contacts with photos.
inline constexpr std::size_t kPropertyListMaximumDepth = 512;
inline constexpr std::size_t kPropertyListMaximumValues = 4'000'000;        // after shared values are copied
inline constexpr std::uint64_t kPropertyListMaximumBytes = 1'000'000'000;   // text and data, after copying

// A whole property list, XML (UTF-8, with or without a byte order mark) or binary; the bytes are not kept.
// Text comes out as UTF-8: an XML file that isn't is refused, as the platform does; half a surrogate pair in
// a binary one becomes U+FFFD. A keyed archiver's UID becomes {"CF$UID": n}, as in the platform's XML.
// Never crashes, blocks or raises: a damaged file gives one error.
Result<PropertyListFile> readPropertyList(void const* bytes, std::size_t count);
Result<PropertyListFile> readPropertyList(Bytes const&);
Result<PropertyListFile> readPropertyList(std::string_view);

// As the platform writes XML: header with document type, tabs, keys in sorted order, data in lines of at
// most 76 columns. A tree that is nested deeper than the limit above, or a text with a zero byte, is an error.
Result<std::string> writePropertyListXml(PropertyList const&);
// bplist00, by libplist. Keys sorted likewise. An error too when the root is neither array nor dictionary.
Result<Bytes> writePropertyListBinary(PropertyList const&);

}
