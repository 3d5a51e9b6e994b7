// CNContactPickerViewController: the address book as a list of rows that are touched to select. Main thread.
//
// The picker is off the screen before its delegate is told, so that an alert finds its presenter free.
#pragma once

#include "phone/uikit/ui_view_controller.hpp"

namespace phone {

struct CNContactPickerViewController
    : objc::subclass<CNContactPickerViewController, "CNContactPickerViewController", UIViewController> {
    using subclass::subclass;
    objc::handle delegate() const;
    void setDelegate(objc::handle delegate) const;   // not kept

    void loadView() const;
    void animatePresentation(BOOL presenting, std::function<void()>* done) const;
    void rowTouched(objc::handle row) const;         // phone_rowTouched:
    void donePressed(objc::handle sender) const;     // phone_donePressed:
    void cancelPressed(objc::handle sender) const;   // phone_cancelPressed:
};

void defineCNContactPickerViewController();

}
