// The strip as its collection view's data source: one cell a contact, with photo or initial, name, and cake on a birthday.
#include "plugin/actions/idle_timer.hpp"
#include "plugin/host/contact_list.hpp"
#include "plugin/strip/contact_button.hpp"
#include "plugin/strip/contact_cell.hpp"
#include "plugin/strip/cvl_view.hpp"
#include "plugin/strip/first_character.hpp"
#include "plugin/strip/strip_geometry.hpp"
#include "plugin/strip/strip_state.hpp"

namespace {

constexpr CGFloat kButtonSide = 45.0;
constexpr CGSize kRoundPhotoSize { 50.0, 50.0 };
constexpr CGFloat kLabelWidth = 60.0;
constexpr double kBirthdayInterval = 3600.0;   // seconds

BOOL isEmpty(NSString text) { return text.length() == 0; }

// A text of the entry; nil when it is missing or no text.
NSString textOf(NSDictionary entry, NSString key) { return objc::cast<NSString>(entry.objectForKey(key)); }

NSString textOrEmpty(NSDictionary entry, NSString key)
{
    NSString const text = textOf(entry, key);
    return text ? text : ""_ns;
}

// The first name, else the last name, else empty.
NSString displayName(NSDictionary entry)
{
    NSString const first = textOrEmpty(entry, entry_key::firstName());
    return isEmpty(first) ? textOrEmpty(entry, entry_key::lastName()) : first;
}

void clear(UICollectionViewCell cell)
{
    auto const content = objc::adopt(NSArray { cell.subviews().send<"copy", objc::handle>().object });
    bool const hasBirthdays = stripState().mainPrefsStruct->birthdayFrame;
    for (NSUInteger i = 0; i < content->count(); ++i) {
        UIView const view { content->objectAtIndex(i).object };
        bool const isButton = bool(objc::cast<UIButton>(view));
        if (!isButton && !objc::cast<UILabel>(view) && !objc::cast<UIImageView>(view))
            continue;
        view.removeFromSuperview();
        if (isButton && hasBirthdays)
            stripState().birthdayButtons->removeObject(view);
    }
}

UICollectionViewCell dequeueCell(UICollectionView row, NSIndexPath path)
{
    if (auto const cell = row.dequeueReusableCell(kContactCellIdentifier(), path))
        return cell;
    return objc::autorelease(objc::adopt(CVLContactCell::alloc().initWithFrame<UICollectionViewCell>(
        CGRectMake(25.0, 0.0, stripState().referenceWidth - 100, 80.0))));
}

void setPhotoOrInitial(CVLView strip, CVLButton button, NSDictionary entry)
{
    NSData const photo = objc::cast<NSData>(entry.objectForKey(entry_key::image()));
    if (photo.length() == 0) {
        NSString const name = displayName(entry);
        button.setBackgroundColor(UIColor::grayColor());
        button.setTitle(isEmpty(name) ? "NA"_ns : firstCharacter(name), UIControlStateNormal);
        return;
    }
    UIImage image = UIImage::imageWithData(photo);
    if (stripState().mainPrefsStruct->isRoundCell)
        image = strip.send<"scaleImage:toSize:", UIImage>(image, kRoundPhotoSize);
    button.setImage(image, UIControlStateNormal);
}

void placeButton(CVLView strip, CVLButton button)
{
    auto const style = stripState().mainPrefsStruct->bannerStyle;
    CGFloat const width = stripState().referenceWidth;
    if (style == kBlurredStyle || strip.isViewNonLS())
        button.setFrame(
            CGRectMake(((width - kScreenMargin) / kSlots - kButtonSide) * 0.5, 0, kButtonSide, kButtonSide));
    else if (style == kBandedStyle)
        button.setFrame(CGRectMake((width / kSlots - kButtonSide) * 0.5, 0, kButtonSide, kButtonSide));
    // Any other style shows no buttons: the frame stays empty.
    CGFloat const side = button.frame().size.width;
    button.setClipsToBounds(true);
    button.layer().setCornerRadius(stripState().mainPrefsStruct->isRoundCell ? side * 0.5 : side / 5.0);
}

void addTargets(CVLView strip, CVLButton button)
{
    button.addTarget(strip, objc::selector<"animateButton:">(), UIControlEventTouchDown);
    button.addTarget(strip, objc::selector<"buttonPressedAction:">(), UIControlEventTouchUpInside);
    auto const longPress =
        objc::adopt(UILongPressGestureRecognizer::alloc().initWithTarget<UILongPressGestureRecognizer>(
            strip, objc::selector<"showMenu:">()));
    longPress->setMinimumPressDuration(0.3);
    button.addGestureRecognizer(longPress);
}

CVLButton makeButton(CVLView strip, NSDictionary entry)
{
    auto const button = UIButton::buttonWithType<CVLButton>(UIButtonTypeCustom);
    button.send<"setPhoneNumber:">(textOrEmpty(entry, entry_key::phoneNumber()));
    setPhotoOrInitial(strip, button, entry);
    button.send<"setEmailAddr:">(textOrEmpty(entry, entry_key::email()));
    button.send<"setBirthday:">(objc::cast<NSDate>(entry.objectForKey(entry_key::birthday())));
    placeButton(strip, button);
    addTargets(strip, button);
    return button;
}

void addBirthdayBadge(CVLView strip, UICollectionViewCell cell, CVLButton button)
{
    StripState& state = stripState();
    if (!state.birthdayButtons->containsObject(button))
        state.birthdayButtons->addObject(button);

    CGPoint const origin = button.frame().origin;
    auto const badge = objc::adopt(UIImageView::alloc().initWithFrame<UIImageView>(
        CGRectMake(origin.x + 22.0, origin.y + 22.0, 29.0, 23.0)));
    badge->setImage(state.cakeImage);
    NSDate const birthday = button.send<"getBirthday", NSDate>();
    badge->setHidden(!strip.send<"isSameDay:otherDay:", BOOL>(NSDate::date(), birthday));
    button.send<"setCake:">(badge);
    if (!state.birthdayTimerStarted) {
        NSTimer::scheduledTimer(
            kBirthdayInterval, strip, objc::selector<"presentBirthday:">(), nullptr, /* repeats: */ true);
        state.birthdayTimerStarted = true;
    }
    cell.addSubview(badge);
}

UILabel makeNameLabel(NSDictionary entry, UIView button)
{
    auto const label = objc::adopt(UILabel::alloc().initWithFrame<UILabel>(
        CGRectMake(0.0, button.frame().origin.y + 42.0, kLabelWidth, 20.0)));
    label->setText(displayName(entry));
    label->setTextColor(stripState().mainPrefsStruct->colorContact);
    label->setNumberOfLines(1);
    label->setAdjustsFontSizeToFitWidth(true);
    label->setMinimumScaleFactor(0.5);
    return objc::autorelease(label);
}

void addNameLabel(UICollectionViewCell cell, UILabel label, UIView button)
{
    if (!label || cell.subviews().containsObject(label))
        return;
    cell.addSubview(label);
    label.setTranslatesAutoresizingMaskIntoConstraints(false);
    NSMutableArray const constraints = NSMutableArray::array();
    addConstraintIfAny(constraints, label.topAnchor().constraintEqualTo(button.bottomAnchor(), 0.0));
    addConstraintIfAny(constraints, label.centerXAnchor().constraintEqualTo(button.centerXAnchor()));
    addConstraintIfAny(constraints, label.widthAnchor().constraintLessThanOrEqualToConstant(kLabelWidth));
    addConstraintIfAny(constraints, label.heightAnchor().constraintEqualToConstant(15.0));
    NSLayoutConstraint::activateConstraints(constraints);
}

}

