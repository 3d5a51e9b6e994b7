// HomeScreenScene: icons in a grid over the wallpaper, a dock, and the card of an application that was opened,
// which a swipe up from the lower edge puts away. Main thread.
#pragma once

#include "phone/uikit/drawn_view.hpp"
#include "phone/uikit/ui_label.hpp"

#include <memory>
#include <string>
#include <vector>

namespace phone {

class StatusBar;

class HomeScreenScene {
public:
    explicit HomeScreenScene(UIView root);
    HomeScreenScene(HomeScreenScene const&) = delete;
    HomeScreenScene& operator=(HomeScreenScene const&) = delete;
    ~HomeScreenScene();

    void layOut();
    void updateClock();

    // Whose icon is at the point of the scene's root; empty for none, and where a card covers it.
    std::string applicationAt(CGPoint point) const;

    // Covers the icons with an application's card, or uncovers them (none).
    void setCard(objc::ref<UIView> card);

private:
    struct Icon {
        objc::ref<UIView> view;
        objc::ref<DrawnView> picture;
        objc::ref<UILabel> name;
    };

    void layOutIcons(CGRect bounds);
    void setForeground(graphics::Color const& color);   // status bar and home indicator

    UIView m_root;
    objc::ref<DrawnView> m_wallpaper;
    objc::ref<UIView> m_dock;
    std::vector<Icon> m_icons;   // the last four stand in the dock
    std::unique_ptr<StatusBar> m_statusBar;
    objc::ref<UIView> m_card;   // the front-most application's
    objc::ref<DrawnView> m_homeIndicator;
};

// The view of the home window's controller, which lays the scene out.
void defineHomeScreen();
objc::ref<UIViewController> makeHomeController();

}
