#include "phone/kernel/property_list.hpp"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace phone {

PropertyListDictionary::PropertyListDictionary() = default;
PropertyListDictionary::PropertyListDictionary(PropertyListDictionary const&) = default;
PropertyListDictionary::PropertyListDictionary(PropertyListDictionary&&) noexcept = default;
PropertyListDictionary& PropertyListDictionary::operator=(PropertyListDictionary const&) = default;
PropertyListDictionary& PropertyListDictionary::operator=(PropertyListDictionary&&) noexcept = default;
PropertyListDictionary::~PropertyListDictionary() = default;

PropertyListDictionary::PropertyListDictionary(std::initializer_list<PropertyListEntry> entries)
    : PropertyListDictionary(of(entries))
{
}

PropertyListDictionary PropertyListDictionary::of(std::vector<PropertyListEntry> entries)
{
    PropertyListDictionary dictionary;
    std::unordered_map<std::string, std::size_t> places;
    places.reserve(entries.size());
    dictionary.m_entries.reserve(entries.size());
    for (PropertyListEntry& entry : entries) {
        auto const [place, isNew] = places.try_emplace(entry.key, dictionary.m_entries.size());
        if (isNew)
            dictionary.m_entries.push_back(std::move(entry));
        else
            dictionary.m_entries[place->second].value = std::move(entry.value);
    }
    return dictionary;
}

PropertyList const* PropertyListDictionary::find(std::string_view key) const
{
    for (PropertyListEntry const& entry : m_entries) {
        if (entry.key == key)
            return &entry.value;
    }
    return nullptr;
}

PropertyList* PropertyListDictionary::find(std::string_view key)
{
    return const_cast<PropertyList*>(std::as_const(*this).find(key));
}

void PropertyListDictionary::set(std::string key, PropertyList value)
{
    if (PropertyList* old = find(key))
        *old = std::move(value);
    else
        m_entries.push_back({ std::move(key), std::move(value) });
}

void PropertyListDictionary::remove(std::string_view key)
{
    std::erase_if(m_entries, [=](PropertyListEntry const& entry) { return entry.key == key; });
}

std::size_t PropertyListDictionary::size() const { return m_entries.size(); }
PropertyListEntry const* PropertyListDictionary::begin() const { return m_entries.data(); }
PropertyListEntry const* PropertyListDictionary::end() const { return m_entries.data() + m_entries.size(); }

// Two dictionaries are equal when they hold the same, in whatever order.
bool operator==(PropertyListDictionary const& a, PropertyListDictionary const& b)
{
    return a.size() == b.size() && std::all_of(a.begin(), a.end(), [&](PropertyListEntry const& entry) {
        PropertyList const* other = b.find(entry.key);
        return other && *other == entry.value;
    });
}

PropertyList::PropertyList(std::uint64_t value)
{
    if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        m_storage = static_cast<std::int64_t>(value);
    else
        m_storage = value;
}

bool operator==(PropertyList const& a, PropertyList const& b) { return a.m_storage == b.m_storage; }

char const* PropertyList::kindName() const
{
    constexpr char const* kNames[] = { "boolean", "integer", "integer", "real", "text", "date", "data",
        "array", "dictionary" };
    static_assert(std::size(kNames) == std::variant_size_v<Storage>);
    return kNames[m_storage.index()];
}

}
