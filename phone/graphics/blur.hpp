// Backdrop blur: what lies under a view, blurred, made more colourful and tinted, as visual effect
// views show it. Works on any image-surface target and under any transform. Main thread only.
#pragma once

#include "phone/graphics/bitmap.hpp"
#include "phone/graphics/geometry.hpp"

#include <cairo.h>

namespace phone::graphics {

struct BlurStyle {
    double sigma { 15 };           // points, in the context's units
    double saturation { 1.8 };     // 1 leaves colours alone; around luminance
    Color tint { 1, 1, 1, 0.3 };   // laid over the blurred picture

    friend bool operator==(BlurStyle const&, BlurStyle const&) = default;
};

// UIBlurEffect's classic styles. Apple publishes no numbers for the live effect; these follow its
// own sample for the look of iOS 7, whose radius is twice the Gaussian's sigma.
inline constexpr BlurStyle kLightBlur { 15, 1.8, { 1, 1, 1, 0.3 } };
inline constexpr BlurStyle kExtraLightBlur { 10, 1.8, { 0.97, 0.97, 0.97, 0.82 } };
inline constexpr BlurStyle kDarkBlur { 10, 1.8, { 0.11, 0.11, 0.11, 0.73 } };

// Pixels of a blurred region and where they belong; good until what lies beneath changes.
struct Backdrop {
    Bitmap bitmap;          // one pixel covers `factor` device pixels
    double deviceX { 0 };   // of the top left corner, in device pixels of the target it was taken from
    double deviceY { 0 };
    int factor { 1 };
    bool isOpaque { false };
};

// Takes the region beneath the current path; the path stays. An empty backdrop when the path lies
// off the target, or when the target isn't an image surface.
Backdrop takeBackdrop(cairo_t*, BlurStyle const&);

// Fills the current path with it and clears the path. `alpha` fades the whole effect.
void paintBackdrop(cairo_t*, Backdrop const&, double alpha = 1);

// Both at once: blurs what is beneath the current path and paints it through the path.
void blurBeneathPath(cairo_t*, BlurStyle const&, double alpha = 1);

// A picture blurred as a whole; edges repeat outwards. Sigma in pixels; none for none.
Bitmap blurred(Bitmap const&, double sigmaPixels);

}   // namespace phone::graphics
