// What asks for "now" gets the phone's date.
#include "phone/foundation/dates_and_timers.hpp"
#include "phone/foundation/method_replacement.hpp"
#include "phone/kernel/services.hpp"
#include "platform/foundation.hpp"

namespace phone {

namespace {

double now() { return clock().date().sinceReference; }

NSDate dateAt(id cls, double sinceReference)
{
    return objc::class_handle { reinterpret_cast<Class>(cls) }
        .send<"dateWithTimeIntervalSinceReferenceDate:", NSDate>(sinceReference);
}

id date(id cls, SEL) { return dateAt(cls, now()).object; }
double sinceReferenceNow(id, SEL) { return now(); }
id dateFromNow(id cls, SEL, double seconds) { return dateAt(cls, now() + seconds).object; }

id initWithNow(id self, SEL)
{
    return objc::handle { self }.send<"initWithTimeIntervalSinceReferenceDate:", objc::handle>(now()).object;
}
id initFromNow(id self, SEL, double seconds)
{
    return objc::handle { self }
        .send<"initWithTimeIntervalSinceReferenceDate:", objc::handle>(now() + seconds)
        .object;
}
double sinceNow(id self, SEL)
{
    return objc::handle { self }.send<"timeIntervalSinceReferenceDate", double>() - now();
}

}

void replaceDates()
{
    static bool isDone = false;
    if (std::exchange(isDone, true))
        return;
    replace<"date">("NSDate", &date, MethodKind::ofClass);
    replace<"now">("NSDate", &date, MethodKind::ofClass);
    replace<"timeIntervalSinceReferenceDate">("NSDate", &sinceReferenceNow, MethodKind::ofClass);
    replace<"dateWithTimeIntervalSinceNow:">("NSDate", &dateFromNow, MethodKind::ofClass);
    // GNUstep's own classes of dates have some of these once more.
    for (char const* const name : { "NSDate", "NSGDate", "NSCalendarDate" })
        replace<"timeIntervalSinceNow">(name, &sinceNow);
    replace<"init">("NSDate", &initWithNow);
    replace<"initWithTimeIntervalSinceNow:">("NSDate", &initFromNow);
}

}
