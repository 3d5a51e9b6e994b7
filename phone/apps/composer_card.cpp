#include "phone/apps/composer_card.hpp"

#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/springboard/springboard_state.hpp"

#include <algorithm>

namespace phone {

namespace {

using graphics::Color;

// Points.
constexpr double kFieldMargin = 16;
constexpr double kFieldHeight = 46;
constexpr double kFieldTextSize = 17;
constexpr double kRecipientGap = 8;
constexpr double kRecipientLine = 24;
constexpr double kEntryHeight = 36;

CGRect mirroredIn(CGRect rect, double width)
{
    return isRightToLeft() ? fromGraphics(mirrored(toGraphics(rect), width)) : rect;
}

double widthOf(UILabel label) { return label.sizeThatFits({ 10000, kRecipientLine }).width; }

}

ComposerCard::ComposerCard(UIViewController controller, ComposerKind kind)
    : m_kind(kind)
    , m_card(controller, kind == ComposerKind::mail ? "New Message" : "New Text Message")
{
    m_card.addButton(kind == ComposerKind::mail ? ModalCard::Side::leading : ModalCard::Side::trailing,
        "Cancel", objc::selector<"phone_cancelPressed:">(), ModalCard::Weight::regular);
    addField("To:");
    if (kind == ComposerKind::mail) {
        m_card.addButton(ModalCard::Side::trailing, "Send", objc::selector<"phone_sendPressed:">(),
            ModalCard::Weight::strong);
        addField("Cc/Bcc:");
        addField("Subject:");
    } else {
        addMessageBar(controller);
    }
    m_card.setContentLayout([this](CGRect bounds) { layOut(bounds); });
}

void ComposerCard::addField(std::string_view name)
{
    Field field { makeText(name, kFieldTextSize, graphics::FontWeight::kRegular, {}), makeHairline() };
    field.name->setTextColor(UIColor::secondaryLabelColor());
    m_card.content().addSubview(field.name.get());
    m_card.content().addSubview(field.line);
    m_fields.push_back(std::move(field));
}

void ComposerCard::addMessageBar(UIViewController controller)
{
    m_entry = make<UIView>();
    m_entry->setCornerRadius(kEntryHeight / 2);
    m_entry->setBackgroundColor(UIColor::dynamic(Color::hex(0xf2f2f7), Color::hex(0x2c2c2e)));
    m_entryHint = makeText("Text Message", kFieldTextSize, graphics::FontWeight::kRegular, {});
    m_entryHint->setTextColor(UIColor::dynamic(Color::hex(0x3c3c43, 0.3), Color::hex(0xebebf5, 0.3)));
    m_entry->addSubview(m_entryHint.get());
    m_send = objc::retain(UIButton::buttonWithType(UIButton::cls(), NSInteger(UIButtonType::system)));
    m_send->setTitle(toNSString("Send"), ControlState::normal);
    m_send->titleLabel().setFont(
        UIFont::systemFontOfSizeWeight(kFieldTextSize, graphics::FontWeight::kSemibold));
    m_send->addTarget(controller, objc::selector<"phone_sendPressed:">(), ControlEvent::touchUpInside);
    m_card.content().addSubview(m_entry);
    m_card.content().addSubview(m_send.get());
}

void ComposerCard::setRecipients(NSArray texts)
{
    for (auto const& label : m_recipients)
        label->removeFromSuperview();
    m_recipients.clear();
    for (NSUInteger i = 0; i < texts.count(); ++i) {
        auto label =
            makeText(toString(texts.objectAtIndex(i)), kFieldTextSize, graphics::FontWeight::kRegular, {});
        label->setTextColor(UIColor::systemBlueColor());
        // Numbers and addresses read from left to right, also between Hebrew words.
        label->setSemanticContentAttribute(NSInteger(SemanticContent::forceLeftToRight));
        label->setTextAlignment(NSInteger(NSTextAlignment::left));
        m_card.content().addSubview(label.get());
        m_recipients.push_back(std::move(label));
    }
    m_card.content().setNeedsLayout();
}

// From line to line as there is room; answers the height that they take.
double ComposerCard::layOutRecipients(CGRect row)
{
    double const width = m_card.content().bounds().size.width;
    double x = row.origin.x;
    double y = row.origin.y;
    for (auto const& label : m_recipients) {
        double const wanted = std::min(widthOf(label), row.size.width);
        if (x > row.origin.x && x + wanted > maxX(row)) {
            x = row.origin.x;
            y += kRecipientLine;
        }
        label->setFrame(mirroredIn({ { x, y }, { wanted, kRecipientLine } }, width));
        x += wanted + kRecipientGap;
    }
    return y + kRecipientLine - row.origin.y;
}

void ComposerCard::layOut(CGRect bounds)
{
    double const width = bounds.size.width;
    UIEdgeInsets const insets = usableInsets();
    double const left = insets.left + kFieldMargin;
    double const right = width - insets.right - kFieldMargin;
    double y = 0;
    for (std::size_t i = 0; i < m_fields.size(); ++i) {
        auto const& [name, line] = m_fields[i];
        double const nameWidth = widthOf(name);
        double height = kFieldHeight;
        double const textTop = y + (kFieldHeight - kRecipientLine) / 2;
        name->setFrame(mirroredIn({ { left, textTop }, { nameWidth, kRecipientLine } }, width));
        if (i == 0) {
            double const start = left + nameWidth + kRecipientGap;
            height = kFieldHeight - kRecipientLine
                + layOutRecipients({ { start, textTop }, { right - start, kRecipientLine } });
        }
        y += height;
        line->setFrame(
            mirroredIn({ { left, y - hairlineHeight() }, { width - left, hairlineHeight() } }, width));
    }
    if (m_kind != ComposerKind::message)
        return;
    double const entryTop = bounds.size.height - insets.bottom - kEntryHeight - 8;
    double const sendWidth = m_send->intrinsicContentSize().width + 2 * kTouchMargin;
    double const entryWidth = right - left - sendWidth;
    m_entry->setFrame(mirroredIn({ { left, entryTop }, { entryWidth, kEntryHeight } }, width));
    m_entryHint->setFrame({ { 14, 0 }, { entryWidth - 28, kEntryHeight } });
    m_send->setFrame(mirroredIn(
        { { right - sendWidth + kTouchMargin, entryTop - 4 }, { sendWidth, kEntryHeight + 8 } }, width));
}

void noteComposerCall(UIViewController composer, char const* call, Json value)
{
    trace().record(
        "composer", { { "class", classNameOf(composer) }, { "call", call }, { "value", std::move(value) } });
}

void noteCanSend(objc::class_handle asked, char const* selector, bool answer)
{
    trace().record("canSend",
        { { "class", class_getName(asked.get()) }, { "selector", selector }, { "answer", answer } });
}

bool composerMayBeShown(UIViewController composer)
{
    if (!isSpringBoardInstalled() || !springBoard().isLocked)
        return true;
    bool mayShow = false;
    {
        CalloutScope const scope(composer, objc::selector<"_canShowWhileLocked">());
        mayShow = composer.send<"_canShowWhileLocked", BOOL>();
    }
    if (!mayShow) {
        TraceOwnScope const own;
        noteComposerCall(composer, "_canShowWhileLocked", false);
    }
    return mayShow;
}

}
