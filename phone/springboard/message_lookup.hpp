// Every message of the process, as it looks its implementation up: whoever records messages stands in between. The
// executable has to be linked with phone_substrate, whose look-up stands before the runtime's.
#pragma once

#include "objc/abi.hpp"

namespace phone {

// Answers the implementation to call in place of the one found. The caller is the code that sends, by its return
// address. Any thread; never for nil. It must send no message that leads back to it.
using MessageInterceptor = IMP (*)(id receiver, SEL selector, IMP found, void const* caller);

// nullptr: none. Main thread, with no other thread sending messages.
void setMessageInterceptor(MessageInterceptor interceptor);
MessageInterceptor messageInterceptor();

}
