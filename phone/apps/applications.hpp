// Applications that URLs open, and which one is in front. Each shows a plain card with what it was given.
// Main thread.
#pragma once

#include "phone/graphics/app_icon.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace phone {

struct Application {
    char const* identifier;
    char const* name;
    char const* scheme;                      // of the URLs that it opens; empty for none
    char const* service;                     // in the boot options' `absent`; empty: it is always there
    std::optional<graphics::AppIcon> icon;   // letters where there is none
    bool isCall { false };                   // shows over a locked phone
};

// Null for an identifier that the phone does not know.
Application const* applicationWithIdentifier(std::string_view identifier);

// The number or the person that a URL of these applications names, percent-decoded: `+15550100` for
// `tel:+15550100` and for `whatsapp://send?phone=+15550100`. Empty for none.
std::string subjectOfUrl(std::string_view url);

// Opens it, and answers whether something took it. No application: none for the scheme, or it is absent; or
// a passcode guards the phone (calls go through). A lock screen without passcode is put away.
bool openUrl(std::string const& url);
bool canOpenUrl(std::string const& url);

// Brings an application to the front by its identifier; com.apple.springboard is the home screen. One that
// the phone does not know shows its identifier.
void launchApplication(std::string const& identifier);

// The phone locks: applications, calls and Siri leave the screen.
void closeApplications();

// A call's card was put away: what was in front before is in front again.
void callDidEnd();

// Takes URLs from UIApplication, and gives the applications their icons.
void startApplications();

}
