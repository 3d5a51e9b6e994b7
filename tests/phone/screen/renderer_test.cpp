// Geometry, clipping, groups and borders of the renderer, on view trees made by hand.
#include "phone/kernel/services.hpp"
#include "phone/uikit/animation.hpp"
#include "tests/phone/screen/screen_test_support.hpp"

#include <cmath>
#include <numbers>

namespace phone::screentest {

using RendererTest = ScreenTest;

constexpr CGSize kSize { 60, 60 };
constexpr CGRect kAll { {}, kSize };

TEST_F(RendererTest, FillsAViewsFrameAtEveryScale)
{
    auto const root = box(kAll, kWhite);
    auto const child = box({ { 10, 20 }, { 30, 5 } }, kRed);
    root->addSubview(child);

    for (int const scale : { 1, 2, 3 }) {
        auto const picture = drawn(root, kSize, scale);

        ASSERT_EQ(picture.pixelWidth(), 60 * scale);
        EXPECT_EQ(pixelAt(picture, 10 * scale, 20 * scale), kRed);
        EXPECT_EQ(pixelAt(picture, 40 * scale - 1, 25 * scale - 1), kRed);
        EXPECT_EQ(pixelAt(picture, 10 * scale - 1, 20 * scale), kWhite);
        EXPECT_EQ(pixelAt(picture, 40 * scale, 24 * scale), kWhite);
        EXPECT_EQ(pixelAt(picture, 10 * scale, 25 * scale), kWhite);
    }
}

TEST_F(RendererTest, DrawsLaterSubviewsOverEarlierOnes)
{
    auto const root = box(kAll, kWhite);
    root->addSubview(box({ { 0, 0 }, { 40, 40 } }, kRed));
    root->addSubview(box({ { 20, 20 }, { 40, 40 } }, kBlue));

    auto const picture = drawn(root, kSize);

    EXPECT_EQ(pixelAt(picture, 10, 10), kRed);
    EXPECT_EQ(pixelAt(picture, 30, 30), kBlue);
}

TEST_F(RendererTest, LeavesHiddenAndFullyFadedViewsOut)
{
    auto const root = box(kAll, kWhite);
    auto const hidden = box({ {}, { 30, 60 } }, kRed);
    hidden->addSubview(box({ {}, { 30, 60 } }, kBlue));
    hidden->setHidden(true);
    auto const faded = box({ { 30, 0 }, { 30, 60 } }, kRed);
    faded->setAlpha(0);
    root->addSubview(hidden);
    root->addSubview(faded);

    auto const picture = drawn(root, kSize);

    EXPECT_EQ(pixelAt(picture, 15, 30), kWhite);
    EXPECT_EQ(pixelAt(picture, 45, 30), kWhite);
}

TEST_F(RendererTest, FadesAViewAndItsSubviewsAsOnePicture)
{
    auto const root = box(kAll, kWhite);
    auto const group = box({ {}, { 60, 60 } }, kRed);
    group->addSubview(box({ {}, { 30, 60 } }, kBlue));
    group->setAlpha(0.5);
    root->addSubview(group);

    auto const picture = drawn(root, kSize);

    // Nothing of the red shines through the blue.
    EXPECT_TRUE(isNear(pixelAt(picture, 15, 30), { 127, 127, 255 })) << pixelAt(picture, 15, 30);
    EXPECT_TRUE(isNear(pixelAt(picture, 45, 30), { 255, 127, 127 })) << pixelAt(picture, 45, 30);
}

TEST_F(RendererTest, FadesSubviewsThatStickOutOfTheGroupToo)
{
    auto const root = box(kAll, kWhite);
    auto const group = box({ { 10, 10 }, { 10, 10 } }, kRed);
    group->addSubview(box({ { 20, 20 }, { 20, 20 } }, kBlue));
    group->setAlpha(0.5);
    root->addSubview(group);

    auto const picture = drawn(root, kSize);

    EXPECT_TRUE(isNear(pixelAt(picture, 40, 40), { 127, 127, 255 })) << pixelAt(picture, 40, 40);
}

TEST_F(RendererTest, ClipsSubviewsOnlyWhereItIsTold)
{
    auto const root = box(kAll, kWhite);
    auto const parent = box({ { 10, 10 }, { 20, 20 } }, kRed);
    parent->addSubview(box({ { 10, 10 }, { 30, 30 } }, kBlue));
    root->addSubview(parent);

    EXPECT_EQ(pixelAt(drawn(root, kSize), 40, 40), kBlue);
    parent->setClipsToBounds(true);
    auto const clipped = drawn(root, kSize);

    EXPECT_EQ(pixelAt(clipped, 40, 40), kWhite);
    EXPECT_EQ(pixelAt(clipped, 29, 29), kBlue);
}

TEST_F(RendererTest, RoundsTheBackgroundAndWithClippingTheSubviewsToo)
{
    auto const root = box(kAll, kWhite);
    auto const parent = box({ { 10, 10 }, { 40, 40 } }, kRed);
    parent->setCornerRadius(20);
    auto const child = box({ {}, { 40, 40 } }, kBlue);
    root->addSubview(parent);

    EXPECT_EQ(pixelAt(drawn(root, kSize), 12, 12), kWhite);
    EXPECT_EQ(pixelAt(drawn(root, kSize), 30, 30), kRed);
    parent->addSubview(child);
    EXPECT_EQ(pixelAt(drawn(root, kSize), 12, 12), kBlue);
    parent->setClipsToBounds(true);
    auto const clipped = drawn(root, kSize);

    EXPECT_EQ(pixelAt(clipped, 12, 12), kWhite);
    EXPECT_EQ(pixelAt(clipped, 30, 30), kBlue);
    EXPECT_TRUE(isNear(pixelAt(clipped, 10, 30), kBlue, 10));   // the circle touches the side here
}

// What is covered used to shine through at the rim where each layer was cut by itself.
TEST_F(RendererTest, ShowsNothingOfCoveredLayersAtARoundRim)
{
    auto const root = box(kAll, kWhite);
    auto const parent = box({ { 10, 10 }, { 40, 40 } }, kRed);
    parent->setCornerRadius(20);
    parent->setClipsToBounds(true);
    parent->addSubview(box({ {}, { 40, 40 } }, kWhite));
    root->addSubview(parent);

    auto const picture = drawn(root, kSize, 2);

    for (int y = 0; y < picture.pixelHeight(); ++y) {
        for (int x = 0; x < picture.pixelWidth(); ++x)
            ASSERT_TRUE(isNear(pixelAt(picture, x, y), kWhite)) << x << ", " << y << pixelAt(picture, x, y);
    }
}

TEST_F(RendererTest, RoundsOnlyTheCornersThatTheLayerNames)
{
    auto const root = box(kAll, kWhite);
    auto const child = box(kAll, kRed);
    child->setCornerRadius(20);
    child->layerProperties().maskedCorners = 1 | 8;   // top left, bottom right
    root->addSubview(child);

    auto const picture = drawn(root, kSize);

    EXPECT_EQ(pixelAt(picture, 1, 1), kWhite);
    EXPECT_EQ(pixelAt(picture, 58, 1), kRed);
    EXPECT_EQ(pixelAt(picture, 1, 58), kRed);
    EXPECT_EQ(pixelAt(picture, 58, 58), kWhite);
}

TEST_F(RendererTest, DrawsTheBorderInsideAndOverSubviews)
{
    auto const root = box(kAll, kWhite);
    auto const framed = box({ { 10, 10 }, { 40, 40 } }, kRed);
    framed->layerProperties().borderWidth = 3;
    framed->layerProperties().borderColor = { 0, 1, 0, 1 };
    framed->addSubview(box({ {}, { 40, 40 } }, kBlue));
    root->addSubview(framed);

    auto const picture = drawn(root, kSize);

    EXPECT_EQ(pixelAt(picture, 9, 30), kWhite);
    EXPECT_EQ(pixelAt(picture, 10, 30), kGreen);
    EXPECT_EQ(pixelAt(picture, 12, 30), kGreen);
    EXPECT_EQ(pixelAt(picture, 13, 30), kBlue);
    EXPECT_EQ(pixelAt(picture, 49, 30), kGreen);
    EXPECT_EQ(pixelAt(picture, 50, 30), kWhite);
}

TEST_F(RendererTest, TurnsContentWithTheView)
{
    auto const root = box(kAll, kWhite);
    auto const view = compass({ { 10, 20 }, { 40, 20 } });
    root->addSubview(view);

    auto const upright = drawn(root, kSize);
    view->setTransform(rotation(std::numbers::pi / 2));   // a quarter clockwise
    auto const turned = drawn(root, kSize);

    EXPECT_EQ(pixelAt(upright, 30, 25), kRed);
    EXPECT_EQ(pixelAt(upright, 30, 35), kBlue);
    EXPECT_EQ(pixelAt(upright, 10, 30), kGreen);
    // The top is at the right now, and the left at the top.
    EXPECT_EQ(pixelAt(turned, 35, 30), kRed);
    EXPECT_EQ(pixelAt(turned, 25, 30), kBlue);
    EXPECT_EQ(pixelAt(turned, 30, 10), kGreen);
    EXPECT_EQ(pixelAt(turned, 30, 49), pixelAt(turned, 30, 45));
    EXPECT_EQ(pixelAt(turned, 15, 30), kWhite);
}

TEST_F(RendererTest, MirrorsWithANegativeScale)
{
    auto const root = box(kAll, kWhite);
    auto const view = compass({ { 10, 20 }, { 40, 20 } });
    view->setTransform(scaling(-1, 1));
    root->addSubview(view);

    auto const picture = drawn(root, kSize);

    EXPECT_EQ(pixelAt(picture, 48, 30), kGreen);
    EXPECT_EQ(pixelAt(picture, 11, 25), kRed);
}

TEST_F(RendererTest, ShowsWhatTheBoundsOriginScrollsTo)
{
    auto const root = box(kAll, kWhite);
    auto const scrolled = box({ { 10, 10 }, { 20, 20 } }, kWhite);
    scrolled->setClipsToBounds(true);
    scrolled->addSubview(box({ { 100, 0 }, { 10, 20 } }, kRed));
    root->addSubview(scrolled);

    EXPECT_EQ(pixelAt(drawn(root, kSize), 15, 20), kWhite);
    scrolled->setBounds({ { 100, 0 }, { 20, 20 } });
    auto const picture = drawn(root, kSize);

    EXPECT_EQ(pixelAt(picture, 15, 20), kRed);
    EXPECT_EQ(pixelAt(picture, 25, 20), kWhite);
}

TEST_F(RendererTest, DrawsNothingOfAViewWithoutArea)
{
    auto const root = box(kAll, kWhite);
    auto const flat = box({ { 10, 10 }, { 40, 40 } }, kRed);
    flat->setTransform(scaling(0, 1));
    auto const far = box({ { 1e15, 0 }, { 10, 10 } }, kRed);
    root->addSubview(flat);
    root->addSubview(far);
    root->addSubview(box({ { 50, 50 }, { 10, 10 } }, kBlue));

    auto const picture = drawn(root, kSize);

    EXPECT_EQ(pixelAt(picture, 30, 30), kWhite);
    EXPECT_EQ(pixelAt(picture, 55, 55), kBlue);   // what comes after is still drawn
}

TEST_F(RendererTest, FollowsAnAnimationOnItsWay)
{
    ASSERT_TRUE(clock().start({}).hasValue());
    auto const root = box(kAll, kWhite);
    auto const mover = box({ { 0, 0 }, { 20, 60 } }, kRed);
    root->addSubview(mover);
    animateWithOptions(1, 0, AnimationOption::curveLinear, [&] {
        mover->setFrame({ { 40, 0 }, { 20, 60 } });
    });

    auto const before = drawn(root, kSize);
    clock().advance(0.5);
    auto const halfway = drawn(root, kSize);
    clock().advance(0.6);
    auto const after = drawn(root, kSize);

    EXPECT_EQ(pixelAt(before, 5, 30), kRed);
    EXPECT_EQ(pixelAt(halfway, 5, 30), kWhite);
    EXPECT_EQ(pixelAt(halfway, 30, 30), kRed);
    EXPECT_EQ(pixelAt(after, 55, 30), kRed);
}

TEST_F(RendererTest, ThrowsALayersShadow)
{
    auto const root = box(kAll, kWhite);
    auto const raised = box({ { 20, 10 }, { 20, 20 } }, kRed);
    LayerProperties& layer = raised->layerProperties();
    layer.shadowOpacity = 1;
    layer.shadowRadius = 2;
    layer.shadowOffset = { 0, 15 };
    root->addSubview(raised);

    auto const picture = drawn(root, kSize);

    EXPECT_EQ(pixelAt(picture, 30, 20), kRed);
    EXPECT_TRUE(isNear(pixelAt(picture, 30, 35), kBlack, 12)) << pixelAt(picture, 30, 35);
    EXPECT_EQ(pixelAt(picture, 5, 35), kWhite);
}

TEST_F(RendererTest, DrawsTheSameBytesEachTime)
{
    auto const root = box(kAll, { 30, 80, 200 });
    root->addSubview(compass({ { 4, 4 }, { 33, 17 } }));
    auto const group = box({ { 10, 10 }, { 35, 35 } }, { 250, 120, 10, 200 });
    group->setAlpha(0.7);
    group->setCornerRadius(9.5);
    group->setClipsToBounds(true);
    group->setTransform(rotation(0.3));
    group->addSubview(compass({ { 3, 3 }, { 20, 20 } }));
    root->addSubview(group);
    root->addSubview(effect({ { 20, 20 }, { 30, 30 } }, 1));

    auto const first = drawn(root, kSize, 3);
    auto const second = drawn(root, kSize, 3);

    EXPECT_TRUE(isEqual(first, second));
}

TEST_F(RendererTest, RefusesATargetWithoutPixels)
{
    auto const root = box(kAll, kWhite);

    Renderer().drawViews({ root }, {});

    EXPECT_FALSE(Renderer().drawScreen(-1));
}

}
