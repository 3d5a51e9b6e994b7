#include "phone/kernel/vcard_syntax.hpp"

#include "phone/kernel/ascii.hpp"

#include <algorithm>
#include <dlfcn.h>
#include <glib.h>
#include <strings.h>

namespace phone {

namespace {

constexpr char const* kLibrary = "libebook-contacts-1.2.so.4";

std::string capitals(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
        [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return result;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// The functions of Evolution's library and of GLib under it. They are looked up when first needed: linked in,
// the library and the fifty others that it needs would cost every start of the phone 12 ms (measured). And
// they are declared here, after e-vcard.h, since the package with that header needs 330 MB of others (measured
// on a bare Debian 12); the library's version in its name keeps the two in step.
struct Library {
    using Card = void;        // EVCard
    using Attribute = void;   // EVCardAttribute
    using Parameter = void;   // EVCardAttributeParam

    Card* (*newFromString)(char const* text) { nullptr };   // owned: unref
    GList* (*attributes)(Card*) { nullptr };                // of Attribute, lent
    char const* (*group)(Attribute*) { nullptr };           // or null
    char const* (*name)(Attribute*) { nullptr };
    GList* (*parameters)(Attribute*) { nullptr };   // of Parameter, lent
    char const* (*parameterName)(Parameter*) { nullptr };
    GList* (*parameterValues)(Parameter*) { nullptr };   // of text, lent
    GList* (*decodedValues)(Attribute*) { nullptr };     // of GString, lent
    void (*unref)(void*) { nullptr };
    GLogFunc (*setLogHandler)(GLogFunc, void*) { nullptr };
    std::string problem;   // empty: all there

    Library()
    {
        void* const library = dlopen(kLibrary, RTLD_LAZY | RTLD_LOCAL);
        if (!library) {
            problem = std::string("vCard files cannot be read: ") + dlerror();
            return;
        }
        find(library, "e_vcard_new_from_string", newFromString);
        find(library, "e_vcard_get_attributes", attributes);
        find(library, "e_vcard_attribute_get_group", group);
        find(library, "e_vcard_attribute_get_name", name);
        find(library, "e_vcard_attribute_get_params", parameters);
        find(library, "e_vcard_attribute_param_get_name", parameterName);
        find(library, "e_vcard_attribute_param_get_values", parameterValues);
        find(library, "e_vcard_attribute_get_values_decoded", decodedValues);
        find(library, "g_object_unref", unref);
        find(library, "g_log_set_default_handler", setLogHandler);
    }

private:
    template <class Function>
    void find(void* library, char const* symbol, Function& function)
    {
        function = reinterpret_cast<Function>(dlsym(library, symbol));
        if (!function)
            problem = std::string("vCard files cannot be read: ") + kLibrary + " lacks " + symbol;
    }
};

void ignoreLog(char const*, GLogLevelFlags, char const*, void*) { }

// One line with its place in the text, without the line break (\r\n, \n or \r).
struct Line {
    std::string_view text;
    std::size_t begin;
    std::size_t end;   // after the line break
};

Line lineAt(std::string_view text, std::size_t begin)
{
    std::size_t const stop = std::min(text.find_first_of("\r\n", begin), text.size());
    std::size_t end = std::min(stop + 1, text.size());
    if (stop + 1 < text.size() && text[stop] == '\r' && text[stop + 1] == '\n')
        ++end;
    return { text.substr(begin, stop - begin), begin, end };
}

// The head of a line without its CHARSET parameter.
std::string withoutCharset(std::string_view head)
{
    std::string rest;
    while (!head.empty()) {
        auto const part = head.substr(0, std::min(head.find(';', 1), head.size()));
        if (!capitals(part).starts_with(";CHARSET="))
            rest += part;
        head.remove_prefix(part.size());
    }
    return rest;
}

// Version 2.1 in a form that the parser gets right. Such a card breaks a quoted-printable line after `=` and
// goes on without a space: the parser would take the rest for another property. And it names the encoding
// of a line: by now the text is UTF-8, except inside of quoted-printable.
std::string normalized(std::string_view card)
{
    std::string result;
    result.reserve(card.size());
    bool goesOn = false;
    for (std::size_t place = 0; place < card.size();) {
        Line const line = lineAt(card, place);
        place = line.end;
        auto const head = goesOn ? std::string_view() : line.text.substr(0, line.text.find(':'));
        std::string const kind = capitals(head);
        bool const isQuoted = goesOn || kind.find("QUOTED-PRINTABLE") != std::string::npos;
        if (!isQuoted && kind.find(";CHARSET=") != std::string::npos) {
            result += withoutCharset(head);
            result += line.text.substr(head.size());
            result += "\r\n";
            continue;
        }
        goesOn = isQuoted && line.text.ends_with('=');
        result += goesOn ? line.text.substr(0, line.text.size() - 1) : line.text;
        if (!goesOn)
            result += "\r\n";
    }
    return result;
}

template <class Use>
void forEach(GList* list, Use use)
{
    for (; list; list = list->next)
        use(list->data);
}

}

bool VcardProperty::hasParameter(std::string_view parameter, std::string_view value) const
{
    return std::any_of(parameters.begin(), parameters.end(), [&](auto const& entry) {
        return equalsIgnoringCase(entry.first, parameter) && equalsIgnoringCase(entry.second, value);
    });
}

VcardTexts splitVcards(std::string_view text)
{
    VcardTexts texts;
    std::size_t depth = 0;
    std::size_t begin = 0;
    for (std::size_t place = 0; place < text.size();) {
        Line const line = lineAt(text, place);
        place = line.end;
        // Short lines alone can be the marks; a photo's long lines need no look.
        if (line.text.size() > 40)
            continue;
        std::string const mark = capitals(trimmed(line.text));
        if (mark == "BEGIN:VCARD") {
            if (depth++ == 0)
                begin = line.begin;
        } else if (mark == "END:VCARD" && depth > 0 && --depth == 0) {
            texts.cards.emplace_back(text.substr(begin, line.end - begin));
        }
    }
    texts.isCutShort = depth > 0;
    return texts;
}

Result<std::vector<VcardProperty>> parseVcard(std::string const& card)
{
    static Library const library;
    if (!library.problem.empty())
        return Error { library.problem };

    std::vector<VcardProperty> properties;
    // What the parser has to say about a damaged card is said by vcard.cpp, once and with the card's name.
    auto const outerHandler = library.setLogHandler(ignoreLog, nullptr);
    Library::Card* const parsed = library.newFromString(normalized(card).c_str());
    forEach(library.attributes(parsed), [&](Library::Attribute* attribute) {
        VcardProperty property;
        char const* const group = library.group(attribute);
        char const* const name = library.name(attribute);
        property.group = group ? group : "";
        property.name = capitals(name ? name : "");
        forEach(library.parameters(attribute), [&](Library::Parameter* parameter) {
            char const* const parameterName = library.parameterName(parameter);
            std::string const key = capitals(parameterName ? parameterName : "");
            forEach(library.parameterValues(parameter), [&](void* value) {
                // `TYPE="voice,cell"` comes as one value.
                std::string_view rest(static_cast<char const*>(value));
                while (true) {
                    auto const comma = std::min(rest.find(','), rest.size());
                    property.parameters.emplace_back(key, rest.substr(0, comma));
                    if (comma == rest.size())
                        break;
                    rest.remove_prefix(comma + 1);
                }
            });
        });
        property.isBinary =
            property.hasParameter("ENCODING", "B") || property.hasParameter("ENCODING", "BASE64");
        forEach(library.decodedValues(attribute), [&](void* value) {
            auto const* const text = static_cast<GString const*>(value);
            property.values.emplace_back(text->str, text->len);
        });
        properties.push_back(std::move(property));
    });
    library.unref(parsed);
    library.setLogHandler(outerHandler, nullptr);
    return properties;
}

}
