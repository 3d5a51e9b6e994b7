#include "phone/apps/activator.hpp"

#include "objc/define.hpp"
#include "phone/apps/availability.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"

#include <map>

namespace phone {

namespace {

using Listeners = std::map<std::string, objc::ref<objc::handle>>;

// Never destroyed: listeners must not go after the runtime's own end.
Listeners& listeners()
{
    static Listeners& all = *new Listeners;
    return all;
}

objc::handle listenerNamed(std::string const& name)
{
    auto const found = listeners().find(name);
    return found == listeners().end() ? objc::handle {} : found->second.get();
}

struct LAEvent : objc::subclass<LAEvent, "LAEvent", NSObject> {
    using subclass::subclass;
    BOOL isHandled() const { return objc::ivar<BOOL, "_handled">(*this); }
};

struct LAActivator : objc::subclass<LAActivator, "LAActivator", NSObject> {
    using subclass::subclass;

    static LAActivator sharedInstance()
    {
        static LAActivator const shared = objc::leak(objc::adopt(LAActivator::alloc().init<LAActivator>()));
        return shared;
    }

    // Keeps the listener. A later one takes the name over.
    void registerListener(objc::handle listener, NSString name) const
    {
        if (!listener || !name)
            return;
        listeners()[toString(name)] = objc::retain(listener);
        trace().record("listener", { { "name", toString(name) }, { "class", classNameOf(listener) } });
    }
    void unregisterListener(NSString name) const { listeners().erase(toString(name)); }
    objc::handle listenerForName(NSString name) const { return listenerNamed(toString(name)); }
};

// What happens inside is the listener's doing.
template <objc::fixed_string Selector, class... A>
void tell(objc::handle listener, A... arguments)
{
    CalloutScope const scope(listener, objc::selector<Selector>());
    listener.send<Selector>(arguments...);
}

}

ActivatorAnswer sendActivatorEvent(std::string const& listenerName)
{
    auto const listener = objc::retain(listenerNamed(listenerName));
    if (!listener || !isServiceAvailable("activator"))
        return {};
    auto const event = objc::adopt(LAEvent::alloc().init<LAEvent>());
    event->send<"setName:">("phone.gesture"_ns);
    auto const activator = LAActivator::sharedInstance();
    NSString const name = toNSString(listenerName);
    if (listener->responds<"activator:receiveEvent:forListenerName:">())
        tell<"activator:receiveEvent:forListenerName:">(listener, activator, event.get(), name);
    else if (listener->responds<"activator:receiveEvent:">())
        tell<"activator:receiveEvent:">(listener, activator, event.get());
    else
        return {};
    return { .delivered = true, .handled = bool(event->isHandled()) };
}

void defineActivator()
{
    objc::define<LAEvent>()
        .property<"name", NSString>(objc::copy)
        .property<"handled", BOOL>()
        .method<"isHandled", &LAEvent::isHandled>()
        .install();
    objc::define<LAActivator>()
        .class_method<"sharedInstance", &LAActivator::sharedInstance>()
        .method<"registerListener:forName:", &LAActivator::registerListener>()
        .method<"unregisterListenerWithName:", &LAActivator::unregisterListener>()
        .method<"listenerForName:", &LAActivator::listenerForName>()
        .install();
    if (!isServiceAvailable("activator"))
        bootOptions().absent.emplace_back("LAActivator");
}

}
