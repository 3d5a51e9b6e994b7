// ComposerCard: what the message and the mail composer show: the recipients, and buttons to send or to cancel.
// There is no keyboard: what is sent is what was set. And what both classes share. Main thread.
#pragma once

#include "phone/apps/modal_card.hpp"
#include "phone/foundation/weak.hpp"
#include "phone/kernel/trace.hpp"

#include <memory>
#include <vector>

namespace phone {

enum class ComposerKind { message, mail };

class ComposerCard {
public:
    // The buttons send phone_sendPressed: and phone_cancelPressed: to the controller.
    ComposerCard(UIViewController controller, ComposerKind kind);

    void setRecipients(NSArray texts);
    ModalCard const& card() const { return m_card; }

private:
    struct Field {
        objc::ref<UILabel> name;
        objc::ref<UIView> line;
    };

    void addField(std::string_view name);
    void addMessageBar(UIViewController controller);
    void layOut(CGRect bounds);
    double layOutRecipients(CGRect row);

    ComposerKind m_kind;
    ModalCard m_card;
    std::vector<Field> m_fields;   // the first one is the recipients'
    std::vector<objc::ref<UILabel>> m_recipients;
    objc::ref<UIView> m_entry;   // a message's; none in mail
    objc::ref<UILabel> m_entryHint;
    objc::ref<UIButton> m_send;   // beside the entry
};

// State of either class.
struct ComposerState {
    Weak<NSObject> delegate;
    objc::ref<NSArray> recipients;
    std::unique_ptr<ComposerCard> card;
    bool isFinished { false };   // the delegate has been told
};

// The trace's `composer`: a call on a composer by its caller.
void noteComposerCall(UIViewController composer, char const* call, Json value);
// The trace's `canSend`.
void noteCanSend(objc::class_handle asked, char const* selector, bool answer);

// Over a lock screen only a composer that says so is shown (_canShowWhileLocked).
bool composerMayBeShown(UIViewController composer);

}
