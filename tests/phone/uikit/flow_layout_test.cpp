#include "phone/uikit/flow_layout.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace phone {
namespace {

FlowSection equal(std::size_t count, CGSize size, double line = 10, double interitem = 10)
{
    FlowSection section { {}, line, interitem, {} };
    section.sizes.appendEqual(size, count);
    return section;
}

FlowSection differing(std::vector<CGSize> const& sizes, double line = 10, double interitem = 10)
{
    FlowSection section { {}, line, interitem, {} };
    for (CGSize const size : sizes)
        section.sizes.append(size);
    return section;
}

TEST(FlowLayout, PutsARowOfItemsEdgeToEdgeAndInTheMiddle)
{
    FlowLayout const layout(ScrollDirection::horizontal, 76.7, { equal(8, { 71, 65 }, 0) });

    EXPECT_EQ(layout.contentSize(), (CGSize { 8 * 71, 76.7 }));
    for (std::size_t i = 0; i < 8; ++i) {
        CGRect const frame = layout.itemFrame({ 0, i });
        EXPECT_DOUBLE_EQ(frame.origin.x, 71.0 * static_cast<double>(i));
        EXPECT_DOUBLE_EQ(frame.origin.y, (76.7 - 65) / 2);
        EXPECT_EQ(frame.size, (CGSize { 71, 65 }));
    }
}

TEST(FlowLayout, FillsColumnsFromTheTopWhenItScrollsSideways)
{
    FlowLayout const layout(ScrollDirection::horizontal, 230, { equal(5, { 50, 100 }, 7, 10) });

    // Two fit (100 + 10 + 100); the 30 points left over part them.
    EXPECT_EQ(layout.itemFrame({ 0, 0 }).origin, (CGPoint { 0, 0 }));
    EXPECT_EQ(layout.itemFrame({ 0, 1 }).origin, (CGPoint { 0, 130 }));
    EXPECT_EQ(layout.itemFrame({ 0, 2 }).origin, (CGPoint { 57, 0 }));
    EXPECT_EQ(layout.itemFrame({ 0, 4 }).origin, (CGPoint { 114, 0 }));
    EXPECT_EQ(layout.contentSize(), (CGSize { 164, 230 }));
}

TEST(FlowLayout, FillsRowsFromTheLeftWhenItScrollsDown)
{
    FlowLayout const layout(ScrollDirection::vertical, 320, { equal(7, { 100, 40 }, 5, 10) });

    EXPECT_EQ(layout.itemFrame({ 0, 2 }).origin, (CGPoint { 220, 0 }));
    EXPECT_EQ(layout.itemFrame({ 0, 3 }).origin, (CGPoint { 0, 45 }));
    EXPECT_EQ(layout.itemFrame({ 0, 6 }).origin, (CGPoint { 0, 90 }));
    EXPECT_EQ(layout.contentSize(), (CGSize { 320, 130 }));
}

TEST(FlowLayout, KeepsTheGridOfEqualItemsInTheLastLine)
{
    FlowLayout const layout(ScrollDirection::vertical, 350, { equal(5, { 100, 40 }) });

    EXPECT_DOUBLE_EQ(layout.itemFrame({ 0, 1 }).origin.x, 125);
    EXPECT_DOUBLE_EQ(layout.itemFrame({ 0, 4 }).origin.x, 125);
}

TEST(FlowLayout, PacksTheLastLineOfDifferingItems)
{
    FlowLayout const layout(
        ScrollDirection::vertical, 300, { differing({ { 100, 40 }, { 120, 60 }, { 90, 20 }, { 80, 20 } }) });

    // The full line is spread out, and its items stand in the middle of its height.
    EXPECT_EQ(layout.itemFrame({ 0, 0 }), (CGRectMake(0, 10, 100, 40)));
    EXPECT_EQ(layout.itemFrame({ 0, 1 }), (CGRectMake(180, 0, 120, 60)));
    EXPECT_EQ(layout.itemFrame({ 0, 2 }), (CGRectMake(0, 70, 90, 20)));
    EXPECT_EQ(layout.itemFrame({ 0, 3 }), (CGRectMake(100, 70, 80, 20)));
}

TEST(FlowLayout, CentresAnItemThatFillsALineAlone)
{
    FlowLayout const layout(ScrollDirection::vertical, 300, { equal(2, { 200, 50 }) });

    EXPECT_DOUBLE_EQ(layout.itemFrame({ 0, 0 }).origin.x, 50);
    EXPECT_DOUBLE_EQ(layout.itemFrame({ 0, 1 }).origin.x, 50);
}

TEST(FlowLayout, KeepsInsetsFree)
{
    FlowSection section = equal(2, { 50, 50 }, 4);
    section.insets = { 3, 11, 5, 13 };
    FlowLayout const layout(ScrollDirection::horizontal, 58, { section, section });

    EXPECT_EQ(layout.itemFrame({ 0, 0 }).origin, (CGPoint { 11, 3 }));
    EXPECT_EQ(layout.itemFrame({ 0, 1 }).origin, (CGPoint { 65, 3 }));
    EXPECT_EQ(layout.itemFrame({ 1, 0 }).origin, (CGPoint { 128 + 11, 3 }));
    EXPECT_EQ(layout.contentSize(), (CGSize { 256, 58 }));
}

TEST(FlowLayout, AnswersTheItemsInARectangle)
{
    FlowLayout const layout(ScrollDirection::horizontal, 80, { equal(100, { 71, 65 }, 0) });

    auto const items = layout.itemsIn(CGRectMake(355, 0, 355, 80));

    ASSERT_EQ(items.size(), 5u);
    EXPECT_EQ(items.front(), (FlowIndex { 0, 5 }));
    EXPECT_EQ(items.back(), (FlowIndex { 0, 9 }));
    EXPECT_TRUE(layout.itemsIn(CGRectMake(8000, 0, 355, 80)).empty());
    EXPECT_TRUE(layout.itemsIn(CGRectMake(0, 200, 355, 80)).empty());
}

TEST(FlowLayout, AnswersTheItemsInARectangleOfDifferingLines)
{
    std::vector<CGSize> sizes;
    for (int i = 0; i < 60; ++i)
        sizes.push_back({ 40.0 + i % 3 * 30, 20.0 + i % 5 * 4 });
    FlowLayout const layout(ScrollDirection::vertical, 320, { differing(sizes) });
    CGRect const rect = CGRectMake(0, 100, 320, 90);

    auto const items = layout.itemsIn(rect);

    std::vector<FlowIndex> expected;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        CGRect const frame = layout.itemFrame({ 0, i });
        if (frame.origin.y < 190 && frame.origin.y + frame.size.height > 100)
            expected.push_back({ 0, i });
    }
    EXPECT_EQ(items, expected);
    EXPECT_FALSE(items.empty());
}

