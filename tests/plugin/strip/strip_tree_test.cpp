// Every frame of every kind of strip, against the arithmetic of the design written down here once more.
#include "tests/plugin/strip/strip_fixture.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

constexpr std::size_t kCounts[] = { 0, 1, 3, 5, 8 };

struct Screen {
    double width;   // upright, points
    double height;
    int orientation;
    bool isRightToLeft;
};

struct Case {
    Screen screen;
    CGRect frame;
    std::size_t contacts;
    std::uint64_t style;
    bool isDynamic;
    bool hasTitle;
    bool isOverlay;

    bool isBlurred() const { return style == 1 || isOverlay; }
    bool isBanded() const { return style == 2 && !isOverlay; }
    double screenWidth() const { return screen.orientation < 3 ? screen.width : screen.height; }
    double slot() const { return isBanded() ? screen.width / 5 : (screen.width - 20) / 5; }
    bool isFittedToContacts() const { return isDynamic && contacts > 0; }

    // The whole part towards zero, as the strip keeps these two.
    double dynamicOffset() const
    {
        if (!isBlurred() || !isFittedToContacts())
            return 10;
        double const half = screen.width / 2;
        return std::trunc(half - half / 5 * static_cast<double>(std::min<std::size_t>(contacts, 5)));
    }
    double dynamicWidth() const
    {
        if (!isBlurred() || !isFittedToContacts())
            return screen.width - 20;
        return std::trunc((screen.width - 20) / 5 * static_cast<double>(std::min<std::size_t>(contacts, 5)));
    }
    double blurX() const { return isFittedToContacts() && !isOverlay ? dynamicOffset() : 0; }
    double blurWidth() const { return isFittedToContacts() ? dynamicWidth() : frame.size.width; }
    // Without a title the card of the lock screen shrinks once the row has been placed on it.
    double blurHeight() const
    {
        bool const shrinks = !isOverlay && contacts > 0 && !hasTitle;
        return shrinks ? 70 : frame.size.height;
    }

    Json row() const
    {
        double const height = frame.size.height;
        if (isOverlay)
            return rect(blurX(), 5, blurWidth(), height - 3.3);
        if (style == 1)
            return rect(blurX(), hasTitle ? height / 3.95 : height * 0.125,
                isDynamic ? blurWidth() : screenWidth() - 20, height - 3.3);
        if (style == 2)
            return rect(0, 20, contacts < 5 ? 71.0 * static_cast<double>(contacts) : screen.width, 78);
        return rect(frame.origin.x, frame.origin.y, frame.size.width, height);
    }

    std::string name() const
    {
        return std::to_string(contacts) + " contacts, style " + std::to_string(style)
            + (isDynamic ? ", dynamic" : "") + (hasTitle ? ", titled" : "") + (isOverlay ? ", overlay" : "");
    }
};

Json blur(Case const& c)
{
    return { { "class", "UIVisualEffectView" },
        { "frame", rect(c.blurX(), 0, c.blurWidth(), c.blurHeight()) },
        { "autoresizingMask", c.isFittedToContacts() ? 16 : 18 }, { "clipsToBounds", true },
        { "cornerRadius", 15 }, { "alpha", 1 }, { "backgroundColor", nullptr }, { "effectStyle", 1 },
        { "hidden", false } };
}

Json handleBar(Case const& c)
{
    double const middle = c.isDynamic ? c.blurX() + c.blurWidth() / 2 : c.blurWidth() / 2;
    return { { "class", "UIView" }, { "frame", rect(middle - 12.5, c.blurHeight() - 11, 25, 7) },
        { "backgroundColor", color(0.5, 0.5, 0.5, 1) }, { "cornerRadius", 5 }, { "borderWidth", 1 },
        { "borderColor", color(0, 0, 0, 1) }, { "alpha", 0.4 } };
}

Json band(double y, double width, double height, double alpha)
{
    return { { "class", "UIView" }, { "frame", rect(0, y, width, height) },
        { "backgroundColor", color(0, 0, 0, 1) }, { "alpha", alpha } };
}

Json title(Case const& c, bool hasBlur)
{
    return { { "class", "UILabel" },
        { "frame",
            hasBlur ? rect(c.blurX() + 3, 8, c.blurWidth() - 5, 12) : rect(10, 8, c.screen.width - 40, 12) },
        { "text", "Corvel" }, { "textAlignment", 1 } };
}

