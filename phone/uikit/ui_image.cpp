#include "phone/uikit/ui_image.hpp"

#include "objc/define.hpp"
#include "phone/foundation/device_paths.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/app_icon.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/geometry.hpp"

#include <map>
#include <span>
#include <string>
#include <tuple>

namespace phone {

namespace {

struct ImageState {
    graphics::Bitmap bitmap;
    NSInteger renderingMode { 0 };
    CGImageRef pointer { nullptr };
    ~ImageState() { CGImageRelease(pointer); }
};

ImageState& stateOf(UIImage image) { return objc::state<ImageState>(UIImage { image.object }); }

// Sides of application icons by format, in points: the list of settings, the search, the home screen.
constexpr double kIconSides[] { 29, 40, 60 };

struct KnownIcon {
    char const* bundleIdentifier;
    graphics::AppIcon icon;
};
constexpr KnownIcon kKnownIcons[] {
    { "com.apple.mobilephone", graphics::AppIcon::phone },
    { "com.apple.MobileSMS", graphics::AppIcon::messages },
    { "com.apple.mobilemail", graphics::AppIcon::mail },
    { "com.apple.facetime", graphics::AppIcon::video },
    { "com.apple.mobilecal", graphics::AppIcon::calendar },
    { "com.apple.MobileAddressBook", graphics::AppIcon::contacts },
    { "com.apple.Preferences", graphics::AppIcon::settings },
    { "com.apple.Music", graphics::AppIcon::music },
    { "com.apple.mobilesafari", graphics::AppIcon::browser },
};

using Painter = std::function<graphics::Bitmap(double side, double scale)>;
std::map<std::string, Painter>& painters()
{
    static std::map<std::string, Painter> all;
    return all;
}

graphics::Bitmap paintedIcon(std::string const& bundleIdentifier, double side, double scale)
{
    if (auto const found = painters().find(bundleIdentifier); found != painters().end())
        return found->second(side, scale);
    for (KnownIcon const& known : kKnownIcons) {
        if (bundleIdentifier == known.bundleIdentifier)
            return graphics::appIcon(known.icon, side, scale);
    }
    // The platform's blank icon for what is not installed.
    return graphics::letterIcon("", bundleIdentifier, side, scale);
}

// Kept: every menu asks for all of them anew.
using IconKey = std::tuple<std::string, double, double>;   // bundle, side, scale
std::map<IconKey, graphics::Bitmap>& paintedIcons()
{
    static std::map<IconKey, graphics::Bitmap> all;
    return all;
}

graphics::Bitmap iconBitmap(std::string const& bundleIdentifier, double side, double scale)
{
    constexpr std::size_t kMostIcons = 64;
    auto& icons = paintedIcons();
    IconKey key { bundleIdentifier, side, scale };
    if (auto const found = icons.find(key); found != icons.end())
        return found->second;
    if (icons.size() >= kMostIcons)
        icons.clear();
    return icons[std::move(key)] = paintedIcon(bundleIdentifier, side, scale);
}

graphics::Bitmap decode(NSData data, double scale)
{
    auto const* const bytes = static_cast<std::uint8_t const*>(data.send<"bytes", void const*>());
    std::size_t const count = data.length();
    graphics::Bitmap bitmap;
    if (bytes && count)
        bitmap = graphics::decodeUpright(std::span(bytes, count), scale > 0 ? scale : 1);
    trace().record("decode", { { "bytes", count }, { "ok", bool(bitmap) } });
    return bitmap;
}

// "name@2x.png": 2. Without such an ending: 1.
double scaleInName(std::string const& path)
{
    auto const dot = path.rfind('.');
    std::string const stem =
        dot == std::string::npos || dot < path.rfind('/') + 1 ? path : path.substr(0, dot);
    if (stem.ends_with("@2x"))
        return 2;
    return stem.ends_with("@3x") ? 3 : 1;
}

std::string nameAtScale(std::string const& path, int scale)
{
    auto const slash = path.rfind('/');
    auto const dot = path.rfind('.');
    std::string const suffix = "@" + std::to_string(scale) + "x";
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return path + suffix;
    return path.substr(0, dot) + suffix + path.substr(dot);
}

// The screen's own scale first, then the sharper ones, then the plain file: the platform's order.
std::vector<std::string> namesToTry(std::string const& path)
{
    if (scaleInName(path) != 1)
        return { path };
    int const screen = static_cast<int>(std::lround(bootOptions().scale));
    std::vector<std::string> names;
    if (screen >= 3)
        names.push_back(nameAtScale(path, 3));
    if (screen >= 2)
        names.push_back(nameAtScale(path, 2));
    names.push_back(path);
    return names;
}

graphics::Bitmap readBitmap(std::string const& path)
{
    std::string chosen = path;
    for (std::string const& name : namesToTry(path)) {
        if (fileExists(name)) {
            chosen = name;
            break;
        }
    }
    auto const contents = readFile(chosen);
    return contents ? graphics::decodeUpright(*contents, scaleInName(chosen)) : graphics::Bitmap {};
}

// What an initialiser that fails does: the receiver goes, nil comes.
UIImage filled(UIImage receiver, graphics::Bitmap bitmap)
{
    if (!bitmap) {
        receiver.send<"release">();
        return {};
    }
    UIImage const self { receiver.init().object };
    stateOf(self).bitmap = std::move(bitmap);
    return self;
}

}

void registerApplicationIcon(std::string const& bundleIdentifier, Painter paint)
{
    painters()[bundleIdentifier] = std::move(paint);
    paintedIcons().clear();
}

UIImage UIImage::of(graphics::Bitmap bitmap)
{
    if (!bitmap)
        return {};
    return objc::autorelease(objc::adopt(filled(UIImage::alloc(), std::move(bitmap))));
}

UIImage UIImage::imageWithData(NSData data) { return imageWithDataScale(data, 1); }
UIImage UIImage::imageWithDataScale(NSData data, CGFloat scale)
{
    return of(decode(objc::cast<NSData>(data), scale));
}
UIImage UIImage::imageWithContentsOfFile(NSString path)
{
    return path ? of(readBitmap(toString(path))) : UIImage {};
}
UIImage UIImage::imageNamed(NSString name)
{
    std::string const path = toString(name);
    return path.starts_with("/") ? of(readBitmap(path)) : UIImage {};
}
UIImage UIImage::imageWithCGImage(CGImageRef image) { return imageWithCGImageScale(image, 1, 0); }
UIImage UIImage::imageWithCGImageScale(CGImageRef image, CGFloat scale, NSInteger)
{
    return image ? of(image->bitmap.withScale(scale > 0 ? scale : 1)) : UIImage {};
}
UIImage UIImage::applicationIconImage(NSString bundleIdentifier, int format, CGFloat scale)
{
    std::string const bundle = toString(bundleIdentifier);
    trace().record("icon", { { "bundle", bundle }, { "format", format }, { "scale", scale } });
    auto const last = static_cast<int>(std::size(kIconSides)) - 1;
    double const side = kIconSides[std::clamp(format, 0, last)];
    return of(iconBitmap(bundle, side, scale > 0 && scale <= 4 ? scale : bootOptions().scale));
}

UIImage UIImage::initWithData(NSData data) const
{
    return filled(*this, decode(objc::cast<NSData>(data), 1));
}
UIImage UIImage::initWithContentsOfFile(NSString path) const
{
    return filled(*this, readBitmap(toString(path)));
}
UIImage UIImage::initWithCGImage(CGImageRef image) const
{
    return filled(*this, image ? image->bitmap.withScale(1) : graphics::Bitmap {});
}

graphics::Bitmap const& UIImage::bitmap() const
{
    static graphics::Bitmap const none;
    return object ? stateOf(*this).bitmap : none;
}

CGSize UIImage::size() const { return fromGraphics(bitmap().size()); }
CGFloat UIImage::scale() const { return object ? bitmap().scale() : 0; }
CGImageRef UIImage::CGImage() const
{
    if (!object || !bitmap())
        return nullptr;
    ImageState& state = stateOf(*this);
    if (!state.pointer)
        state.pointer = new ::CGImage { 1, state.bitmap };
    return state.pointer;
}
NSInteger UIImage::renderingMode() const { return object ? stateOf(*this).renderingMode : 0; }
UIImage UIImage::imageWithRenderingMode(NSInteger mode) const
{
    UIImage const copy = of(bitmap());
    if (copy)
        stateOf(copy).renderingMode = mode;
    return copy;
}
NSInteger UIImage::imageOrientation() const { return 0; }

void UIImage::drawInRect(CGRect rect) const
{
    CGContextRef const context = UIGraphicsGetCurrentContext();
    if (context && object)
        graphics::drawBitmap(context->cairo.get(), bitmap(), toGraphics(standardized(rect)));
}
void UIImage::drawAtPoint(CGPoint point) const { drawInRect({ point, size() }); }

void defineUIImage()
{
    objc::define<UIImage>()
        .state<ImageState>()
        .class_method<"imageWithData:", &UIImage::imageWithData>()
        .class_method<"imageWithData:scale:", &UIImage::imageWithDataScale>()
        .class_method<"imageWithContentsOfFile:", &UIImage::imageWithContentsOfFile>()
        .class_method<"imageNamed:", &UIImage::imageNamed>()
        .class_method<"imageWithCGImage:", &UIImage::imageWithCGImage>()
        .class_method<"imageWithCGImage:scale:orientation:", &UIImage::imageWithCGImageScale>()
        .class_method<"_applicationIconImageForBundleIdentifier:format:scale:",
            &UIImage::applicationIconImage>()
        .method<"initWithData:", &UIImage::initWithData>()
        .method<"initWithContentsOfFile:", &UIImage::initWithContentsOfFile>()
        .method<"initWithCGImage:", &UIImage::initWithCGImage>()
        .method<"size", &UIImage::size>()
        .method<"scale", &UIImage::scale>()
        .method<"CGImage", &UIImage::CGImage>()
        .method<"renderingMode", &UIImage::renderingMode>()
        .method<"imageWithRenderingMode:", &UIImage::imageWithRenderingMode>()
        .method<"imageOrientation", &UIImage::imageOrientation>()
        .method<"drawInRect:", &UIImage::drawInRect>()
        .method<"drawAtPoint:", &UIImage::drawAtPoint>()
        .install();
}

}

namespace {

id dataOf(std::vector<std::uint8_t> const& bytes)
{
    if (bytes.empty())
        return nullptr;
    return objc::cls<"NSData">()
        .send<"dataWithBytes:length:", NSData>(
            static_cast<void const*>(bytes.data()), static_cast<NSUInteger>(bytes.size()))
        .object;
}

}

extern "C" {
// An NSData, lent; nil from nil.
id UIImagePNGRepresentation(id image)
{
    return dataOf(phone::graphics::encodePng(phone::UIImage { image }.bitmap()));
}

// quality: 0 to 1.
id UIImageJPEGRepresentation(id image, CGFloat quality)
{
    int const percent = std::clamp(static_cast<int>(std::lround(quality * 100)), 1, 100);
    return dataOf(phone::graphics::encodeJpeg(phone::UIImage { image }.bitmap(), percent));
}
}
