// Core Graphics: geometry, and the C functions for drawing that the plug-in calls. Points unless said
// otherwise; x to the right, y down, as UIKit has it.
#pragma once

#include "objc/encoding.hpp"

using CGFloat = double;

struct CGPoint {
    CGFloat x, y;
    friend constexpr bool operator==(CGPoint const&, CGPoint const&) = default;
};
struct CGSize {
    CGFloat width, height;
    friend constexpr bool operator==(CGSize const&, CGSize const&) = default;
};
struct CGRect {
    CGPoint origin;
    CGSize size;
    friend constexpr bool operator==(CGRect const&, CGRect const&) = default;
};
// | a  b  0 |
// | c  d  0 |   applied to row vectors: x' = a x + c y + tx, y' = b x + d y + ty.
// | tx ty 1 |
struct CGAffineTransform {
    CGFloat a, b, c, d, tx, ty;
    friend constexpr bool operator==(CGAffineTransform const&, CGAffineTransform const&) = default;
};
struct UIEdgeInsets {
    CGFloat top, left, bottom, right;
    friend constexpr bool operator==(UIEdgeInsets const&, UIEdgeInsets const&) = default;
};

template <>
struct objc::encoding<CGPoint> {
    static constexpr fixed_string value { "{CGPoint=dd}" };
};
template <>
struct objc::encoding<CGSize> {
    static constexpr fixed_string value { "{CGSize=dd}" };
};
template <>
struct objc::encoding<CGRect> {
    static constexpr fixed_string value { "{CGRect={CGPoint=dd}{CGSize=dd}}" };
};
template <>
struct objc::encoding<CGAffineTransform> {
    static constexpr fixed_string value { "{CGAffineTransform=dddddd}" };
};
template <>
struct objc::encoding<UIEdgeInsets> {
    static constexpr fixed_string value { "{UIEdgeInsets=dddd}" };
};

constexpr CGRect CGRectMake(CGFloat x, CGFloat y, CGFloat width, CGFloat height)
{
    return { { x, y }, { width, height } };
}

// Lent bitmaps of images and contexts to draw in; both opaque to us.
struct CGImage;
struct CGContext;
using CGImageRef = CGImage*;
using CGContextRef = CGContext*;

extern "C" {
extern CGAffineTransform const CGAffineTransformIdentity;
CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy);
CGAffineTransform CGAffineTransformMakeRotation(CGFloat radians);

void CGContextAddEllipseInRect(CGContextRef context, CGRect rect);
void CGContextClip(CGContextRef context);

// The part of the image inside the rectangle, in pixels. Owned (+1). None when they don't meet.
CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect);
void CGImageRelease(CGImageRef image);
}
