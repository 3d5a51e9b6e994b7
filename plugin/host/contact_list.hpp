// The contact list file: { contactsArray = [ContactEntry] }, in display order. Written by the contact picker's delegate, and by
// the preference bundle; read here.
//
// A ContactEntry is a dictionary with seven keys, each always present when we write it; the empty string marks what the contact
// does not have, whatever the key's usual kind.
#pragma once

#include "platform/foundation.hpp"

inline constexpr char kContactListPath[] =
    "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist";

namespace entry_key {
inline NSString firstName() { return "contactFirstName"_ns; }                 // text
inline NSString lastName() { return "contactLastName"_ns; }                   // text
inline NSString uniqueIdentifier() { return "contactUniqueIdentifier"_ns; }   // text
inline NSString image() { return "contactImage"_ns; }                         // the bytes of an image file
inline NSString birthday() { return "contactBirthday"_ns; }                   // a date
inline NSString phoneNumber() { return "contactPhoneNumber"_ns; }             // text, as the user typed it
inline NSString email() { return "contactEmail"_ns; }                         // text
}

// The entries, read from the file at each call; a fresh array, lent. Empty when the file is missing or broken. An entry may be of
// any kind: read it with contactEntry().
NSMutableArray readContactList();

// The entry at the index as a dictionary; nil when it is none.
NSDictionary contactEntry(NSArray list, NSUInteger index);

// Replaces the file by a list of these entries, whole or not at all. Nil: the file stays as it is.
void writeContactList(NSArray entries);
