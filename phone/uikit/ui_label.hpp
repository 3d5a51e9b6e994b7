// UILabel: lines of read-only text. Main thread.
#pragma once

#include "phone/uikit/ui_font.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

enum class NSTextAlignment : NSInteger { left = 0, center = 1, right = 2, justified = 3, natural = 4 };

struct UILabel : objc::subclass<UILabel, "UILabel", UIView> {
    using subclass::subclass;
    UILabel initWithFrame(CGRect frame) const;

    NSString text() const;
    void setText(NSString text) const;
    UIFont font() const;                      // never nil; 17 points at first
    void setFont(UIFont font) const;          // nil: the default again
    UIColor textColor() const;                // never nil
    void setTextColor(UIColor color) const;   // nil: the default again
    NSInteger textAlignment() const;
    void setTextAlignment(NSInteger alignment) const;
    NSInteger numberOfLines() const;   // 0: as many as fit
    void setNumberOfLines(NSInteger lines) const;
    NSInteger lineBreakMode() const;
    void setLineBreakMode(NSInteger mode) const;
    BOOL adjustsFontSizeToFitWidth() const;
    void setAdjustsFontSizeToFitWidth(BOOL adjusts) const;
    CGFloat minimumScaleFactor() const;
    void setMinimumScaleFactor(CGFloat factor) const;
    CGFloat preferredMaxLayoutWidth() const;
    void setPreferredMaxLayoutWidth(CGFloat width) const;
    BOOL isHighlighted() const;
    void setHighlighted(BOOL highlighted) const;
    UIColor highlightedTextColor() const;
    void setHighlightedTextColor(UIColor color) const;
    BOOL isEnabled() const;
    void setEnabled(BOOL enabled) const;
    UIColor shadowColor() const;
    void setShadowColor(UIColor color) const;
    CGSize shadowOffset() const;
    void setShadowOffset(CGSize offset) const;

    CGSize sizeThatFits(CGSize size) const;
    CGSize intrinsicContentSize() const;
    CGRect textRectForBounds(CGRect bounds, NSInteger lines) const;
    void drawContent(DrawContext* context) const;

    // How the text is laid out at the present width; for tests and for automation.
    graphics::TextStyle textStyle() const;
};

void defineUILabel();

}
