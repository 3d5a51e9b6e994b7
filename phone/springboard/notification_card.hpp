// NotificationCard: one notification on the lock screen, in the shape that the version gives it. Main thread.
#pragma once

#include "phone/graphics/app_icon.hpp"
#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/springboard/texts.hpp"
#include "phone/uikit/drawn_view.hpp"
#include "phone/uikit/ui_label.hpp"

namespace phone {

class NotificationCard {
public:
    NotificationCard(UIView superview, NotificationText const&, graphics::AppIcon, LockScreenLayout const&);

    UIView view() const { return m_view; }
    static double heightIn(LockScreenLayout const&);
    void layOut(CGRect frame);

private:
    bool m_hasHeader;
    objc::ref<UIView> m_view;
    objc::ref<DrawnView> m_icon;
    objc::ref<UILabel> m_application;   // only with a header
    objc::ref<UILabel> m_age;
    objc::ref<UILabel> m_title;
    objc::ref<UILabel> m_body;
};

}
