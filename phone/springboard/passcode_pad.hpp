// The passcode screen: a pad of keys over the blurred lock screen, in a controller of the version's class.
// Main thread.
#pragma once

#include "phone/kernel/system_version.hpp"
#include "phone/springboard/screen_edges.hpp"
#include "phone/uikit/drawn_view.hpp"
#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_view_controller.hpp"

#include <memory>
#include <string>
#include <vector>

namespace phone {

inline constexpr objc::fixed_string kDashBoardPasscode { "SBDashBoardPasscodeViewController" };
inline constexpr objc::fixed_string kCoverSheetPasscode { "CSPasscodeViewController" };

template <objc::fixed_string Name>
struct PasscodeViewController : objc::subclass<PasscodeViewController<Name>, Name, UIViewController> {
    using PasscodeViewController::subclass::subclass;
    void viewDidDisappear(BOOL animated) const;
    void keyPressed(UIControl key) const;      // phone_keyPressed:
    void cancelPressed(UIControl key) const;   // phone_cancelPressed:
};

void definePasscode(ClassFamily family);
objc::ref<UIViewController> makePasscodeController(ClassFamily family);

// The views of the one passcode controller, and what has been typed.
class PasscodePad {
public:
    // Fills the controller's view; keys send their actions to the controller.
    explicit PasscodePad(UIViewController controller);

    void layOut(CGRect bounds);
    void clear();
    void press(int digit);
    void cancelOrDelete();
    void refuse();   // a wrong code: shakes, and begins anew

private:
    std::size_t length() const;   // digits that the code has; 0 for a code that is no number
    void typedDidChange();

    UIViewController m_controller;
    std::string m_typed;
    objc::ref<UIView> m_blur;
    objc::ref<UILabel> m_title;
    objc::ref<DrawnView> m_dots;
    std::vector<objc::ref<UIControl>> m_keys;   // 1 to 9, then 0
    objc::ref<UIButton> m_cancel;
    std::unique_ptr<ScreenEdges> m_edges;
};

}
