#include "phone/springboard/starter_set.hpp"

#include "phone/kernel/base64.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/starter_pictures.hpp"

#include <ctime>
#include <utility>

namespace phone {

namespace {

constexpr char kBundleFolder[] = "/var/jb/Library/PreferenceBundles/CorvelPREF.bundle/";

// Everybody is invented. Numbers and addresses are of ranges that are given to nobody.
struct StarterContact {
    char const* firstName;
    char const* lastName;
    char const* phone;
    char const* email;
    int portrait;           // 0: none
    char const* birthday;   // ISO day; "today": of the phone's present day; empty: none
};
constexpr StarterContact kContacts[] {
    { "Zoë", "Amari", "+44 20 7946 0958", "zoe@example.com", 1, "today" },
    { "İbrahim", "Yıldız", "+90 532 000 00 11", "ibrahim@example.com", 2, "1988-11-02" },
    { "דנה", "כהן", "+1 555 0134", "dana@example.com", 3, "" },
    { "芳", "王", "+1 555 0168", "fang@example.com", 4, "1991-02-14" },
    { "👩‍🚀 Ada", "Lund", "+44 20 7946 0321", "ada@example.com", 5, "" },
    { "Jonas", "Weber", "+49 30 23125 014", "jonas@example.com", 6, "" },
    { "Marta", "Kowal", "+1 555 0191", "", 7, "1979-08-30" },
    { "Ingrid", "Solberg", "+44 20 7946 0777", "ingrid@example.com", 8, "" },
    { "Samuel", "Obi", "+1 555 0142", "samuel@example.com", 9, "" },
    { "Mei", "Tanaka", "+1 555 0113", "mei@example.com", 10, "" },
    { "Emil", "Brandt", "+49 30 23125 099", "emil@example.com", 0, "" },
    { "", "Taxi", "+1 555 0100", "", 2, "" },
    { "", "", "+44 20 7946 0000", "", 0, "" },
};

// A birthday lies in the middle of its day, so that it is the same day in nearly every time zone.
PropertyList birthdayValue(std::string const& day)
{
    if (day.empty())
        return "";
    if (day == "today") {
        auto const now = static_cast<std::time_t>(clock().date().since1970());
        std::tm local {};
        localtime_r(&now, &local);
        local.tm_year = 1996 - 1900;   // a leap year: 29 February exists
        local.tm_hour = 12;
        local.tm_min = local.tm_sec = 0;
        local.tm_isdst = -1;
        return Date::since1970(static_cast<double>(std::mktime(&local)));
    }
    auto const date = parseIsoDate(day + "T12:00:00");
    return date ? PropertyList(*date) : PropertyList("");
}

PropertyList starterList()
{
    PropertyListArray entries;
    int number = 0;
    for (StarterContact const& contact : kContacts) {
        PropertyListDictionary entry {
            { "contactFirstName", contact.firstName },
            { "contactLastName", contact.lastName },
            { "contactUniqueIdentifier", "starter-" + std::to_string(++number) },
            { "contactImage",
                contact.portrait ? PropertyList(starterPortrait(contact.portrait)) : PropertyList("") },
            { "contactBirthday", birthdayValue(contact.birthday) },
            { "contactPhoneNumber", contact.phone },
            { "contactEmail", contact.email },
        };
        entries.push_back(std::move(entry));
    }
    return PropertyListDictionary { { "contactsArray", std::move(entries) } };
}

Json entryValue(PropertyList const& value)
{
    if (auto const* const text = value.as<std::string>())
        return *text;
    if (auto const* const bytes = value.as<Bytes>())
        return { { "data", base64(bytes->data(), bytes->size()) } };
    if (auto const* const date = value.as<Date>())
        return { { "date", isoDate(*date) } };
    return nullptr;
}

Result<PropertyList> objectList(Json const& value, std::string const& where)
{
    if (value.size() == 1 && value.contains("date")) {
        auto const date =
            value["date"].is_string() ? parseIsoDate(value["date"].get<std::string>()) : std::nullopt;
        return date ? Result<PropertyList>(*date) : Error { where + ": `date` is no ISO 8601 date" };
    }
    if (value.size() == 1 && value.contains("data")) {
        auto const bytes =
            value["data"].is_string() ? bytesOfBase64(value["data"].get<std::string>()) : std::nullopt;
        return bytes ? Result<PropertyList>(*bytes) : Error { where + ": `data` is no base64" };
    }
    std::vector<PropertyListEntry> entries;
    for (auto const& [key, each] : value.items()) {
        auto converted = propertyListOf(each, where + "." + key);
        if (!converted)
            return converted;
        entries.push_back({ key, std::move(*converted) });
    }
    return PropertyList(PropertyListDictionary::of(std::move(entries)));
}

Result<StarterFile> fileOf(std::string path, PropertyList const& list)
{
    auto const xml = writePropertyListXml(list);
    if (!xml)
        return xml.error();
    return StarterFile { std::move(path), Bytes(xml->begin(), xml->end()) };
}

}

Result<PropertyList> propertyListOf(Json const& value, std::string const& where)
{
    using Kind = Json::value_t;
    switch (value.type()) {
    case Kind::boolean: return PropertyList(value.get<bool>());
    case Kind::number_integer: return PropertyList(value.get<std::int64_t>());
    case Kind::number_unsigned: return PropertyList(value.get<std::uint64_t>());
    case Kind::number_float: return PropertyList(value.get<double>());
    case Kind::string: return PropertyList(value.get<std::string>());
    case Kind::array: {
        PropertyListArray elements;
        for (std::size_t i = 0; i < value.size(); ++i) {
            auto element = propertyListOf(value[i], where + "[" + std::to_string(i) + "]");
            if (!element)
                return element;
            elements.push_back(std::move(*element));
        }
        return PropertyList(std::move(elements));
    }
    case Kind::object: return objectList(value, where);
    default: return Error { where + ": a property list holds no null" };
    }
}

Json starterEntries()
{
    Json entries = Json::array();
    PropertyList const list = starterList();
    for (PropertyList const& contact :
        *list.as<PropertyListDictionary>()->find("contactsArray")->as<PropertyListArray>()) {
        Json entry = Json::object();
        for (auto const& [key, value] : *contact.as<PropertyListDictionary>())
            entry[key] = entryValue(value);
        entries.push_back(std::move(entry));
    }
    return entries;
}

Json contactEntries(VcardContacts const& cards)
{
    Json entries = Json::array();
    for (VcardContact const& card : cards.contacts) {
        Json birthday = "";
        if (card.birthday) {
            // A birthday without a year is stored in a leap year, which has every day.
            CalendarDay const day { card.birthday->year.value_or(1604), card.birthday->month,
                card.birthday->day };
            double const since1970 = double(daysFrom1970(day)) * 86400 + 43200;
            birthday = { { "date", isoDate(Date::since1970(since1970)) } };
        }
        entries.push_back({ { "contactFirstName", card.givenName }, { "contactLastName", card.familyName },
            { "contactUniqueIdentifier", card.identifier },
            { "contactImage",
                card.photo ? Json { { "data", base64(card.photo->data(), card.photo->size()) } } : Json("") },
            { "contactBirthday", std::move(birthday) },
            { "contactPhoneNumber", card.phones.empty() ? "" : card.phones.front().value },
            { "contactEmail", card.emails.empty() ? "" : card.emails.front().value } });
    }
    return entries;
}

Result<std::vector<StarterFile>> starterFiles(BootOptions const& options)
{
    std::vector<StarterFile> files {
        { std::string(kBundleFolder) + "happybd.png", birthdayPicture() },
        { std::string(kBundleFolder) + "contactsbar3.png", emptyListPicture() },
    };
    PropertyList contacts = starterList();
    if (options.contacts) {
        auto own = propertyListOf(Json { { "contactsArray", *options.contacts } }, "contacts");
        if (!own)
            return own.error();
        contacts = std::move(*own);
    }
    auto list = fileOf(kContactListPath, contacts);
    if (!list)
        return list.error();
    files.push_back(std::move(*list));
    if (options.settings) {
        auto own = propertyListOf(*options.settings, "settings");
        if (!own)
            return own.error();
        auto file = fileOf(kSettingsPath, *own);
        if (!file)
            return file.error();
        files.push_back(std::move(*file));
    }
    return files;
}

}
