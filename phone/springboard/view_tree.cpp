#include "phone/springboard/view_tree.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/springboard/object_handles.hpp"
#include "phone/springboard/object_values.hpp"
#include "phone/uikit/ns_layout.hpp"
#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_font.hpp"
#include "phone/uikit/ui_gesture_recognizer.hpp"
#include "phone/uikit/ui_label.hpp"
#include "phone/uikit/ui_stack_view.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_visual_effect_view.hpp"
#include "phone/uikit/ui_window.hpp"

#include <array>
#include <utility>

namespace phone {

namespace {

// A property that is read by a message and written under UIKit's own name.
enum class Kind { boolean, integer, number, object, size, point, insets, text };
struct PropertyRow {
    char const* name;
    char const* getter;
    Kind kind;
};

// By class; an object shows the rows of every class it is of. Getters that would make something that isn't
// there yet have no row.
constexpr PropertyRow kViewRows[] {
    { "backgroundColor", "backgroundColor", Kind::object },
    { "tintColor", "tintColor", Kind::object },
    { "clipsToBounds", "clipsToBounds", Kind::boolean },
    { "opaque", "isOpaque", Kind::boolean },
    { "autoresizingMask", "autoresizingMask", Kind::integer },
    { "translatesAutoresizingMaskIntoConstraints", "translatesAutoresizingMaskIntoConstraints",
        Kind::boolean },
    { "userInteractionEnabled", "isUserInteractionEnabled", Kind::boolean },
    { "contentMode", "contentMode", Kind::integer },
    { "semanticContentAttribute", "semanticContentAttribute", Kind::integer },
    { "tag", "tag", Kind::integer },
    { "isAccessibilityElement", "isAccessibilityElement", Kind::boolean },
    { "accessibilityLabel", "accessibilityLabel", Kind::text },
    { "accessibilityHint", "accessibilityHint", Kind::text },
    { "accessibilityIdentifier", "accessibilityIdentifier", Kind::text },
    { "accessibilityTraits", "accessibilityTraits", Kind::integer },
};
constexpr PropertyRow kLabelRows[] {
    { "textColor", "textColor", Kind::object },
    { "textAlignment", "textAlignment", Kind::integer },
    { "numberOfLines", "numberOfLines", Kind::integer },
    { "lineBreakMode", "lineBreakMode", Kind::integer },
    { "adjustsFontSizeToFitWidth", "adjustsFontSizeToFitWidth", Kind::boolean },
    { "minimumScaleFactor", "minimumScaleFactor", Kind::number },
    { "enabled", "isEnabled", Kind::boolean },
};
constexpr PropertyRow kImageViewRows[] {
    { "image", "image", Kind::object },
    { "highlighted", "isHighlighted", Kind::boolean },
};
constexpr PropertyRow kControlRows[] {
    { "enabled", "isEnabled", Kind::boolean },
    { "selected", "isSelected", Kind::boolean },
    { "highlighted", "isHighlighted", Kind::boolean },
    { "contentHorizontalAlignment", "contentHorizontalAlignment", Kind::integer },
    { "contentVerticalAlignment", "contentVerticalAlignment", Kind::integer },
};
constexpr PropertyRow kButtonRows[] {
    { "buttonType", "buttonType", Kind::integer },
    { "contentEdgeInsets", "contentEdgeInsets", Kind::insets },
    { "titleEdgeInsets", "titleEdgeInsets", Kind::insets },
    { "imageEdgeInsets", "imageEdgeInsets", Kind::insets },
};
constexpr PropertyRow kScrollRows[] {
    { "contentSize", "contentSize", Kind::size },
    { "contentOffset", "contentOffset", Kind::point },
    { "contentInset", "contentInset", Kind::insets },
    { "pagingEnabled", "isPagingEnabled", Kind::boolean },
    { "scrollEnabled", "isScrollEnabled", Kind::boolean },
    { "bounces", "bounces", Kind::boolean },
    { "showsHorizontalScrollIndicator", "showsHorizontalScrollIndicator", Kind::boolean },
    { "showsVerticalScrollIndicator", "showsVerticalScrollIndicator", Kind::boolean },
    { "delegate", "delegate", Kind::object },
};
constexpr PropertyRow kCollectionRows[] {
    { "dataSource", "dataSource", Kind::object },
};
constexpr PropertyRow kCellRows[] {
    { "reuseIdentifier", "reuseIdentifier", Kind::text },
    { "selected", "isSelected", Kind::boolean },
    { "highlighted", "isHighlighted", Kind::boolean },
};
constexpr PropertyRow kStackRows[] {
    { "axis", "axis", Kind::integer },
    { "alignment", "alignment", Kind::integer },
    { "distribution", "distribution", Kind::integer },
    { "spacing", "spacing", Kind::number },
    { "arrangedSubviews", "arrangedSubviews", Kind::object },
};
constexpr PropertyRow kWindowRows[] {
    { "windowLevel", "windowLevel", Kind::number },
    { "secure", "_isSecure", Kind::boolean },
    { "autorotates", "autorotates", Kind::boolean },
    { "keyWindow", "isKeyWindow", Kind::boolean },
    { "rootViewController", "rootViewController", Kind::object },
};
constexpr PropertyRow kFlowLayoutRows[] {
    { "scrollDirection", "scrollDirection", Kind::integer },
};
constexpr PropertyRow kRecognizerRows[] {
    { "state", "state", Kind::integer },
    { "enabled", "isEnabled", Kind::boolean },
    { "cancelsTouchesInView", "cancelsTouchesInView", Kind::boolean },
    { "delaysTouchesBegan", "delaysTouchesBegan", Kind::boolean },
    { "delaysTouchesEnded", "delaysTouchesEnded", Kind::boolean },
    { "minimumPressDuration", "minimumPressDuration", Kind::number },
    { "allowableMovement", "allowableMovement", Kind::number },
    { "direction", "direction", Kind::integer },
    { "numberOfTapsRequired", "numberOfTapsRequired", Kind::integer },
    { "numberOfTouchesRequired", "numberOfTouchesRequired", Kind::integer },
    { "delegate", "delegate", Kind::object },
};

template <class R>
R answerOf(objc::handle object, SEL selector)
{
    return objc::call_implementation<R>(
        objc::boundary::message_implementation(object.object, selector), object.object, selector);
}

Json propertyValue(objc::handle object, SEL selector, Kind kind)
{
    switch (kind) {
    case Kind::boolean: return answerOf<BOOL>(object, selector);
    case Kind::integer: return answerOf<NSInteger>(object, selector);
    case Kind::number: return answerOf<double>(object, selector);
    case Kind::object: return objectValue(answerOf<objc::handle>(object, selector));
    case Kind::size: return toJson(answerOf<CGSize>(object, selector));
    case Kind::point: return toJson(answerOf<CGPoint>(object, selector));
    case Kind::insets: return toJson(answerOf<UIEdgeInsets>(object, selector));
    case Kind::text: {
        auto const text = answerOf<NSString>(object, selector);
        return text ? Json(toString(text)) : Json();
    }
    }
    return nullptr;
}

template <std::size_t N>
void addRows(Json& tree, objc::handle object, PropertyRow const (&rows)[N])
{
    for (PropertyRow const& row : rows) {
        SEL const selector = sel_registerName(row.getter);
        if (objc::is_true(class_respondsToSelector(objc::boundary::class_of(object.object), selector)))
            tree[row.name] = propertyValue(object, selector, row.kind);
    }
}

bool isKindOf(objc::handle object, char const* className)
{
    objc::class_handle const cls { objc_getClass(className) };
    return cls && object.send<"isKindOfClass:", BOOL>(cls);
}

Json fontValue(UIFont font)
{
    return { { "name", toString(font.fontName()) }, { "size", font.pointSize() },
        { "weight", font.font().weight } };
}

Json targetsValue(UIControl control)
{
    Json rows = Json::array();
    for (ControlAction const& action : control.actions())
        rows.push_back({ { "target", objectValue(action.target) },
            { "action", action.action ? Json(sel_getName(action.action)) : Json() },
            { "events", action.events } });
    return rows;
}

Json byState(auto const& values, auto valueOfOne)
{
    Json rows = Json::object();
    for (auto const& [state, value] : values)
        rows[std::to_string(state)] = valueOfOne(value);
    return rows;
}

Json recognizersValue(UIView view)
{
    Json rows = Json::array();
    for (objc::handle const recognizer : view.recognizers()) {
        Json row { { "class", classNameOf(recognizer) }, { "handle", handleOf(recognizer) } };
        Json targets = Json::array();
        for (GestureTarget const& target : UIGestureRecognizer { recognizer.object }.targets())
            targets.push_back({ { "target", objectValue(target.target.get()) },
                { "action", target.action ? Json(sel_getName(target.action)) : Json() } });
        row["targets"] = std::move(targets);
        addRows(row, recognizer, kRecognizerRows);
        rows.push_back(std::move(row));
    }
    return rows;
}

void addDetail(Json& tree, UIView view)
{
    addRows(tree, view, kViewRows);
    LayerProperties const& layer = view.layerProperties();
    tree["cornerRadius"] = layer.cornerRadius;
    tree["borderWidth"] = layer.borderWidth;
    tree["borderColor"] = toJson(layer.borderColor);
    tree["gestureRecognizers"] = recognizersValue(view);
    Json constraints = Json::array();
    for (NSLayoutConstraint const constraint : constraintsInvolving(view))
        constraints.push_back(constraint.words());
    tree["constraints"] = std::move(constraints);

    if (auto const label = objc::cast<UILabel>(view)) {
        tree["font"] = fontValue(label.font());
        addRows(tree, label, kLabelRows);
    }
    if (isKindOf(view, "UIImageView"))
        addRows(tree, view, kImageViewRows);
    if (auto const control = objc::cast<UIControl>(view)) {
        addRows(tree, control, kControlRows);
        tree["targets"] = targetsValue(control);
    }
    if (auto const button = objc::cast<UIButton>(view)) {
        tree["titles"] =
            byState(button.titlesByState(), [](std::string const& title) { return Json(title); });
        tree["images"] = byState(button.imagesByState(), [](UIImage image) { return objectValue(image); });
        addRows(tree, button, kButtonRows);
    }
    if (auto const effect = objc::cast<UIVisualEffectView>(view))
        tree["effectStyle"] = effect.effectStyle() < 0 ? Json() : Json(effect.effectStyle());
    if (isKindOf(view, "UIScrollView"))
        addRows(tree, view, kScrollRows);
    if (isKindOf(view, "UICollectionView")) {
        addRows(tree, view, kCollectionRows);
        objc::handle const layout = view.ask<"collectionViewLayout", objc::handle>();
        if (layout)
            addRows(tree, layout, kFlowLayoutRows);
    }
    if (isKindOf(view, "UICollectionReusableView"))
        addRows(tree, view, kCellRows);
    if (isKindOf(view, "UIStackView"))
        addRows(tree, view, kStackRows);
    if (auto const window = objc::cast<UIWindow>(view)) {
        addRows(tree, window, kWindowRows);
        tree["secure"] = bool(window.isSecure());
        tree["presentedViewController"] =
            objectValue(window.rootViewController().ask<"presentedViewController", objc::handle>());
    }
}

Json textOf(UIView view)
{
    NSString text;
    if (auto const label = objc::cast<UILabel>(view))
        text = label.text();
    else if (auto const button = objc::cast<UIButton>(view))
        text = button.currentTitle();
    else
        text = view.ask<"text", NSString>();
    return text ? Json(toString(text)) : Json();
}

// Objects lose what names them in this run alone.
void dropHandles(Json& value)
{
    if (value.is_object() && value.contains("handle")) {
        value.erase("handle");
        value.erase("description");
    }
    if (value.is_structured())
        for (Json& each : value)
            dropHandles(each);
}

// The bounding box, as UIView's frame is.
CGRect frameOf(ViewPresentation const& values)
{
    CGSize const size = values.bounds.size;
    CGRect const around { { -size.width / 2, -size.height / 2 }, size };
    CGRect const box = apply(values.transform, around);
    return { values.center + box.origin, box.size };
}

}

Json viewTree(UIView view, ViewTreeOptions const& options)
{
    if (!view)
        return nullptr;
    Json tree { { "class", classNameOf(view) } };
    if (options.handles)
        tree["handle"] = handleOf(view);
    if (options.presentation) {
        ViewPresentation const values = view.presentation();
        tree["frame"] = toJson(frameOf(values));
        tree["bounds"] = toJson(values.bounds);
        tree["center"] = toJson(values.center);
        tree["transform"] = toJson(values.transform);
        tree["alpha"] = values.alpha;
    } else {
        tree["frame"] = toJson(view.frame());
        tree["bounds"] = toJson(view.bounds());
        tree["center"] = toJson(view.center());
        tree["transform"] = toJson(view.transform());
        tree["alpha"] = view.alpha();
    }
    tree["hidden"] = bool(view.isHidden());
    tree["text"] = textOf(view);
    if (options.detail) {
        addDetail(tree, view);
        if (!options.handles)
            dropHandles(tree);
    }
    Json children = Json::array();
    for (UIView const child : view.children())
        children.push_back(viewTree(child, options));
    tree["children"] = std::move(children);
    return tree;
}

Json viewTrees(ViewTreeOptions const& options)
{
    layoutWindowsIfNeeded();
    Json trees = Json::array();
    for (UIWindow const window : allWindows())
        trees.push_back(viewTree(window, options));
    return trees;
}

}
