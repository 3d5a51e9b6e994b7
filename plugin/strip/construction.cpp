// A strip, built from the settings record: background, row of contacts, title, and the welcome of an empty list.
#include "objc/define.hpp"
#include "plugin/host/contact_list.hpp"
#include "plugin/host/system_generation.hpp"
#include "plugin/strip/bundle_images.hpp"
#include "plugin/strip/contact_cell.hpp"
#include "plugin/strip/cvl_view.hpp"
#include "plugin/strip/strip_geometry.hpp"
#include "plugin/strip/strip_state.hpp"

#include "platform/springboard.hpp"

#include <algorithm>

namespace {

constexpr CGFloat kTitleFrameY = 8.0;
constexpr CGFloat kTitleHeight = 12.0;
constexpr CGFloat kUntitledBackgroundHeight = 70.0;
constexpr CGFloat kBackgroundTint = 0.1;   // alpha of the chosen colour over the blur
constexpr float kAlphaNotSet = -1.0f;

constexpr CGSize kCakeSize { 29.0, 29.0 };

constexpr char kWelcome[] = "Thank you for choosing Corvel\n\n"
                            "Click anywhere to add your first contacts!\n\n"
                            "Configure appearence and contacts from settings";
constexpr char kWelcomeBeforeCoverSheet[] = "Thank you for choosing Corvel\n\n"
                                            "Configure appearence and contacts from settings";

// The parts of one construction.
class Builder {
public:
    Builder(CVLView strip, CGRect frame)
        : m_strip(strip)
        , m_frame(frame)
        , m_prefs(stripState().mainPrefsStruct.get())
        , m_width(stripState().referenceWidth)
        , m_overlay(strip.isViewNonLS())
        , m_contacts(strip.list().count())
    {
    }

    void makeRow() const;
    void makeBackground() const;
    void makeTitle() const;
    void makeBirthdayResources() const;
    void addRow() const;
    void makeWelcome() const;

private:
    bool showsTitle() const
    {
        return m_prefs.enableTitle && !m_prefs.styleCustomTitle.isEqualToString(""_ns);
    }
    void setDynamicSize(CGFloat offset, CGFloat width) const;
    void makeBlurredBackground() const;
    void placeRowOnBlur(UIView blur) const;
    void makeHandleBar(CGRect blur) const;
    void makeBands() const;
    void addBand(CGRect frame, CGFloat alpha) const;
    UILabel makeWelcomeLabel() const;

