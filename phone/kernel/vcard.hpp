// Contacts from a vCard file (.vcf), as iPhones, Google and Nextcloud export them: versions 2.1, 3.0 and
// 4.0. The address book and `--contacts FILE` use it. Main thread.
//
// Evolution's vCard parser (libebook-contacts) does the reading of the syntax; it is loaded when first
// asked for, since it brings many libraries along that a boot without a vCard file has no use for.
#pragma once

#include "phone/kernel/result.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace phone {

struct LabeledValue {
    std::string label;   // `mobile`, `home`, `work`, …, or the user's own; empty when the card has none
    std::string value;
    friend bool operator==(LabeledValue const&, LabeledValue const&) = default;
};

struct Birthday {
    int day { 1 };     // 1 to 31
    int month { 1 };   // 1 to 12
    std::optional<int> year;
    friend bool operator==(Birthday const&, Birthday const&) = default;
};

struct VcardContact {
    std::string givenName;
    std::string familyName;
    std::string identifier;             // UID of the card; made from its content when it has none
    std::vector<LabeledValue> phones;   // in the card's order
    std::vector<LabeledValue> emails;
    std::optional<Bytes> photo;   // an image file as it stood in the card (JPEG, PNG, …)
    std::optional<Birthday> birthday;
};

struct VcardContacts {
    std::vector<VcardContact> contacts;   // in the file's order
    std::vector<std::string> problems;    // one line each, naming file and card: what was left out, and why
};

// The cards of a text; `name` stands in messages. A card without any name, phone or mail address is left
// out and named in `problems`, as are a photo or a birthday that can't be read (the card stays). No card at
// all: an error. Text that is not UTF-8 is taken as Windows-1252, in which old phones wrote.
Result<VcardContacts> readVcards(std::string_view text, std::string const& name);

// The same from a file of this computer. Missing, a folder, unreadable: an error naming the path.
Result<VcardContacts> readVcardFile(std::filesystem::path const&);

}
