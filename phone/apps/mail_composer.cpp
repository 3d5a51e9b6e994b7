#include "phone/apps/mail_composer.hpp"

#include "objc/define.hpp"
#include "phone/apps/availability.hpp"
#include "phone/apps/composer_card.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/springboard/object_values.hpp"

namespace phone {

namespace {

enum class Outcome : NSInteger { cancelled = 0, sent = 2 };   // MFMailComposeResult

ComposerState& stateOf(MFMailComposeViewController composer)
{
    return objc::state<ComposerState>(MFMailComposeViewController { composer.object });
}

void finish(MFMailComposeViewController composer, Outcome result)
{
    ComposerState& state = stateOf(composer);
    auto const delegate = objc::retain(state.delegate.get());
    if (state.isFinished || !delegate->responds<"mailComposeController:didFinishWithResult:error:">())
        return;
    state.isFinished = true;
    auto const kept = objc::retain(composer);
    CalloutScope const scope(
        delegate.get(), objc::selector<"mailComposeController:didFinishWithResult:error:">());
    delegate->send<"mailComposeController:didFinishWithResult:error:">(
        composer, NSInteger(result), objc::handle {});
}

}

BOOL MFMailComposeViewController::canSendMail(objc::class_handle receiver)
{
    bool const answer = isServiceAvailable("mail");
    noteCanSend(receiver, "canSendMail", answer);
    return answer;
}

objc::handle MFMailComposeViewController::mailComposeDelegate() const
{
    return stateOf(*this).delegate.get();
}

void MFMailComposeViewController::setMailComposeDelegate(objc::handle delegate) const
{
    noteComposerCall(*this, "setMailComposeDelegate:", objectValue(delegate));
    stateOf(*this).delegate = NSObject { delegate.object };
}

NSArray MFMailComposeViewController::toRecipients() const { return stateOf(*this).recipients; }

void MFMailComposeViewController::setToRecipients(NSArray texts) const
{
    noteComposerCall(*this, "setToRecipients:", objectValue(texts));
    ComposerState& state = stateOf(*this);
    state.recipients = objc::adopt(NSArray { texts.send<"copy", objc::handle>().object });
    if (state.card)
        state.card->setRecipients(state.recipients);
}

BOOL MFMailComposeViewController::becomeFirstResponder() const
{
    noteComposerCall(*this, "becomeFirstResponder", nullptr);
    return objc::send_super<MFMailComposeViewController, "becomeFirstResponder", BOOL>(*this);
}

void MFMailComposeViewController::loadView() const
{
    ComposerState& state = stateOf(*this);
    state.card = std::make_unique<ComposerCard>(*this, ComposerKind::mail);
    state.card->setRecipients(state.recipients);
}

BOOL MFMailComposeViewController::mayBePresented() const { return composerMayBeShown(*this); }

void MFMailComposeViewController::animatePresentation(BOOL presenting, std::function<void()>* done) const
{
    stateOf(*this).card->card().animate(presenting, std::move(*done));
}

void MFMailComposeViewController::sendPressed(objc::handle) const { finish(*this, Outcome::sent); }
void MFMailComposeViewController::cancelPressed(objc::handle) const { finish(*this, Outcome::cancelled); }

void defineMFMailComposeViewController()
{
    using Self = MFMailComposeViewController;
    objc::define<Self>()
        .state<ComposerState>()
        .class_method<"canSendMail", &Self::canSendMail>()
        .method<"mailComposeDelegate", &Self::mailComposeDelegate>()
        .method<"setMailComposeDelegate:", &Self::setMailComposeDelegate>()
        .method<"toRecipients", &Self::toRecipients>()
        .method<"setToRecipients:", &Self::setToRecipients>()
        .method<"canBecomeFirstResponder", &Self::canBecomeFirstResponder>()
        .method<"becomeFirstResponder", &Self::becomeFirstResponder>()
        .method<"loadView", &Self::loadView>()
        .method<"phone_mayBePresented", &Self::mayBePresented>()
        .method<"phone_animatePresentation:completion:", &Self::animatePresentation>()
        .method<"phone_sendPressed:", &Self::sendPressed>()
        .method<"phone_cancelPressed:", &Self::cancelPressed>()
        .install();
}

}
