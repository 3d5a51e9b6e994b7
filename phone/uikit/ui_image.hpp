// UIImage: a picture in points over a bitmap. Immutable. Main thread.
#pragma once

#include "phone/uikit/core_graphics_objects.hpp"
#include "platform/foundation.hpp"

#include <functional>
#include <string>

namespace phone {

enum class UIImageRenderingMode : NSInteger { automatic = 0, alwaysOriginal = 1, alwaysTemplate = 2 };

struct UIImage : objc::subclass<UIImage, "UIImage", NSObject> {
    using subclass::subclass;

    static UIImage of(graphics::Bitmap bitmap);   // lent; nil for none
    // One point a pixel. Nil for what is no picture (the trace tells: `decode`).
    static UIImage imageWithData(NSData data);
    static UIImage imageWithDataScale(NSData data, CGFloat scale);
    // A device path, or one of the host's. The scale follows the name (`@2x`, `@3x`), which is also tried
    // when the plain file is missing. Nil for a missing file.
    static UIImage imageWithContentsOfFile(NSString path);
    static UIImage imageNamed(NSString name);
    static UIImage imageWithCGImage(CGImageRef image);
    static UIImage imageWithCGImageScale(CGImageRef image, CGFloat scale, NSInteger orientation);
    // format 0: 29 points (settings), 1: 60 (home screen), 2: the notification's; see kIconSides.
    static UIImage applicationIconImage(NSString bundleIdentifier, int format, CGFloat scale);

    UIImage initWithData(NSData data) const;
    UIImage initWithContentsOfFile(NSString path) const;
    UIImage initWithCGImage(CGImageRef image) const;

    graphics::Bitmap const& bitmap() const;   // none from nil

    CGSize size() const;   // points
    CGFloat scale() const;
    CGImageRef CGImage() const;   // lent for as long as the image lives
    NSInteger renderingMode() const;
    UIImage imageWithRenderingMode(NSInteger mode) const;
    NSInteger imageOrientation() const;
    void drawInRect(CGRect rect) const;   // into the current image context; nothing outside of one
    void drawAtPoint(CGPoint point) const;
};

// An application as icons and alerts know it: its name by bundle identifier; empty for an unknown one.
// SpringBoard's applications register here at boot.
void registerApplicationIcon(
    std::string const& bundleIdentifier, std::function<graphics::Bitmap(double side, double scale)> paint);

// UIImagePNGRepresentation and UIImageJPEGRepresentation are exported as C functions.
void defineUIImage();

}
