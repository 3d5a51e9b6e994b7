#include "phone/foundation/foundation.hpp"

#include "phone/foundation/dates_and_timers.hpp"
#include "phone/foundation/index_paths.hpp"
#include "phone/foundation/notification_centers.hpp"
#include "phone/foundation/property_list_objects.hpp"
#include "phone/foundation/urls.hpp"
#include "phone/kernel/services.hpp"

namespace phone {

void defineFoundation()
{
    replaceDates();
    replaceTimers();
    replaceLocale();
    replaceFileMethods();
    extendIndexPaths();
    replaceUrls();
    traceNotificationCenter();
    applyLocaleOptions();
    kCFCoreFoundationVersionNumber = bootOptions().coreFoundationNumber();
}

}
