// The contact list file as other programs write it, and entries of every kind that a property list can hold.
#include "phone/foundation/property_list_objects.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/uikit/ui_label.hpp"
#include "tests/plugin/host/device_files.hpp"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace phone {

namespace {

Bytes dataFile(std::string const& name)
{
    std::ifstream file(CORVEL_TEST_DATA "/contact_list/" + name, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), {});
}

// The names under the cells on screen, from left to right.
std::vector<std::string> namesOnScreen(std::vector<UIView> cells)
{
    std::ranges::sort(cells, {}, [](UIView cell) { return cell.frame().origin.x; });
    std::vector<std::string> names;
    std::function<void(UIView)> const visit = [&](UIView view) {
        if (view.send<"isKindOfClass:", BOOL>(objc::class_handle { objc_getClass("UILabel") })
            && !view.isHidden())
            names.push_back(toString(UILabel { view.object }.text()));
        for (UIView const child : view.children())
            visit(child);
    };
    for (UIView const cell : cells)
        visit(cell);
    return names;
}

}

class ContactListFile : public CorvelTest {
protected:
    static void bootWith(std::optional<Bytes> const& contacts, PropertyListDictionary const& settings = {})
    {
        putDeviceFiles(bytesOf(*writePropertyListXml(settings)), contacts);
        boot(options("15.4"));
        layoutWindowsIfNeeded();
        ASSERT_TRUE(phone().strip());
    }
    static void bootWithList(PropertyList list)
    {
        bootWith(
            bytesOf(*writePropertyListXml(PropertyListDictionary { { "contactsArray", std::move(list) } })));
    }
};

class WrittenElsewhere : public ContactListFile, public testing::WithParamInterface<char const*> { };

TEST_P(WrittenElsewhere, IsReadWholeAndInOrder)
{
    bootWith(dataFile(GetParam()));

    auto const list = toPropertyList(stripList());
    ASSERT_TRUE(list);
    auto const& entries = *list->as<PropertyListArray>();
    ASSERT_EQ(entries.size(), 3u);
    auto const field = [&](std::size_t index, char const* key) {
        PropertyList const* value = entries[index].as<PropertyListDictionary>()->find(key);
        return value ? *value : PropertyList { "missing" };
    };
    EXPECT_EQ(field(0, "contactFirstName"), PropertyList { "Anna" });
    EXPECT_EQ(field(0, "contactLastName"), PropertyList { "Árvai" });
    EXPECT_EQ(field(0, "contactPhoneNumber"), PropertyList { "+44 20 7946-0958" });
    ASSERT_TRUE(field(0, "contactImage").is<Bytes>());
    EXPECT_EQ(field(0, "contactImage").as<Bytes>()->size(), 74u);
    ASSERT_TRUE(field(0, "contactBirthday").is<Date>());
    EXPECT_EQ(field(0, "contactBirthday"), PropertyList { Date { -332596800 } });   // 1990-06-18T12:00:00Z
    EXPECT_EQ(field(1, "contactFirstName"), PropertyList { "דנה" });
    EXPECT_EQ(field(1, "contactImage"), PropertyList { "" });
    EXPECT_EQ(field(1, "contactBirthday"), PropertyList { "" });
    EXPECT_EQ(field(2, "contactFirstName"), PropertyList { "👩‍🚀 Ada" });
    EXPECT_EQ(field(2, "contactEmail"), PropertyList { "<a&b>@example.com" });
    EXPECT_EQ(viewsOfClass(phone().strip(), "CVLContactCell").size(), 3u);
}

INSTANTIATE_TEST_SUITE_P(Programs, WrittenElsewhere,
    testing::Values(
        "plistlib_xml.plist", "plistlib_binary.plist", "plistutil_xml.plist", "plistutil_binary.plist"),
    [](auto const& info) {
        std::string const name = info.param;
        return name.substr(0, name.find('.'));
    });

TEST_F(ContactListFile, IsEmptyWhenMissing)
{
    putDeviceFiles(std::nullopt, bytesOf(""));
    boot(options("15.4"));

    EXPECT_EQ(stripList().count(), 0u);
}

