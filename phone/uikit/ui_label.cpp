#include "phone/uikit/ui_label.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"

namespace phone {

namespace {

struct LabelState {
    objc::ref<NSString> text;
    objc::ref<UIFont> font;         // none: the default
    objc::ref<UIColor> textColor;   // none: the default
    objc::ref<UIColor> highlightedTextColor;
    objc::ref<UIColor> shadowColor;
    CGSize shadowOffset { 0, -1 };
    NSInteger alignment { static_cast<NSInteger>(NSTextAlignment::natural) };
    NSInteger lines { 1 };
    NSInteger lineBreakMode { 4 };   // truncates the tail
    bool shrinks { false };
    double minimumScale { 0 };
    double preferredMaxWidth { 0 };
    bool isHighlighted { false };
    bool isEnabled { true };
};

LabelState& stateOf(UILabel label) { return objc::state<LabelState>(UILabel { label.object }); }

// After a change of what is shown.
void contentChanged(UILabel label)
{
    label.setNeedsDisplay();
    label.invalidateIntrinsicContentSize();
}

graphics::TextAlignment alignmentOf(NSInteger alignment)
{
    switch (static_cast<NSTextAlignment>(alignment)) {
    case NSTextAlignment::left: return graphics::TextAlignment::left;
    case NSTextAlignment::center: return graphics::TextAlignment::center;
    case NSTextAlignment::right: return graphics::TextAlignment::right;
    case NSTextAlignment::justified:   // Deviation: not stretched.
    case NSTextAlignment::natural: break;
    }
    return graphics::TextAlignment::natural;
}

// NSLineBreakMode
graphics::Truncation truncationOf(NSInteger mode)
{
    switch (mode) {
    case 2: return graphics::Truncation::clip;
    case 3: return graphics::Truncation::head;
    case 5: return graphics::Truncation::middle;
    default: return graphics::Truncation::tail;
    }
}

CGSize measured(UILabel label, double maxWidth, NSInteger lines)
{
    std::string const text = toString(label.text());
    if (text.empty())
        return {};
    graphics::TextStyle style = label.textStyle();
    style.maxLines = static_cast<int>(std::clamp<NSInteger>(lines, 0, 10'000));
    style.minimumScale = 1;
    bool const isLimited = maxWidth > 0 && std::isfinite(maxWidth) && maxWidth < 100'000;
    auto const size = graphics::measureText(
        text, style, isLimited && lines != 1 ? maxWidth : graphics::TextLayout::kUnlimited);
    return { ceilToPixel(size.width), ceilToPixel(size.height) };
}

}

UILabel UILabel::initWithFrame(CGRect frame) const
{
    auto const self = objc::send_super<UILabel, "initWithFrame:", UILabel>(UILabel { object }, frame);
    if (self) {
        self.setUserInteractionEnabled(false);
        self.setOpaque(false);
    }
    return self;
}

NSString UILabel::text() const { return object ? stateOf(*this).text.get() : NSString {}; }
void UILabel::setText(NSString text) const
{
    if (!object)
        return;
    NSString const string = objc::cast<NSString>(text);
    if (string == this->text() || (string && this->text() && string.isEqualToString(this->text())))
        return;
    stateOf(*this).text = objc::adopt(NSString { string.send<"copy", objc::handle>().object });
    contentChanged(*this);
}
UIFont UILabel::font() const
{
    if (!object)
        return {};
    UIFont const own = stateOf(*this).font;
    return own ? own : UIFont::systemFontOfSize(17);
}
void UILabel::setFont(UIFont font) const
{
    stateOf(*this).font = objc::retain(font);
    contentChanged(*this);
}
UIColor UILabel::textColor() const
{
    if (!object)
        return {};
    UIColor const own = stateOf(*this).textColor;
    return own ? own : UIColor::labelColor();
}
void UILabel::setTextColor(UIColor color) const
{
    stateOf(*this).textColor = objc::retain(color);
    setNeedsDisplay();
}
NSInteger UILabel::textAlignment() const { return stateOf(*this).alignment; }
void UILabel::setTextAlignment(NSInteger alignment) const
{
    stateOf(*this).alignment = alignment;
    setNeedsDisplay();
}
NSInteger UILabel::numberOfLines() const { return stateOf(*this).lines; }
void UILabel::setNumberOfLines(NSInteger lines) const
{
    stateOf(*this).lines = std::max<NSInteger>(lines, 0);
    contentChanged(*this);
}
NSInteger UILabel::lineBreakMode() const { return stateOf(*this).lineBreakMode; }
void UILabel::setLineBreakMode(NSInteger mode) const
{
    stateOf(*this).lineBreakMode = mode;
    setNeedsDisplay();
}
BOOL UILabel::adjustsFontSizeToFitWidth() const { return stateOf(*this).shrinks; }
void UILabel::setAdjustsFontSizeToFitWidth(BOOL adjusts) const
{
    stateOf(*this).shrinks = adjusts;
    setNeedsDisplay();
}
CGFloat UILabel::minimumScaleFactor() const { return stateOf(*this).minimumScale; }
void UILabel::setMinimumScaleFactor(CGFloat factor) const
{
    stateOf(*this).minimumScale = factor;
    setNeedsDisplay();
}
CGFloat UILabel::preferredMaxLayoutWidth() const { return stateOf(*this).preferredMaxWidth; }
void UILabel::setPreferredMaxLayoutWidth(CGFloat width) const
{
    stateOf(*this).preferredMaxWidth = width;
    invalidateIntrinsicContentSize();
}
BOOL UILabel::isHighlighted() const { return stateOf(*this).isHighlighted; }
void UILabel::setHighlighted(BOOL highlighted) const
{
    stateOf(*this).isHighlighted = highlighted;
    setNeedsDisplay();
}
UIColor UILabel::highlightedTextColor() const { return stateOf(*this).highlightedTextColor; }
void UILabel::setHighlightedTextColor(UIColor color) const
{
    stateOf(*this).highlightedTextColor = objc::retain(color);
    setNeedsDisplay();
}
BOOL UILabel::isEnabled() const { return stateOf(*this).isEnabled; }
void UILabel::setEnabled(BOOL enabled) const
{
    stateOf(*this).isEnabled = enabled;
    setNeedsDisplay();
}
UIColor UILabel::shadowColor() const { return stateOf(*this).shadowColor; }
void UILabel::setShadowColor(UIColor color) const
{
    stateOf(*this).shadowColor = objc::retain(color);
    setNeedsDisplay();
}
CGSize UILabel::shadowOffset() const { return stateOf(*this).shadowOffset; }
void UILabel::setShadowOffset(CGSize offset) const
{
    stateOf(*this).shadowOffset = offset;
    setNeedsDisplay();
}

CGSize UILabel::sizeThatFits(CGSize size) const { return measured(*this, size.width, numberOfLines()); }

CGSize UILabel::intrinsicContentSize() const
{
    double const preferred = preferredMaxLayoutWidth();
    return measured(*this, preferred > 0 ? preferred : bounds().size.width, numberOfLines());
}

CGRect UILabel::textRectForBounds(CGRect bounds, NSInteger lines) const
{
    CGSize const size = measured(*this, bounds.size.width, lines);
    return { bounds.origin,
        { std::min(size.width, bounds.size.width), std::min(size.height, bounds.size.height) } };
}

graphics::TextStyle UILabel::textStyle() const
{
    LabelState const& state = stateOf(*this);
    graphics::TextStyle style;
    style.font = font().font();
    style.alignment = alignmentOf(state.alignment);
    style.direction = effectiveUserInterfaceLayoutDirection() == 1 ? graphics::WritingDirection::rightToLeft
                                                                   : graphics::WritingDirection::leftToRight;
    style.maxLines = static_cast<int>(std::min<NSInteger>(state.lines, 10'000));
    style.truncation = truncationOf(state.lineBreakMode);
    // A minimum of zero means that the font's own size is the smallest.
    if (state.shrinks && state.lines == 1 && state.minimumScale > 0)
        style.minimumScale = std::min(state.minimumScale, 1.0);
    return style;
}

void UILabel::drawContent(DrawContext* context) const
{
    std::string const text = toString(this->text());
    CGRect const box = bounds();
    if (text.empty() || !(box.size.width > 0) || !(box.size.height > 0))
        return;
    LabelState const& state = stateOf(*this);
    graphics::Color color = textColor().rgba();
    if (state.isHighlighted && state.highlightedTextColor)
        color = state.highlightedTextColor->rgba();
    if (!state.isEnabled)
        color = color.withAlpha(color.alpha * 0.5);   // as seen; UIKit's factor is not published
    graphics::TextLayout const layout(text, textStyle(), box.size.width, box.size.height);
    if (state.shadowColor) {
        CGRect const shadow {
            { box.origin.x + state.shadowOffset.width, box.origin.y + state.shadowOffset.height }, box.size
        };
        layout.draw(context->cairo, toGraphics(shadow), state.shadowColor->rgba());
    }
    layout.draw(context->cairo, toGraphics(box), color);
}

void defineUILabel()
{
    objc::define<UILabel>()
        .state<LabelState>()
        .method<"initWithFrame:", &UILabel::initWithFrame>()
        .method<"text", &UILabel::text>()
        .method<"setText:", &UILabel::setText>()
        .method<"font", &UILabel::font>()
        .method<"setFont:", &UILabel::setFont>()
        .method<"textColor", &UILabel::textColor>()
        .method<"setTextColor:", &UILabel::setTextColor>()
        .method<"textAlignment", &UILabel::textAlignment>()
        .method<"setTextAlignment:", &UILabel::setTextAlignment>()
        .method<"numberOfLines", &UILabel::numberOfLines>()
        .method<"setNumberOfLines:", &UILabel::setNumberOfLines>()
        .method<"lineBreakMode", &UILabel::lineBreakMode>()
        .method<"setLineBreakMode:", &UILabel::setLineBreakMode>()
        .method<"adjustsFontSizeToFitWidth", &UILabel::adjustsFontSizeToFitWidth>()
        .method<"setAdjustsFontSizeToFitWidth:", &UILabel::setAdjustsFontSizeToFitWidth>()
        .method<"minimumScaleFactor", &UILabel::minimumScaleFactor>()
        .method<"setMinimumScaleFactor:", &UILabel::setMinimumScaleFactor>()
        .method<"preferredMaxLayoutWidth", &UILabel::preferredMaxLayoutWidth>()
        .method<"setPreferredMaxLayoutWidth:", &UILabel::setPreferredMaxLayoutWidth>()
        .method<"isHighlighted", &UILabel::isHighlighted>()
        .method<"setHighlighted:", &UILabel::setHighlighted>()
        .method<"highlightedTextColor", &UILabel::highlightedTextColor>()
        .method<"setHighlightedTextColor:", &UILabel::setHighlightedTextColor>()
        .method<"isEnabled", &UILabel::isEnabled>()
        .method<"setEnabled:", &UILabel::setEnabled>()
        .method<"shadowColor", &UILabel::shadowColor>()
        .method<"setShadowColor:", &UILabel::setShadowColor>()
        .method<"shadowOffset", &UILabel::shadowOffset>()
        .method<"setShadowOffset:", &UILabel::setShadowOffset>()
        .method<"sizeThatFits:", &UILabel::sizeThatFits>()
        .method<"intrinsicContentSize", &UILabel::intrinsicContentSize>()
        .method<"textRectForBounds:limitedToNumberOfLines:", &UILabel::textRectForBounds>()
        .method<"phone_drawContent:", &UILabel::drawContent>()
        .install();
}

}
