// UIButton: a control with a title, an image and a background by state. Main thread.
#pragma once

#include "phone/uikit/ui_control.hpp"
#include "phone/uikit/ui_image_view.hpp"
#include "phone/uikit/ui_label.hpp"

#include <map>

namespace phone {

enum class UIButtonType : NSInteger {
    custom = 0,
    system = 1,
    detailDisclosure = 2,
    contactAdd = 5,
    close = 7
};

struct UIButton : objc::subclass<UIButton, "UIButton", UIControl> {
    using subclass::subclass;
    // Of the class that is asked, so that a subclass's button is one. Lent.
    static UIButton buttonWithType(objc::class_handle receiver, NSInteger type);
    UIButton initWithFrame(CGRect frame) const;
    NSInteger buttonType() const;

    void setTitle(NSString title, NSUInteger state) const;
    NSString titleForState(NSUInteger state) const;   // falls back to normal's
    void setTitleColor(UIColor color, NSUInteger state) const;
    UIColor titleColorForState(NSUInteger state) const;
    void setImage(UIImage image, NSUInteger state) const;
    UIImage imageForState(NSUInteger state) const;
    void setBackgroundImage(UIImage image, NSUInteger state) const;
    UIImage backgroundImageForState(NSUInteger state) const;
    NSString currentTitle() const;
    UIColor currentTitleColor() const;
    UIImage currentImage() const;
    UIImage currentBackgroundImage() const;
    UILabel titleLabel() const;      // made on first use
    UIImageView imageView() const;   // made on first use
    UIEdgeInsets contentEdgeInsets() const;
    void setContentEdgeInsets(UIEdgeInsets insets) const;
    UIEdgeInsets titleEdgeInsets() const;
    void setTitleEdgeInsets(UIEdgeInsets insets) const;
    UIEdgeInsets imageEdgeInsets() const;
    void setImageEdgeInsets(UIEdgeInsets insets) const;
    BOOL adjustsImageWhenHighlighted() const;
    void setAdjustsImageWhenHighlighted(BOOL adjusts) const;
    BOOL adjustsImageWhenDisabled() const;
    void setAdjustsImageWhenDisabled(BOOL adjusts) const;

    // For the view tree: what was set, by state.
    std::map<NSUInteger, std::string> titlesByState() const;
    std::map<NSUInteger, UIImage> imagesByState() const;

    CGRect contentRectForBounds(CGRect bounds) const;
    CGRect titleRectForContentRect(CGRect rect) const;
    CGRect imageRectForContentRect(CGRect rect) const;
    CGSize sizeThatFits(CGSize size) const;
    CGSize intrinsicContentSize() const;
    void layoutSubviews() const;
    void setHighlighted(BOOL highlighted) const;
    void setSelected(BOOL selected) const;
    void setEnabled(BOOL enabled) const;
    void tintColorDidChange() const;
};

void defineUIButton();

}