Json expected(Case const& c, bool hasBlur)
{
    Json children = Json::array();
    if (c.isBlurred())
        children.push_back(blur(c));
    if (c.isOverlay)
        children.push_back(handleBar(c));
    if (c.isBanded()) {
        children.push_back(band(3.4, c.screen.width, 20, 0.75));
        children.push_back(band(22.5, c.screen.width, 70, 0.5));
    }
    if (!c.isOverlay && c.contacts > 0 && c.hasTitle)
        children.push_back(title(c, hasBlur));
    children.push_back({ { "class", "UICollectionView" }, { "frame", c.row() },
        { "transform", { { "transform", { c.screen.isRightToLeft ? -1 : 1, 0, 0, 1, 0, 0 } } } },
        { "showsHorizontalScrollIndicator", false }, { "translatesAutoresizingMaskIntoConstraints", false },
        { "backgroundColor", color(0, 0, 0, 0) }, { "pagingEnabled", false }, { "scrollDirection", 1 },
        { "delegate", { { "class", "CVLView" } } }, { "dataSource", { { "class", "CVLView" } } } });
    if (c.contacts == 0) {
        double const y = c.row()["rect"][1];
        children.push_back({ { "class", "UIButton" }, { "frame", rect(0, y, c.screen.width - 20, 75) },
            { "backgroundColor", color(0, 0, 0, 0) }, { "buttonType", 0 } });
        children.push_back({ { "class", "UILabel" }, { "frame", rect(-6, 2.5, c.screen.width, 80) } });
    }
    return { { "class", "CVLView" },
        { "frame", rect(c.frame.origin.x, c.frame.origin.y, c.frame.size.width, c.frame.size.height) },
        { "alpha", 1 }, { "children", children } };
}

// What one slot holds, the plain view being the cell's content view. The name's width follows its text.
Json expectedCell(Case const& c, std::size_t item, double rowHeight)
{
    bool const hasButton = c.isBlurred() || c.isBanded();
    double const side = hasButton ? 45 : 0;
    double const x = hasButton ? (c.slot() - 45) / 2 : 0;
    return { { "class", "CVLContactCell" },
        { "frame", rect(c.slot() * static_cast<double>(item), (rowHeight - 65) / 2, c.slot(), 65) },
        { "transform", { { "transform", { c.screen.isRightToLeft ? -1 : 1, 0, 0, 1, 0, 0 } } } },
        { "children",
            { { { "class", "UIView" } },
                { { "class", "CVLButton" }, { "frame", rect(x, 0, side, side) }, { "clipsToBounds", true },
                    { "cornerRadius", side / 2 } },
                { { "class", "UIImageView" }, { "frame", rect(x + 22, 22, 29, 23) }, { "hidden", true } },
                { { "class", "UILabel" }, { "translatesAutoresizingMaskIntoConstraints", false } } } } };
}

std::string screenName(testing::TestParamInfo<Screen> const& info)
{
    Screen const& screen = info.param;
    return std::to_string(static_cast<int>(screen.width)) + "Orientation" + std::to_string(screen.orientation)
        + (screen.isRightToLeft ? "RightToLeft" : "LeftToRight");
}

std::vector<Screen> screens()
{
    std::vector<Screen> all;
    for (auto const& [width, height] : { std::pair { 375.0, 812.0 }, { 390.0, 844.0 }, { 430.0, 932.0 } })
        for (int const orientation : { 1, 3, 4 })
            for (bool const isRightToLeft : { false, true })
                all.push_back({ width, height, orientation, isRightToLeft });
    return all;
}

}

class StripTree : public StripTest, public testing::WithParamInterface<Screen> {
protected:
    void bootScreen(Json settings = Json::object(), std::size_t contacts = 3)
    {
        BootOptions booted = options("13.7", std::move(settings), contacts);
        booted.width = GetParam().width;
        booted.height = GetParam().height;
        booted.direction =
            GetParam().isRightToLeft ? LayoutDirection::rightToLeft : LayoutDirection::leftToRight;
        boot(booted);
    }

    void check(Case const& c, bool hasBlur)
    {
        SCOPED_TRACE(c.name());
        AutoreleasePool const pool;
        writeContacts(contactEntries(c.contacts));
        StripRecord settings = record();
        settings.style = c.style;
        settings.isDynamic = c.isDynamic;
        settings.hasTitle = c.hasTitle;
        UIView const strip = makeStrip(c.frame, settings, c.isOverlay);

        expectTree(tree(strip), expected(c, hasBlur || c.isBlurred()));
        EXPECT_EQ((strip.send<"bannerDynamicSize", std::int32_t>()), c.dynamicOffset());
        EXPECT_EQ((strip.send<"bannerDynamicWidth", std::int32_t>()), c.dynamicWidth());
        EXPECT_EQ((strip.send<"isViewNonLS", BOOL>()), c.isOverlay);

        show(strip);
        std::vector<UIView> const shown = cells(strip);
        // Those in sight, and no others: a cell's edge on the row's is out of sight.
        CGSize const row = collectionView(strip).bounds().size;
        auto const fitting = static_cast<std::size_t>(std::ceil(row.width / c.slot() - 1e-9));
        ASSERT_EQ(shown.size(), std::min(c.contacts, fitting));
        for (std::size_t i = 0; i < shown.size(); ++i)
            expectTree(tree(shown[i]), expectedCell(c, i, row.height), "cell " + std::to_string(i));
        strip.removeFromSuperview();
    }
};

TEST_P(StripTree, OfTheLockScreen)
{
    bootScreen({ { "isEnabled", false } });
    ASSERT_TRUE(phone().setOrientation(GetParam().orientation));

    // The styles without a card first, for it stays the process's until another one replaces it.
    for (std::uint64_t const style : { 0, 2, 1 })
        for (bool const isDynamic : { true, false })
            for (bool const hasTitle : { true, false })
                for (std::size_t const contacts : kCounts)
                    check({ GetParam(), lockScreenFrame(), contacts, style, isDynamic, hasTitle, false },
                        false);
}

