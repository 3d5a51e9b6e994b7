#include "plugin/host/activator.hpp"

#include "objc/define.hpp"
#include "plugin/host/host_state.hpp"
#include "plugin/host/lock_screen_hooks.hpp"
#include "plugin/host/settings.hpp"

namespace {

template <class Listener>
void registerListener(NSString name)
{
    auto const listener = objc::adopt(Listener::alloc().template init<Listener>());
    LAActivator::sharedInstance().registerListener(listener, name);
}

void post(NSString name, objc::handle listener)
{
    NSNotificationCenter::defaultCenter().postNotificationName(name, listener, nullptr);
}

template <class Listener>
void defineListener()
{
    objc::define<Listener>()
        .template class_method<"load", &Listener::load>()
        .template method<"activator:receiveEvent:", &Listener::activatorReceiveEvent>()
        .install();
}

}

void ActivatorListenerLS::load() { registerListener<ActivatorListenerLS>(kActivatorLS()); }
void ActivatorListenerLS::activatorReceiveEvent(objc::handle, objc::handle) const
{
    post(kActivatorLS(), *this);
}

void ActivatorListenerNONLS::load() { registerListener<ActivatorListenerNONLS>(kActivatorNONLS()); }
void ActivatorListenerNONLS::activatorReceiveEvent(objc::handle, objc::handle) const
{
    post(kActivatorNONLS(), *this);
}

void defineActivatorListeners()
{
    defineListener<ActivatorListenerLS>();
    defineListener<ActivatorListenerNONLS>();
}

void activatorLS(AdjunctListViewController self, SEL)
{
    CVLView const strip = hostState().cvloView;
    if (!strip)
        return;
    UIStackView const stack = stackViewOf(self);
    BOOL const hides = !strip.isHidden();
    CGRect frame = stack.frame();
    if (hides) {
        stack.removeArrangedSubview(strip);
        strip.removeFromSuperview();
        frame.size.height -= strip.frame().size.height;
        stack.setFrame(frame);
    } else if (stack.subviews().count() == 0) {
        self.send<"viewDidLoad">();
    } else {
        frame.size.height += strip.frame().size.height;
        stack.setFrame(frame);
        placeStripInStack(stack);
    }
    strip.setHidden(hides);
    setHideLSView(hides);
}
