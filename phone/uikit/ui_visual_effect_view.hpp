// UIVisualEffectView and UIBlurEffect: a backdrop of what lies beneath, blurred. The renderer does the work.
#pragma once

#include "phone/uikit/ui_view.hpp"

namespace phone {

struct UIVisualEffect : objc::subclass<UIVisualEffect, "UIVisualEffect", NSObject> {
    using subclass::subclass;
};

struct UIBlurEffect : objc::subclass<UIBlurEffect, "UIBlurEffect", UIVisualEffect> {
    using subclass::subclass;
    // UIBlurEffectStyle: 0 extra light, 1 light, 2 dark, 4 regular, 5 prominent, 6 to 10 system materials
    // (ultra thin, thin, material, thick, chrome), 11 to 15 the same always light, 16 to 20 always dark.
    static UIBlurEffect effectWithStyle(NSInteger style);   // lent
    NSInteger style() const;                                // _style
};

struct UIVisualEffectView : objc::subclass<UIVisualEffectView, "UIVisualEffectView", UIView> {
    using subclass::subclass;
    UIVisualEffectView initWithFrame(CGRect frame) const;
    UIVisualEffectView initWithEffect(UIVisualEffect effect) const;
    UIVisualEffect effect() const;
    void setEffect(UIVisualEffect effect) const;
    UIView contentView() const;      // fills it
    NSInteger effectStyle() const;   // the blur's style; -1 without one
    void layoutSubviews() const;
};

void defineUIVisualEffectView();

}