TEST_P(StripTree, OfTheOverlay)
{
    bootScreen({ { "isEnabled", false } });
    ASSERT_TRUE(phone().setOrientation(GetParam().orientation));

    for (std::uint64_t const style : { 0, 1, 2 })
        for (bool const isDynamic : { true, false })
            for (std::size_t const contacts : kCounts)
                check({ GetParam(), { { 10, -100 }, { 222, 88 } }, contacts, style, isDynamic, true, true },
                    false);
}

INSTANTIATE_TEST_SUITE_P(Screens, StripTree, testing::ValuesIn(screens()), screenName);

class StripOnLockScreen : public StripTree { };

// In its place in the stack: ninety high, inset by ten or, with bands, not at all; the card grows along.
TEST_P(StripOnLockScreen, StandsInTheStack)
{
    bootScreen({ { "bannerStyle", 1 } }, 5);
    double const width = GetParam().width;

    phone().advance(1);
    Json const shown = tree(phone().strip());
    expectTree(shown["frame"], rect(10, 0, width - 20, 90));
    expectTree(shown["children"][0]["frame"], rect(0, 0, width - 20, 90));
    expectTree(shown["children"][1]["frame"], rect(3, 8, width - 25, 12));
    expectTree(shown["children"][2]["frame"], rect(0, 80 / 3.95, width - 20, 76.7));
    std::vector<UIView> const shownCells = cells(phone().strip());
    ASSERT_EQ(shownCells.size(), 5u);
    // The first contact is at the reader's beginning.
    double const firstX =
        shownCells[0].convertPointToView({ shownCells[0].bounds().size.width / 2, 0 }, {}).x;
    double const slot = (width - 20) / 5;
    EXPECT_NEAR(firstX, GetParam().isRightToLeft ? width - 10 - slot / 2 : 10 + slot / 2, 1e-9);
}

TEST_P(StripOnLockScreen, StandsInTheStackFromEdgeToEdgeWithBands)
{
    bootScreen({ { "bannerStyle", 2 } }, 3);
    double const width = GetParam().width;

    phone().advance(1);
    Json const shown = tree(phone().strip());
    expectTree(shown["frame"], rect(0, 0, width, 90));
    expectTree(shown["children"][0]["frame"], rect(0, 3.4, width, 20));
    expectTree(shown["children"][1]["frame"], rect(0, 22.5, width, 70));
    expectTree(shown["children"][3]["frame"], rect(0, 20, 213, 78));
}

TEST_P(StripOnLockScreen, IsMadeWhileThePhoneLies)
{
    bootScreen({ { "isEnabled", false } }, 3);
    ASSERT_FALSE(phone().strip());
    ASSERT_TRUE(phone().setOrientation(4));
    ASSERT_TRUE(phone().changeSettings({ { "isEnabled", true }, { "isDynamicSize", false } }, {}));
    phone().adjunctController().send<"viewDidLoad">();

    phone().advance(1);
    ASSERT_TRUE(phone().strip());
    // The card was as wide as the strip, less than the screen by 55, and has grown with it.
    double const width = phone().strip().frame().size.width;
    Json const children = tree(phone().strip())["children"];
    expectTree(children[0]["frame"], rect(0, 0, width, 90));
    expectTree(children[2]["frame"], rect(0, 80 / 3.95, GetParam().height - 20, 76.7));
    expectTree(tree(cells(phone().strip())[1])["frame"],
        rect((GetParam().width - 20) / 5, (76.7 - 65) / 2, (GetParam().width - 20) / 5, 65));
}

INSTANTIATE_TEST_SUITE_P(Screens, StripOnLockScreen,
    testing::Values(Screen { 375, 812, 1, false }, Screen { 390, 844, 1, false },
        Screen { 430, 932, 1, false }, Screen { 375, 812, 1, true }, Screen { 390, 844, 1, true },
        Screen { 430, 932, 1, true }),
    screenName);

// The overlay as the gesture makes it.
TEST_F(StripTest, TheOverlayIsMadeByItsGesture)
{
    boot(options("13.7", { { "bannerStyle", 2 } }, 3));
    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
    phone().advance(1);

    ASSERT_TRUE(phone().overlay());
    Json const shown = tree(phone().overlay());
    expectTree(shown["frame"], rect(195 - 111, 40, 222, 88));
    ASSERT_EQ(shown["children"].size(), 3u);
    expectTree(shown["children"][0]["frame"], rect(0, 0, 222, 88));
    expectTree(shown["children"][1]["frame"], rect(98.5, 77, 25, 7));
    expectTree(shown["children"][2]["frame"], rect(0, 5, 222, 84.7));
    // Made with the margin although the style is the banded one.
    expectTree(tree(cells(phone().overlay())[2])["frame"], rect(148, (84.7 - 65) / 2, 74, 65));
}

}