TEST(FlowLayout, TellsOfItemsThatDoNotFit)
{
    EXPECT_TRUE(FlowLayout(ScrollDirection::horizontal, 60, { equal(3, { 71, 65 }) }).hasOversizedItem());
    EXPECT_FALSE(FlowLayout(ScrollDirection::horizontal, 65, { equal(3, { 71, 65 }) }).hasOversizedItem());
    EXPECT_FALSE(FlowLayout(ScrollDirection::horizontal, 60, { equal(0, { 71, 65 }) }).hasOversizedItem());
}

TEST(FlowLayout, SurvivesSizesThatAreNone)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    FlowLayout const layout(ScrollDirection::horizontal, nan,
        { differing({ { nan, 10 }, { -5, 20 }, { 30, std::numeric_limits<double>::infinity() } }),
            equal(4, {}) });

    EXPECT_TRUE(std::isfinite(layout.contentSize().width));
    EXPECT_TRUE(layout.itemsIn(CGRectMake(-1000, -1000, 1e5, 1e5)).size() <= 3);
    FlowLayout const none(ScrollDirection::vertical, 100, {});
    EXPECT_EQ(none.contentSize(), (CGSize { 100, 0 }));
    EXPECT_EQ(none.itemCount(3), 0u);
}

TEST(FlowSizes, KeepOneSizeWhileAllAreEqual)
{
    FlowSizes sizes;
    for (int i = 0; i < 5; ++i)
        sizes.append({ 10, 20 });
    EXPECT_TRUE(sizes.areEqual());
    sizes.append({ 11, 20 });
    sizes.appendEqual({ 10, 20 }, 3);

    EXPECT_FALSE(sizes.areEqual());
    EXPECT_EQ(sizes.count(), 9u);
    EXPECT_EQ(sizes.at(4), (CGSize { 10, 20 }));
    EXPECT_EQ(sizes.at(5), (CGSize { 11, 20 }));
    EXPECT_EQ(sizes.at(8), (CGSize { 10, 20 }));
}

}
}
