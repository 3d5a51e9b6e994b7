// UIImageView: a picture, placed by the content mode. Main thread.
#pragma once

#include "phone/uikit/ui_image.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

struct UIImageView : objc::subclass<UIImageView, "UIImageView", UIView> {
    using subclass::subclass;
    UIImageView initWithFrame(CGRect frame) const;
    UIImageView initWithImage(UIImage image) const;   // of the image's size

    UIImage image() const;
    void setImage(UIImage image) const;
    UIImage highlightedImage() const;
    void setHighlightedImage(UIImage image) const;
    BOOL isHighlighted() const;
    void setHighlighted(BOOL highlighted) const;

    void setDimmed(bool dimmed) const;   // by a button that is pressed

    CGSize sizeThatFits(CGSize size) const;
    CGSize intrinsicContentSize() const;
    void drawContent(DrawContext* context) const;
};

// Where an image of that size goes in the bounds.
CGRect imageRect(CGSize image, CGRect bounds, UIViewContentMode mode);

void defineUIImageView();

}
