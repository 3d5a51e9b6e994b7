#include "phone/kernel/property_list_check.hpp"

#include "phone/kernel/ascii.hpp"
#include "phone/kernel/property_list.hpp"
#include "phone/kernel/text_encoding.hpp"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace phone {

namespace {

enum class Content { values, keysAndValues, text, nothing, root };

constexpr std::string_view kXmlSpaces = " \t\n\r";

bool isSpace(char c) { return kXmlSpaces.find(c) != kXmlSpaces.npos; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Decimal or, after 0x, hexadecimal digits with or without a sign, as the platform takes them.
bool isInteger(std::string_view text)
{
    text = trimmed(text, kXmlSpaces);
    if (text.starts_with('-') || text.starts_with('+'))
        text.remove_prefix(1);
    bool const isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    if (isHexadecimal)
        text.remove_prefix(2);
    return !text.empty() && std::all_of(text.begin(), text.end(), [=](char c) {
        return isDigit(c) || (isHexadecimal && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')));
    });
}

// A number in C's notation, or one of the names that the platform writes for what is none.
bool isReal(std::string_view text)
{
    std::string const whole(trimmed(text, kXmlSpaces));
    if (whole.empty() || whole.find_first_of("xX") != std::string::npos)
        return false;
    char* end = nullptr;
    std::strtod(whole.c_str(), &end);
    return *end == '\0';
}

// `2026-06-18T09:41:00Z`; the year may have a sign and more digits.
bool isDate(std::string_view text)
{
    text = trimmed(text, kXmlSpaces);
    if (text.starts_with('-'))
        text.remove_prefix(1);
    std::size_t year = 0;
    while (year < text.size() && isDigit(text[year]))
        ++year;
    if (year < 1 || year > 6)
        return false;
    text.remove_prefix(year);
    constexpr std::string_view kShape = "-00-00T00:00:00Z";
    return text.size() == kShape.size()
        && std::equal(text.begin(), text.end(), kShape.begin(),
            [](char c, char shape) { return shape == '0' ? isDigit(c) : c == shape; });
}

struct Element {
    std::string_view name;
    Content content;
    bool (*isGoodText)(std::string_view) { nullptr };   // libplist takes what it cannot read for 0
};

constexpr Element kElements[] = {
    { "plist", Content::root },
    { "dict", Content::keysAndValues },
    { "array", Content::values },
    { "key", Content::text },
    { "string", Content::text },
    { "data", Content::text },
    { "date", Content::text, isDate },
    { "integer", Content::text, isInteger },
    { "real", Content::text, isReal },
    { "true", Content::nothing },
    { "false", Content::nothing },
};

// An element that is open.
struct Open {
    Element const* element;
    std::size_t text { 0 };       // where its content begins in the clean document
    bool awaitsValue { false };   // in a dictionary, after a key
};

class Cleaner {
public:
    explicit Cleaner(std::string_view document)
        : m_document(document)
        , m_rest(document)
    {
    }

    Result<std::string> clean()
    {
        m_clean.reserve(m_document.size() + 64);
        m_clean += "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">";
        while (!m_isDone && m_problem.empty())
            step();
        if (!m_problem.empty()) {
            auto const before = m_document.substr(0, m_document.size() - m_rest.size());
            auto const line = std::count(before.begin(), before.end(), '\n') + 1;
            return Error { "not a property list: " + m_problem + " (line " + std::to_string(line) + ")" };
        }
        m_clean += "</plist>";
        return std::move(m_clean);
    }

private:
    void fail(std::string problem) { m_problem = std::move(problem); }

    bool accept(std::string_view text)
    {
        if (!m_rest.starts_with(text))
            return false;
        m_rest.remove_prefix(text.size());
        return true;
    }

    // The text up to `end`, which is taken too.
    std::string_view upTo(std::string_view end, char const* what)
    {
        auto const place = m_rest.find(end);
        if (place == std::string_view::npos) {
            fail(std::string(what) + " has no end");
            return {};
        }
        auto const text = m_rest.substr(0, place);
        m_rest.remove_prefix(place + end.size());
        return text;
    }

    void step()
    {
        auto const text = m_rest.substr(0, m_rest.find('<'));
        takeText(text);
        if (!m_problem.empty())
            return;
        m_rest.remove_prefix(text.size());
        if (m_rest.empty())
            return fail(
                m_hasRoot && m_open.empty() ? "the end of plist is missing" : "the file is cut short");
        if (accept("<!--"))
            upTo("-->", "a comment");
        else if (accept("<![CDATA["))
            takeCharacterData(upTo("]]>", "character data"));
        else if (accept("<?"))
            upTo("?>", "a processing instruction");
        else if (accept("<!"))
            skipDocumentType();
        else if (accept("</"))
            closeTag(upTo(">", "a tag"));
        else if (accept("<"))
            openTag(upTo(">", "a tag"));
    }

    void takeText(std::string_view text)
    {
        if (!m_open.empty() && m_open.back().element->content == Content::text)
            m_clean += text;
        else if (!std::all_of(text.begin(), text.end(), isSpace))
            fail("text where none belongs");
    }

    void takeCharacterData(std::string_view text)
    {
        if (m_open.empty() || m_open.back().element->content != Content::text) {
            if (m_problem.empty() && !std::all_of(text.begin(), text.end(), isSpace))
                fail("text where none belongs");
            return;
        }
        for (char c : text) {
            switch (c) {
            case '<': m_clean += "&lt;"; break;
            case '>': m_clean += "&gt;"; break;
            case '&': m_clean += "&amp;"; break;
            default: m_clean += c;
            }
        }
    }

    // After `<!`: up to `>`, with an internal subset in brackets. Entities declared there are not known to
    // libplist, so nothing can grow through them.
    void skipDocumentType()
    {
        auto const end = m_rest.find_first_of("[>");
        if (end != std::string_view::npos && m_rest[end] == '[') {
            upTo("]", "the document type");
            if (!m_problem.empty())
                return;
        }
        upTo(">", "the document type");
    }

    void openTag(std::string_view tag)
    {
        if (!m_problem.empty())
            return;
        bool const isEmpty = tag.ends_with('/');
        if (isEmpty)
            tag.remove_suffix(1);
        auto const name = tag.substr(0, std::find_if(tag.begin(), tag.end(), isSpace) - tag.begin());
        auto const attributes = tag.substr(name.size());
        Element const* element = find(name);
        if (!element)
            return fail("unknown element '" + std::string(name.substr(0, 40)) + "'");
        if (element->content == Content::root)
            return openRoot(isEmpty);
        // A property list has none; without them no `>` can hide in a tag.
        if (!std::all_of(attributes.begin(), attributes.end(), isSpace))
            return fail("'" + std::string(name) + "' has attributes");
        if (!place(*element))
            return;
        m_clean += '<';
        m_clean += name;
        if (element->content == Content::nothing)
            m_clean += '/';
        m_clean += '>';
        if (++m_values > kPropertyListMaximumValues)
            return fail("too many values");
        if (m_open.size() == kPropertyListMaximumDepth)
            return fail("nested too deeply");
        m_open.push_back({ element, m_clean.size() });
        if (isEmpty)
            closeTag(name);
    }

    void openRoot(bool isEmpty)
    {
        if (m_hasPlist || m_hasRoot || isEmpty)
            return fail(isEmpty ? "plist is empty" : "plist inside of itself");
        m_hasPlist = true;
    }

    // May the element stand here? Notes that it does.
    bool place(Element const& element)
    {
        if (m_open.empty()) {
            if (m_hasRoot)
                fail("more than one root value");
            else if (element.name == "key")
                fail("a key outside of a dictionary");
            m_hasRoot = true;
            return m_problem.empty();
        }
        Open& parent = m_open.back();
        bool const isKey = element.name == "key";
        switch (parent.element->content) {
        case Content::values:
            if (isKey)
                fail("a key in an array");
            break;
        case Content::keysAndValues:
            if (isKey == parent.awaitsValue)
                fail(isKey ? "a key without a value" : "a value without a key");
            parent.awaitsValue = isKey;
            break;
        default: fail("'" + std::string(parent.element->name) + "' holds another element");
        }
        return m_problem.empty();
    }

    void closeTag(std::string_view tag)
    {
        if (!m_problem.empty())
            return;
        while (!tag.empty() && isSpace(tag.back()))
            tag.remove_suffix(1);
        if (m_open.empty()) {
            if (tag == "plist" && m_hasPlist && m_hasRoot)
                m_isDone = true;
            else
                fail("'" + std::string(tag.substr(0, 40)) + "' is closed but was not open");
            return;
        }
        Open const open = m_open.back();
        if (tag != open.element->name)
            return fail("'" + std::string(open.element->name) + "' is not closed");
        if (open.awaitsValue)
            return fail("a key without a value");
        if (open.element->isGoodText
            && !open.element->isGoodText(std::string_view(m_clean).substr(open.text)))
            return fail("a '" + std::string(tag) + "' that is none");
        m_open.pop_back();
        if (open.element->content != Content::nothing) {
            m_clean += "</";
            m_clean += tag;
            m_clean += '>';
        }
        finishValue();
    }

    // A root value without plist around it ends the document.
    void finishValue()
    {
        if (m_open.empty() && !m_hasPlist)
            m_isDone = true;
    }

    static Element const* find(std::string_view name)
    {
        auto const found = std::find_if(std::begin(kElements), std::end(kElements),
            [=](Element const& element) { return element.name == name; });
        return found == std::end(kElements) ? nullptr : found;
    }

    std::string_view m_document;
    std::string_view m_rest;
    std::string m_clean;
    std::string m_problem;
    std::vector<Open> m_open;
    std::size_t m_values { 0 };
    bool m_hasPlist { false };
    bool m_hasRoot { false };
    bool m_isDone { false };
};

}

Result<std::string> cleanPropertyListXml(std::string_view document)
{
    if (document.starts_with("\xEF\xBB\xBF"))
        document.remove_prefix(3);
    if (document.size() > kPropertyListMaximumBytes)
        return Error { "not a property list: too large" };
    // A byte order mark says UTF-16, which some editors on Windows write.
    std::string converted;
    if (document.starts_with("\xFE\xFF") || document.starts_with("\xFF\xFE")) {
        converted = utf8FromUtf16(
            document.substr(2), document[0] == '\xFE' ? ByteOrder::bigEndian : ByteOrder::littleEndian);
        document = converted;
    }
    if (!isUtf8(document))
        return Error { "not a property list: the text is not UTF-8" };
    if (document.find('\0') != std::string_view::npos)
        return Error { "not a property list: the text holds a zero byte" };
    return Cleaner(document).clean();
}

}
