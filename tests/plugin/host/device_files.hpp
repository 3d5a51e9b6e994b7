// The plug-in's two files, put on the phone's disk before it boots, whatever they hold.
#pragma once

#include "tests/support/phone_fixture.hpp"

namespace phone {

inline constexpr char kSettingsFile[] = "/var/jb/var/mobile/Library/Preferences/com.orvane.corvelpref.plist";
inline constexpr char kContactListFile[] =
    "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist";

// None: the file is not there.
void putDeviceFiles(std::optional<Bytes> const& settings, std::optional<Bytes> const& contacts);

Bytes bytesOf(std::string_view text);

// The entries that the lock screen's strip holds, of whatever kind. Nil without a strip.
NSArray stripList();

}