TEST_F(ContactListFile, IsEmptyWhenTheListIsOfAnotherKind)
{
    bootWithList("no list");

    ASSERT_TRUE(stripList());
    EXPECT_EQ(stripList().count(), 0u);
}

TEST_F(ContactListFile, IsEmptyWithoutItsKey)
{
    bootWith(
        bytesOf(*writePropertyListXml(PropertyListDictionary { { "contacts", PropertyListArray { 1 } } })));

    ASSERT_TRUE(stripList());
    EXPECT_EQ(stripList().count(), 0u);
}

TEST_F(ContactListFile, KeepsThePlacesOfEntriesThatAreNone)
{
    PropertyListDictionary const anna { { "contactFirstName", "Anna" }, { "contactLastName", "" },
        { "contactPhoneNumber", "112" } };
    bootWithList(PropertyListArray { "no entry", anna, 7, PropertyListArray {}, anna });

    EXPECT_EQ(stripList().count(), 5u);
    auto const cells = viewsOfClass(phone().strip(), "CVLContactCell");
    EXPECT_EQ(cells.size(), 5u);
    auto const names = namesOnScreen(cells);
    EXPECT_EQ(
        std::ranges::count_if(names, [](auto const& name) { return name.find("Anna") != name.npos; }), 2);
}

TEST_F(ContactListFile, TakesEveryKindInEveryField)
{
    PropertyList const kinds[] = { true, 7, -1.5, "text", Date { 7e8 }, Bytes { 1, 2, 3 }, Bytes {},
        PropertyListArray { 1, "2" }, PropertyListDictionary { { "a", 1 } } };
    PropertyListArray list;
    for (char const* const key : { "contactFirstName", "contactLastName", "contactUniqueIdentifier",
             "contactImage", "contactBirthday", "contactPhoneNumber", "contactEmail" })
        for (PropertyList const& value : kinds)
            list.push_back(PropertyListDictionary { { key, value } });
    std::size_t const count = list.size();
    bootWithList(list);
    ASSERT_EQ(stripList().count(), count);

    // Every cell is built once on the way to the end.
    UIView const view = viewsOfClass(phone().strip(), "UICollectionView").at(0);
    CGSize const content = view.send<"contentSize", CGSize>();
    for (CGFloat x = 0; x < content.width; x += view.bounds().size.width) {
        view.send<"setContentOffset:">(CGPoint { x, 0 });
        view.send<"layoutIfNeeded">();
        EXPECT_FALSE(viewsOfClass(phone().strip(), "CVLContactCell").empty());
    }
    // And what a touch on any of them finds is nobody to call.
    phone().advance(1);
    EXPECT_TRUE(phone().isLocked());
}

TEST_F(ContactListFile, StaysAsTheStripReadItUntilTheNextStart)
{
    bootWithList(PropertyListArray { PropertyListDictionary { { "contactFirstName", "Anna" } } });

    auto const written = phone().root().write(kContactListFile,
        bytesOf(*writePropertyListXml(PropertyListDictionary { { "contactsArray", PropertyListArray {} } })));
    ASSERT_TRUE(written);
    phone().postNotification(NotificationCenterKind::darwin, "com.orvane.corvelpref.settingschanged");

    EXPECT_EQ(stripList().count(), 1u);
}

TEST_F(ContactListFile, IsReadAtEveryLoadAndForEveryStrip)
{
    auto const reads = [] { return std::ranges::count(told("read", "path"), kContactListFile); };
    boot(options("15.4"));
    EXPECT_EQ(reads(), 2);   // by the loader, and by the lock screen's strip

    phone().postNotification(NotificationCenterKind::darwin, "com.orvane.corvelpref.settingschanged");
    EXPECT_EQ(reads(), 3);
    phone().adjunctController().send<"viewDidLoad">();
    EXPECT_EQ(reads(), 3);   // the strip is there
    for (int showing = 0; showing < 3; ++showing) {
        phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        phone().advance(1);
        EXPECT_EQ(reads(), 5);   // to see whether there is anybody, and by the strip: at the first one alone
    }
}

}
