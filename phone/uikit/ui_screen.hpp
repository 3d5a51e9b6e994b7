// UIScreen and UIDevice: the phone as applications see it. Main thread.
#pragma once

#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"

namespace phone {

struct UIScreen : objc::subclass<UIScreen, "UIScreen", NSObject> {
    using subclass::subclass;
    static UIScreen mainScreen();
    static NSArray screens();
    CGRect bounds() const;         // turned with the orientation
    CGRect nativeBounds() const;   // pixels, upright
    CGFloat scale() const;
    CGFloat nativeScale() const;
    CGFloat brightness() const;
    NSInteger maximumFramesPerSecond() const;
};

struct UIDevice : objc::subclass<UIDevice, "UIDevice", NSObject> {
    using subclass::subclass;
    static UIDevice currentDevice();
    NSString systemVersion() const;
    NSString systemName() const;
    NSString model() const;
    NSString localizedModel() const;
    NSString name() const;
    NSInteger userInterfaceIdiom() const;
    NSInteger orientation() const;
};

// Points, turned with the orientation. As UIScreen's bounds.
CGRect screenBounds();
double screenScale();
// Interface orientation 1 to 4; anything else is ignored. Windows follow, as turnWindows() says.
void setScreenOrientation(int orientation);
int screenOrientation();

void defineUIScreen();

}
