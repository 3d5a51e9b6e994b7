#include "phone/apps/address_book.hpp"

#include "phone/kernel/base64.hpp"
#include "phone/kernel/date.hpp"
#include "phone/springboard/starter_set.hpp"

#include <cmath>
#include <ctime>
#include <stdexcept>

namespace phone {

namespace {

struct Book {
    Json entries;                                              // null: the starter set
    std::optional<std::vector<AddressBookContact>> contacts;   // read when first asked for
};

Book& book()
{
    static Book theBook;
    return theBook;
}

// The day that a moment is in the phone's time zone.
ContactBirthday birthdayAt(Date date)
{
    auto const seconds = static_cast<std::time_t>(std::floor(date.since1970()));
    std::tm local {};
    localtime_r(&seconds, &local);
    return { local.tm_mday, local.tm_mon + 1, local.tm_year + 1900, true };
}

// Reads one contact's values; each throws with the words for the error.
class EntryReader {
public:
    EntryReader(Json const& entry, std::string where)
        : m_entry(entry)
        , m_where(std::move(where))
    {
        if (!entry.is_object())
            fail("", "is no object");
    }

    std::string text(char const* key) const
    {
        Json const& value = valueOf(key);
        if (value.is_null())
            return {};
        if (!value.is_string())
            fail(key, "is no text");
        return value.get<std::string>();
    }

    std::optional<Bytes> data(char const* key) const
    {
        Json const& value = valueOf(key);
        if (isMissing(value))
            return std::nullopt;
        if (!value.is_object() || !value.contains("data") || !value["data"].is_string())
            fail(key, "is no data");
        auto bytes = bytesOfBase64(value["data"].get<std::string>());
        if (!bytes)
            fail(key, "is no base64");
        return bytes;
    }

    std::vector<LabeledValue> values(char const* key) const
    {
        Json const& value = valueOf(key);
        std::vector<LabeledValue> all;
        if (isMissing(value))
            return all;
        if (!value.is_array())
            return { labeled(key, value) };
        for (Json const& each : value)
            all.push_back(labeled(key, each));
        return all;
    }

    std::optional<ContactBirthday> birthday(char const* key) const
    {
        Json const& value = valueOf(key);
        if (isMissing(value))
            return std::nullopt;
        if (!value.is_object())
            fail(key, "is no date");
        if (value.contains("date")) {
            auto const date =
                value["date"].is_string() ? parseIsoDate(value["date"].get<std::string>()) : std::nullopt;
            if (!date)
                fail(key, "is no ISO 8601 date");
            return birthdayAt(*date);
        }
        ContactBirthday birthday { number(key, value, "day"), number(key, value, "month"), {}, true };
        if (value.contains("year") && !value["year"].is_null())
            birthday.year = number(key, value, "year");
        birthday.hasCalendar = !value.contains("calendar") || !value["calendar"].is_null();
        return birthday;
    }

private:
    static bool isMissing(Json const& value) { return value.is_null() || value == ""; }

    Json const& valueOf(char const* key) const
    {
        static Json const none;
        auto const found = m_entry.find(key);
        return found == m_entry.end() ? none : *found;
    }

    LabeledValue labeled(char const* key, Json const& value) const
    {
        if (value.is_string())
            return { "", value.get<std::string>() };
        if (!value.is_object() || !value.contains("value") || !value["value"].is_string())
            fail(key, "is no text and has no `value`");
        bool const hasLabel = value.contains("label") && value["label"].is_string();
        return { hasLabel ? value["label"].get<std::string>() : "", value["value"].get<std::string>() };
    }

    int number(char const* key, Json const& value, char const* part) const
    {
        if (!value.contains(part) || !value[part].is_number_integer())
            fail(key, std::string("has no `") + part + "`");
        return value[part].get<int>();
    }

    [[noreturn]] void fail(std::string const& key, std::string const& problem) const
    {
        throw std::invalid_argument(m_where + (key.empty() ? "" : "." + key) + " " + problem);
    }

    Json const& m_entry;
    std::string m_where;
};

std::vector<AddressBookContact> contactsOf(Json const& entries)
{
    if (!entries.is_array())
        throw std::invalid_argument("contacts is no array");
    std::vector<AddressBookContact> contacts;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        EntryReader const reader(entries[i], "contacts[" + std::to_string(i) + "]");
        AddressBookContact contact;
        contact.firstName = reader.text("contactFirstName");
        contact.lastName = reader.text("contactLastName");
        contact.identifier = reader.text("contactUniqueIdentifier");
        if (contact.identifier.empty())
            contact.identifier = "contact-" + std::to_string(i + 1);
        contact.image = reader.data("contactImage");
        contact.thumbnail = reader.data("thumbnail");
        contact.birthday = reader.birthday("contactBirthday");
        contact.phones = reader.values("contactPhoneNumber");
        contact.emails = reader.values("contactEmail");
        contacts.push_back(std::move(contact));
    }
    return contacts;
}

Json labeledEntries(std::vector<LabeledValue> const& values)
{
    Json all = Json::array();
    for (LabeledValue const& each : values)
        all.push_back({ { "label", each.label }, { "value", each.value } });
    return all;
}

}

std::vector<AddressBookContact> const& addressBook()
{
    Book& theBook = book();
    if (!theBook.contacts)
        theBook.contacts = contactsOf(theBook.entries.is_null() ? starterEntries() : theBook.entries);
    return *theBook.contacts;
}

Status setAddressBook(Json const& entries)
{
    std::optional<std::vector<AddressBookContact>> contacts;
    try {
        if (!entries.is_null())
            contacts = contactsOf(entries);
    } catch (std::invalid_argument const& problem) {
        return Error { problem.what() };
    }
    book() = { entries, std::move(contacts) };
    return {};
}

Json const& addressBookEntries() { return book().entries; }

Json addressBookEntries(VcardContacts const& cards)
{
    Json entries = Json::array();
    for (VcardContact const& card : cards.contacts) {
        Json entry { { "contactFirstName", card.givenName }, { "contactLastName", card.familyName },
            { "contactUniqueIdentifier", card.identifier },
            { "contactPhoneNumber", labeledEntries(card.phones) },
            { "contactEmail", labeledEntries(card.emails) } };
        if (card.photo)
            entry["contactImage"] = { { "data", base64(card.photo->data(), card.photo->size()) } };
        if (card.birthday) {
            Json birthday { { "day", card.birthday->day }, { "month", card.birthday->month } };
            if (card.birthday->year)
                birthday["year"] = *card.birthday->year;
            entry["contactBirthday"] = std::move(birthday);
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

}
