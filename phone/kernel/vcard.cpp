#include "phone/kernel/vcard.hpp"

#include "phone/kernel/ascii.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/kernel/date.hpp"
#include "phone/kernel/file.hpp"
#include "phone/kernel/text_encoding.hpp"
#include "phone/kernel/vcard_syntax.hpp"

#include <algorithm>
#include <array>
#include <cstdio>

namespace phone {

namespace {

// Types of a phone number or address, and what the phone's Contacts app calls them. The first row that fits
// counts: a home fax is a fax, a mobile at work is a mobile.
struct TypeLabel {
    char const* type;
    char const* also;   // a further type that has to be there, or nullptr
    char const* label;
};

constexpr TypeLabel kTypeLabels[] = {
    { "fax", "home", "home fax" },
    { "fax", "work", "work fax" },
    { "fax", nullptr, "other fax" },
    { "home_fax", nullptr, "home fax" },   // Google's spelling
    { "work_fax", nullptr, "work fax" },
    { "pager", nullptr, "pager" },
    { "iphone", nullptr, "iPhone" },
    { "applewatch", nullptr, "Apple Watch" },
    { "cell", nullptr, "mobile" },
    { "mobile", nullptr, "mobile" },
    { "main", nullptr, "main" },
    { "home", nullptr, "home" },
    { "work", nullptr, "work" },
    { "school", nullptr, "school" },
    { "other", nullptr, "other" },
};

std::string valueAt(VcardProperty const& property, std::size_t index)
{
    return index < property.values.size() ? std::string(trimmed(property.values[index])) : std::string();
}

VcardProperty const* findProperty(std::vector<VcardProperty> const& card, std::string_view name)
{
    for (VcardProperty const& property : card) {
        if (property.name == name)
            return &property;
    }
    return nullptr;
}

// The user's own label stands in a property of the same group: `item1.X-ABLabel:School`, or in Apple's
// wrapping for its own, `_$!<Home>!$_`. Otherwise the types tell.
std::string labelOf(VcardProperty const& property, std::vector<VcardProperty> const& card)
{
    if (!property.group.empty()) {
        for (VcardProperty const& other : card) {
            if (other.name != "X-ABLABEL" || other.group != property.group)
                continue;
            std::string label = valueAt(other, 0);
            if (label.starts_with("_$!<") && label.ends_with(">!$_"))
                return lowercase(label.substr(4, label.size() - 8));
            if (!label.empty())
                return label;
        }
    }
    for (TypeLabel const& row : kTypeLabels) {
        if (property.hasParameter("TYPE", row.type) && (!row.also || property.hasParameter("TYPE", row.also)))
            return row.label;
    }
    return {};
}

// Without the scheme of a URI, which version 4.0 may put before it.
std::string withoutScheme(std::string text, std::string_view scheme)
{
    if (lowercase(text.substr(0, scheme.size())) == scheme)
        text.erase(0, scheme.size());
    return text;
}

std::optional<int> digits(std::string_view text)
{
    int value = 0;
    if (text.empty() || text.size() > 4)
        return std::nullopt;
    for (char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

// `1984-06-18`, `19840618`, `--06-18`, `--0618`, each with or without a time after it. None otherwise.
std::optional<Birthday> parseBirthday(std::string_view text)
{
    text = trimmed(text);
    // The time of day, and with it the time zone, says nothing about the day that was meant.
    text = text.substr(0, text.find_first_of("T "));
    std::optional<int> year;
    if (text.starts_with("--")) {
        text.remove_prefix(2);
    } else {
        year = digits(text.substr(0, 4));
        if (!year || text.size() < 8)
            return std::nullopt;
        text.remove_prefix(4);
        if (text.starts_with('-'))
            text.remove_prefix(1);
    }
    bool const hasDash = text.size() == 5 && text[2] == '-';
    if (text.size() != (hasDash ? 5U : 4U))
        return std::nullopt;
    auto const month = digits(text.substr(0, 2));
    auto const day = digits(text.substr(hasDash ? 3 : 2));
    // Apple's stand-in for "no year", which it names in X-APPLE-OMIT-YEAR; a leap year, so that it can hold
    // 29 February.
    constexpr int kAppleNoYear = 1604;
    if (year == kAppleNoYear)
        year.reset();
    if (!month || !day || !isCalendarDay({ year.value_or(kAppleNoYear), *month, *day }))
        return std::nullopt;
    return Birthday { *day, *month, year };
}

// The bytes, or why there are none.
Result<Bytes> photoOf(VcardProperty const& property)
{
    // A data URI may hold `;` and `,`, at which the parser splits.
    std::string value;
    for (std::string const& part : property.values)
        value += (value.empty() ? "" : ";") + part;
    if (property.isBinary && !lowercase(value.substr(0, 5)).starts_with("data:")) {
        if (value.empty())
            return Error { "a photo without any data" };
        return Bytes(value.begin(), value.end());
    }
    if (lowercase(value.substr(0, 5)) == "data:") {
        auto const comma = value.find(',');
        if (comma == std::string::npos
            || lowercase(value.substr(0, comma)).find(";base64") == std::string::npos)
            return Error { "a photo in a data URI without base64" };
        auto bytes = bytesOfBase64(std::string_view(value).substr(comma + 1));
        if (!bytes || bytes->empty())
            return Error { "a photo whose base64 is damaged" };
        return *std::move(bytes);
    }
    if (value.find("://") != std::string::npos)
        return Error { "a photo that lies elsewhere (only photos inside the file are shown)" };
    return Error { "a photo that cannot be read" };
}

// Stable from run to run: FNV-1a over the card's text.
std::string identifierFor(std::string_view card)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (char c : card) {
        hash ^= static_cast<unsigned char>(c);
        hash *= 0x100000001B3;
    }
    std::array<char, 32> text {};
    std::snprintf(text.data(), text.size(), "card-%016llx", static_cast<unsigned long long>(hash));
    return text.data();
}

void readNames(std::vector<VcardProperty> const& card, VcardContact& contact)
{
    for (VcardProperty const& property : card) {
        if (property.name != "N")
            continue;
        contact.familyName = valueAt(property, 0);
        contact.givenName = valueAt(property, 1);
        if (!contact.familyName.empty() || !contact.givenName.empty())
            return;
    }
    // A firm, or a card that has its name in one piece only: where it would be cut is anybody's guess.
    for (char const* name : { "FN", "NICKNAME", "ORG" }) {
        VcardProperty const* property = findProperty(card, name);
        if (property && !valueAt(*property, 0).empty()) {
            contact.givenName = valueAt(*property, 0);
            return;
        }
    }
}

// The contact of one card; what had to be left out goes into `problems`.
VcardContact contactOf(std::vector<VcardProperty> const& card, std::vector<std::string>& problems)
{
    VcardContact contact;
    readNames(card, contact);
    for (VcardProperty const& property : card) {
        std::string const value = valueAt(property, 0);
        if (property.name == "TEL" && !value.empty()) {
            contact.phones.push_back({ labelOf(property, card), withoutScheme(value, "tel:") });
        } else if (property.name == "EMAIL" && !value.empty()) {
            contact.emails.push_back({ labelOf(property, card), withoutScheme(value, "mailto:") });
        } else if (property.name == "UID" && contact.identifier.empty()) {
            contact.identifier = withoutScheme(value, "urn:uuid:");
        } else if (property.name == "BDAY" && !contact.birthday && !value.empty()) {
            contact.birthday = parseBirthday(value);
            if (!contact.birthday)
                problems.push_back("the birthday '" + value.substr(0, 40) + "' is no date");
        } else if (property.name == "PHOTO" && !contact.photo && !property.values.empty()) {
            auto photo = photoOf(property);
            if (photo)
                contact.photo = *std::move(photo);
            else
                problems.push_back(photo.message());
        }
    }
    return contact;
}

}

Result<VcardContacts> readVcards(std::string_view text, std::string const& name)
{
    std::string converted;
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    } else if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
        converted =
            utf8FromUtf16(text.substr(2), text[0] == '\xFE' ? ByteOrder::bigEndian : ByteOrder::littleEndian);
        text = converted;
    } else if (!isUtf8(text)) {
        converted = utf8FromWindows1252(text);
        text = converted;
    }
    VcardTexts const texts = splitVcards(text);
    if (texts.cards.empty())
        return Error { "'" + name + "' holds no vCard"
            + (texts.isCutShort ? ": the file is cut short" : "") };

