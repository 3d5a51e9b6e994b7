#include "tests/plugin/strip/strip_fixture.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/kernel/property_list.hpp"
#include "phone/springboard/starter_set.hpp"
#include "phone/springboard/view_tree.hpp"
#include "phone/uikit/ui_collection_view.hpp"
#include "phone/uikit/ui_screen.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

constexpr double kNumberTolerance = 1e-9;
constexpr char kContactList[] = "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist";

}

StripRecord StripTest::record()
{
    StripRecord record;
    record.title = toNSString("Corvel");
    record.font = UIFont::systemFontOfSizeWeight(10.5, UIFontWeightMedium);
    return record;
}

void StripTest::writeContacts(Json const& entries)
{
    auto const list = propertyListOf(Json { { "contactsArray", entries } }, "contacts");
    ASSERT_TRUE(list) << list.message();
    auto const text = writePropertyListXml(*list);
    ASSERT_TRUE(text);
    ASSERT_TRUE(phone().root().write(kContactList, text->data(), text->size(), { .makesFolders = true }));
}

UIView StripTest::makeStrip(CGRect frame, StripRecord const& record, bool isOverlay)
{
    objc::class_handle const cls { objc_getClass("CVLView") };
    auto const unmade = cls.send<"alloc", UIView>();
    return unmade.send<"initWithFrame:prefs:nonLSView:", UIView>(frame, record, static_cast<BOOL>(isOverlay));
}

CGRect StripTest::lockScreenFrame()
{
    return { { 0, 27 }, { UIScreen::mainScreen().bounds().size.width - 55, 80 } };
}

void StripTest::show(UIView strip)
{
    auto const window = objc::leak(make<UIWindow>(UIScreen::mainScreen().bounds()));
    window.addSubview(strip);
    window.setHidden(false);
    layoutWindowsIfNeeded();
}

std::vector<UIView> StripTest::cells(UIView strip)
{
    std::vector<UIView> cells = viewsOfClass(strip, "CVLContactCell");
    std::ranges::sort(cells, {}, [](UIView cell) { return cell.center().x; });
    return cells;
}

std::vector<UIView> StripTest::buttons(UIView strip)
{
    std::vector<UIView> buttons;
    for (UIView const cell : cells(strip))
        for (UIView const button : viewsOfClass(cell, "CVLButton"))
            buttons.push_back(button);
    return buttons;
}

Json StripTest::tree(UIView view) { return viewTree(view, { .detail = true, .handles = false }); }

void expectTree(Json const& actual, Json const& expected, std::string const& where)
{
    if (expected.is_number() && actual.is_number()) {
        EXPECT_LE(std::abs(actual.get<double>() - expected.get<double>()), kNumberTolerance)
            << where << ": " << actual << " instead of " << expected;
    } else if (expected.is_object() && actual.is_object()) {
        std::string const inner =
            expected.contains("class") ? where + "/" + expected["class"].get<std::string>() : where;
        for (auto const& [key, value] : expected.items()) {
            bool const isThere = actual.contains(key);
            EXPECT_TRUE(isThere) << inner << " has no " << key;
            if (isThere)
                expectTree(actual[key], value, inner + "." + key);
        }
    } else if (expected.is_array() && actual.is_array()) {
        EXPECT_EQ(actual.size(), expected.size()) << where << ": " << actual.dump(1);
        for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i)
            expectTree(actual[i], expected[i], where + "[" + std::to_string(i) + "]");
    } else {
        EXPECT_EQ(actual, expected) << where;
    }
}

}
