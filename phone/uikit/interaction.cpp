#include "phone/uikit/interaction.hpp"

#include "phone/uikit/ui_alert_controller.hpp"
#include "phone/uikit/ui_collection_view.hpp"
#include "phone/uikit/ui_long_press_gesture_recognizer.hpp"
#include "phone/uikit/ui_swipe_gesture_recognizer.hpp"
#include "phone/uikit/ui_tap_gesture_recognizer.hpp"

#include <utility>

namespace phone {

void defineInteraction()
{
    static bool isDefined = false;
    if (std::exchange(isDefined, true))
        return;
    defineUITouch();
    defineUIEvent();
    defineUIGestureRecognizer();
    defineUILongPressGestureRecognizer();
    defineUISwipeGestureRecognizer();
    defineUITapGestureRecognizer();
    defineUIPanGestureRecognizer();
    defineUIScrollView();
    defineUICollectionViewLayout();
    defineUICollectionViewCell();
    defineUICollectionView();
    defineUIAlertController();
}

}
