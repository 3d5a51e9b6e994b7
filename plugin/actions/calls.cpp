// Phone and FaceTime calls, at once or after a confirmation.
#include "plugin/actions/current_contact.hpp"
#include "plugin/actions/idle_timer.hpp"
#include "plugin/actions/open_url.hpp"
#include "plugin/actions/text_format.hpp"
#include "plugin/strip/cvl_view.hpp"
#include "plugin/strip/strip_state.hpp"

namespace {

struct Call {
    char const* url;
    char const* question;   // filled with name and number
};
constexpr Call kPhone { "tel:%@", "You are about to call:\n%@, %@\n Are you sure?" };
constexpr Call kFacetime { "facetime:%@", "You are about to facetime call:\n%@, %@\n Are you sure?" };

void callNow(Call const& call, CVLView strip)
{
    CurrentContact& contact = currentContact();
    NSString const number = contact.currentPhoneNumber->stringByReplacingOccurrencesOfString(" "_ns, ""_ns);
    auto const nothing = objc::block([](BOOL) {});
    openURL(filled(call.url, { number }), lent(nothing));
    contact.currentPhoneNumber = objc::retain(""_ns);
    contact.currentContactName = objc::retain(""_ns);
    strip.send<"makeBannerGone">();
}

void askAndCall(Call const& call, CVLView strip)
{
    CurrentContact const& contact = currentContact();
    NSString const message =
        filled(call.question, { contact.currentContactName, contact.currentPhoneNumber });
    auto const alert =
        UIAlertController::alertController("Confirmation"_ns, message, UIAlertControllerStyleAlert);
    auto const yes =
        objc::block([&call, strip = objc::retain(strip)](UIAlertAction) { callNow(call, strip); });
    auto const no = objc::block([](UIAlertAction) {});
    addActionIfAny(alert, UIAlertAction::actionWithTitle("Yes"_ns, UIAlertActionStyleDefault, lent(yes)));
    addActionIfAny(alert, UIAlertAction::actionWithTitle("No"_ns, UIAlertActionStyleCancel, lent(no)));
    strip.send<"windowForPrompts:">(alert);
    releaseIdleTimer();   // right away, not when the alert is answered
}

}

void CVLView::callPhone() const
{
    if (stripState().mainPrefsStruct->askBeforeCall)
        askAndCall(kPhone, *this);
    else
        callNow(kPhone, *this);   // leaves the idle timer's assertion as it is
}

void CVLView::callFacetime() const
{
    if (stripState().mainPrefsStruct->askBeforeCall) {
        askAndCall(kFacetime, *this);
    } else {
        callNow(kFacetime, *this);
        releaseIdleTimer();
    }
}
