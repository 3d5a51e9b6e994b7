#include "phone/automation/snapshot.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/alert_presentation.hpp"
#include "phone/uikit/presentation_order.hpp"
#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_scroll_view.hpp"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace phone {

namespace {

constexpr double kLeastAlpha = 0.01;          // below it a view takes no touch either, as in UIKit
constexpr double kLargestPoint = 1'000'000;   // what a frame computed from nothing may say

// UIKit's accessibility gives each class an automation type; subclasses inherit it.
std::map<std::string, std::string, std::less<>> const& typesByClass()
{
    static std::map<std::string, std::string, std::less<>> const types {
        { "UIWindow", "Window" },
        { "UIButton", "Button" },
        { "UISegment", "Button" },
        { "UITabBarButton", "Button" },
        { "UIControl", "Other" },
        { "UICollectionView", "CollectionView" },
        { "UICollectionViewCell", "Cell" },
        { "UITableView", "Table" },
        { "UITableViewCell", "Cell" },
        { "UIImageView", "Image" },
        { "UILabel", "StaticText" },
        { "UIPageControl", "PageIndicator" },
        { "UIScrollView", "ScrollView" },
        { "UITextField", "TextField" },
        { "UITextView", "TextView" },
        { "UISwitch", "Switch" },
        { "UISlider", "Slider" },
        { "UINavigationBar", "NavigationBar" },
        { "UIToolbar", "Toolbar" },
        { "UIStatusBar_Modern", "StatusBar" },
        { "SBIconView", "Icon" },
        { "SBPasscodeNumberPadButton", "Key" },
        { "CSQuickActionsButton", "Button" },
        { "_UIAlertControllerActionView", "Button" },
        { "_UIAlertControllerView", "Alert" },
    };
    return types;
}

std::string typeOfClass(Class cls)
{
    static std::map<Class, std::string> known;
    if (auto const at = known.find(cls); at != known.end())
        return at->second;
    std::string type = "Other";
    for (Class each = cls; each; each = class_getSuperclass(each)) {
        auto const at = typesByClass().find(std::string_view(class_getName(each)));
        if (at != typesByClass().end()) {
            type = at->second;
            break;
        }
    }
    return known[cls] = type;
}

bool isOfClass(objc::handle object, char const* name)
{
    objc::class_handle const cls { objc_getClass(name) };
    return cls && object.send<"isKindOfClass:", BOOL>(cls);
}

std::optional<std::string> textOf(objc::handle object)
{
    std::string text = toString(object);
    if (text.empty())
        return {};
    return text;
}

bool isLeftOut(UIView view) { return view.isHidden() || view.alpha() < kLeastAlpha; }

int wholeNumber(double value) { return static_cast<int>(std::clamp(value, -kLargestPoint, kLargestPoint)); }

// CGRectIntegral: the whole points that hold it.
ElementRect wholePoints(CGRect rect)
{
    if (!isFinite(rect))
        return {};
    int const x = wholeNumber(std::floor(minX(rect)));
    int const y = wholeNumber(std::floor(minY(rect)));
    return { x, y, wholeNumber(std::ceil(maxX(rect))) - x, wholeNumber(std::ceil(maxY(rect))) - y };
}

UIView hitInWindow(UIWindow window, CGPoint screenPoint)
{
    CGAffineTransform const toWindow = inverted(window.transformToSuperview());
    return window.sendHitTest(apply(toWindow, screenPoint));
}

bool isRelated(UIView a, UIView b) { return a && b && (a.isDescendantOfView(b) || b.isDescendantOfView(a)); }

class Snapshot {
public:
    ElementTree take()
    {
        layoutWindowsIfNeeded();
        CGRect const screen = screenBounds();
        Element application;
        application.type = "XCUIElementTypeApplication";
        application.label = "SpringBoard";
        application.rect = wholePoints(screen);
        application.processId = getpid();
        application.bundleId = kSpringBoardIdentifier;
        application.object = springBoard().application.get().object;
        std::size_t const root = m_tree.open(std::move(application), 0);
        for (UIWindow const window : allWindows())
            if (!isLeftOut(window))
                m_windows.push_back(window);
        for (m_window = 0; m_window < m_windows.size(); ++m_window)
            add(m_windows[m_window], kIdentity, screen, root, false);
        m_tree.close(root);
        return std::move(m_tree);
    }

private:
    void add(UIView view, CGAffineTransform toScreen, CGRect clip, std::size_t parent, bool isInAccessible)
    {
        CGAffineTransform const ownToScreen = concatenated(view.transformToSuperview(), toScreen);
        CGRect const rect = apply(ownToScreen, view.bounds());
        Element element = describe(view);
        bool const isOwnElement = element.isAccessible;
        element.isAccessible = isOwnElement && !isInAccessible;
        element.rect = wholePoints(rect);
        CGRect const shown = isFinite(rect) ? intersection(rect, clip) : CGRect {};
        UIView const hit =
            shown.size.width > 0 && shown.size.height > 0 ? hitFromFront(center(shown)) : UIView {};
        element.isVisible =
            shown.size.width > 0 && shown.size.height > 0 && (!m_hitWindow || *m_hitWindow <= m_window);
        element.isHittable = element.isVisible && isRelated(hit, view);
        bool const hidesContent = view.isAccessibilityElement() && element.type != "XCUIElementTypeCell"
            && element.type != "XCUIElementTypeButton";
        bool const isAlertRow = isOfClass(view, "_UIAlertControllerActionView");
        std::size_t const number = m_tree.open(std::move(element), parent);
        if (!hidesContent && !isAlertRow) {
            bool const clips = view.clipsToBounds() || isOfClass(view, "UIScrollView");
            for (UIView const child : view.children())
                if (!isLeftOut(child))
                    add(child, ownToScreen, clips ? shown : clip, number, isInAccessible || isOwnElement);
        }
        m_tree.close(number);
    }