    CVLView m_strip;
    CGRect m_frame;
    viewPreferences m_prefs;
    CGFloat m_width;   // of the screen, as seen in portrait
    BOOL m_overlay;
    NSUInteger m_contacts;
};

void Builder::makeRow() const
{
    auto const layout = objc::adopt(UICollectionViewFlowLayout::alloc().init<UICollectionViewFlowLayout>());
    m_strip.send<"setCollectionViewLayout:">(layout);
    if (!layout)   // the row raises without one
        return;
    layout->setScrollDirection(UICollectionViewScrollDirectionHorizontal);
    auto const row = objc::adopt(UICollectionView::alloc().initWithFrame(m_frame, layout));
    m_strip.send<"setCollectionView:">(row);

    // Mirrored as a whole, and each cell mirrored back: items then run from the right.
    if (UIApplication::sharedApplication().userInterfaceLayoutDirection()
        == UIUserInterfaceLayoutDirectionRightToLeft)
        row->setTransform(CGAffineTransformMakeScale(-1.0, 1.0));
    row->setShowsHorizontalScrollIndicator(false);
    row->setTranslatesAutoresizingMaskIntoConstraints(false);
    row->setDataSource(m_strip);
    row->setDelegate(m_strip);
    row->setBackgroundColor(UIColor::clearColor());
    row->setPagingEnabled(m_prefs.isPaging);
}

void Builder::setDynamicSize(CGFloat offset, CGFloat width) const
{
    m_strip.send<"setBannerDynamicSize:">(static_cast<std::int32_t>(offset));
    m_strip.send<"setBannerDynamicWidth:">(static_cast<std::int32_t>(width));
}

void Builder::makeBackground() const
{
    setDynamicSize(10, m_width - kScreenMargin);
    if (m_prefs.bannerStyle == kBlurredStyle || m_overlay)
        makeBlurredBackground();
    else if (m_prefs.bannerStyle == kBandedStyle)
        makeBands();
}

void Builder::makeBlurredBackground() const
{
    auto const effect =
        UIBlurEffect::effectWithStyle(m_prefs.darkMode ? UIBlurEffectStyleDark : UIBlurEffectStyleLight);
    auto const blur = objc::adopt(UIVisualEffectView::alloc().initWithEffect(effect));
    stripState().blurView = blur;
    if (m_contacts == 0 || !m_prefs.isDynamicSize) {
        blur->setFrame(CGRectMake(0, 0, m_frame.size.width, m_frame.size.height));
        blur->setAutoresizingMask(UIViewAutoresizingFlexibleWidth | UIViewAutoresizingFlexibleHeight);
    } else {
        auto const slots = static_cast<CGFloat>(std::min<NSUInteger>(m_contacts, 5));
        CGFloat const half = m_width * 0.5;
        setDynamicSize(half - (half / kSlots) * slots, ((m_width - kScreenMargin) / kSlots) * slots);
        CGFloat const x = m_overlay ? 0 : m_strip.send<"bannerDynamicSize", std::int32_t>();
        CGFloat const width = m_strip.send<"bannerDynamicWidth", std::int32_t>();
        blur->setFrame(CGRectMake(x, 0, width, m_frame.size.height));
        blur->setAutoresizingMask(UIViewAutoresizingFlexibleHeight);
    }
    blur->setClipsToBounds(true);
    blur->layer().setCornerRadius(15.0);
    if (m_prefs.viewAlpha != kAlphaNotSet)
        blur->setAlpha(m_prefs.viewAlpha);
    blur->setBackgroundColor(m_prefs.mainViewColor.colorWithAlphaComponent(kBackgroundTint));
    m_strip.addSubview(blur);
    placeRowOnBlur(blur);
}

void Builder::placeRowOnBlur(UIView blur) const
{
    CGRect const frame = blur.frame();
    CGFloat const height = frame.size.height - 3.3;
    if (m_overlay) {
        m_strip.collectionView().setFrame(CGRectMake(frame.origin.x, 5.0, frame.size.width, height));
        makeHandleBar(frame);
        return;
    }
    CGFloat const y = showsTitle() ? frame.size.height / 3.95 : frame.size.height * 0.125;
    CGFloat const width =
        m_prefs.isDynamicSize ? frame.size.width : UIScreen::mainScreen().bounds().size.width - kScreenMargin;
    m_strip.collectionView().setFrame(CGRectMake(frame.origin.x, y, width, height));
}

void Builder::makeHandleBar(CGRect blur) const
{
    auto const handleBar =
        objc::adopt(UIView::alloc().initWithFrame(CGRectMake(0, blur.size.height - 11.0, 25.0, 7.0)));
    stripState().handleBar = handleBar;
    CGFloat const middle = blur.size.width * 0.5;
    handleBar->setCenter({ m_prefs.isDynamicSize ? blur.origin.x + middle : middle, handleBar->center().y });
    handleBar->setBackgroundColor(UIColor::grayColor());
    CALayer const layer = handleBar->layer();
    layer.setCornerRadius(5.0);
    layer.setBorderWidth(1.0);
    layer.setBorderColor(UIColor::blackColor().cgColor());
    handleBar->setAlpha(0.4);
    m_strip.addSubview(handleBar);
}

void Builder::addBand(CGRect frame, CGFloat alpha) const
{
    auto const band = objc::adopt(UIView::alloc().initWithFrame(frame));
    band->setBackgroundColor(UIColor::blackColor());
    band->setAlpha(alpha);
    m_strip.addSubview(band);
}

void Builder::makeBands() const
{
    CGFloat const width = m_contacts < 5 ? 71 * static_cast<CGFloat>(m_contacts) : m_width;
    m_strip.collectionView().setFrame(CGRectMake(0, 20.0, width, 78.0));
    addBand(CGRectMake(0, 3.4, m_width, 20.0), 0.75);
    addBand(CGRectMake(0, 22.5, m_width, 70.0), 0.5);
}

void Builder::makeTitle() const
{
    if (m_overlay || m_contacts == 0)
        return;
    // May be an earlier strip's, when this one's style makes none.
    UIView const blur = stripState().blurView;
    if (!showsTitle() && m_prefs.bannerStyle == kBlurredStyle) {
        CGRect frame = blur.frame();
        frame.size.height = kUntitledBackgroundHeight;
        blur.setFrame(frame);
        return;
    }
    if (!m_prefs.enableTitle)
        return;
    CGRect const frame = blur
        ? CGRectMake(blur.frame().origin.x + 3.0, kTitleFrameY, blur.frame().size.width - 5.0, kTitleHeight)
        : CGRectMake(10.0, kTitleFrameY, m_width - 40.0, kTitleHeight);
    auto const title = objc::adopt(UILabel::alloc().initWithFrame<UILabel>(frame));
    title->setText(m_prefs.styleCustomTitle);
    title->setFont(m_prefs.titleFont);
    title->setTextColor(m_prefs.colorTitle);
    title->setTextAlignment(m_prefs.titlePos == 1 ? NSTextAlignmentLeft
            : m_prefs.titlePos == 3               ? NSTextAlignmentRight
                                                  : NSTextAlignmentCenter);
    m_strip.addSubview(title);
}

void Builder::makeBirthdayResources() const
{
    if (!m_prefs.birthdayFrame)
        return;
    stripState().birthdayButtons = objc::retain(NSMutableArray::array());
    stripState().cakeImage =
        objc::retain(m_strip.send<"scaleImage:toSize:", UIImage>(cakeBadge(), kCakeSize));
}

void Builder::addRow() const
{
    if (NSString const identifier = kContactCellIdentifier())
        m_strip.collectionView().registerClass(CVLContactCell::cls(), identifier);
    m_strip.addSubview(m_strip.collectionView());
}

UILabel Builder::makeWelcomeLabel() const
{
    auto const label =
        objc::adopt(UILabel::alloc().initWithFrame<UILabel>(CGRectMake(-6.0, 2.5, m_width, 80.0)));
    label->setTextAlignment(NSTextAlignmentCenter);
    label->setFont(UIFont::systemFontOfSize(12.0, UIFontWeightMedium));
    label->setNumberOfLines(isCoverSheetSystem() ? 7 : 5);
    label->setText(
        NSString::stringWithUTF8String(isCoverSheetSystem() ? kWelcome : kWelcomeBeforeCoverSheet));
    return objc::autorelease(label);
}

void Builder::makeWelcome() const
{
    if (m_contacts > 0)
        return;
    auto const button = UIButton::buttonWithType(UIButtonTypeCustom);
    button.setFrame(CGRectMake(0, m_strip.collectionView().frame().origin.y, m_width - kScreenMargin, 75.0));
    button.setBackgroundColor(UIColor::clearColor());
    CGSize const bannerSize { m_width - 70, 50.0 };
    button.setImage(m_strip.send<"imageWithImage:scaledToSize:", UIImage>(contactsBanner(), bannerSize),
        UIControlStateNormal);
    UILabel const label = makeWelcomeLabel();
    if (isCoverSheetSystem())
        button.addTarget(m_strip, objc::selector<"addButton:">(), UIControlEventTouchUpInside);
    m_strip.addSubview(button);
    m_strip.addSubview(label);
}

CGFloat portraitWidth()
{
    CGSize const screen = UIScreen::mainScreen().bounds().size;
    NSInteger const orientation = frontMostAppOrientation();
    bool const landscape = orientation == UIInterfaceOrientationLandscapeRight
        || orientation == UIInterfaceOrientationLandscapeLeft;
    return landscape ? screen.height : screen.width;
}

}

CVLView CVLView::initWithFrame(CGRect frame, viewPreferences prefs, BOOL nonLSView) const
{
    stripState().referenceWidth = portraitWidth();
    auto const self = objc::send_super<CVLView, "initWithFrame:", CVLView>(*this, frame);
    if (!self)
        return nullptr;
    stripState().mainPrefsStruct.assign(prefs);
    self.send<"setIsViewNonLS:">(nonLSView);
    self.send<"setList:">(readContactList());

    Builder const builder(self, frame);
    builder.makeRow();
    builder.makeBackground();
    builder.makeTitle();
    builder.makeBirthdayResources();
    builder.addRow();
    builder.makeWelcome();
    return self;
}
