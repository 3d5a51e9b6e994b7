#include "plugin/host/activator.hpp"

#include "objc/define.hpp"
#include "plugin/host/host_state.hpp"
#include "plugin/host/lock_screen_hooks.hpp"
#include "plugin/host/settings.hpp"

namespace {

template <class Listener>
void registerListener(NSString name)
{
    LAActivator::sharedInstance().registerListener(
        objc::adopt(Listener::alloc().template init<Listener>()), name);
}

void post(NSString name, objc::handle listener)
{
    NSNotificationCenter::defaultCenter().postNotificationName(name, listener, nullptr);
}

void addToHeight(UIView view, CGFloat points)
{
    CGRect frame = view.frame();
    frame.size.height += points;
    view.setFrame(frame);
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
    auto const settingsFile = readSettingsFile();
    BOOL const hides = !strip.isHidden();
    if (hides) {
        stack.removeArrangedSubview(strip);
        strip.removeFromSuperview();
        addToHeight(stack, -strip.frame().size.height);
    } else if (stack.subviews().count() == 0) {
        self.send<"viewDidLoad">();
    } else {
        addToHeight(stack, strip.frame().size.height);
        // It may stand in the stack, hidden: what pins it there goes, and is made anew.
        strip.removeFromSuperview();
        placeStripInStack(stack);
    }
    strip.setHidden(hides);
    setHideLSView(hides, settingsFile);
}
