#include "phone/apps/contact_picker.hpp"

#include "objc/define.hpp"
#include "phone/apps/cn_contact.hpp"
#include "phone/apps/modal_card.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/foundation/weak.hpp"
#include "phone/graphics/glyphs.hpp"
#include "phone/graphics/path.hpp"
#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/uikit/ui_scroll_view.hpp"

#include <algorithm>

namespace phone {

namespace {

using graphics::Color;

// Points.
constexpr double kRowHeight = 44;
constexpr double kRowMargin = 16;
constexpr double kMark = 24;

struct RowState {
    objc::ref<UILabel> label;
    objc::ref<DrawnView> mark;
    objc::ref<UIView> line;
};

void drawMark(DrawContext& context, CGRect bounds, bool isSelected)
{
    graphics::Rect const box = toGraphics(bounds);
    if (!isSelected) {
        graphics::addEllipse(context.cairo, { box.x + 1, box.y + 1, box.width - 2, box.height - 2 });
        graphics::stroke(context.cairo, context.dark ? Color::hex(0x48484a) : Color::hex(0xc7c7cc), 1.5);
        return;
    }
    graphics::addEllipse(context.cairo, box);
    graphics::fill(context.cairo, context.dark ? Color::hex(0x0a84ff) : Color::hex(0x007aff));
    double const inset = box.width * 0.28;
    graphics::drawGlyph(context.cairo, graphics::Glyph::checkmark,
        { box.x + inset, box.y + inset, box.width - 2 * inset, box.height - 2 * inset }, Color::white());
}

// One contact: its name, and a mark that fills when it is selected.
struct ContactRow : objc::subclass<ContactRow, "CNContactPickerRow", UIControl> {
    using subclass::subclass;
    RowState& row() const { return objc::state<RowState>(*this); }

    // A name that is a number reads from left to right in every language.
    static objc::ref<ContactRow> make(std::string const& name, bool isNumber)
    {
        auto made = phone::make<ContactRow>();
        RowState& row = made->row();
        row.label = makeText(name, 17, graphics::FontWeight::kRegular, {});
        row.label->setTextColor(UIColor::labelColor());
        if (isNumber) {
            row.label->setSemanticContentAttribute(NSInteger(SemanticContent::forceLeftToRight));
            row.label->setTextAlignment(
                NSInteger(isRightToLeft() ? NSTextAlignment::right : NSTextAlignment::left));
        }
        row.mark = DrawnView::make({}, {});
        row.line = makeHairline();
        made->addSubview(row.label.get());
        made->addSubview(row.mark.get());
        made->addSubview(row.line);
        made->setAccessibilityLabel(row.label->text());
        made->setIsAccessibilityElement(true);
        constexpr NSUInteger kButtonTrait = 1;
        made->setAccessibilityTraits(kButtonTrait);
        made->showMark();
        return made;
    }

