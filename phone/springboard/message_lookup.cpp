// The runtime's look-up of messages. Our definition comes before the library's in the order of symbol look-up, for this
// program, for Foundation and for plug-ins alike.
#include "phone/springboard/message_lookup.hpp"

#include <dlfcn.h>

extern "C" __attribute__((visibility("default"))) IMP objc_msg_lookup(id receiver, SEL selector)
{
    using Function = IMP(id, SEL);
    static constinit Function* next = nullptr;
    // Libraries send messages before this program's own initialisers run.
    if (!next)
        next = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "objc_msg_lookup"));
    IMP const found = next(receiver, selector);
    phone::MessageInterceptor const interceptor = phone::messageInterceptor();
    return interceptor && receiver ? interceptor(receiver, selector, found, __builtin_return_address(0))
                                   : found;
}
