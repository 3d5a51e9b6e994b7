// Activator's gestures: one hides or shows the lock screen's strip, the other brings the overlay strip down over any
// application. The listeners post a notification; the adjunct-list controller observes it once it has made the strip.
#pragma once

#include "platform/activator.hpp"
#include "platform/springboard.hpp"

// A listener's name, and the notification that it posts.
inline NSString kActivatorLS() { return "com.orvane.corvelLS"_ns; }
inline NSString kActivatorNONLS() { return "com.orvane.corvelNONLS"_ns; }

struct ActivatorListenerLS : objc::subclass<ActivatorListenerLS, "ActivatorListenerLS", NSObject> {
    using subclass::subclass;
    static void load();
    void activatorReceiveEvent(objc::handle activator, objc::handle event) const;
};
struct ActivatorListenerNONLS : objc::subclass<ActivatorListenerNONLS, "ActivatorListenerNONLS", NSObject> {
    using subclass::subclass;
    static void load();
    void activatorReceiveEvent(objc::handle activator, objc::handle event) const;
};
void defineActivatorListeners();

// Added to the adjunct-list controller.
void activatorLS(
    AdjunctListViewController self, SEL cmd);   // hides or shows the lock screen's strip, and saves which
void activatorNONLS(AdjunctListViewController self, SEL cmd);   // shows the overlay strip, or swipes it away
void cvlViewSwipeUp(AdjunctListViewController self, SEL cmd);   // dismisses the overlay strip
