// The C functions of Core Graphics and UIKit's image contexts. Each takes null for nothing to do.
#include "phone/graphics/path.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/core_graphics_objects.hpp"
#include "phone/uikit/geometry.hpp"
#include "phone/uikit/ui_image.hpp"

#include <memory>

namespace phone {

namespace {

// Open image contexts, innermost last. Never more than a handful; a forgotten one stays until the end.
std::vector<std::unique_ptr<CGContext>>& contexts()
{
    static std::vector<std::unique_ptr<CGContext>> open;
    return open;
}

cairo_t* cairoOf(CGContextRef context) { return context ? context->cairo.get() : nullptr; }

}

}

using namespace phone;

CGAffineTransform const CGAffineTransformIdentity = phone::kIdentity;

CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy) { return scaling(sx, sy); }
CGAffineTransform CGAffineTransformMakeRotation(CGFloat radians) { return rotation(radians); }
CGAffineTransform CGAffineTransformMakeTranslation(CGFloat x, CGFloat y) { return translation(x, y); }
CGAffineTransform CGAffineTransformConcat(CGAffineTransform a, CGAffineTransform b)
{
    return concatenated(a, b);
}
CGAffineTransform CGAffineTransformScale(CGAffineTransform t, CGFloat sx, CGFloat sy)
{
    return concatenated(scaling(sx, sy), t);
}
CGAffineTransform CGAffineTransformRotate(CGAffineTransform t, CGFloat radians)
{
    return concatenated(rotation(radians), t);
}
CGAffineTransform CGAffineTransformTranslate(CGAffineTransform t, CGFloat x, CGFloat y)
{
    return concatenated(translation(x, y), t);
}
CGAffineTransform CGAffineTransformInvert(CGAffineTransform t) { return inverted(t); }
bool CGAffineTransformIsIdentity(CGAffineTransform t) { return isIdentity(t); }

CGImageRef CGImageCreateWithImageInRect(CGImageRef image, CGRect rect)
{
    if (!image)
        return nullptr;
    graphics::Bitmap const part = graphics::cropped(image->bitmap, toGraphics(standardized(rect)));
    return part ? new CGImage { 1, part } : nullptr;
}
CGImageRef CGImageRetain(CGImageRef image)
{
    if (image)
        ++image->references;
    return image;
}
void CGImageRelease(CGImageRef image)
{
    if (image && --image->references == 0)
        delete image;
}
std::size_t CGImageGetWidth(CGImageRef image)
{
    return image ? static_cast<std::size_t>(image->bitmap.pixelWidth()) : 0;
}
std::size_t CGImageGetHeight(CGImageRef image)
{
    return image ? static_cast<std::size_t>(image->bitmap.pixelHeight()) : 0;
}

void UIGraphicsBeginImageContextWithOptions(CGSize size, BOOL opaque, CGFloat scale)
{
    auto context = std::make_unique<CGContext>();
    context->size = size;
    context->scale = scale > 0 ? scale : bootOptions().scale;
    context->bitmap = graphics::Bitmap::withPoints(toGraphics(size), context->scale);
    context->cairo = context->bitmap.newContext();
    if (opaque && context->cairo) {
        cairo_set_source_rgb(context->cairo.get(), 0, 0, 0);
        cairo_paint(context->cairo.get());
    }
    contexts().push_back(std::move(context));
}
void UIGraphicsBeginImageContext(CGSize size) { UIGraphicsBeginImageContextWithOptions(size, false, 1); }

CGContextRef UIGraphicsGetCurrentContext()
{
    return contexts().empty() || !contexts().back()->cairo ? nullptr : contexts().back().get();
}

id UIGraphicsGetImageFromCurrentImageContext()
{
    CGContextRef const context = UIGraphicsGetCurrentContext();
    // A copy: what is drawn later must not show in the image.
    return context ? UIImage::of(context->bitmap.copy()).object : nullptr;
}

void UIGraphicsEndImageContext()
{
    if (!contexts().empty())
        contexts().pop_back();
}

void CGContextSaveGState(CGContextRef context)
{
    if (cairo_t* const cairo = cairoOf(context))
        cairo_save(cairo);
}
void CGContextRestoreGState(CGContextRef context)
{
    // An unmatched one would put Cairo's context into its error state for good.
    if (cairo_t* const cairo = cairoOf(context); cairo && cairo_status(cairo) == CAIRO_STATUS_SUCCESS)
        cairo_restore(cairo);
}
void CGContextTranslateCTM(CGContextRef context, CGFloat x, CGFloat y)
{
    if (cairo_t* const cairo = cairoOf(context))
        cairo_translate(cairo, x, y);
}
void CGContextScaleCTM(CGContextRef context, CGFloat x, CGFloat y)
{
    cairo_t* const cairo = cairoOf(context);
    if (cairo && x != 0 && y != 0)
        cairo_scale(cairo, x, y);
}
void CGContextAddRect(CGContextRef context, CGRect rect)
{
    if (cairo_t* const cairo = cairoOf(context))
        graphics::addRect(cairo, toGraphics(rect));
}
void CGContextAddEllipseInRect(CGContextRef context, CGRect rect)
{
    if (cairo_t* const cairo = cairoOf(context))
        graphics::addEllipse(cairo, toGraphics(standardized(rect)));
}
void CGContextClip(CGContextRef context)
{
    cairo_t* const cairo = cairoOf(context);
    // An empty path leaves the clip as it is, as on the platform; in Cairo it would clip everything away.
    if (cairo && cairo_has_current_point(cairo))
        cairo_clip(cairo);
}
void CGContextSetFillColorWithColor(CGContextRef context, CGColorRef color)
{
    cairo_t* const cairo = cairoOf(context);
    if (cairo && color)
        graphics::setColor(cairo, color->color);
}
void CGContextFillRect(CGContextRef context, CGRect rect)
{
    if (cairo_t* const cairo = cairoOf(context)) {
        cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
        cairo_fill(cairo);
    }
}
void CGContextFillEllipseInRect(CGContextRef context, CGRect rect)
{
    if (cairo_t* const cairo = cairoOf(context)) {
        graphics::addEllipse(cairo, toGraphics(standardized(rect)));
        cairo_fill(cairo);
    }
}
void CGContextDrawImage(CGContextRef context, CGRect rect, CGImageRef image)
{
    cairo_t* const cairo = cairoOf(context);
    if (!cairo || !image)
        return;
    // Core Graphics has y upwards, UIKit's context y downwards: the image stands on its head, as there.
    cairo_save(cairo);
    cairo_translate(cairo, 0, rect.origin.y * 2 + rect.size.height);
    cairo_scale(cairo, 1, -1);
    graphics::drawBitmap(cairo, image->bitmap, toGraphics(rect));
    cairo_restore(cairo);
}