NSInteger CVLView::numberOfItemsInSection(UICollectionView, NSInteger section) const
{
    // No cells where the system has no class for them: the row raises for a cell that it can't get.
    return section == 0 && CVLContactCell::cls() && kContactCellIdentifier()
        ? static_cast<NSInteger>(list().count())
        : 0;
}

UICollectionViewCell CVLView::cellForItemAtIndexPath(UICollectionView row, NSIndexPath path) const
{
    holdIdleTimer();
    NSDictionary const entry = contactEntry(list(), static_cast<NSUInteger>(path.row()));
    UICollectionViewCell const cell = dequeueCell(row, path);
    if (UIApplication::sharedApplication().userInterfaceLayoutDirection()
        == UIUserInterfaceLayoutDirectionRightToLeft)
        cell.setTransform(CGAffineTransformMakeScale(-1.0, 1.0));
    clear(cell);
    CVLButton const button = entry ? makeButton(*this, entry) : CVLButton {};
    if (!button) {
        releaseIdleTimer();
        return cell;
    }
    if (!cell.subviews().containsObject(button))
        cell.addSubview(button);
    if (stripState().mainPrefsStruct->birthdayFrame)
        addBirthdayBadge(*this, cell, button);
    UILabel const label = makeNameLabel(entry, button);
    button.send<"setContactName:">(label.text());
    label.setFont(UIFont::systemFontOfSize(9.5));
    label.setTextAlignment(NSTextAlignmentCenter);
    addNameLabel(cell, label, button);
    releaseIdleTimer();
    return cell;
}
