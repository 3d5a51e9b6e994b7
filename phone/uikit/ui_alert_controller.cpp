#include "phone/uikit/ui_alert_controller.hpp"

#include "phone/foundation/plugin_call.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/uikit/alert_presentation.hpp"
#include "phone/uikit/json_values.hpp"
#include "phone/uikit/raise.hpp"

#include <algorithm>
#include <deque>
#include <string>
#include <utility>

namespace phone {

namespace {

Json textOrNull(NSString text) { return text ? Json(toString(text)) : Json(nullptr); }

std::string pngText(graphics::Bitmap const& bitmap)
{
    auto const png = graphics::encodePng(bitmap);
    auto const data = objc::cls<"NSData">().send<"dataWithBytes:length:", NSData>(
        static_cast<void const*>(png.data()), static_cast<NSUInteger>(png.size()));
    return toString(data.send<"base64EncodedStringWithOptions:", NSString>(NSUInteger { 0 }));
}

// PNG in base64. The last few are kept, since the same icons come again with every menu; the pixels of an image don't change.
std::string const& keptPngText(graphics::Bitmap const& bitmap)
{
    constexpr std::size_t kMostTexts = 32;
    static std::deque<std::pair<graphics::Bitmap, std::string>> texts;
    for (auto const& [known, text] : texts)
        if (known == bitmap)
            return text;
    if (texts.size() == kMostTexts)
        texts.pop_front();
    return texts.emplace_back(bitmap, pngText(bitmap)).second;
}

// As scripts have it, with what UIImage says of it.
Json imageOrNull(UIImage image)
{
    if (!image)
        return nullptr;
    CGSize const size = image.size();
    return { { "image", keptPngText(image.bitmap()) }, { "size", { size.width, size.height } },
        { "scale", image.scale() }, { "renderingMode", image.renderingMode() } };
}

objc::ref<NSString> copied(NSString text)
{
    return objc::adopt(NSString { text.send<"copy", objc::handle>().object });
}

}

UIAlertAction UIAlertAction::actionWithTitle(
    objc::class_handle receiver, NSString title, AlertActionStyle style, AlertHandler handler)
{
    auto const action = objc::adopt(
        UIAlertAction { receiver.send<"alloc", objc::handle>().send<"init", objc::handle>().object });
    AlertActionState& state = action->actionState();
    state.title = copied(title);
    state.style = style;
    state.handler = objc::block_copy<void(UIAlertAction)>(handler);
    return objc::autorelease(action);
}

NSString UIAlertAction::title() const { return actionState().title; }
AlertActionStyle UIAlertAction::style() const { return actionState().style; }
BOOL UIAlertAction::isEnabled() const { return actionState().isEnabled; }
void UIAlertAction::setEnabled(BOOL enabled) const { actionState().isEnabled = enabled; }
UIImage UIAlertAction::image() const { return send<"image", UIImage>(); }

UIAlertController UIAlertController::alertController(
    objc::class_handle receiver, NSString title, NSString message, AlertStyle style)
{
    auto const alert = objc::adopt(
        UIAlertController { receiver.send<"alloc", objc::handle>().send<"init", objc::handle>().object });
    alert->setTitle(copied(title));
    alert->setMessage(message);
    alert->alertState().style = style;
    // Shown over what is there, which stays.
    constexpr NSInteger kModalPresentationCustom = 4;
    alert->setModalPresentationStyle(kModalPresentationCustom);
    return objc::autorelease(alert);
}

void UIAlertController::addAction(UIAlertAction action) const
{
    if (!action)
        raise("NSInvalidArgumentException"_ns, "-[UIAlertController addAction:]: the action is nil");
    if (action.style() == AlertActionStyle::cancel && cancelAction())
        raise("NSInternalInconsistencyException"_ns,
            "UIAlertController can only have one action with a style of UIAlertActionStyleCancel");
    alertState().actions.push_back(objc::retain(action));
    if (isViewLoaded())
        alertView().rebuild();
}

NSArray UIAlertController::actions() const
{
    auto const all = NSMutableArray::array();
    for (auto const& action : alertState().actions)
        all.addObject(action.get());
    return all;
}

AlertStyle UIAlertController::preferredStyle() const { return alertState().style; }
NSString UIAlertController::message() const { return alertState().message; }
void UIAlertController::setMessage(NSString message) const
{
    alertState().message = copied(message);
    if (isViewLoaded())
        alertView().rebuild();
}
UIAlertAction UIAlertController::preferredAction() const { return alertState().preferred; }
void UIAlertController::setPreferredAction(UIAlertAction action) const
{
    alertState().preferred = objc::retain(action);
    if (isViewLoaded())
        alertView().rebuild();
}

UIAlertAction UIAlertController::cancelAction() const
{
    auto const& actions = alertState().actions;
    auto const found = std::ranges::find_if(
        actions, [](auto const& action) { return action->style() == AlertActionStyle::cancel; });
    return found == actions.end() ? UIAlertAction {} : found->get();
}

AlertView UIAlertController::alertView() const { return AlertView { view().object }; }

void UIAlertController::loadView() const { setView(AlertView::make(*this).get()); }

void UIAlertController::animatePresentation(BOOL presenting, std::function<void()>* done) const
{
    alertView().animate(presenting, std::move(*done));
}

void UIAlertController::describePresentation(nlohmann::ordered_json* fields) const
{
    Json& event = *fields;
    event["style"] = static_cast<NSInteger>(preferredStyle());
    event["title"] = textOrNull(title());
    event["message"] = textOrNull(message());
    Json actions = Json::array();
    for (auto const& action : alertState().actions)
        actions.push_back(
            { { "title", textOrNull(action->title()) }, { "style", static_cast<NSInteger>(action->style()) },
                { "image", imageOrNull(action->image()) } });
    event["actions"] = std::move(actions);
}

void UIAlertController::choose(UIAlertAction action) const
{
    AlertState& state = alertState();
    if (!action || !action.isEnabled() || std::exchange(state.isAnswered, true))
        return;
    auto const chosen = objc::retain(action);
    // The handlers, and with them what they hold, go with the answer.
    auto handler = action.actionState().handler;
    for (auto const& each : state.actions)
        each->actionState().handler = {};
    TraceOwnScope const own;
    dismiss(/* animated: */ true, [chosen, handler, self = objc::retain(*this)] {
        self->alertState().isAnswered = false;
        if (!handler)
            return;
        CalloutScope const scope(reinterpret_cast<void const*>(handler.get().block->invoke));
        handler(chosen.get());
    });
}

std::vector<UIAlertAction> UIAlertController::actionsOnScreen() const { return alertView().actionsInOrder(); }

void defineUIAlertController()
{
    defineAlertViews();

    using Action = UIAlertAction;
    objc::define<Action>()
        .state<AlertActionState>()
        .property<"image", UIImage>(objc::strong)
        .class_method<"actionWithTitle:style:handler:", &Action::actionWithTitle>()
        .method<"title", &Action::title>()
        .method<"style", &Action::style>()
        .method<"isEnabled", &Action::isEnabled>()
        .method<"setEnabled:", &Action::setEnabled>()
        .install();

    using Controller = UIAlertController;
    objc::define<Controller>()
        .state<AlertState>()
        .class_method<"alertControllerWithTitle:message:preferredStyle:", &Controller::alertController>()
        .method<"addAction:", &Controller::addAction>()
        .method<"actions", &Controller::actions>()
        .method<"preferredStyle", &Controller::preferredStyle>()
        .method<"message", &Controller::message>()
        .method<"setMessage:", &Controller::setMessage>()
        .method<"preferredAction", &Controller::preferredAction>()
        .method<"setPreferredAction:", &Controller::setPreferredAction>()
        .method<"loadView", &Controller::loadView>()
        .method<"phone_animatePresentation:completion:", &Controller::animatePresentation>()
        .method<"phone_describePresentation:", &Controller::describePresentation>()
        .install();
}

}