    VcardContacts result;
    for (std::size_t i = 0; i < texts.cards.size(); ++i) {
        auto const card = parseVcard(texts.cards[i]);
        if (!card)
            return card.error();
        std::vector<std::string> problems;
        VcardContact contact = contactOf(*card, problems);
        bool const isEmpty = contact.givenName.empty() && contact.familyName.empty() && contact.phones.empty()
            && contact.emails.empty();
        if (isEmpty)
            problems = { "left out, since it has neither name nor phone number nor mail address" };
        if (contact.identifier.empty())
            contact.identifier = identifierFor(texts.cards[i]);
        std::string who = std::string(trimmed(contact.givenName + ' ' + contact.familyName));
        if (!who.empty())
            who = " (" + who + ")";
        for (std::string const& problem : problems)
            result.problems.push_back("'" + name + "', card " + std::to_string(i + 1) + who + ": " + problem);
        if (!isEmpty)
            result.contacts.push_back(std::move(contact));
    }
    if (texts.isCutShort) {
        result.problems.push_back("'" + name + "', card " + std::to_string(texts.cards.size() + 1)
            + ": left out, since the file is cut short");
    }
    return result;
}

Result<VcardContacts> readVcardFile(std::filesystem::path const& path)
{
    auto const file = readFile(path);
    if (!file)
        return file.error();
    return readVcards({ reinterpret_cast<char const*>(file->data()), file->size() }, path.string());
}

}
