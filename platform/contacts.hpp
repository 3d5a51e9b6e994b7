// Contacts and its picker.
#pragma once

#include "platform/uikit.hpp"

struct CNContact : objc::subclass<CNContact, "CNContact", NSObject> {
    using subclass::subclass;
    // Systems differ in what they call the names; the longer-standing names first.
    NSString firstName() const
    {
        return responds<"firstName">() ? send<"firstName", NSString>() : ask<"givenName", NSString>();
    }
    NSString lastName() const
    {
        return responds<"lastName">() ? send<"lastName", NSString>() : ask<"familyName", NSString>();
    }
    NSString identifier() const { return ask<"identifier", NSString>(); }
    NSData imageData() const { return ask<"imageData", NSData>(); }
    NSDateComponents birthday() const { return ask<"birthday", NSDateComponents>(); }
    NSArray phoneNumbers() const { return ask<"phoneNumbers", NSArray>(); }       // of CNLabeledValue
    NSArray emailAddresses() const { return ask<"emailAddresses", NSArray>(); }   // of CNLabeledValue
};

struct CNLabeledValue : objc::subclass<CNLabeledValue, "CNLabeledValue", NSObject> {
    using subclass::subclass;
    objc::handle value() const { return ask<"value", objc::handle>(); }
};

struct CNContactPickerViewController
    : objc::subclass<CNContactPickerViewController, "CNContactPickerViewController", UIViewController> {
    using subclass::subclass;
    void setDelegate(objc::handle delegate) const { ask<"setDelegate:">(delegate); }   // not kept
};