    void showMark() const
    {
        bool const isSelected = this->isSelected();
        row().mark->setDraw(
            [isSelected](DrawContext& context, CGRect bounds) { drawMark(context, bounds, isSelected); });
    }
    void setSelected(BOOL selected) const
    {
        objc::send_super<ContactRow, "setSelected:">(*this, selected);
        showMark();
    }
    void setHighlighted(BOOL highlighted) const
    {
        objc::send_super<ContactRow, "setHighlighted:">(*this, highlighted);
        setBackgroundColor(
            highlighted ? UIColor::dynamic(Color::hex(0xd1d1d6), Color::hex(0x3a3a3c)) : UIColor {});
    }
    void layoutSubviews() const
    {
        objc::send_super<ContactRow, "layoutSubviews">(*this);
        double const width = bounds().size.width;
        UIEdgeInsets const insets = usableInsets();
        double const start = insets.left + kRowMargin;
        double const text = start + kMark + 12;
        auto const place = [&](UIView view, graphics::Rect rect) {
            view.setFrame(fromGraphics(isRightToLeft() ? mirrored(rect, width) : rect));
        };
        place(row().mark.get(), { start, (kRowHeight - kMark) / 2, kMark, kMark });
        place(row().label.get(), { text, 0, width - text - insets.right - kRowMargin, kRowHeight });
        place(row().line, { text, kRowHeight - hairlineHeight(), width - text, hairlineHeight() });
    }
};

// The rows, one below the other. They are controls, and yet a finger that has rested on one scrolls them, as a table's.
struct ContactList : objc::subclass<ContactList, "CNContactPickerList", UIScrollView> {
    using subclass::subclass;
    BOOL touchesShouldCancelInContentView(UIView) const { return true; }
};

struct PickerState {
    Weak<NSObject> delegate;
    std::unique_ptr<ModalCard> card;
    objc::ref<ContactList> list;
    std::vector<objc::ref<ContactRow>> rows;   // in the order of the address book as it was
    std::vector<AddressBookContact> contacts;
    std::vector<std::size_t> picked;   // in the order touched
    bool isFinished { false };
};

PickerState& stateOf(CNContactPickerViewController picker)
{
    return objc::state<PickerState>(CNContactPickerViewController { picker.object });
}

// First and last name, what there is of them; a contact without either goes by its number or address.
std::string nameOf(AddressBookContact const& contact)
{
    if (!contact.firstName.empty() && !contact.lastName.empty())
        return contact.firstName + " " + contact.lastName;
    if (!contact.firstName.empty() || !contact.lastName.empty())
        return contact.firstName + contact.lastName;
    if (!contact.phones.empty())
        return contact.phones.front().value;
    return contact.emails.empty() ? "" : contact.emails.front().value;
}

void layOutRows(PickerState const& state, CGRect bounds)
{
    state.list->setFrame(bounds);
    double y = 0;
    for (auto const& row : state.rows) {
        row->setFrame({ { 0, y }, { bounds.size.width, kRowHeight } });
        y += kRowHeight;
    }
    state.list->setContentSize({ bounds.size.width, y });
    state.list->setContentInset({ 0, 0, usableInsets().bottom, 0 });
}

// Takes the picker off the screen; then tells the delegate.
void finish(CNContactPickerViewController picker, std::function<void(NSObject delegate)> tell)
{
    PickerState& state = stateOf(picker);
    if (state.isFinished)
        return;
    state.isFinished = true;
    TraceOwnScope const own;
    picker.dismiss(true, [kept = objc::retain(picker), tell = std::move(tell)] {
        if (auto const delegate = objc::retain(stateOf(kept).delegate.get()))
            tell(delegate);
    });
}

}

objc::handle CNContactPickerViewController::delegate() const { return stateOf(*this).delegate.get(); }

void CNContactPickerViewController::setDelegate(objc::handle delegate) const
{
    stateOf(*this).delegate = NSObject { delegate.object };
}

void CNContactPickerViewController::loadView() const
{
    PickerState& state = stateOf(*this);
    state.card = std::make_unique<ModalCard>(*this, "Contacts");
    state.card->addButton(ModalCard::Side::leading, "Cancel", objc::selector<"phone_cancelPressed:">(),
        ModalCard::Weight::regular);
    state.card->addButton(
        ModalCard::Side::trailing, "Done", objc::selector<"phone_donePressed:">(), ModalCard::Weight::strong);
    state.contacts = addressBook();
    state.list = make<ContactList>();
    state.list->setAlwaysBounceVertical(true);
    for (std::size_t i = 0; i < state.contacts.size(); ++i) {
        AddressBookContact const& contact = state.contacts[i];
        bool const isNamed = !contact.firstName.empty() || !contact.lastName.empty();
        auto row = ContactRow::make(nameOf(contact), !isNamed);
        row->setTag(NSInteger(i));
        row->addTarget(*this, objc::selector<"phone_rowTouched:">(), ControlEvent::touchUpInside);
        state.list->addSubview(row.get());
        state.rows.push_back(std::move(row));
    }
    state.card->content().addSubview(state.list.get());
    state.card->setContentLayout([picker = *this](CGRect bounds) { layOutRows(stateOf(picker), bounds); });
}

void CNContactPickerViewController::animatePresentation(BOOL presenting, std::function<void()>* done) const
{
    stateOf(*this).card->animate(presenting, std::move(*done));
}

void CNContactPickerViewController::rowTouched(objc::handle sender) const
{
    PickerState& state = stateOf(*this);
    ContactRow const row { sender.object };
    auto const index = static_cast<std::size_t>(row.tag());
    bool const wasSelected = std::erase(state.picked, index) != 0;
    if (!wasSelected)
        state.picked.push_back(index);
    row.send<"setSelected:">(BOOL { !wasSelected });
}

void CNContactPickerViewController::donePressed(objc::handle) const
{
    finish(*this, [picker = *this](NSObject delegate) {
        PickerState const& state = stateOf(picker);
        NSMutableArray const contacts = NSMutableArray::array();
        for (std::size_t const index : state.picked)
            contacts.addObject(CNContact::make(state.contacts[index]).get());
        CalloutScope const scope(delegate, objc::selector<"contactPicker:didSelectContacts:">());
        delegate.ask<"contactPicker:didSelectContacts:">(picker, NSArray { contacts.object });
    });
}

void CNContactPickerViewController::cancelPressed(objc::handle) const
{
    finish(*this, [picker = *this](NSObject delegate) {
        CalloutScope const scope(delegate, objc::selector<"contactPickerDidCancel:">());
        delegate.ask<"contactPickerDidCancel:">(picker);
    });
}

void defineCNContactPickerViewController()
{
    using Self = CNContactPickerViewController;
    objc::define<ContactRow>()
        .state<RowState>()
        .method<"setSelected:", &ContactRow::setSelected>()
        .method<"setHighlighted:", &ContactRow::setHighlighted>()
        .method<"layoutSubviews", &ContactRow::layoutSubviews>()
        .install();
    objc::define<ContactList>()
        .method<"touchesShouldCancelInContentView:", &ContactList::touchesShouldCancelInContentView>()
        .install();
    objc::define<Self>()
        .state<PickerState>()
        .method<"delegate", &Self::delegate>()
        .method<"setDelegate:", &Self::setDelegate>()
        .method<"loadView", &Self::loadView>()
        .method<"phone_animatePresentation:completion:", &Self::animatePresentation>()
        .method<"phone_rowTouched:", &Self::rowTouched>()
        .method<"phone_donePressed:", &Self::donePressed>()
        .method<"phone_cancelPressed:", &Self::cancelPressed>()
        .install();
}

}
