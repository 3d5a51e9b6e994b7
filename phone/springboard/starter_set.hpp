// What a new phone's disk holds: the contact list, the settings and the preference bundle's pictures. Files of
// the boot options take the starter set's place. Main thread.
#pragma once

#include "phone/kernel/boot_options.hpp"
#include "phone/kernel/device_root.hpp"
#include "phone/kernel/property_list.hpp"
#include "phone/kernel/trace.hpp"
#include "phone/kernel/vcard.hpp"

namespace phone {

inline constexpr char const* kSettingsPath =
    "/var/jb/var/mobile/Library/Preferences/com.orvane.corvelpref.plist";
inline constexpr char const* kContactListPath =
    "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist";

// The contact list (the starter set's, or the options' own), the settings if the options have any, and the
// pictures. The clock has to be started: somebody's birthday is today. An error names the value of the
// options that no property list can hold.
Result<std::vector<StarterFile>> starterFiles(BootOptions const&);

// A script's value as a property list: text, number, boolean, array, object, {"date": ISO 8601} and
// {"data": base64}. `where` stands in the error's message.
Result<PropertyList> propertyListOf(Json const& value, std::string const& where);

// The starter set's contacts as entries of the contact list.
Json starterEntries();

// Entries of the contact list from cards: the first phone number and address of each.
Json contactEntries(VcardContacts const&);

}
