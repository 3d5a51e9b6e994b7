// The lock screen's wallpaper: an evening sky over hills, painted by us at any size.
#pragma once

#include "phone/graphics/bitmap.hpp"

namespace phone::graphics {

enum class WallpaperVariant { light, dark };

// Fills rect of the context; slow (full-screen gradients).
void paintWallpaper(cairo_t*, Rect const&, WallpaperVariant);

// The same as a bitmap, kept for the size, scale and variant used last (each variant keeps one).
// Opaque. None for a refused size.
Bitmap wallpaper(Size points, double scale, WallpaperVariant = WallpaperVariant::light);

}   // namespace phone::graphics
