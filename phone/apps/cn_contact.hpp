// CNContact, CNLabeledValue and CNPhoneNumber: a picked contact as Contacts hands it over. Immutable.
// Main thread.
#pragma once

#include "phone/apps/address_book.hpp"
#include "platform/foundation.hpp"

namespace phone {

struct CNContact : objc::subclass<CNContact, "CNContact", NSObject> {
    using subclass::subclass;
    static objc::ref<CNContact> make(AddressBookContact const& contact);

    NSString firstName() const;   // givenName is the same, as is familyName to lastName
    NSString lastName() const;
    NSString identifier() const;
    NSData imageData() const;   // the full image; nil for none
    NSData thumbnailImageData() const;
    BOOL imageDataAvailable() const;
    NSDateComponents birthday() const;   // nil for none
    NSArray phoneNumbers() const;        // of CNLabeledValue, whose values are CNPhoneNumbers
    NSArray emailAddresses() const;      // of CNLabeledValue, whose values are texts
};

struct CNLabeledValue : objc::subclass<CNLabeledValue, "CNLabeledValue", NSObject> {
    using subclass::subclass;
    static objc::ref<CNLabeledValue> make(std::string const& label, objc::handle value);
};

struct CNPhoneNumber : objc::subclass<CNPhoneNumber, "CNPhoneNumber", NSObject> {
    using subclass::subclass;
    static objc::ref<CNPhoneNumber> make(std::string const& text);
};

void defineCNContact();

}
