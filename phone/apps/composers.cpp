#include "phone/apps/composers.hpp"

#include "objc/define.hpp"
#include "phone/apps/availability.hpp"
#include "phone/apps/composer_card.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/springboard/object_values.hpp"

namespace phone {

namespace {

constexpr NSInteger kCancelled = 0;   // MessageComposeResult, MFMailComposeResult

// Where the two classes differ: the names of their methods, and how a delegate is told.
struct MessageTerms {
    static constexpr objc::fixed_string kClass = "MFMessageComposeViewController";
    static constexpr objc::fixed_string kCanSend = "canSendText";
    static constexpr objc::fixed_string kDelegate = "messageComposeDelegate";
    static constexpr objc::fixed_string kSetDelegate = "setMessageComposeDelegate:";
    static constexpr objc::fixed_string kRecipients = "recipients";
    static constexpr objc::fixed_string kSetRecipients = "setRecipients:";
    static constexpr objc::fixed_string kDidFinish = "messageComposeViewController:didFinishWithResult:";
    static constexpr char const* kService = "messages";
    static constexpr ComposerKind kKind = ComposerKind::message;
    static constexpr NSInteger kSent = 1;   // MessageComposeResultSent

    static void tell(NSObject delegate, objc::handle composer, NSInteger result)
    {
        delegate.send<kDidFinish>(composer, result);
    }
};

struct MailTerms {
    static constexpr objc::fixed_string kClass = "MFMailComposeViewController";
    static constexpr objc::fixed_string kCanSend = "canSendMail";
    static constexpr objc::fixed_string kDelegate = "mailComposeDelegate";
    static constexpr objc::fixed_string kSetDelegate = "setMailComposeDelegate:";
    static constexpr objc::fixed_string kRecipients = "toRecipients";
    static constexpr objc::fixed_string kSetRecipients = "setToRecipients:";
    static constexpr objc::fixed_string kDidFinish = "mailComposeController:didFinishWithResult:error:";
    static constexpr char const* kService = "mail";
    static constexpr ComposerKind kKind = ComposerKind::mail;
    static constexpr NSInteger kSent = 2;   // MFMailComposeResultSent

    static void tell(NSObject delegate, objc::handle composer, NSInteger result)
    {
        delegate.send<kDidFinish>(composer, result, objc::handle {});
    }
};

template <class Terms>
struct Composer : objc::subclass<Composer<Terms>, Terms::kClass, UIViewController> {
    using Base = objc::subclass<Composer, Terms::kClass, UIViewController>;
    using Base::Base;

    static BOOL canSend(objc::class_handle receiver)
    {
        bool const answer = isServiceAvailable(Terms::kService);
        noteCanSend(receiver, Terms::kCanSend.c_str(), answer);
        return answer;
    }

    objc::handle delegate() const { return state().delegate.get(); }
    void setDelegate(objc::handle delegate) const   // not kept
    {
        noteComposerCall(*this, Terms::kSetDelegate.c_str(), objectValue(delegate));
        state().delegate = NSObject { delegate.object };
    }

    NSArray recipients() const { return state().recipients; }
    void setRecipients(NSArray texts) const
    {
        noteComposerCall(*this, Terms::kSetRecipients.c_str(), objectValue(texts));
        state().recipients = objc::adopt(NSArray { texts.send<"copy", objc::handle>().object });
        if (state().card)
            state().card->setRecipients(state().recipients);
    }

    BOOL canBecomeFirstResponder() const { return true; }
    BOOL becomeFirstResponder() const
    {
        noteComposerCall(*this, "becomeFirstResponder", nullptr);
        return objc::send_super<Composer, "becomeFirstResponder", BOOL>(*this);
    }

    void loadView() const
    {
        state().card = std::make_unique<ComposerCard>(*this, Terms::kKind);
        state().card->setRecipients(state().recipients);
    }
    BOOL mayBePresented() const { return composerMayBeShown(*this); }
    void animatePresentation(BOOL presenting, std::function<void()>* done) const
    {
        state().card->card().animate(presenting, std::move(*done));
    }
    void sendPressed(objc::handle) const { finish(Terms::kSent); }
    void cancelPressed(objc::handle) const { finish(kCancelled); }

    static void install()
    {
        objc::define<Composer>()
            .template state<ComposerState>()
            .template class_method<Terms::kCanSend, &Composer::canSend>()
            .template method<Terms::kDelegate, &Composer::delegate>()
            .template method<Terms::kSetDelegate, &Composer::setDelegate>()
            .template method<Terms::kRecipients, &Composer::recipients>()
            .template method<Terms::kSetRecipients, &Composer::setRecipients>()
            .template method<"canBecomeFirstResponder", &Composer::canBecomeFirstResponder>()
            .template method<"becomeFirstResponder", &Composer::becomeFirstResponder>()
            .template method<"loadView", &Composer::loadView>()
            .template method<"phone_mayBePresented", &Composer::mayBePresented>()
            .template method<"phone_animatePresentation:completion:", &Composer::animatePresentation>()
            .template method<"phone_sendPressed:", &Composer::sendPressed>()
            .template method<"phone_cancelPressed:", &Composer::cancelPressed>()
            .install();
    }

private:
    ComposerState& state() const { return objc::state<ComposerState>(Composer { this->object }); }

    void finish(NSInteger result) const
    {
        auto const delegate = objc::retain(state().delegate.get());
        if (state().isFinished || !delegate->template responds<Terms::kDidFinish>())
            return;
        state().isFinished = true;
        auto const kept = objc::retain(*this);   // the delegate may let go of it
        CalloutScope const scope(delegate.get(), objc::selector<Terms::kDidFinish>());
        Terms::tell(delegate.get(), *this, result);
    }
};

}

void defineComposers()
{
    Composer<MessageTerms>::install();
    Composer<MailTerms>::install();
}

}
