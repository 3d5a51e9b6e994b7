// Touches on a contact's button, and on the welcome of an empty list.
#include "plugin/actions/current_contact.hpp"
#include "plugin/actions/idle_timer.hpp"
#include "plugin/actions/presenter.hpp"
#include "plugin/host/settings.hpp"
#include "plugin/interaction/locked_device.hpp"
#include "plugin/interaction/pending_action.hpp"
#include "plugin/interaction/single_tap.hpp"
#include "plugin/strip/contact_button.hpp"
#include "plugin/strip/cvl_view.hpp"
#include "plugin/strip/strip_state.hpp"

#include "platform/audio.hpp"
#include "platform/contacts.hpp"

namespace {

// How an action stands to the lock screen.
enum class Kind {
    messagingApp,   // needs the device unlocked all the way; the unlock is asked for also where nothing guards it
    composer,       // waits for the passcode, then shows over the lock screen
    call,           // waits for the passcode only if the user wants it to
};

struct TapRow {
    SingleTap code;
    Kind kind;
    unsigned captures;
    PendingAction parkedAs;
    void (*run)(CVLView strip);
};

constexpr TapRow kTapRows[] = {
    { SingleTap::callPhone, Kind::call, captures::number | captures::name, PendingAction::callPhone,
        [](CVLView strip) { strip.send<"callPhone">(); } },
    { SingleTap::msgWA, Kind::messagingApp, captures::number, PendingAction::msgWA,
        [](CVLView strip) { strip.send<"msgWA">(); } },
    { SingleTap::msgTG, Kind::messagingApp, captures::number, PendingAction::msgTG,
        [](CVLView strip) { strip.send<"msgTG">(); } },
    { SingleTap::callWA, Kind::messagingApp, captures::number, PendingAction::callWA,
        [](CVLView strip) { strip.send<"callWA">(); } },
    { SingleTap::callTG, Kind::messagingApp, captures::number | captures::name, PendingAction::callTG,
        [](CVLView strip) { strip.send<"callTG">(); } },
    { SingleTap::msgSMS, Kind::composer, captures::number, PendingAction::msgSMS,
        [](CVLView strip) { strip.send<"msgSMS">(); } },
    { SingleTap::callFacetime, Kind::call, captures::number | captures::name, PendingAction::callFacetime,
        [](CVLView strip) { strip.send<"callFacetime">(); } },
    { SingleTap::sndEmail, Kind::composer, captures::email, PendingAction::sndEmail,
        [](CVLView strip) { strip.send<"sndEmail">(); } },
};

bool waitsForPasscode(Kind kind)
{
    return kind != Kind::call || stripState().mainPrefsStruct->validateUnlockBeforeCall;
}

void run(TapRow const& row, CVLView strip, CVLButton button)
{
    capture(button, row.captures);
    CurrentContact const& contact = currentContact();
    // A nil target is not the empty text, and passes.
    bool const hasTarget =
        !(row.captures & captures::email ? contact.currentEmailAddr : contact.currentPhoneNumber)
             ->isEqualToString(""_ns);
    bool const locked = deviceIsPasscodeLocked();
    if (!hasTarget)
        return;
    if (locked && waitsForPasscode(row.kind)) {
        park(row.parkedAs);
        return;
    }
    if (row.kind == Kind::messagingApp)
        requestUnlock();
    row.run(strip);
}

}

void CVLView::animateButton(CVLButton sender) const { sender.send<"fadeOutAnimationButton">(); }

void CVLView::buttonPressedAction(CVLButton sender) const
{
    if (settings().isHapticFB)
        AudioServicesPlaySystemSound(kHapticTapSound);
    sender.send<"fadeOutAnimationButton">();   // a second time: touch-down has faded it already
    auto const code = static_cast<SingleTap>(stripState().mainPrefsStruct->singleTapAction);
    for (TapRow const& row : kTapRows)
        if (row.code == code)
            run(row, *this, sender);
}

void CVLView::addButton(objc::handle) const
{
    if (send<"presentMessageIfDeviceLocked", BOOL>())
        return;
    holdIdleTimer();
    auto const picker =
        objc::adopt(CNContactPickerViewController::alloc().init<CNContactPickerViewController>());
    if (!picker) {
        releaseIdleTimer();   // there is no picker that could tell us to
        return;
    }
    picker->setDelegate(*this);
    auto const nothing = objc::block([] {});
    presentViewController(responderChainPresenter(*this), picker, lent(nothing));
}
