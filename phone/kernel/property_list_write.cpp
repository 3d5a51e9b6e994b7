#include "phone/kernel/property_list.hpp"

#include "phone/kernel/base64.hpp"
#include "phone/kernel/property_list_nodes.hpp"
#include "phone/kernel/text_encoding.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace phone {

namespace {

using plist::Malloced;
using plist::Node;

constexpr char const* kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                "<plist version=\"1.0\">\n";

// Columns of a line of base64, less eight for each tab before it (CFPropertyList.c).
constexpr std::size_t kDataColumns = 76;
constexpr std::size_t kDataMaximumTabs = 8;

// The platform sorts the keys of what it writes, so that equal dictionaries give equal files.
std::vector<PropertyListEntry const*> sortedEntries(PropertyListDictionary const& dictionary)
{
    std::vector<PropertyListEntry const*> entries;
    for (PropertyListEntry const& entry : dictionary)
        entries.push_back(&entry);
    std::sort(entries.begin(), entries.end(), [](auto const* a, auto const* b) { return a->key < b->key; });
    return entries;
}

// A problem with the tree, found before anything is written: too deep for readers, or a text that neither
// format's writer can hold. Stops at the limit itself, so a tree of any depth is safe to ask about.
Status check(PropertyList const& value, std::size_t depth = 1)
{
    if (depth > kPropertyListMaximumDepth)
        return Error { "the property list is nested too deeply" };
    auto const checkText = [](std::string const& text) -> Status {
        if (text.find('\0') != std::string::npos)
            return Error { "a text in the property list holds a zero byte" };
        return {};
    };
    if (auto const* text = value.as<std::string>())
        return checkText(*text);
    if (auto const* array = value.as<PropertyListArray>()) {
        for (PropertyList const& item : *array) {
            if (auto status = check(item, depth + 1); !status)
                return status;
        }
    }
    if (auto const* dictionary = value.as<PropertyListDictionary>()) {
        for (PropertyListEntry const& entry : *dictionary) {
            if (auto status = checkText(entry.key); !status)
                return status;
            if (auto status = check(entry.value, depth + 1); !status)
                return status;
        }
    }
    return {};
}

std::string realText(double value)
{
    if (std::isnan(value))
        return "nan";
    if (std::isinf(value))
        return value > 0 ? "+infinity" : "-infinity";
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

class XmlWriter {
public:
    explicit XmlWriter(std::string& text)
        : m_text(text)
    {
    }

    void write(PropertyList const& value, std::size_t tabs)
    {
        m_tabs = tabs;
        std::visit(*this, value.storage());
    }

    void operator()(bool value) { line(value ? "<true/>" : "<false/>"); }
    void operator()(std::int64_t value) { line("<integer>" + std::to_string(value) + "</integer>"); }
    void operator()(std::uint64_t value) { line("<integer>" + std::to_string(value) + "</integer>"); }
    void operator()(double value) { line("<real>" + realText(value) + "</real>"); }
    void operator()(Date value) { line("<date>" + isoDate(value) + "</date>"); }
    void operator()(std::string const& value) { element("string", value); }

    void operator()(Bytes const& data)
    {
        line("<data>");
        std::size_t const columns = kDataColumns - 8 * std::min(m_tabs, kDataMaximumTabs);
        // Whole groups of four characters; at eight tabs a line still holds three.
        std::size_t const bytesALine = columns / 4 * 3;
        for (std::size_t start = 0; start < data.size(); start += bytesALine) {
            indent(std::min(m_tabs, kDataMaximumTabs));
            m_text += base64(data.data() + start, std::min(bytesALine, data.size() - start));
            m_text += '\n';
        }
        line("</data>");
    }

    void operator()(PropertyListArray const& array)
    {
        if (array.empty())
            return line("<array/>");
        std::size_t const tabs = m_tabs;
        line("<array>");
        for (PropertyList const& item : array)
            write(item, tabs + 1);
        m_tabs = tabs;
        line("</array>");
    }

    void operator()(PropertyListDictionary const& dictionary)
    {
        if (dictionary.empty())
            return line("<dict/>");
        std::size_t const tabs = m_tabs;
        line("<dict>");
        for (PropertyListEntry const* entry : sortedEntries(dictionary)) {
            m_tabs = tabs + 1;
            element("key", entry->key);
            write(entry->value, tabs + 1);
        }
        m_tabs = tabs;
        line("</dict>");
    }

private:
    void indent(std::size_t tabs) { m_text.append(tabs, '\t'); }

    void line(std::string_view text)
    {
        indent(m_tabs);
        m_text += text;
        m_text += '\n';
    }

    void element(std::string_view name, std::string const& text)
    {
        indent(m_tabs);
        ((m_text += '<') += name) += '>';
        for (char c : isUtf8(text) ? text : repairedUtf8(text)) {
            switch (c) {
            case '<': m_text += "&lt;"; break;
            case '>': m_text += "&gt;"; break;
            case '&': m_text += "&amp;"; break;
            default: m_text += c;
            }
        }
        ((m_text += "</") += name) += ">\n";
    }

    std::string& m_text;
    std::size_t m_tabs { 0 };
};

void appendBigEndian(std::string& bytes, std::uint64_t value)
{
    for (int shift = 56; shift >= 0; shift -= 8)
        bytes += static_cast<char>(static_cast<unsigned char>(value >> shift & 0xFF));
}

// libplist makes dates of 32-bit seconds and integers of signed 64 bits only, but reads both in full: such a
// value is read from a binary file of an array that holds it alone, and taken out of it.
plist_t nodeOfObject(std::string const& object)
{
    std::string file = std::string("bplist00\xA1\x01", 10) + object;
    std::size_t const table = file.size();
    file += '\x08';   // the array's place
    file += '\x0A';   // the object's place
    file += std::string("\0\0\0\0\0\0\x01\x01", 8);
    appendBigEndian(file, 2);
    appendBigEndian(file, 0);
    appendBigEndian(file, table);
    plist_t array = nullptr;
    plist_from_bin(file.data(), static_cast<std::uint32_t>(file.size()), &array);
    Node const owner(array);
    return array ? plist_copy(plist_array_get_item(array, 0)) : nullptr;
}

// Owned by the caller until it becomes part of another node.
struct NodeMaker {
    plist_t operator()(bool value) const { return plist_new_bool(value); }
    // The same 64 bits: libplist writes them as a signed number.
    plist_t operator()(std::int64_t value) const { return plist_new_uint(static_cast<std::uint64_t>(value)); }
    plist_t operator()(std::uint64_t value) const
    {
        std::string object = "\x14";
        appendBigEndian(object, 0);
        appendBigEndian(object, value);
        return nodeOfObject(object);
    }
    plist_t operator()(double value) const { return plist_new_real(value); }
    plist_t operator()(Date value) const
    {
        std::uint64_t bits;
        std::memcpy(&bits, &value.sinceReference, sizeof bits);
        std::string object = "\x33";
        appendBigEndian(object, bits);
        return nodeOfObject(object);
    }
    plist_t operator()(std::string const& value) const
    {
        return plist_new_string(isUtf8(value) ? value.c_str() : repairedUtf8(value).c_str());
    }
    plist_t operator()(Bytes const& value) const
    {
        return plist_new_data(reinterpret_cast<char const*>(value.data()), value.size());
    }
    plist_t operator()(PropertyListArray const& array) const
    {
        plist_t const node = plist_new_array();
        for (PropertyList const& item : array)
            plist_array_append_item(node, std::visit(*this, item.storage()));
        return node;
    }
    plist_t operator()(PropertyListDictionary const& dictionary) const
    {
        plist_t const node = plist_new_dict();
        for (PropertyListEntry const* entry : sortedEntries(dictionary))
            plist_dict_set_item(node, entry->key.c_str(), std::visit(*this, entry->value.storage()));
        return node;
    }
};

}

Result<std::string> writePropertyListXml(PropertyList const& root)
{
    if (auto status = check(root); !status)
        return status.error();
    std::string text = kHeader;
    XmlWriter(text).write(root, 0);
    text += "</plist>\n";
    return text;
}

Result<Bytes> writePropertyListBinary(PropertyList const& root)
{
    if (auto status = check(root); !status)
        return status.error();
    if (!root.is<PropertyListArray>() && !root.is<PropertyListDictionary>())
        return Error { "the property list's root is neither an array nor a dictionary" };
    Node const node(std::visit(NodeMaker {}, root.storage()));
    char* file = nullptr;
    std::uint32_t size = 0;
    plist_to_bin(node.get(), &file, &size);
    Malloced<char> const owner(file);
    if (!file || size == 0)
        return Error { "the property list could not be written" };
    return Bytes(file, file + size);
}

}
