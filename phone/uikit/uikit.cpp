#include "phone/uikit/uikit.hpp"

#include "phone/uikit/animation.hpp"
#include "phone/uikit/drawn_view.hpp"
#include "phone/uikit/interaction.hpp"
#include "phone/uikit/ns_layout.hpp"
#include "phone/uikit/ui_application.hpp"
#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_font.hpp"
#include "phone/uikit/ui_image.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_stack_view.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_visual_effect_view.hpp"

namespace phone {

void defineUIKit()
{
    defineUIColor();
    defineUIFont();
    defineUIImage();
    defineUIScreen();
    defineCALayer();
    defineUIResponder();
    defineUIView();
    defineAnimation();
    defineNSLayout();
    defineUIWindow();
    defineUIViewController();
    defineUIApplication();
    defineUILabel();
    defineUIImageView();
    defineUIControl();
    defineUIButton();
    defineUIVisualEffectView();
    defineUIStackView();
    defineDrawnView();
    defineInteraction();
}

}
