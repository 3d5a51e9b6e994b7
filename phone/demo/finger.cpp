#include "phone/demo/finger.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/uikit/touch_delivery.hpp"
#include "phone/uikit/ui_button.hpp"

#include <algorithm>
#include <cstdio>

namespace phone {

namespace {

constexpr double kLongPress = 0.4;   // seconds; the menu comes after 0.3

std::vector<FingerNote>& heldNotes()
{
    static std::vector<FingerNote> notes;
    return notes;
}

void note(std::string text) { heldNotes().push_back({ deviceTrace().count(), std::move(text) }); }

bool isKind(UIView view, char const* className)
{
    objc::class_handle const cls { objc_getClass(className) };
    return cls && view.send<"isKindOfClass:", BOOL>(cls);
}

// The views of the tree that are to be seen, each before what lies in it.
void collect(UIView view, std::vector<UIView>& views)
{
    if (!view || view.isHidden() || view.alpha() < 0.01)
        return;
    views.push_back(view);
    for (UIView const child : view.children())
        collect(child, views);
}

CGPoint middleOnScreen(UIView view)
{
    CGRect const bounds = view.bounds();
    return view.convertPointToView({ midX(bounds), midY(bounds) }, {});
}

bool isInReach(UIView view)
{
    UIView const hit = touchDelivery().hitTest(middleOnScreen(view));
    return hit && hit.isDescendantOfView(view);
}

bool says(UIView view, std::string const& text)
{
    if (isKind(view, "UIButton") && toString(UIButton { view.object }.currentTitle()) == text)
        return true;
    return toString(view.accessibilityLabel()) == text;
}

UIView viewThatSays(Phone& device, std::string const& text)
{
    std::vector<UIView> views;
    for (UIWindow const window : device.windows())
        collect(window, views);
    auto const found = std::find_if(
        views.rbegin(), views.rend(), [&](UIView view) { return says(view, text) && isInReach(view); });
    return found == views.rend() ? UIView {} : *found;
}

UIView contactButton(Phone& device, std::size_t index)
{
    std::vector<UIView> views;
    collect(device.strip(), views);
    std::erase_if(views, [](UIView view) { return !isKind(view, "CVLButton"); });
    double const way = device.options().isRightToLeft() ? -1 : 1;
    std::ranges::sort(views, {}, [way](UIView view) { return way * middleOnScreen(view).x; });
    return index < views.size() ? views[index] : UIView {};
}

}

std::vector<FingerNote> const& Finger::notes() { return heldNotes(); }

void Finger::takeOver(std::vector<FingerNote> notes) { heldNotes() = std::move(notes); }

void Finger::wait(double seconds) const { static_cast<void>(m_phone.advance(seconds)); }

void Finger::touch(UIView view, std::string const& what) const
{
    if (!view) {
        note("nothing to touch: " + what);
        std::fprintf(stderr, "corvel-demo: there is no %s on the screen\n", what.c_str());
        return;
    }
    note("touch " + what);
    m_phone.tap(middleOnScreen(view));
    wait(m_pause);
}

void Finger::tapContact(std::size_t index) const
{
    touch(contactButton(m_phone, index), "contact " + std::to_string(index + 1));
}

void Finger::holdContact(std::size_t index) const { pressContact(index, kLongPress); }

void Finger::pressContact(std::size_t index, double seconds) const
{
    UIView const button = contactButton(m_phone, index);
    std::string const what = "contact " + std::to_string(index + 1);
    if (!button) {
        touch({}, what);
        return;
    }
    note("hold " + what);
    CGPoint const point = middleOnScreen(button);
    m_phone.touchDown(point);
    wait(seconds);
    m_phone.touchUp(point);
    wait(m_pause);
}

void Finger::tapStrip() const { touch(m_phone.strip(), "the strip"); }

void Finger::tap(std::string const& text) const { touch(viewThatSays(m_phone, text), "\"" + text + "\""); }

void Finger::typePasscode(std::string const& code) const
{
    note("type the passcode " + code);
    for (char const digit : code) {
        UIView const key = viewThatSays(m_phone, std::string(1, digit));
        if (!key) {
            touch({}, std::string("key ") + digit);
            return;
        }
        m_phone.tap(middleOnScreen(key));
    }
    wait(m_pause);
}

}
