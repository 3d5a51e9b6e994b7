// The trace's `previous`: SpringBoard's own implementation of a method that a plug-in has hooked was called.
// And messages to methods that may be hooked. Main thread.
#pragma once

#include "phone/foundation/plugin_call.hpp"
#include "phone/kernel/trace.hpp"
#include "phone/springboard/substrate.hpp"

namespace phone {

// Called first thing by the own implementation, standing in class T. Arguments and result as in the trace.
template <class T, objc::fixed_string Selector>
void notePrevious(Json arguments = Json::array(), Json result = nullptr)
{
    if (isHooked(T::cls().get(), objc::selector<Selector>()))
        deviceTrace().record("previous",
            { { "class", T::class_name.c_str() }, { "selector", Selector.c_str() },
                { "arguments", std::move(arguments) }, { "result", std::move(result) } });
}

// Sends a message that a plug-in's replacement may answer: what it causes is the plug-in's doing. Nothing on a phone whose class
// lacks the method.
template <objc::fixed_string Selector, class R = void, class... A>
R sendHookable(objc::handle receiver, A const&... arguments)
{
    CalloutScope const scope(receiver, objc::selector<Selector>());
    return receiver.ask<Selector, R>(arguments...);
}

}
