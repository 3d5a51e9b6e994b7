#include "phone/apps/applications.hpp"

#include "phone/apps/app_card.hpp"
#include "phone/apps/availability.hpp"
#include "phone/apps/call_card.hpp"
#include "phone/apps/siri_card.hpp"
#include "phone/kernel/ascii.hpp"
#include "phone/springboard/home_screen.hpp"
#include "phone/springboard/lock_flow.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/ui_application.hpp"
#include "phone/uikit/ui_image.hpp"

#include <algorithm>
#include <cctype>

namespace phone {

namespace {

using graphics::AppIcon;

constexpr Application kApplications[] {
    { "com.apple.mobilephone", "Phone", "tel", "", AppIcon::phone, true },
    { "com.apple.facetime", "FaceTime", "facetime", "facetime", AppIcon::video, true },
    { "net.whatsapp.WhatsApp", "WhatsApp", "whatsapp", "whatsapp", std::nullopt },
    { "ph.telegra.Telegraph", "Telegram", "tg", "telegram", std::nullopt },
    { "com.apple.MobileSMS", "Messages", "", "", AppIcon::messages },
    { "com.apple.mobilemail", "Mail", "", "", AppIcon::mail },
    { "com.apple.mobilecal", "Calendar", "", "", AppIcon::calendar },
    { "com.apple.MobileAddressBook", "Contacts", "", "", AppIcon::contacts },
    { "com.apple.Preferences", "Settings", "", "", AppIcon::settings },
    { "com.apple.Music", "Music", "", "", AppIcon::music },
    { "com.apple.mobilesafari", "Browser", "", "", AppIcon::browser },
    { "com.apple.weather", "Weather", "", "", std::nullopt },
    { "com.apple.mobilenotes", "Notes", "", "", std::nullopt },
    { "com.apple.Maps", "Maps", "", "", std::nullopt },
    { "com.apple.podcasts", "Radio", "", "", std::nullopt },
};

std::string& frontMostBeforeCall()
{
    static std::string identifier;
    return identifier;
}

std::string schemeOf(std::string_view url)
{
    return lowercase(url.substr(0, std::min(url.find(':'), url.size())));
}

Application const* applicationForUrl(std::string_view url)
{
    if (url.find(':') == url.npos)
        return nullptr;
    std::string const scheme = schemeOf(url);
    for (Application const& each : kApplications)
        if (*each.scheme && scheme == each.scheme && (!*each.service || isServiceAvailable(each.service)))
            return &each;
    return nullptr;
}

std::string percentDecoded(std::string_view text)
{
    auto const digit = [](char c) {
        return std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : std::tolower(c) - 'a' + 10;
    };
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        bool const isEscape = text[i] == '%' && i + 2 < text.size()
            && std::isxdigit(static_cast<unsigned char>(text[i + 1]))
            && std::isxdigit(static_cast<unsigned char>(text[i + 2]));
        decoded += isEscape ? static_cast<char>(digit(text[i + 1]) * 16 + digit(text[i + 2])) : text[i];
        i += isEscape ? 2 : 0;
    }
    return decoded;
}

void bringToFront(std::string const& identifier, std::string const& url)
{
    auto& state = springBoard();
    bool const isHome = identifier == kSpringBoardIdentifier;
    state.frontMost = identifier;
    state.home->setCard(isHome ? objc::ref<UIView> {} : makeAppCard(identifier, url));
}

}

Application const* applicationWithIdentifier(std::string_view identifier)
{
    for (Application const& each : kApplications)
        if (identifier == each.identifier)
            return &each;
    return nullptr;
}

std::string subjectOfUrl(std::string_view url)
{
    for (std::string_view const parameter : { "phone=", "to=" }) {
        for (char const separator : { '?', '&' }) {
            auto const at = url.find(separator + std::string(parameter));
            if (at == url.npos)
                continue;
            std::string_view const value = url.substr(at + 1 + parameter.size());
            return percentDecoded(value.substr(0, std::min(value.find('&'), value.size())));
        }
    }
    auto const colon = url.find(':');
    if (colon == url.npos || url.find('?') != url.npos)
        return {};
    std::string_view rest = url.substr(colon + 1);
    while (rest.starts_with('/'))
        rest.remove_prefix(1);
    return percentDecoded(rest);
}

bool openUrl(std::string const& url)
{
    Application const* const application = applicationForUrl(url);
    if (!application)
        return false;
    auto& state = springBoard();
    TraceOwnScope const own;
    if (application->isCall) {
        if (!isCallShown())
            frontMostBeforeCall() = state.frontMost;
        state.frontMost = application->identifier;
        showCall(*application, subjectOfUrl(url));
        return true;
    }
    if (isPasscodeLocked())
        return false;
    if (state.isLocked && !state.isDismissing)
        requestUnlock();
    hideCall();
    bringToFront(application->identifier, url);
    return true;
}

bool canOpenUrl(std::string const& url) { return applicationForUrl(url) != nullptr; }

void launchApplication(std::string const& identifier)
{
    hideCall();
    hideSiri();
    bringToFront(identifier, "");
}

void closeApplications()
{
    hideCall();
    hideSiri();
    bringToFront(kSpringBoardIdentifier, "");
}

void callDidEnd()
{
    auto& state = springBoard();
    Application const* const call = applicationWithIdentifier(state.frontMost);
    if (call && call->isCall)
        state.frontMost = frontMostBeforeCall();
}

void startApplications()
{
    setUrlOpener(openUrl, canOpenUrl);
    for (Application const& each : kApplications)
        registerApplicationIcon(each.identifier, [&each](double side, double scale) {
            return each.icon ? graphics::appIcon(*each.icon, side, scale)
                             : graphics::letterIcon(each.name, each.identifier, side, scale);
        });
}

}
