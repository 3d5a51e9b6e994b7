// Pictures for the strip: photos and the badge cut round, the banner stretched.
#include "plugin/strip/cvl_view.hpp"

#include <algorithm>

namespace {

// What the drawing leaves in an offscreen context of the screen's scale; nil where there is no image to draw.
template <class Draw>
UIImage drawn(UIImage image, CGSize size, Draw const& draw)
{
    if (!image)
        return nullptr;
    UIGraphicsBeginImageContextWithOptions(size, /* opaque: */ false, /* scale: */ 0.0);
    draw();
    UIImage const result { UIGraphicsGetImageFromCurrentImageContext() };
    UIGraphicsEndImageContext();
    return result;
}

}

// Fills the size, the overflow cut equally on both sides, and cuts the ellipse.
UIImage CVLView::scaleImage(UIImage image, CGSize size) const
{
    auto const [width, height] = image.size();
    CGFloat const factor = std::max(size.width / width, size.height / height);
    CGSize const scaled { factor * width, factor * height };
    UIImage const filled = drawn(image, size, [&] {
        image.drawInRect(
            { { (size.width - scaled.width) * 0.5, (size.height - scaled.height) * 0.5 }, scaled });
    });
    return send<"makeImageRound:", UIImage>(filled);
}

UIImage CVLView::makeImageRound(UIImage image) const
{
    CGRect const whole { {}, image.size() };
    return drawn(image, whole.size, [&] {
        CGContextRef const context = UIGraphicsGetCurrentContext();
        CGContextAddEllipseInRect(context, whole);
        CGContextClip(context);
        image.drawInRect(whole);
    });
}

UIImage CVLView::imageScaledToSize(UIImage image, CGSize size) const
{
    return drawn(image, size, [&] { image.drawInRect({ {}, size }); });
}

UIImage CVLView::croppedImage(UIImage image, CGRect pixels) const
{
    CGImageRef const whole = image.cgImage();
    CGImageRef const part = whole ? CGImageCreateWithImageInRect(whole, pixels) : nullptr;
    if (!part)
        return nullptr;
    UIImage const result = UIImage::imageWithCGImage(part);
    CGImageRelease(part);
    return result;
}
