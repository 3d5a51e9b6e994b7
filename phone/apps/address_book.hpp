// The phone's address book: what the contact picker offers. Main thread.
#pragma once

#include "phone/kernel/result.hpp"
#include "phone/kernel/trace.hpp"
#include "phone/kernel/vcard.hpp"

#include <optional>
#include <string>
#include <vector>

namespace phone {

struct ContactBirthday {
    int day { 1 };     // 1 to 31
    int month { 1 };   // 1 to 12
    std::optional<int> year;
    bool hasCalendar { true };   // without one the components make no date
};

struct AddressBookContact {
    std::string firstName;
    std::string lastName;
    std::string identifier;
    std::optional<Bytes> image;       // an image file
    std::optional<Bytes> thumbnail;   // a smaller one
    std::optional<ContactBirthday> birthday;
    std::vector<LabeledValue> phones;   // as typed
    std::vector<LabeledValue> emails;
};

// In the book's order. The starter set until something else is set.
std::vector<AddressBookContact> const& addressBook();

// Entries as in the contact list file, but a number or an address may be an array of texts or of {"label",
// "value"}, a thumbnail is data, and a birthday may be {"day","month","year","calendar"}. Null: the starter
// set. An error names what is wrong, and nothing changes.
Status setAddressBook(Json const& entries);

// What was set last, for a phone that restarts; null for the starter set.
Json const& addressBookEntries();

// The entries of a vCard file's contacts, every number and address.
Json addressBookEntries(VcardContacts const& cards);

}
