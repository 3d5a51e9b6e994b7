#include "phone/uikit/ui_visual_effect_view.hpp"

#include "objc/define.hpp"

namespace phone {

namespace {

struct BlurState {
    NSInteger style { 0 };
};

struct EffectViewState {
    objc::ref<UIVisualEffect> effect;
    objc::ref<UIView> contentView;
};

EffectViewState& stateOf(UIVisualEffectView view)
{
    return objc::state<EffectViewState>(UIVisualEffectView { view.object });
}

}

UIBlurEffect UIBlurEffect::effectWithStyle(NSInteger style)
{
    auto made = objc::adopt(UIBlurEffect { UIBlurEffect::alloc().init().object });
    objc::state<BlurState>(made.get()).style = style;
    return objc::autorelease(std::move(made));
}
NSInteger UIBlurEffect::style() const
{
    return object ? objc::state<BlurState>(UIBlurEffect { object }).style : -1;
}

UIVisualEffectView UIVisualEffectView::initWithFrame(CGRect frame) const
{
    auto const self = objc::send_super<UIVisualEffectView, "initWithFrame:", UIVisualEffectView>(
        UIVisualEffectView { object }, frame);
    if (self) {
        auto const content = make<UIView>({ {}, self.bounds().size });
        content->setAutoresizingMask(Autoresizing::width | Autoresizing::height);
        stateOf(self).contentView = content;
        self.addSubview(content);
    }
    return self;
}
UIVisualEffectView UIVisualEffectView::initWithEffect(UIVisualEffect effect) const
{
    auto const self = send<"initWithFrame:", UIVisualEffectView>(CGRect {});
    if (self)
        self.setEffect(effect);
    return self;
}
UIVisualEffect UIVisualEffectView::effect() const
{
    return object ? stateOf(*this).effect.get() : UIVisualEffect {};
}
void UIVisualEffectView::setEffect(UIVisualEffect effect) const
{
    if (!object)
        return;
    stateOf(*this).effect = objc::retain(effect);
    setNeedsDisplay();
}
UIView UIVisualEffectView::contentView() const
{
    return object ? stateOf(*this).contentView.get() : UIView {};
}
NSInteger UIVisualEffectView::effectStyle() const
{
    UIBlurEffect const blur = objc::cast<UIBlurEffect>(effect());
    return blur ? blur.style() : -1;
}
void UIVisualEffectView::layoutSubviews() const { contentView().setFrame({ {}, bounds().size }); }

void defineUIVisualEffectView()
{
    objc::define<UIVisualEffect>().install();
    objc::define<UIBlurEffect>()
        .state<BlurState>()
        .class_method<"effectWithStyle:", &UIBlurEffect::effectWithStyle>()
        .method<"_style", &UIBlurEffect::style>()
        .install();
    objc::define<UIVisualEffectView>()
        .state<EffectViewState>()
        .method<"initWithFrame:", &UIVisualEffectView::initWithFrame>()
        .method<"initWithEffect:", &UIVisualEffectView::initWithEffect>()
        .method<"effect", &UIVisualEffectView::effect>()
        .method<"setEffect:", &UIVisualEffectView::setEffect>()
        .method<"contentView", &UIVisualEffectView::contentView>()
        .method<"layoutSubviews", &UIVisualEffectView::layoutSubviews>()
        .install();
}

}
