#include "phone/uikit/ui_button.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"

namespace phone {

namespace {

// +[UIFont buttonFontSize], points.
constexpr double kTitleSize = 18;
// How far a pressed system button's title fades.
constexpr double kPressedAlpha = 0.2;

struct StateContent {
    objc::ref<NSString> title;
    objc::ref<UIColor> titleColor;
    objc::ref<UIImage> image;
    objc::ref<UIImage> background;
};

struct ButtonParts {
    NSInteger type { 0 };
    std::map<NSUInteger, StateContent> contents;
    objc::ref<UILabel> titleLabel;
    objc::ref<UIImageView> imageView;
    objc::ref<UIImageView> backgroundView;
    UIEdgeInsets contentInsets {};
    UIEdgeInsets titleInsets {};
    UIEdgeInsets imageInsets {};
    bool dimsWhenHighlighted { true };
    bool dimsWhenDisabled { true };
};

ButtonParts& partsOf(UIButton button) { return objc::state<ButtonParts>(UIButton { button.object }); }

// What the state has of its own, or else what normal has.
template <class T>
T contentFor(UIButton button, NSUInteger state, objc::ref<T> StateContent::*field)
{
    if (!button)
        return {};
    auto const& contents = partsOf(button).contents;
    for (NSUInteger const each : { state, ControlState::normal }) {
        auto const found = contents.find(each);
        if (found != contents.end() && found->second.*field)
            return found->second.*field;
    }
    return {};
}

bool isSystem(UIButton button) { return partsOf(button).type != 0; }

void contentChanged(UIButton button)
{
    button.setNeedsLayout();
    button.setNeedsDisplay();
    button.invalidateIntrinsicContentSize();
}

UILabel ensureTitleLabel(UIButton button)
{
    auto& label = partsOf(button).titleLabel;
    if (!label) {
        label = make<UILabel>();
        label->setFont(UIFont::systemFontOfSize(kTitleSize));
        label->setLineBreakMode(5);   // the middle goes
        label->setTextAlignment(static_cast<NSInteger>(NSTextAlignment::center));
        button.addSubview(label);
    }
    return label;
}

UIImageView ensureImageView(UIButton button)
{
    auto& view = partsOf(button).imageView;
    if (!view) {
        view = make<UIImageView>();
        button.insertSubviewAtIndex(view, partsOf(button).backgroundView ? 1 : 0);
    }
    return view;
}

// Puts the present state's content into the parts.
void showState(UIButton button)
{
    ButtonParts& parts = partsOf(button);
    NSString const title = button.currentTitle();
    if (title || parts.titleLabel) {
        UILabel const label = ensureTitleLabel(button);
        label.setText(title);
        label.setTextColor(button.currentTitleColor());
        bool const fades = isSystem(button) && button.isHighlighted();
        label.setAlpha(fades ? kPressedAlpha : 1);
    }
    UIImage const image = button.currentImage();
    if (image || parts.imageView) {
        UIImageView const view = ensureImageView(button);
        view.setImage(image);
        bool const dims = (button.isHighlighted() && parts.dimsWhenHighlighted)
            || (!button.isEnabled() && parts.dimsWhenDisabled);
        view.setDimmed(dims && !isSystem(button));
    }
    UIImage const background = button.currentBackgroundImage();
    if (background && !parts.backgroundView) {
        parts.backgroundView = make<UIImageView>();
        button.insertSubviewAtIndex(parts.backgroundView, 0);
    }
    if (parts.backgroundView)
        parts.backgroundView->setImage(background);
}

struct Content {
    CGSize image, title;
};

// The image's natural size cut to the space, and the title in what is left.
Content contentSizes(UIButton button, CGSize space)
{
    Content content {};
    if (UIImage const image = button.currentImage())
        content.image = { std::min(image.size().width, space.width),
            std::min(image.size().height, space.height) };
    NSString const title = button.currentTitle();
    if (title && title.length()) {
        CGSize const natural = ensureTitleLabel(button).sizeThatFits({ 0, 0 });
        content.title = { std::clamp(space.width - content.image.width, 0.0, natural.width),
            std::min(natural.height, space.height) };
    }
    return content;
}

// UIControlContentHorizontalAlignment: 0 centre, 1 left, 2 right, 3 fill, 4 leading, 5 trailing.
double horizontalShare(UIButton button)
{
    bool const rightToLeft = button.effectiveUserInterfaceLayoutDirection() == 1;
    switch (button.contentHorizontalAlignment()) {
    case 1: return 0;
    case 2: return 1;
    case 4: return rightToLeft ? 1 : 0;
    case 5: return rightToLeft ? 0 : 1;
    default: return 0.5;
    }
}

double verticalShare(UIButton button)
{
    switch (button.contentVerticalAlignment()) {
    case 1: return 0;
    case 2: return 1;
    default: return 0.5;
    }
}

CGRect placed(CGRect space, CGSize size, double x, double y)
{
    return { { roundToPixel(x), roundToPixel(space.origin.y + (space.size.height - size.height) * y) },
        size };
}

CGRect within(CGRect rect, UIEdgeInsets insets)
{
    // Insets move the part by half of their difference, since it stays centred in what they leave.
    return { { rect.origin.x + (insets.left - insets.right) / 2,
                 rect.origin.y + (insets.top - insets.bottom) / 2 },
        rect.size };
}

}

UIButton UIButton::buttonWithType(objc::class_handle receiver, NSInteger type)
{
    auto const button = objc::adopt(UIButton {
        receiver.send<"alloc", UIButton>().send<"initWithFrame:", objc::handle>(CGRect {}).object });
    if (!button)
        return {};
    partsOf(button).type = type;
    return objc::autorelease(button);
}

UIButton UIButton::initWithFrame(CGRect frame) const
{
    auto const self = objc::send_super<UIButton, "initWithFrame:", UIButton>(UIButton { object }, frame);
    if (self)
        self.setOpaque(false);
    return self;
}

NSInteger UIButton::buttonType() const { return object ? partsOf(*this).type : 0; }

void UIButton::setTitle(NSString title, NSUInteger state) const
{
    partsOf(*this).contents[state].title =
        objc::adopt(NSString { title.send<"copy", objc::handle>().object });
    showState(*this);
    contentChanged(*this);
}
NSString UIButton::titleForState(NSUInteger state) const
{
    return contentFor(*this, state, &StateContent::title);
}
void UIButton::setTitleColor(UIColor color, NSUInteger state) const
{
    partsOf(*this).contents[state].titleColor = objc::retain(color);
    showState(*this);
    setNeedsDisplay();
}
UIColor UIButton::titleColorForState(NSUInteger state) const
{
    if (!object)
        return {};
    if (UIColor const own = contentFor(*this, state, &StateContent::titleColor))
        return own;
    return isSystem(*this) ? tintColor() : UIColor::whiteColor();
}
void UIButton::setImage(UIImage image, NSUInteger state) const
{
    partsOf(*this).contents[state].image = objc::retain(image);
    showState(*this);
    contentChanged(*this);
}
UIImage UIButton::imageForState(NSUInteger state) const
{
    return contentFor(*this, state, &StateContent::image);
}
void UIButton::setBackgroundImage(UIImage image, NSUInteger state) const
{
    partsOf(*this).contents[state].background = objc::retain(image);
    showState(*this);
    contentChanged(*this);
}
UIImage UIButton::backgroundImageForState(NSUInteger state) const
{
    return contentFor(*this, state, &StateContent::background);
}
NSString UIButton::currentTitle() const { return titleForState(state()); }
UIColor UIButton::currentTitleColor() const { return titleColorForState(state()); }
UIImage UIButton::currentImage() const { return imageForState(state()); }
UIImage UIButton::currentBackgroundImage() const { return backgroundImageForState(state()); }
UILabel UIButton::titleLabel() const { return object ? ensureTitleLabel(*this) : UILabel {}; }
UIImageView UIButton::imageView() const { return object ? ensureImageView(*this) : UIImageView {}; }

UIEdgeInsets UIButton::contentEdgeInsets() const { return partsOf(*this).contentInsets; }
void UIButton::setContentEdgeInsets(UIEdgeInsets insets) const
{
    partsOf(*this).contentInsets = insets;
    contentChanged(*this);
}
UIEdgeInsets UIButton::titleEdgeInsets() const { return partsOf(*this).titleInsets; }
void UIButton::setTitleEdgeInsets(UIEdgeInsets insets) const
{
    partsOf(*this).titleInsets = insets;
    contentChanged(*this);
}
UIEdgeInsets UIButton::imageEdgeInsets() const { return partsOf(*this).imageInsets; }
void UIButton::setImageEdgeInsets(UIEdgeInsets insets) const
{
    partsOf(*this).imageInsets = insets;
    contentChanged(*this);
}
BOOL UIButton::adjustsImageWhenHighlighted() const { return partsOf(*this).dimsWhenHighlighted; }
void UIButton::setAdjustsImageWhenHighlighted(BOOL adjusts) const
{
    partsOf(*this).dimsWhenHighlighted = adjusts;
}
BOOL UIButton::adjustsImageWhenDisabled() const { return partsOf(*this).dimsWhenDisabled; }
void UIButton::setAdjustsImageWhenDisabled(BOOL adjusts) const { partsOf(*this).dimsWhenDisabled = adjusts; }

std::map<NSUInteger, std::string> UIButton::titlesByState() const
{
    std::map<NSUInteger, std::string> titles;
    for (auto const& [state, content] : partsOf(*this).contents) {
        if (content.title)
            titles[state] = toString(content.title.get());
    }
    return titles;
}

std::map<NSUInteger, UIImage> UIButton::imagesByState() const
{
    std::map<NSUInteger, UIImage> images;
    for (auto const& [state, content] : partsOf(*this).contents) {
        if (content.image)
            images[state] = content.image;
    }
    return images;
}

CGRect UIButton::contentRectForBounds(CGRect bounds) const
{
    return inset(bounds, partsOf(*this).contentInsets);
}

// The image and the title stand side by side, the image first in reading direction, together in the middle.
CGRect UIButton::imageRectForContentRect(CGRect rect) const
{
    Content const content = contentSizes(*this, rect.size);
    double const all = content.image.width + content.title.width;
    double const start = rect.origin.x + (rect.size.width - all) * horizontalShare(*this);
    bool const rightToLeft = effectiveUserInterfaceLayoutDirection() == 1;
    return within(
        placed(rect, content.image, start + (rightToLeft ? content.title.width : 0), verticalShare(*this)),
        partsOf(*this).imageInsets);
}

CGRect UIButton::titleRectForContentRect(CGRect rect) const
{
    Content const content = contentSizes(*this, rect.size);
    double const all = content.image.width + content.title.width;
    double const start = rect.origin.x + (rect.size.width - all) * horizontalShare(*this);
    bool const rightToLeft = effectiveUserInterfaceLayoutDirection() == 1;
    return within(
        placed(rect, content.title, start + (rightToLeft ? 0 : content.image.width), verticalShare(*this)),
        partsOf(*this).titleInsets);
}

CGSize UIButton::sizeThatFits(CGSize) const
{
    Content const content = contentSizes(*this, { 10'000, 10'000 });
    UIEdgeInsets insets = partsOf(*this).contentInsets;
    // A system button leaves air above and below its title, as UIKit's does.
    if (isSystem(*this) && insets == UIEdgeInsets {})
        insets.top = insets.bottom = 6;
    return { content.image.width + content.title.width + insets.left + insets.right,
        std::max(content.image.height, content.title.height) + insets.top + insets.bottom };
}
CGSize UIButton::intrinsicContentSize() const { return sizeThatFits({}); }

void UIButton::layoutSubviews() const
{
    objc::send_super<UIButton, "layoutSubviews">(UIButton { object });
    showState(*this);
    ButtonParts const& parts = partsOf(*this);
    CGRect const content = contentRectForBounds(bounds());
    if (parts.backgroundView)
        parts.backgroundView->setFrame(bounds());
    if (parts.imageView)
        parts.imageView->setFrame(send<"imageRectForContentRect:", CGRect>(content));
    if (parts.titleLabel)
        parts.titleLabel->setFrame(send<"titleRectForContentRect:", CGRect>(content));
}

void UIButton::setHighlighted(BOOL highlighted) const
{
    UIControl::setHighlighted(highlighted);
    showState(*this);
}
void UIButton::setSelected(BOOL selected) const
{
    UIControl::setSelected(selected);
    showState(*this);
}
void UIButton::setEnabled(BOOL enabled) const
{
    UIControl::setEnabled(enabled);
    showState(*this);
}
void UIButton::tintColorDidChange() const { showState(*this); }

void defineUIButton()
{
    objc::define<UIButton>()
        .state<ButtonParts>()
        .class_method<"buttonWithType:", &UIButton::buttonWithType>()
        .method<"initWithFrame:", &UIButton::initWithFrame>()
        .method<"buttonType", &UIButton::buttonType>()
        .method<"setTitle:forState:", &UIButton::setTitle>()
        .method<"titleForState:", &UIButton::titleForState>()
        .method<"setTitleColor:forState:", &UIButton::setTitleColor>()
        .method<"titleColorForState:", &UIButton::titleColorForState>()
        .method<"setImage:forState:", &UIButton::setImage>()
        .method<"imageForState:", &UIButton::imageForState>()
        .method<"setBackgroundImage:forState:", &UIButton::setBackgroundImage>()
        .method<"backgroundImageForState:", &UIButton::backgroundImageForState>()
        .method<"currentTitle", &UIButton::currentTitle>()
        .method<"currentTitleColor", &UIButton::currentTitleColor>()
        .method<"currentImage", &UIButton::currentImage>()
        .method<"currentBackgroundImage", &UIButton::currentBackgroundImage>()
        .method<"titleLabel", &UIButton::titleLabel>()
        .method<"imageView", &UIButton::imageView>()
        .method<"contentEdgeInsets", &UIButton::contentEdgeInsets>()
        .method<"setContentEdgeInsets:", &UIButton::setContentEdgeInsets>()
        .method<"titleEdgeInsets", &UIButton::titleEdgeInsets>()
        .method<"setTitleEdgeInsets:", &UIButton::setTitleEdgeInsets>()
        .method<"imageEdgeInsets", &UIButton::imageEdgeInsets>()
        .method<"setImageEdgeInsets:", &UIButton::setImageEdgeInsets>()
        .method<"adjustsImageWhenHighlighted", &UIButton::adjustsImageWhenHighlighted>()
        .method<"setAdjustsImageWhenHighlighted:", &UIButton::setAdjustsImageWhenHighlighted>()
        .method<"adjustsImageWhenDisabled", &UIButton::adjustsImageWhenDisabled>()
        .method<"setAdjustsImageWhenDisabled:", &UIButton::setAdjustsImageWhenDisabled>()
        .method<"contentRectForBounds:", &UIButton::contentRectForBounds>()
        .method<"titleRectForContentRect:", &UIButton::titleRectForContentRect>()
        .method<"imageRectForContentRect:", &UIButton::imageRectForContentRect>()
        .method<"sizeThatFits:", &UIButton::sizeThatFits>()
        .method<"intrinsicContentSize", &UIButton::intrinsicContentSize>()
        .method<"layoutSubviews", &UIButton::layoutSubviews>()
        .method<"setHighlighted:", &UIButton::setHighlighted>()
        .method<"setSelected:", &UIButton::setSelected>()
        .method<"setEnabled:", &UIButton::setEnabled>()
        .method<"tintColorDidChange", &UIButton::tintColorDidChange>()
        .install();
}

}
