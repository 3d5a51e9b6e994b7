#include "plugin/strip/contact_button.hpp"

#include "objc/define.hpp"

namespace {

constexpr CGFloat kFadedAlpha = 0.1;
constexpr double kFadeOutSeconds = 0.2;
constexpr double kFadeInSeconds = 0.7;

template <objc::fixed_string Name, class V>
V kept(CVLButton button)
{
    return button ? objc::ivar<V, Name>(button) : V {};
}

template <objc::fixed_string Name, class V>
void keep(CVLButton button, V value)
{
    if (!button)
        return;
    value.template send<"retain", objc::handle>();
    std::exchange(objc::ivar<V, Name>(button), value).template send<"release">();
}

}

NSString CVLButton::getPhoneNumber() const { return kept<"phoneNumber", NSString>(*this); }
void CVLButton::setPhoneNumber(NSString number) const { keep<"phoneNumber">(*this, number); }
NSString CVLButton::getContactName() const { return kept<"contactNameForDisplay", NSString>(*this); }
void CVLButton::setContactName(NSString name) const { keep<"contactNameForDisplay">(*this, name); }
NSString CVLButton::getEmailAddr() const { return kept<"emailAddr", NSString>(*this); }
void CVLButton::setEmailAddr(NSString address) const { keep<"emailAddr">(*this, address); }
NSDate CVLButton::getBirthday() const { return kept<"birthday", NSDate>(*this); }
void CVLButton::setBirthday(NSDate date) const { keep<"birthday">(*this, date); }
void CVLButton::setCake(UIImageView badge) const { keep<"buttonCakeView">(*this, badge); }
void CVLButton::setCakeHidden(BOOL hidden) const
{
    kept<"buttonCakeView", UIImageView>(*this).setHidden(hidden);
}

void CVLButton::fadeOutAnimationButton() const
{
    auto const fadeOut = objc::block([button = objc::retain(*this)] { button->setAlpha(kFadedAlpha); });
    auto const fadeBack = objc::block([button = objc::retain(*this)](BOOL) {
        auto const appear = objc::block([button] { button->setAlpha(1.0); });
        UIView::transition(button, kFadeInSeconds, UIViewAnimationOptionCurveEaseOut, lent(appear), {});
    });
    UIView::animate(
        kFadeOutSeconds, /* delay: */ 0, UIViewAnimationOptionCurveEaseOut, lent(fadeOut), lent(fadeBack));
}

void defineCVLButton()
{
    objc::define<CVLButton>()
        .ivar<"phoneNumber", NSString>(objc::strong)
        .ivar<"contactNameForDisplay", NSString>(objc::strong)
        .ivar<"emailAddr", NSString>(objc::strong)
        .ivar<"birthday", NSDate>(objc::strong)
        .ivar<"buttonCakeView", UIImageView>(objc::strong)
        .method<"getPhoneNumber", &CVLButton::getPhoneNumber>()
        .method<"setPhoneNumber:", &CVLButton::setPhoneNumber>()
        .method<"getContactName", &CVLButton::getContactName>()
        .method<"setContactName:", &CVLButton::setContactName>()
        .method<"getEmailAddr", &CVLButton::getEmailAddr>()
        .method<"setEmailAddr:", &CVLButton::setEmailAddr>()
        .method<"getBirthday", &CVLButton::getBirthday>()
        .method<"setBirthday:", &CVLButton::setBirthday>()
        .method<"setCake:", &CVLButton::setCake>()
        .method<"setCakeHidden:", &CVLButton::setCakeHidden>()
        .method<"fadeOutAnimationButton", &CVLButton::fadeOutAnimationButton>()
        .install();
}
