#include "phone/apps/message_composer.hpp"

#include "objc/define.hpp"
#include "phone/apps/availability.hpp"
#include "phone/apps/composer_card.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/springboard/object_values.hpp"

namespace phone {

namespace {

enum class Outcome : NSInteger { cancelled = 0, sent = 1 };   // MessageComposeResult

ComposerState& stateOf(MFMessageComposeViewController composer)
{
    return objc::state<ComposerState>(MFMessageComposeViewController { composer.object });
}

void finish(MFMessageComposeViewController composer, Outcome result)
{
    ComposerState& state = stateOf(composer);
    auto const delegate = objc::retain(state.delegate.get());
    if (state.isFinished || !delegate->responds<"messageComposeViewController:didFinishWithResult:">())
        return;
    state.isFinished = true;
    auto const kept = objc::retain(composer);
    CalloutScope const scope(
        delegate.get(), objc::selector<"messageComposeViewController:didFinishWithResult:">());
    delegate->send<"messageComposeViewController:didFinishWithResult:">(composer, NSInteger(result));
}

}

BOOL MFMessageComposeViewController::canSendText(objc::class_handle receiver)
{
    bool const answer = isServiceAvailable("messages");
    noteCanSend(receiver, "canSendText", answer);
    return answer;
}

objc::handle MFMessageComposeViewController::messageComposeDelegate() const
{
    return stateOf(*this).delegate.get();
}

void MFMessageComposeViewController::setMessageComposeDelegate(objc::handle delegate) const
{
    noteComposerCall(*this, "setMessageComposeDelegate:", objectValue(delegate));
    stateOf(*this).delegate = NSObject { delegate.object };
}

NSArray MFMessageComposeViewController::recipients() const { return stateOf(*this).recipients; }

void MFMessageComposeViewController::setRecipients(NSArray texts) const
{
    noteComposerCall(*this, "setRecipients:", objectValue(texts));
    ComposerState& state = stateOf(*this);
    state.recipients = objc::adopt(NSArray { texts.send<"copy", objc::handle>().object });
    if (state.card)
        state.card->setRecipients(state.recipients);
}

BOOL MFMessageComposeViewController::becomeFirstResponder() const
{
    noteComposerCall(*this, "becomeFirstResponder", nullptr);
    return objc::send_super<MFMessageComposeViewController, "becomeFirstResponder", BOOL>(*this);
}

void MFMessageComposeViewController::loadView() const
{
    ComposerState& state = stateOf(*this);
    state.card = std::make_unique<ComposerCard>(*this, ComposerKind::message);
    state.card->setRecipients(state.recipients);
}

BOOL MFMessageComposeViewController::mayBePresented() const { return composerMayBeShown(*this); }

void MFMessageComposeViewController::animatePresentation(BOOL presenting, std::function<void()>* done) const
{
    stateOf(*this).card->card().animate(presenting, std::move(*done));
}

void MFMessageComposeViewController::sendPressed(objc::handle) const { finish(*this, Outcome::sent); }
void MFMessageComposeViewController::cancelPressed(objc::handle) const { finish(*this, Outcome::cancelled); }

void defineMFMessageComposeViewController()
{
    using Self = MFMessageComposeViewController;
    objc::define<Self>()
        .state<ComposerState>()
        .class_method<"canSendText", &Self::canSendText>()
        .method<"messageComposeDelegate", &Self::messageComposeDelegate>()
        .method<"setMessageComposeDelegate:", &Self::setMessageComposeDelegate>()
        .method<"recipients", &Self::recipients>()
        .method<"setRecipients:", &Self::setRecipients>()
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
