// CALayer: the properties of a view's layer that UIKit does not repeat. A view and its layer share them.
// Main thread.
#pragma once

#include "phone/uikit/core_graphics_objects.hpp"
#include "phone/uikit/ui_color.hpp"

#include <memory>
#include <string>

namespace phone {

struct UIView;

struct LayerProperties {
    double cornerRadius { 0 };       // points
    unsigned maskedCorners { 15 };   // CACornerMask: 1 top left, 2 top right, 4 bottom left, 8 bottom right
    bool continuousCorners { false };
    double borderWidth { 0 };
    graphics::Color borderColor { 0, 0, 0, 1 };
    bool masksToBounds { false };
    double shadowOpacity { 0 };   // 0: no shadow
    double shadowRadius { 3 };
    CGSize shadowOffset { 0, -3 };
    graphics::Color shadowColor { 0, 0, 0, 1 };
    std::string name;
    id view { nullptr };   // cleared when the view goes

    // For layers without a view.
    CGRect bounds {};
    CGPoint position {};
    double opacity { 1 };
};

struct CALayer : objc::subclass<CALayer, "CALayer", NSObject> {
    using subclass::subclass;
    static CALayer sharing(std::shared_ptr<LayerProperties> properties);   // owned (+1)
    static CALayer layer();

    LayerProperties& properties() const;
    UIView view() const;   // nil for a layer of its own

    CGFloat cornerRadius() const;
    void setCornerRadius(CGFloat radius) const;   // animatable through the view
    CGFloat borderWidth() const;
    void setBorderWidth(CGFloat width) const;
    CGColorRef borderColor() const;   // lent until the pool drains
    void setBorderColor(CGColorRef color) const;
    BOOL masksToBounds() const;
    void setMasksToBounds(BOOL masks) const;
    float opacity() const;
    void setOpacity(float opacity) const;
    NSString name() const;
    void setName(NSString name) const;
    CGRect frame() const;
    void setFrame(CGRect frame) const;
    CGRect bounds() const;
    void setBounds(CGRect bounds) const;
    CGPoint position() const;
    void setPosition(CGPoint position) const;
    NSString cornerCurve() const;
    void setCornerCurve(NSString curve) const;
    NSUInteger maskedCorners() const;
    void setMaskedCorners(NSUInteger corners) const;
    float shadowOpacity() const;
    void setShadowOpacity(float opacity) const;
    CGFloat shadowRadius() const;
    void setShadowRadius(CGFloat radius) const;
    CGSize shadowOffset() const;
    void setShadowOffset(CGSize offset) const;
    CGColorRef shadowColor() const;
    void setShadowColor(CGColorRef color) const;
    objc::handle delegate() const;   // the view
};

void defineCALayer();

}
