#include "phone/kernel/property_list.hpp"

#include "phone/kernel/property_list_check.hpp"
#include "phone/kernel/property_list_nodes.hpp"
#include "phone/kernel/text_encoding.hpp"

#include <cstring>
#include <limits>

namespace phone {

namespace {

using plist::Malloced;
using plist::Node;

std::uint64_t bigEndian(char const* bytes, std::size_t count)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[i]);
    return value;
}

// libplist gives a date as whole seconds in 32 bits, too few for a year past 2069, but writes all of it. In a
// binary file of an array with that one value the date follows the header, the array and its reference.
Date exactDate(plist_t node)
{
    Node const array(plist_new_array());
    plist_array_append_item(array.get(), plist_copy(node));
    char* file = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(array.get(), &file, &size);
    Malloced<char> const owner(file);
    constexpr std::size_t kMarker = 8 + 2;
    if (!file || size < kMarker + 9 || file[kMarker] != 0x33)
        return {};
    std::uint64_t const bits = bigEndian(file + kMarker + 1, 8);
    Date date;
    static_assert(sizeof bits == sizeof date.sinceReference);
    std::memcpy(&date.sinceReference, &bits, sizeof bits);
    return date;
}

// libplist gives every integer as an unsigned one. Whether one of 64 bits was below zero, its text tells.
PropertyList exactInteger(plist_t node)
{
    std::uint64_t value = 0;
    plist_get_uint_val(node, &value);
    if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        return static_cast<std::int64_t>(value);
    char* text = nullptr;
    std::uint32_t size = 0;
    plist_to_xml(node, &text, &size);
    Malloced<char> const owner(text);
    if (text && std::string_view(text, size).find("<integer>-") != std::string_view::npos)
        return static_cast<std::int64_t>(value);
    return value;
}

std::string goodText(char const* text, std::size_t size)
{
    std::string_view const view(text, size);
    return isUtf8(view) ? std::string(view) : repairedUtf8(view);
}

// Recursion is safe: the checks have limited the depth.
PropertyList valueOf(plist_t node)
{
    switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
        std::uint8_t value = 0;
        plist_get_bool_val(node, &value);
        return value != 0;
    }
    case PLIST_UINT: return exactInteger(node);
    case PLIST_REAL: {
        double value = 0;
        plist_get_real_val(node, &value);
        return value;
    }
    case PLIST_STRING: {
        std::uint64_t size = 0;
        char const* text = plist_get_string_ptr(node, &size);
        return goodText(text ? text : "", text ? size : 0);
    }
    case PLIST_KEY: {
        char* text = nullptr;
        plist_get_key_val(node, &text);
        Malloced<char> const owner(text);
        return goodText(text ? text : "", text ? std::strlen(text) : 0);
    }
    case PLIST_DATE: return exactDate(node);
    case PLIST_DATA: {
        std::uint64_t size = 0;
        char const* data = plist_get_data_ptr(node, &size);
        return data ? Bytes(data, data + size) : Bytes();
    }
    case PLIST_UID: {
        std::uint64_t value = 0;
        plist_get_uid_val(node, &value);
        return PropertyListDictionary { { "CF$UID", value } };
    }
    case PLIST_ARRAY: {
        PropertyListArray array;
        array.reserve(plist_array_get_size(node));
        plist_array_iter iterator = nullptr;
        plist_array_new_iter(node, &iterator);
        Malloced<void> const owner(iterator);
        plist_t item = nullptr;
        while (plist_array_next_item(node, iterator, &item), item)
            array.push_back(valueOf(item));
        return array;
    }
    case PLIST_DICT: {
        std::vector<PropertyListEntry> entries;
        entries.reserve(plist_dict_get_size(node));
        plist_dict_iter iterator = nullptr;
        plist_dict_new_iter(node, &iterator);
        Malloced<void> const owner(iterator);
        char* key = nullptr;
        plist_t item = nullptr;
        while (plist_dict_next_item(node, iterator, &key, &item), item) {
            Malloced<char> const keyOwner(key);
            entries.push_back({ goodText(key ? key : "", key ? std::strlen(key) : 0), valueOf(item) });
            key = nullptr;
        }
        return PropertyListDictionary::of(std::move(entries));
    }
    case PLIST_NONE: break;
    }
    return PropertyListDictionary();
}

}

Result<PropertyListFile> readPropertyList(std::string_view file)
{
    plist_t root = nullptr;
    PropertyListFormat format = PropertyListFormat::xml;
    if (file.size() > std::numeric_limits<std::uint32_t>::max())
        return Error { "not a property list: too large" };
    if (file.starts_with("bplist")) {
        if (!file.starts_with("bplist0"))
            return Error { "not a binary property list: of an unknown version" };
        if (auto status = checkPropertyListBinary(file); !status)
            return status.error();
        format = PropertyListFormat::binary;
        plist_from_bin(file.data(), static_cast<std::uint32_t>(file.size()), &root);
    } else {
        auto const clean = cleanPropertyListXml(file);
        if (!clean)
            return clean.error();
        if (clean->size() > std::numeric_limits<std::uint32_t>::max())
            return Error { "not a property list: too large" };
        plist_from_xml(clean->data(), static_cast<std::uint32_t>(clean->size()), &root);
    }
    Node const owner(root);
    if (!root)
        return Error { "not a property list: a value in it is damaged" };
    return PropertyListFile { valueOf(root), format };
}

Result<PropertyListFile> readPropertyList(void const* bytes, std::size_t count)
{
    return readPropertyList(std::string_view(static_cast<char const*>(bytes), count));
}

Result<PropertyListFile> readPropertyList(Bytes const& bytes)
{
    return readPropertyList(bytes.data(), bytes.size());
}

}
