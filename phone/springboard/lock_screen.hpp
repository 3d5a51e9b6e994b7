// LockScreenScene: everything one sees of the lock screen, as views: status bar, padlock, clock and date,
// notifications, the adjunct list's area, torch and camera, home indicator. Main thread.
#pragma once

#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/uikit/drawn_view.hpp"
#include "phone/uikit/ui_label.hpp"
#include "phone/uikit/ui_view_controller.hpp"

#include <memory>
#include <vector>

namespace phone {

class StatusBar;
class NotificationCard;

class LockScreenScene {
public:
    // Builds the views inside `root`, the cover sheet's own view; the adjunct list's view goes among them.
    LockScreenScene(UIView root, UIViewController adjunctController);
    LockScreenScene(LockScreenScene const&) = delete;
    LockScreenScene& operator=(LockScreenScene const&) = delete;
    ~LockScreenScene();

    // For the root's present bounds.
    void layOut();
    // Asks the adjunct controller whether it presents content: its area shows only then.
    void updatePresentingContent();
    // Makes room for what has come, gone, or been hidden in the adjunct list without SpringBoard's doing.
    void followContent();
    void updateClock();
    void setPadlockOpen(bool);

    // The area that the adjunct list has: hidden while it presents nothing.
    UIView adjunctArea() const { return m_adjunctArea; }

private:
    void layOutList();
    graphics::Rect placed(graphics::Rect const&) const;   // mirrored for right-to-left languages

    UIView m_root;
    UIViewController m_adjunct;
    LockScreenLayout m_layout;
    bool m_isPadlockOpen { false };
    objc::ref<DrawnView> m_wallpaper;
    std::unique_ptr<StatusBar> m_statusBar;
    objc::ref<DrawnView> m_padlock;
    objc::ref<UIView> m_dateView;
    objc::ref<UILabel> m_time;
    objc::ref<UILabel> m_date;
    objc::ref<UIView> m_list;
    std::vector<std::unique_ptr<NotificationCard>> m_cards;
    objc::ref<UIView> m_adjunctArea;
    objc::ref<UIView> m_torch;
    objc::ref<UIView> m_camera;
    objc::ref<UILabel> m_footer;
    objc::ref<DrawnView> m_homeIndicator;
};

// A controller of the adjunct list's class has changed what it presents. Those that aren't on the lock screen
// change nothing there.
void adjunctContentDidChange(UIViewController controller);

}
