// What Core Graphics' opaque pointers point to. Reference counted by hand, as their C functions have it.
// Main thread.
#pragma once

#include "phone/graphics/bitmap.hpp"
#include "platform/core_graphics.hpp"

#include <vector>

struct CGImage {
    int references { 1 };
    phone::graphics::Bitmap bitmap;
};

struct CGColor {
    int references { 1 };
    phone::graphics::Color color;
};
using CGColorRef = CGColor*;

// An open image context. Owned by the stack of UIGraphicsBeginImageContextWithOptions.
struct CGContext {
    phone::graphics::Bitmap bitmap;
    phone::graphics::Context cairo;
    CGSize size {};   // points
    double scale { 1 };
};

extern "C" {
CGImageRef CGImageRetain(CGImageRef image);
std::size_t CGImageGetWidth(CGImageRef image);
std::size_t CGImageGetHeight(CGImageRef image);
CGColorRef CGColorRetain(CGColorRef color);
void CGColorRelease(CGColorRef color);

// size in points; scale 0: the screen's. A size that is empty or no number opens a context without pixels,
// from which no image comes, as on the platform.
void UIGraphicsBeginImageContextWithOptions(CGSize size, BOOL opaque, CGFloat scale);
void UIGraphicsBeginImageContext(CGSize size);
// The innermost context; none outside of one. Lent.
CGContextRef UIGraphicsGetCurrentContext();
// A UIImage, lent; nil outside of a context.
id UIGraphicsGetImageFromCurrentImageContext();
void UIGraphicsEndImageContext();

void CGContextSaveGState(CGContextRef context);
void CGContextRestoreGState(CGContextRef context);
void CGContextTranslateCTM(CGContextRef context, CGFloat x, CGFloat y);
void CGContextScaleCTM(CGContextRef context, CGFloat x, CGFloat y);
void CGContextAddRect(CGContextRef context, CGRect rect);
void CGContextFillRect(CGContextRef context, CGRect rect);
void CGContextFillEllipseInRect(CGContextRef context, CGRect rect);
void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color);
void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image);

CGAffineTransform CGAffineTransformMakeTranslation(CGFloat x, CGFloat y);
CGAffineTransform CGAffineTransformConcat(CGAffineTransform a, CGAffineTransform b);
CGAffineTransform CGAffineTransformScale(CGAffineTransform t, CGFloat sx, CGFloat sy);
CGAffineTransform CGAffineTransformRotate(CGAffineTransform t, CGFloat radians);
CGAffineTransform CGAffineTransformTranslate(CGAffineTransform t, CGFloat x, CGFloat y);
CGAffineTransform CGAffineTransformInvert(CGAffineTransform t);
bool CGAffineTransformIsIdentity(CGAffineTransform t);
}

template <>
struct objc::encoding<CGImageRef> {
    static constexpr fixed_string value { "^{CGImage=}" };
};
template <>
struct objc::encoding<CGColorRef> {
    static constexpr fixed_string value { "^{CGColor=}" };
};
