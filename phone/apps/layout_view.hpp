// LayoutView: a view that a function lays out, for screens that are built in one piece. Main thread.
#pragma once

#include "phone/uikit/ui_view.hpp"

#include <functional>

namespace phone {

struct LayoutView : objc::subclass<LayoutView, "PhoneLayoutView", UIView> {
    using subclass::subclass;
    using Layout = std::function<void(CGRect bounds)>;

    static objc::ref<LayoutView> make(CGRect frame = {});
    // None: nothing is laid out. Whoever goes before the view takes its function away.
    void setLayout(Layout layout) const;
    void layoutSubviews() const;
};

void defineLayoutView();

}
