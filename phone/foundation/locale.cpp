// Language, calendar and time zone of the phone rather than of this machine.
#include "phone/foundation/foundation.hpp"
#include "phone/foundation/method_replacement.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "platform/foundation.hpp"

#include <algorithm>

namespace phone {

namespace {

// Made anew when the language changes; kept for good, since callers may hold it.
objc::handle g_locale;
std::string g_localeLanguage;

// "zh-Hant" is "zh_Hant" to NSLocale.
objc::handle currentLocale()
{
    std::string const& language = bootOptions().language;
    if (!g_locale || g_localeLanguage != language) {
        std::string identifier = language;
        std::replace(identifier.begin(), identifier.end(), '-', '_');
        g_locale = NSLocale::alloc().send<"initWithLocaleIdentifier:", objc::handle>(toNSString(identifier));
        g_localeLanguage = language;
    }
    return g_locale;
}

id locale(id, SEL) { return currentLocale().object; }

id languages(id, SEL)
{
    auto const array = NSMutableArray::array();
    array.addObject(toNSString(bootOptions().language));
    return array.object;
}

id calendar(id, SEL)
{
    auto const made = objc::adopt(NSCalendar {
        NSCalendar::alloc().send<"initWithCalendarIdentifier:", objc::handle>("gregorian"_ns).object });
    made->send<"setLocale:">(currentLocale());
    made->send<"setTimeZone:">(objc::cls<"NSTimeZone">().send<"defaultTimeZone", objc::handle>());
    return objc::autorelease(made).object;
}

}

void replaceLocale()
{
    static bool isDone = false;
    if (std::exchange(isDone, true))
        return;
    replace<"currentLocale">("NSLocale", &locale, MethodKind::ofClass);
    replace<"autoupdatingCurrentLocale">("NSLocale", &locale, MethodKind::ofClass);
    replace<"preferredLanguages">("NSLocale", &languages, MethodKind::ofClass);
    replace<"currentCalendar">("NSCalendar", &calendar, MethodKind::ofClass);
    replace<"autoupdatingCurrentCalendar">("NSCalendar", &calendar, MethodKind::ofClass);
}

void applyLocaleOptions()
{
    objc::class_handle const zones = objc::cls<"NSTimeZone">();
    zones.send<"resetSystemTimeZone">();
    auto const zone = zones.send<"timeZoneWithName:", objc::handle>(toNSString(bootOptions().timezone));
    if (zone)
        zones.send<"setDefaultTimeZone:">(zone);
}

}
