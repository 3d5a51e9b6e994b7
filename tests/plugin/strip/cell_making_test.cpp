// Cells as the data source makes them, before and apart from what the list does with them.
#include "tests/plugin/strip/strip_fixture.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/uikit/index_path.hpp"
#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_collection_view_cell.hpp"

namespace phone {

namespace {

// A white picture file of ten pixels by ten.
Json photo()
{
    graphics::Bitmap const bitmap = graphics::Bitmap::withPixels(10, 10);
    std::fill_n(bitmap.pixels(), 10 * bitmap.stride(), std::uint8_t { 255 });
    bitmap.markDirty();
    auto const png = graphics::encodePng(bitmap);
    return Json::object({ { "data", base64(png.data(), png.size()) } });
}

}

class CellMaking : public StripTest {
protected:
    static UIView bootWith(Json const& contacts, StripRecord (*settings)() = record)
    {
        BootOptions booted = options("15.4", { { "isEnabled", false } });
        booted.contacts = contacts;
        boot(booted);
        return makeStrip(lockScreenFrame(), settings());
    }
    // From the list's queue; from none, when the list is nil.
    static UIView cellFrom(UIView strip, UIView list, std::size_t item = 0)
    {
        return strip.send<"collectionView:cellForItemAtIndexPath:", UIView>(
            list, NSIndexPath::of({ 0, item }));
    }
    static UIView part(UIView cell, char const* name)
    {
        for (UIView const each : cell.children())
            if (className(each) == name)
                return each;
        return {};
    }
    static StripRecord squares()
    {
        StripRecord settings = record();
        settings.isRound = false;
        return settings;
    }
};

TEST_F(CellMaking, MakesACellWhereThereIsNoneToUseAgain)
{
    UIView const strip = bootWith(contactEntries(2));
    UIView const cell = cellFrom(strip, {}, 1);

    ASSERT_TRUE(cell);
    EXPECT_EQ(className(cell), "CVLContactCell");
    EXPECT_FALSE(cell.superview());
    expectTree(tree(cell)["frame"], rect(25, 0, 290, 80));
    EXPECT_EQ(toString(part(cell, "CVLButton").send<"getPhoneNumber", NSString>()), "+44 20 7946-01");
    EXPECT_FALSE(cellFrom(strip, {}, 0) == cell);
}

TEST_F(CellMaking, GivesTheNameAPlaceUntilItIsLaidOut)
{
    UIView const strip = bootWith(contactEntries(1));
    UIView const cell = cellFrom(strip, {});

    // Without a colour of the settings, in the label's own.
    expectTree(tree(part(cell, "UILabel")),
        { { "frame", rect(0, 42, 60, 20) }, { "text", "Anna" }, { "textColor", color(0, 0, 0, 1) } });
}

TEST_F(CellMaking, HoldsTheIdleTimerUntilTheCellIsMade)
{
    Json entries = contactEntries(2);
    entries[0]["contactImage"] = photo();
    entries.push_back("no entry");
    UIView const strip = bootWith(entries);
    auto const calls = [&](std::size_t item) {
        std::size_t const since = phone().trace().count();
        cellFrom(strip, {}, item);
        std::vector<std::string> kinds;
        for (Json const& event : phone().trace().events(since))
            if (event["kind"] == "assertion")
                kinds.push_back(event["action"]);
            else if (event["kind"] == "decode" || event["kind"] == "timer")
                kinds.push_back(event["kind"]);
        return kinds;
    };
    using Kinds = std::vector<std::string>;
    EXPECT_EQ(calls(0), (Kinds { "add", "decode", "timer", "remove" }));
    EXPECT_EQ(calls(0), (Kinds { "add", "decode", "remove" }));   // the photo anew, the timer not
    EXPECT_EQ(calls(1), (Kinds { "add", "remove" }));
    EXPECT_EQ(calls(2), (Kinds { "add", "remove" }));
    EXPECT_EQ(calls(7), (Kinds { "add", "remove" }));   // beyond the list
    EXPECT_FALSE(phone().idleTimer().holds("CVL"));
}

TEST_F(CellMaking, MakesCellsWhereTheCoverSheetHasNoIdleTimer)
{
    BootOptions booted = options("15.4", { { "isEnabled", false } }, 1);
    booted.coverSheet = CoverSheetAnswer::neither;
    boot(booted);
    UIView const cell = cellFrom(makeStrip(lockScreenFrame(), record()), {});

    EXPECT_TRUE(part(cell, "CVLButton"));
    EXPECT_TRUE(events("assertion").empty());
}

TEST_F(CellMaking, TakesCellsFromTheListUnderTheirIdentifier)
{
    UIView const strip = bootWith(contactEntries(1));
    UIView const list = collectionView(strip);
    show(strip);
    UICollectionViewCell const shown { cells(strip).at(0).object };
    EXPECT_EQ(toString(shown.reuseIdentifier()), "ContactCell");
    UIView const dequeued = list.send<"dequeueReusableCellWithReuseIdentifier:forIndexPath:", UIView>(
        toNSString("ContactCell"), NSIndexPath::of({ 0, 0 }));
    EXPECT_EQ(className(dequeued), "CVLContactCell");
}

TEST_F(CellMaking, ShowsAnEmptySquareForAPhotoThatIsNone)
{
    Json entries = contactEntries(1);
    entries[0]["contactImage"] = Json::object({ { "data", base64("no image", 8) } });
    UIView const strip = bootWith(entries, squares);
    UIButton const button { part(cellFrom(strip, {}), "CVLButton").object };

    expectTree(tree(button), { { "backgroundColor", nullptr }, { "text", nullptr }, { "cornerRadius", 9 } });
    EXPECT_FALSE(button.currentImage());
}

TEST_F(CellMaking, LeavesThePropertiesOfACellToWhoeverWantsThem)
{
    UIView const cell = cellFrom(bootWith(contactEntries(1)), {});
    objc::handle const value = toNSString("kept");
    EXPECT_FALSE((cell.send<"contactPhoneNumber", objc::handle>()));
    cell.send<"setContactPhoneNumber:">(value);
    EXPECT_EQ((cell.send<"contactPhoneNumber", objc::handle>()), value);
    EXPECT_FALSE((cell.send<"contactImage", objc::handle>()));
    cell.send<"setContactImage:">(value);
    EXPECT_EQ((cell.send<"contactImage", objc::handle>()), value);
    EXPECT_FALSE((cell.send<"contactFirstName", objc::handle>()));
    cell.send<"setContactFirstName:">(value);
    EXPECT_EQ((cell.send<"contactFirstName", objc::handle>()), value);
    EXPECT_FALSE((cell.send<"contactLastName", objc::handle>()));
    cell.send<"setContactLastName:">(value);
    EXPECT_EQ((cell.send<"contactLastName", objc::handle>()), value);
}

}
