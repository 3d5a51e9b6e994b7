// ModalCard: what the system's own sheets have in common: a card over what presented it, with a bar that
// holds a title and buttons. From iOS 13 on the card leaves a strip of the screen free at the top; before,
// and in landscape, it fills the screen. Main thread.
#pragma once

#include "phone/apps/layout_view.hpp"
#include "phone/springboard/screen_edges.hpp"
#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_label.hpp"
#include "phone/uikit/ui_view_controller.hpp"

#include <functional>
#include <memory>
#include <string_view>
#include <vector>

namespace phone {

inline constexpr double kTouchMargin = 8;   // points, of a button without a shape, beyond its title

class ModalCard {
public:
    enum class Side { leading, trailing };
    enum class Weight { regular, strong };

    // Becomes the controller's view. The controller has to keep this object for as long as it lives.
    ModalCard(UIViewController controller, std::string_view title);
    ModalCard(ModalCard const&) = delete;
    ModalCard& operator=(ModalCard const&) = delete;
    ~ModalCard();

    // A button of the bar; the action goes to the controller.
    UIButton addButton(Side side, std::string_view title, SEL action, Weight weight);

    // What lies below the bar, and how it is laid out (in its bounds, which reach the screen's lower edge).
    UIView content() const { return m_content; }
    void setContentLayout(LayoutView::Layout layout);

    // For the controller's phone_animatePresentation:completion:.
    void animate(bool presenting, std::function<void()> done) const;

private:
    struct BarButton {
        Side side;
        objc::ref<UIButton> button;
    };

    void layOut(CGRect bounds);

    UIViewController m_controller;
    objc::ref<LayoutView> m_root;
    objc::ref<UIView> m_dimming;
    objc::ref<UIView> m_card;
    objc::ref<LayoutView> m_content;
    objc::ref<UILabel> m_title;
    objc::ref<UIView> m_barLine;
    std::vector<BarButton> m_buttons;
    std::unique_ptr<ScreenEdges> m_edges;
};

// Colours of the system's sheets, by appearance. Lent.
UIColor sheetColor();
// A line one pixel high when it is laid out so.
objc::ref<UIView> makeHairline();
double hairlineHeight();

// The upper or lower end of the screen that nothing should lie under: the display's own, or at least the
// status bar's at the top. Points.
UIEdgeInsets usableInsets();

}
