// UIStackView: arranges views in a line, by constraints. Main thread.
#pragma once

#include "phone/uikit/ns_layout.hpp"

namespace phone {

enum class UILayoutConstraintAxis : NSInteger { horizontal = 0, vertical = 1 };
enum class UIStackViewAlignment : NSInteger {
    fill = 0,
    leading = 1,
    top = 1,
    firstBaseline = 2,
    center = 3,
    trailing = 4,
    bottom = 4
};
enum class UIStackViewDistribution : NSInteger {
    fill = 0,
    fillEqually = 1,
    fillProportionally = 2,
    equalSpacing = 3,
    equalCentering = 4
};

struct UIStackView : objc::subclass<UIStackView, "UIStackView", UIView> {
    using subclass::subclass;
    UIStackView initWithFrame(CGRect frame) const;
    UIStackView initWithArrangedSubviews(NSArray views) const;

    NSArray arrangedSubviews() const;
    std::vector<UIView> arranged() const;
    void addArrangedSubview(UIView view) const;   // one that is arranged already moves to the end
    void insertArrangedSubview(
        UIView view, NSUInteger index) const;        // past the end: raises, as on the platform
    void removeArrangedSubview(UIView view) const;   // stays a subview
    NSInteger axis() const;
    void setAxis(NSInteger axis) const;
    NSInteger alignment() const;
    void setAlignment(NSInteger alignment) const;
    NSInteger distribution() const;
    void setDistribution(NSInteger distribution) const;
    CGFloat spacing() const;
    void setSpacing(CGFloat spacing) const;
    void setCustomSpacing(CGFloat spacing, UIView view) const;
    void willRemoveSubview(UIView view) const;

    // Rows of the table: the same as a message, with the trace's `stack`.
    void addArrangedSubviewMessage(UIView view) const;
    void insertArrangedSubviewMessage(UIView view, NSUInteger index) const;
    void removeArrangedSubviewMessage(UIView view) const;
};

void defineUIStackView();

}
