#include "plugin/actions/composers.hpp"

#include "objc/define.hpp"
#include "plugin/actions/current_contact.hpp"
#include "plugin/actions/idle_timer.hpp"
#include "plugin/actions/presenter.hpp"
#include "plugin/strip/cvl_view.hpp"

namespace {

NSArray listOf(NSString recipient)
{
    NSMutableArray const recipients = NSMutableArray::array();
    if (recipient)
        recipients.addObject(recipient);
    return recipients;
}

// From 14 on, and below 13, the strip's own controller presents; in between, the key window's.
UIResponder composerPresenter(CVLView strip)
{
    if (!systemVersionIsAtLeast("14"_ns) && systemVersionIsAtLeast("13"_ns))
        return keyWindowPresenter();
    return responderChainPresenter(strip);
}

void present(CVLView strip, UIViewController composer)
{
    auto const gone = objc::block([strip = objc::retain(strip)] { strip->send<"makeBannerGone">(); });
    presentViewController(composerPresenter(strip), composer, lent(gone));
}

// Sent, cancelled, saved and failed are all the same to us.
void finish(UIViewController composer)
{
    releaseIdleTimer();
    composer.send<"dismissViewControllerAnimated:completion:">(BOOL(true), objc::block_ref<void()> {});
}

}

void CVLView::msgSMS() const
{
    if (MFMessageComposeViewController::canSendText()) {
        holdIdleTimer();
        auto const composer =
            objc::adopt(MFMessageComposeViewControllerCVL::alloc().init<MFMessageComposeViewControllerCVL>());
        composer->setMessageComposeDelegate(*this);
        composer->setRecipients(listOf(currentContact().currentPhoneNumber));
        composer->becomeFirstResponder();
        present(*this, composer);
    }
    currentContact().currentPhoneNumber = objc::retain(""_ns);
}

// Asks the subclass whether it can send, where the message composer asks the system's class; and does not make the composer the
// first responder.
void CVLView::sndEmail() const
{
    if (MFMailComposeViewControllerCVL::cls().ask<"canSendMail", BOOL>()) {
        holdIdleTimer();
        auto const composer =
            objc::adopt(MFMailComposeViewControllerCVL::alloc().init<MFMailComposeViewControllerCVL>());
        composer->setMailComposeDelegate(*this);
        composer->setToRecipients(listOf(currentContact().currentEmailAddr));
        present(*this, composer);
    }
    currentContact().currentEmailAddr = objc::retain(""_ns);
}

void CVLView::messageComposeDidFinish(UIViewController composer, NSInteger) const { finish(composer); }
void CVLView::mailComposeDidFinish(UIViewController composer, NSInteger, objc::handle) const
{
    finish(composer);
}

void defineComposers()
{
    objc::define<MFMessageComposeViewControllerCVL>()
        .method<"_canShowWhileLocked", &MFMessageComposeViewControllerCVL::canShowWhileLocked>()
        .install();
    objc::define<MFMailComposeViewControllerCVL>()
        .method<"_canShowWhileLocked", &MFMailComposeViewControllerCVL::canShowWhileLocked>()
        .install();
}
