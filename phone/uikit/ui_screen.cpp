#include "phone/uikit/ui_screen.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/ui_window.hpp"

#include <utility>

namespace phone {

namespace {

bool isLandscape() { return screenState().orientation >= 3; }

// What the screen's edges are covered by, by its upright height; published by device reviewers for each
// screen size. Shorter screens have a home button and square corners.
struct EdgeRow {
    double height, top, bottom, landscapeSide, landscapeBottom;
};
constexpr EdgeRow kEdges[] {
    { 812, 44, 34, 44, 21 },
    { 844, 47, 34, 47, 21 },
    { 852, 59, 34, 59, 21 },
    { 896, 44, 34, 44, 21 },
    { 926, 47, 34, 47, 21 },
    { 932, 59, 34, 59, 21 },
};

}

CGRect screenBounds()
{
    BootOptions const& options = bootOptions();
    if (isLandscape())
        return { {}, { options.height, options.width } };
    return { {}, { options.width, options.height } };
}
double screenScale() { return bootOptions().scale; }
void setScreenOrientation(int orientation)
{
    if (orientation < 1 || orientation > 4)
        return;
    int const from = std::exchange(screenState().orientation, orientation);
    turnWindows(from);
}
int screenOrientation() { return screenState().orientation; }

UIEdgeInsets safeAreaOfScreen()
{
    for (EdgeRow const& row : kEdges) {
        if (row.height == bootOptions().height)
            return isLandscape()
                ? UIEdgeInsets { 0, row.landscapeSide, row.landscapeBottom, row.landscapeSide }
                : UIEdgeInsets { row.top, 0, row.bottom, 0 };
    }
    // The status bar alone, which goes away in landscape.
    return isLandscape() ? UIEdgeInsets {} : UIEdgeInsets { 20, 0, 0, 0 };
}

UIScreen UIScreen::mainScreen()
{
    static UIScreen const screen { UIScreen::alloc().init().object };
    return screen;
}
NSArray UIScreen::screens()
{
    auto const all = NSMutableArray::array();
    all.addObject(mainScreen());
    return all;
}
CGRect UIScreen::bounds() const { return screenBounds(); }
CGRect UIScreen::nativeBounds() const
{
    BootOptions const& options = bootOptions();
    return { {}, { options.width * options.scale, options.height * options.scale } };
}
CGFloat UIScreen::scale() const { return screenScale(); }
CGFloat UIScreen::nativeScale() const { return screenScale(); }
CGFloat UIScreen::brightness() const { return 0.5; }
NSInteger UIScreen::maximumFramesPerSecond() const { return static_cast<NSInteger>(kFramesPerSecond); }

UIDevice UIDevice::currentDevice()
{
    static UIDevice const device { UIDevice::alloc().init().object };
    return device;
}
NSString UIDevice::systemVersion() const { return toNSString(bootOptions().ios.text()); }
NSString UIDevice::systemName() const { return "iOS"_ns; }
NSString UIDevice::model() const { return "iPhone"_ns; }
NSString UIDevice::localizedModel() const { return "iPhone"_ns; }
NSString UIDevice::name() const { return "iPhone"_ns; }
NSInteger UIDevice::userInterfaceIdiom() const { return 0; }
// An interface turned right is a device turned left, and the two share a number.
NSInteger UIDevice::orientation() const { return screenState().orientation; }

void defineUIScreen()
{
    objc::define<UIScreen>()
        .class_method<"mainScreen", &UIScreen::mainScreen>()
        .class_method<"screens", &UIScreen::screens>()
        .method<"bounds", &UIScreen::bounds>()
        .method<"nativeBounds", &UIScreen::nativeBounds>()
        .method<"scale", &UIScreen::scale>()
        .method<"nativeScale", &UIScreen::nativeScale>()
        .method<"brightness", &UIScreen::brightness>()
        .method<"maximumFramesPerSecond", &UIScreen::maximumFramesPerSecond>()
        .install();
    objc::define<UIDevice>()
        .class_method<"currentDevice", &UIDevice::currentDevice>()
        .method<"systemVersion", &UIDevice::systemVersion>()
        .method<"systemName", &UIDevice::systemName>()
        .method<"model", &UIDevice::model>()
        .method<"localizedModel", &UIDevice::localizedModel>()
        .method<"name", &UIDevice::name>()
        .method<"userInterfaceIdiom", &UIDevice::userInterfaceIdiom>()
        .method<"orientation", &UIDevice::orientation>()
        .install();
}

}
