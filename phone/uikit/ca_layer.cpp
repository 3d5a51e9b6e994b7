#include "phone/uikit/ca_layer.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

namespace {

struct LayerState {
    std::shared_ptr<LayerProperties> properties { std::make_shared<LayerProperties>() };
};

void changed() { noteDisplayChange(); }

// Lent until the pool drains: a UIColor owns it.
CGColorRef lentColor(graphics::Color color) { return UIColor::of(color).CGColor(); }

}

CALayer CALayer::sharing(std::shared_ptr<LayerProperties> properties)
{
    CALayer const made { CALayer::alloc().init().object };
    objc::state<LayerState>(made).properties = std::move(properties);
    return made;
}

CALayer CALayer::layer()
{
    return objc::autorelease(objc::adopt(CALayer { CALayer::alloc().init().object }));
}

LayerProperties& CALayer::properties() const
{
    return *objc::state<LayerState>(CALayer { object }).properties;
}
UIView CALayer::view() const { return object ? UIView { properties().view } : UIView {}; }

CGFloat CALayer::cornerRadius() const { return object ? properties().cornerRadius : 0; }
void CALayer::setCornerRadius(CGFloat radius) const
{
    if (UIView const owner = view())
        owner.setCornerRadius(radius);
    else
        properties().cornerRadius = radius;
}
CGFloat CALayer::borderWidth() const { return properties().borderWidth; }
void CALayer::setBorderWidth(CGFloat width) const
{
    properties().borderWidth = width;
    changed();
}
CGColorRef CALayer::borderColor() const { return lentColor(properties().borderColor); }
void CALayer::setBorderColor(CGColorRef color) const
{
    properties().borderColor = color ? color->color : graphics::Color { 0, 0, 0, 0 };
    changed();
}
BOOL CALayer::masksToBounds() const { return properties().masksToBounds; }
void CALayer::setMasksToBounds(BOOL masks) const
{
    properties().masksToBounds = masks;
    changed();
}
float CALayer::opacity() const
{
    UIView const owner = view();
    return static_cast<float>(owner ? owner.alpha() : properties().opacity);
}
void CALayer::setOpacity(float opacity) const
{
    if (UIView const owner = view())
        owner.setAlpha(opacity);
    else
        properties().opacity = opacity;
}
NSString CALayer::name() const
{
    std::string const& name = properties().name;
    return name.empty() ? NSString {} : toNSString(name);
}
void CALayer::setName(NSString name) const { properties().name = toString(name); }

CGRect CALayer::frame() const
{
    if (UIView const owner = view())
        return owner.frame();
    LayerProperties const& own = properties();
    CGSize const size = own.bounds.size;
    return { { own.position.x - size.width / 2, own.position.y - size.height / 2 }, size };
}
void CALayer::setFrame(CGRect frame) const
{
    if (UIView const owner = view()) {
        owner.setFrame(frame);
        return;
    }
    properties().bounds.size = frame.size;
    properties().position = phone::center(frame);
}
CGRect CALayer::bounds() const
{
    UIView const owner = view();
    return owner ? owner.bounds() : properties().bounds;
}
void CALayer::setBounds(CGRect bounds) const
{
    if (UIView const owner = view())
        owner.setBounds(bounds);
    else
        properties().bounds = bounds;
}
CGPoint CALayer::position() const
{
    UIView const owner = view();
    return owner ? owner.center() : properties().position;
}
void CALayer::setPosition(CGPoint position) const
{
    if (UIView const owner = view())
        owner.setCenter(position);
    else
        properties().position = position;
}
NSString CALayer::cornerCurve() const
{
    return properties().continuousCorners ? "continuous"_ns : "circular"_ns;
}
void CALayer::setCornerCurve(NSString curve) const
{
    properties().continuousCorners = toString(curve) == "continuous";
    changed();
}
NSUInteger CALayer::maskedCorners() const { return properties().maskedCorners; }
void CALayer::setMaskedCorners(NSUInteger corners) const
{
    properties().maskedCorners = static_cast<unsigned>(corners & 15);
    changed();
}
float CALayer::shadowOpacity() const { return static_cast<float>(properties().shadowOpacity); }
void CALayer::setShadowOpacity(float opacity) const
{
    properties().shadowOpacity = opacity;
    changed();
}
CGFloat CALayer::shadowRadius() const { return properties().shadowRadius; }
void CALayer::setShadowRadius(CGFloat radius) const
{
    properties().shadowRadius = radius;
    changed();
}
CGSize CALayer::shadowOffset() const { return properties().shadowOffset; }
void CALayer::setShadowOffset(CGSize offset) const
{
    properties().shadowOffset = offset;
    changed();
}
CGColorRef CALayer::shadowColor() const { return lentColor(properties().shadowColor); }
void CALayer::setShadowColor(CGColorRef color) const
{
    properties().shadowColor = color ? color->color : graphics::Color { 0, 0, 0, 0 };
    changed();
}
objc::handle CALayer::delegate() const { return view(); }

void defineCALayer()
{
    objc::define<CALayer>()
        .state<LayerState>()
        .class_method<"layer", &CALayer::layer>()
        .method<"cornerRadius", &CALayer::cornerRadius>()
        .method<"setCornerRadius:", &CALayer::setCornerRadius>()
        .method<"borderWidth", &CALayer::borderWidth>()
        .method<"setBorderWidth:", &CALayer::setBorderWidth>()
        .method<"borderColor", &CALayer::borderColor>()
        .method<"setBorderColor:", &CALayer::setBorderColor>()
        .method<"masksToBounds", &CALayer::masksToBounds>()
        .method<"setMasksToBounds:", &CALayer::setMasksToBounds>()
        .method<"opacity", &CALayer::opacity>()
        .method<"setOpacity:", &CALayer::setOpacity>()
        .method<"name", &CALayer::name>()
        .method<"setName:", &CALayer::setName>()
        .method<"frame", &CALayer::frame>()
        .method<"setFrame:", &CALayer::setFrame>()
        .method<"bounds", &CALayer::bounds>()
        .method<"setBounds:", &CALayer::setBounds>()
        .method<"position", &CALayer::position>()
        .method<"setPosition:", &CALayer::setPosition>()
        .method<"cornerCurve", &CALayer::cornerCurve>()
        .method<"setCornerCurve:", &CALayer::setCornerCurve>()
        .method<"maskedCorners", &CALayer::maskedCorners>()
        .method<"setMaskedCorners:", &CALayer::setMaskedCorners>()
        .method<"shadowOpacity", &CALayer::shadowOpacity>()
        .method<"setShadowOpacity:", &CALayer::setShadowOpacity>()
        .method<"shadowRadius", &CALayer::shadowRadius>()
        .method<"setShadowRadius:", &CALayer::setShadowRadius>()
        .method<"shadowOffset", &CALayer::shadowOffset>()
        .method<"setShadowOffset:", &CALayer::setShadowOffset>()
        .method<"shadowColor", &CALayer::shadowColor>()
        .method<"setShadowColor:", &CALayer::setShadowColor>()
        .method<"delegate", &CALayer::delegate>()
        .install();
}

}
