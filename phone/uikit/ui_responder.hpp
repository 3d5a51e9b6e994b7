// UIResponder: whatever events travel through. Main thread.
#pragma once

#include "platform/foundation.hpp"

namespace phone {

struct UIResponder : objc::subclass<UIResponder, "UIResponder", NSObject> {
    using subclass::subclass;

    // Asks the object, which may be of any subclass. Lent.
    UIResponder next() const { return send<"nextResponder", UIResponder>(); }

    UIResponder nextResponder() const;   // the base: nil
    BOOL canBecomeFirstResponder() const;
    BOOL becomeFirstResponder() const;
    BOOL resignFirstResponder() const;
    BOOL isFirstResponder() const;

    // touches: an NSSet of UITouch. The base hands them to the next responder.
    void touchesBegan(objc::handle touches, objc::handle event) const;
    void touchesMoved(objc::handle touches, objc::handle event) const;
    void touchesEnded(objc::handle touches, objc::handle event) const;
    void touchesCancelled(objc::handle touches, objc::handle event) const;
};

// The one that has the keyboard; nil for none.
UIResponder firstResponder();

void defineUIResponder();

}
