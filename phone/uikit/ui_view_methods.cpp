// UIView's table of methods, and the initialiser.
#include "objc/define.hpp"
#include "phone/uikit/json_values.hpp"
#include "phone/uikit/ns_layout.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_view_state.hpp"
#include "phone/uikit/ui_window.hpp"

namespace phone {

namespace {

ViewCallObserver g_viewCallObserver;

void observe(UIView view, char const* call, Json value)
{
    if (g_viewCallObserver)
        g_viewCallObserver(view, call, std::move(value));
}

}

void setViewCallObserver(ViewCallObserver observer) { g_viewCallObserver = std::move(observer); }

UIView UIView::initWithFrame(CGRect frame) const
{
    auto const self = objc::send_super<UIView, "init", UIView>(UIView { object });
    if (self)
        self.setFrame(frame);
    return self;
}

UIView UIView::initWithFrameMessage(CGRect frame) const
{
    observe(*this, "initWithFrame:", toJson(frame));
    return initWithFrame(frame);
}
void UIView::setFrameMessage(CGRect frame) const
{
    observe(*this, "setFrame:", toJson(frame));
    setFrame(frame);
}
void UIView::setCenterMessage(CGPoint center) const
{
    observe(*this, "setCenter:", toJson(center));
    setCenter(center);
}
void UIView::setTransformMessage(CGAffineTransform transform) const
{
    observe(*this, "setTransform:", toJson(transform));
    setTransform(transform);
}
void UIView::setHiddenMessage(BOOL hidden) const
{
    observe(*this, "setHidden:", bool(hidden));
    setHidden(hidden);
}

UIView UIView::init() const { return send<"initWithFrame:", UIView>(CGRect {}); }

void defineUIView()
{
    objc::define<UIView>()
        .state<ViewState>()
        .method<"init", &UIView::init>()
        .method<"initWithFrame:", &UIView::initWithFrameMessage>()
        .method<"description", &UIView::description>()

        .method<"frame", &UIView::frame>()
        .method<"setFrame:", &UIView::setFrameMessage>()
        .method<"bounds", &UIView::bounds>()
        .method<"setBounds:", &UIView::setBounds>()
        .method<"center", &UIView::center>()
        .method<"setCenter:", &UIView::setCenterMessage>()
        .method<"transform", &UIView::transform>()
        .method<"setTransform:", &UIView::setTransformMessage>()
        .method<"autoresizingMask", &UIView::autoresizingMask>()
        .method<"setAutoresizingMask:", &UIView::setAutoresizingMask>()
        .method<"autoresizesSubviews", &UIView::autoresizesSubviews>()
        .method<"setAutoresizesSubviews:", &UIView::setAutoresizesSubviews>()
        .method<"translatesAutoresizingMaskIntoConstraints",
            &UIView::translatesAutoresizingMaskIntoConstraints>()
        .method<"setTranslatesAutoresizingMaskIntoConstraints:",
            &UIView::setTranslatesAutoresizingMaskIntoConstraints>()
        .method<"sizeThatFits:", &UIView::sizeThatFits>()
        .method<"sizeToFit", &UIView::sizeToFit>()
        .method<"intrinsicContentSize", &UIView::intrinsicContentSize>()
        .method<"invalidateIntrinsicContentSize", &UIView::invalidateIntrinsicContentSize>()
        .method<"systemLayoutSizeFittingSize:", &UIView::systemLayoutSizeFittingSize>()

        .method<"alpha", &UIView::alpha>()
        .method<"setAlpha:", &UIView::setAlpha>()
        .method<"isHidden", &UIView::isHidden>()
        .method<"setHidden:", &UIView::setHiddenMessage>()
        .method<"isOpaque", &UIView::isOpaque>()
        .method<"setOpaque:", &UIView::setOpaque>()
        .method<"backgroundColor", &UIView::backgroundColor>()
        .method<"setBackgroundColor:", &UIView::setBackgroundColor>()
        .method<"tintColor", &UIView::tintColor>()
        .method<"setTintColor:", &UIView::setTintColor>()
        .method<"tintColorDidChange", &UIView::tintColorDidChange>()
        .method<"clipsToBounds", &UIView::clipsToBounds>()
        .method<"setClipsToBounds:", &UIView::setClipsToBounds>()
        .method<"contentMode", &UIView::contentMode>()
        .method<"setContentMode:", &UIView::setContentMode>()
        .method<"semanticContentAttribute", &UIView::semanticContentAttribute>()
        .method<"setSemanticContentAttribute:", &UIView::setSemanticContentAttribute>()
        .method<"effectiveUserInterfaceLayoutDirection", &UIView::effectiveUserInterfaceLayoutDirection>()
        .method<"layer", &UIView::layer>()

        .method<"isUserInteractionEnabled", &UIView::isUserInteractionEnabled>()
        .method<"setUserInteractionEnabled:", &UIView::setUserInteractionEnabled>()
        .method<"isMultipleTouchEnabled", &UIView::isMultipleTouchEnabled>()
        .method<"setMultipleTouchEnabled:", &UIView::setMultipleTouchEnabled>()
        .method<"isExclusiveTouch", &UIView::isExclusiveTouch>()
        .method<"setExclusiveTouch:", &UIView::setExclusiveTouch>()
        .method<"hitTest:withEvent:", &UIView::hitTest>()
        .method<"pointInside:withEvent:", &UIView::pointInside>()
        .method<"gestureRecognizers", &UIView::gestureRecognizers>()
        .method<"setGestureRecognizers:", &UIView::setGestureRecognizers>()
        .method<"addGestureRecognizer:", &UIView::addGestureRecognizer>()
        .method<"removeGestureRecognizer:", &UIView::removeGestureRecognizer>()

        .method<"superview", &UIView::superview>()
        .method<"window", &UIView::window>()
        .method<"subviews", &UIView::subviews>()
        .method<"addSubview:", &UIView::addSubview>()
        .method<"insertSubview:atIndex:", &UIView::insertSubviewAtIndex>()
        .method<"insertSubview:aboveSubview:", &UIView::insertSubviewAbove>()
        .method<"insertSubview:belowSubview:", &UIView::insertSubviewBelow>()
        .method<"removeFromSuperview", &UIView::removeFromSuperview>()
        .method<"bringSubviewToFront:", &UIView::bringSubviewToFront>()
        .method<"sendSubviewToBack:", &UIView::sendSubviewToBack>()
        .method<"exchangeSubviewAtIndex:withSubviewAtIndex:", &UIView::exchangeSubviews>()
        .method<"isDescendantOfView:", &UIView::isDescendantOfView>()
        .method<"viewWithTag:", &UIView::viewWithTag>()
        .method<"tag", &UIView::tag>()
        .method<"setTag:", &UIView::setTag>()
        .method<"willMoveToSuperview:", &UIView::willMoveToSuperview>()
        .method<"didMoveToSuperview", &UIView::didMoveToSuperview>()
        .method<"willMoveToWindow:", &UIView::willMoveToWindow>()
        .method<"didMoveToWindow", &UIView::didMoveToWindow>()
        .method<"didAddSubview:", &UIView::didAddSubview>()
        .method<"willRemoveSubview:", &UIView::willRemoveSubview>()
        .method<"nextResponder", &UIView::nextResponder>()
        .method<"_viewDelegate", &UIView::viewController>()

        .method<"convertPoint:toView:", &UIView::convertPointToView>()
        .method<"convertPoint:fromView:", &UIView::convertPointFromView>()
        .method<"convertRect:toView:", &UIView::convertRectToView>()
        .method<"convertRect:fromView:", &UIView::convertRectFromView>()

        .method<"setNeedsLayout", &UIView::setNeedsLayout>()
        .method<"layoutIfNeeded", &UIView::layoutIfNeeded>()
        .method<"layoutSubviews", &UIView::layoutSubviews>()
        .method<"setNeedsDisplay", &UIView::setNeedsDisplay>()
        .method<"setNeedsUpdateConstraints", &UIView::setNeedsUpdateConstraints>()
        .method<"updateConstraintsIfNeeded", &UIView::updateConstraintsIfNeeded>()
        .method<"updateConstraints", &UIView::updateConstraints>()
        .method<"safeAreaInsets", &UIView::safeAreaInsets>()
        .method<"phone_drawContent:", &UIView::drawContent>()

        .method<"leadingAnchor", &UIView::leadingAnchor>()
        .method<"trailingAnchor", &UIView::trailingAnchor>()
        .method<"leftAnchor", &UIView::leftAnchor>()
        .method<"rightAnchor", &UIView::rightAnchor>()
        .method<"centerXAnchor", &UIView::centerXAnchor>()
        .method<"topAnchor", &UIView::topAnchor>()
        .method<"bottomAnchor", &UIView::bottomAnchor>()
        .method<"centerYAnchor", &UIView::centerYAnchor>()
        .method<"widthAnchor", &UIView::widthAnchor>()
        .method<"heightAnchor", &UIView::heightAnchor>()
        .method<"contentHuggingPriorityForAxis:", &UIView::contentHuggingPriority>()
        .method<"setContentHuggingPriority:forAxis:", &UIView::setContentHuggingPriority>()
        .method<"contentCompressionResistancePriorityForAxis:",
            &UIView::contentCompressionResistancePriority>()
        .method<"setContentCompressionResistancePriority:forAxis:",
            &UIView::setContentCompressionResistancePriority>()
        .method<"constraints", &UIView::constraints>()

        .method<"accessibilityLabel", &UIView::accessibilityLabel>()
        .method<"setAccessibilityLabel:", &UIView::setAccessibilityLabel>()
        .method<"accessibilityIdentifier", &UIView::accessibilityIdentifier>()
        .method<"setAccessibilityIdentifier:", &UIView::setAccessibilityIdentifier>()
        .method<"accessibilityHint", &UIView::accessibilityHint>()
        .method<"setAccessibilityHint:", &UIView::setAccessibilityHint>()
        .method<"isAccessibilityElement", &UIView::isAccessibilityElement>()
        .method<"setIsAccessibilityElement:", &UIView::setIsAccessibilityElement>()
        .method<"accessibilityTraits", &UIView::accessibilityTraits>()
        .method<"setAccessibilityTraits:", &UIView::setAccessibilityTraits>()
        .install();
}

}