    // What a finger there would touch; m_hitWindow is the number of the window that takes it.
    UIView hitFromFront(CGPoint point)
    {
        m_hitWindow.reset();
        for (std::size_t i = m_windows.size(); i-- > 0;) {
            if (UIView const hit = hitInWindow(m_windows[i], point)) {
                m_hitWindow = i;
                return hit;
            }
            // The windows further back matter for nothing once this element's own was asked.
            if (i == m_window)
                break;
        }
        return {};
    }

public:
    static Element describe(UIView view)
    {
        Element element;
        element.object = view.object;
        element.type = typeOf(view);
        element.identifier = textOf(view.send<"accessibilityIdentifier", NSString>()).value_or("");
        element.label = textOf(view.send<"accessibilityLabel", NSString>());
        element.value = textOf(view.ask<"accessibilityValue", NSString>());
        element.traits = view.send<"accessibilityTraits", NSUInteger>();
        element.isAccessible = view.send<"isAccessibilityElement", BOOL>();
        element.isEnabled = !view.responds<"isEnabled">() || view.send<"isEnabled", BOOL>();
        element.isSelected = view.ask<"isSelected", BOOL>();
        element.isFocused = firstResponder() == view;
        std::string const& type = element.type;
        if (type == "XCUIElementTypeStaticText") {
            element.isAccessible = true;
            if (!element.label)
                element.label = textOf(view.ask<"text", NSString>());
            if (!element.value)
                element.value = element.label;
            element.traits |= ElementTrait::staticText;
        } else if (type == "XCUIElementTypeButton" || type == "XCUIElementTypeKey") {
            element.isAccessible = true;
            if (!element.label)
                element.label = textOf(view.ask<"currentTitle", NSString>());
            if (!element.value && element.isSelected)
                element.value = "1";
            element.traits |= ElementTrait::button;
        } else if (type == "XCUIElementTypeImage") {
            element.traits |= ElementTrait::image;
        } else if (type == "XCUIElementTypeAlert" || type == "XCUIElementTypeSheet") {
            if (!element.label)
                element.label = textOf(view.viewController().ask<"title", NSString>());
        }
        if (element.isSelected)
            element.traits |= ElementTrait::selected;
        return element;
    }

private:
    static std::string typeOf(UIView view)
    {
        std::string type = typeOfClass(objc::boundary::class_of(view.object));
        if (type == "Alert") {
            UIViewController const controller = view.viewController();
            if (controller && isOfClass(controller, "UIAlertController")
                && UIAlertController { controller.object }.preferredStyle() == AlertStyle::actionSheet)
                type = "Sheet";
        }
        // What says of itself that it is a button is one to automation, whatever its class.
        if (type == "Other" && (view.send<"accessibilityTraits", NSUInteger>() & ElementTrait::button))
            type = "Button";
        return "XCUIElementType" + type;
    }

    ElementTree m_tree;
    std::vector<UIWindow> m_windows;
    std::size_t m_window { 0 };
    std::optional<std::size_t> m_hitWindow;
};

}

ElementTree takeSnapshot() { return Snapshot().take(); }

std::optional<std::size_t> findObject(ElementTree const& tree, objc::handle object)
{
    for (std::size_t number = 0; number < tree.size(); ++number)
        if (tree[number].object == object.object)
            return number;
    return {};
}

bool isOnPhone(objc::handle object)
{
    if (object.object == springBoard().application.get().object)
        return true;
    for (UIWindow const window : allWindows())
        if (UIView { object.object }.isDescendantOfView(window))
            return true;
    return false;
}

Element describeHidden(objc::handle object)
{
    UIView const view { object.object };
    Element element = Snapshot::describe(view);
    element.isVisible = false;
    element.isHittable = false;
    element.isAccessible = false;
    CGAffineTransform toScreen = kIdentity;
    for (UIView each = view; each; each = each.superview())
        toScreen = concatenated(toScreen, each.transformToSuperview());
    element.rect = wholePoints(apply(toScreen, view.bounds()));
    element.end = 1;
    return element;
}

UIAlertController frontMostAlert()
{
    UIViewController latest;
    for (UIWindow const window : allWindows()) {
        if (window.isHidden())
            continue;
        for (UIViewController const each : presentedControllers(window)) {
            bool const isAlert =
                isOfClass(each, "UIAlertController") && !each.ask<"isBeingDismissed", BOOL>();
            if (isAlert && presentationOrder(each) > presentationOrder(latest))
                latest = each;
        }
    }
    return UIAlertController { latest.object };
}

}
