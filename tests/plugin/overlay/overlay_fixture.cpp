#include "tests/plugin/overlay/overlay_fixture.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/starter_set.hpp"
#include "phone/uikit/touch_delivery.hpp"

#include <algorithm>

namespace phone {

namespace {

UIView identified(UIView root, std::string const& identifier)
{
    if (!root || toString(root.accessibilityIdentifier()) == identifier)
        return root;
    for (UIView const child : root.children())
        if (UIView const found = identified(child, identifier))
            return found;
    return {};
}

UIView touchMark() { return identified(identified(springBoard().homeWindow.get(), "application"), "touch"); }

}

void OverlayTest::bootWithApplication(BootOptions options)
{
    options.locked = false;
    boot(options);
    ASSERT_TRUE(phone().launch("com.apple.mobilenotes"));
    wait(0.5);
}

void OverlayTest::gesture(char const* listener) { ASSERT_TRUE(phone().activate(listener).delivered); }

void OverlayTest::summon()
{
    gesture();
    wait(1);
}

UIWindow OverlayTest::overlayWindow()
{
    UIWindow last;
    for (UIWindow const window : phone().windows())
        if (className(window) == "BAContainingWindow" && window.number() > last.number())
            last = window;
    return last;
}

CGRect OverlayTest::onScreen(UIView view)
{
    UIWindow const window = view.window();
    CGRect const inWindow = view.convertRectToView(view.bounds(), window);
    return window ? apply(window.transformToSuperview(), inWindow) : inWindow;
}

CGPoint OverlayTest::middleOnScreen(UIView view) { return center(onScreen(view)); }

UIView OverlayTest::contactButton(UIView strip, std::size_t index)
{
    std::vector<UIView> buttons = viewsOfClass(strip, "CVLButton");
    std::ranges::sort(buttons, {}, [](UIView button) { return onScreen(button).origin.x; });
    return index < buttons.size() ? buttons[index] : UIView {};
}

UIView OverlayTest::touchedAt(CGPoint point) { return touchDelivery().hitTest(point); }

int OverlayTest::touchesInApplication()
{
    UIView const mark = touchMark();
    return mark ? std::stoi(toString(mark.accessibilityLabel())) : 0;
}

CGPoint OverlayTest::lastTouchInApplication()
{
    UIView const mark = touchMark();
    return mark ? middleOnScreen(mark) : CGPoint {};
}

PropertyListDictionary OverlayTest::settingsFile()
{
    auto const file = readPropertyList(settingsBytes());
    auto const* const root = file ? file->root.as<PropertyListDictionary>() : nullptr;
    EXPECT_TRUE(root) << "the settings file holds no dictionary";
    return root ? *root : PropertyListDictionary {};
}

Bytes OverlayTest::settingsBytes()
{
    auto const bytes = phone().root().read(kSettingsFile);
    return bytes ? *bytes : Bytes {};
}

void OverlayTest::putSettings(Bytes const& contents)
{
    ASSERT_TRUE(phone().root().write(kSettingsFile, contents, { .makesFolders = true }));
}

void OverlayTest::putContacts(std::size_t count)
{
    auto const list =
        propertyListOf(Json::object({ { "contactsArray", contactEntries(count) } }), "contacts");
    ASSERT_TRUE(list) << list.message();
    auto const text = writePropertyListXml(*list);
    ASSERT_TRUE(text);
    ASSERT_TRUE(phone().root().write(kContactListFile, text->data(), text->size(), { .makesFolders = true }));
}

}
