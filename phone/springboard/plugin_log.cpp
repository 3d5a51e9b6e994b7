// NSLog as plug-ins call it: the trace's `log`. Everybody else's goes on to Foundation's.
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"

#include <cstdarg>
#include <dlfcn.h>

namespace {

void logText(id format, va_list arguments, void const* caller)
{
    using Original = void(id, va_list);
    using Initialiser = id(id, SEL, id, va_list);
    static auto* const original = reinterpret_cast<Original*>(dlsym(RTLD_NEXT, "NSLogv"));
    if (!phone::isPluginCode(caller)) {
        original(format, arguments);
        return;
    }
    AutoreleasePool const pool;
    SEL const selector = objc::selector<"initWithFormat:arguments:">();
    id const empty = NSString::alloc().object;
    auto* const initialise =
        reinterpret_cast<Initialiser*>(objc::boundary::message_implementation(empty, selector));
    va_list copy;
    va_copy(copy, arguments);
    auto const text = objc::adopt(NSString { initialise(empty, selector, format, copy) });
    va_end(copy);
    phone::trace().record("log", { { "text", phone::toString(text.get()) } });
    original(format, arguments);
}

}

extern "C" __attribute__((visibility("default"))) void NSLog(id format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    logText(format, arguments, __builtin_return_address(0));
    va_end(arguments);
}

extern "C" __attribute__((visibility("default"))) void NSLogv(id format, va_list arguments)
{
    logText(format, arguments, __builtin_return_address(0));
}
