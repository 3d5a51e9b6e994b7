// Backdrops of effect views: what they blur, and how they fade.
#include "phone/screen/effect_styles.hpp"
#include "tests/phone/screen/screen_test_support.hpp"

namespace phone::screentest {

using EffectViewTest = ScreenTest;

constexpr CGSize kEffectSize { 120, 120 };
constexpr CGRect kEffectArea { {}, kEffectSize };

// White at the left, black at the right.
objc::ref<UIView> halves(objc::ref<UIView> left)
{
    auto root = make<UIView>(kEffectArea);
    root->setBackgroundColor(UIColor::blackColor());
    root->addSubview(left);
    return root;
}

TEST_F(EffectViewTest, BlursWhatLiesBeneathAndNothingElse)
{
    auto const root = halves(box({ {}, { 60, 120 } }, kWhite));
    root->addSubview(effect({ { 0, 0 }, { 120, 60 } }, 1));

    auto const picture = drawn(root, kEffectSize);

    // Below the effect the edge is sharp.
    EXPECT_EQ(pixelAt(picture, 59, 90), kWhite);
    EXPECT_EQ(pixelAt(picture, 60, 90), kBlack);
    // In it brightness falls steadily from left to right.
    for (int x = 20; x < 100; x += 4)
        EXPECT_GE(pixelAt(picture, x, 30).red, pixelAt(picture, x + 4, 30).red) << x;
    int const step = std::abs(pixelAt(picture, 59, 30).red - pixelAt(picture, 60, 30).red);
    EXPECT_LT(step, 12);
    EXPECT_GT(pixelAt(picture, 5, 30).red, pixelAt(picture, 115, 30).red + 100);
}

TEST_F(EffectViewTest, BlursLowerRootsToo)
{
    auto const lower = halves(box({ {}, { 60, 120 } }, kWhite));
    auto const upper = make<UIView>(kEffectArea);
    upper->addSubview(effect(kEffectArea, 1));
    auto const bitmap = graphics::Bitmap::withPoints({ kEffectSize.width, kEffectSize.height }, 1);

    Renderer().drawViews({ lower, upper }, bitmap);

    EXPECT_GT(pixelAt(bitmap, 66, 60).red, 90);   // some of the white has come over
    EXPECT_LT(pixelAt(bitmap, 53, 60).red, 245);
}

TEST_F(EffectViewTest, IsLighterOrDarkerByItsStyle)
{
    auto const gray = Pixel { 128, 128, 128 };
    auto shade = [&](NSInteger style) {
        auto const root = box(kEffectArea, gray);
        root->addSubview(effect(kEffectArea, style));
        return pixelAt(drawn(root, kEffectSize), 60, 60).red;
    };

    EXPECT_GT(shade(0), shade(1));
    EXPECT_GT(shade(1), 128);
    EXPECT_LT(shade(2), 128);
    for (NSInteger material = 11; material <= 15; ++material)
        EXPECT_GT(shade(material), 128) << material;
    for (NSInteger material = 16; material <= 20; ++material)
        EXPECT_LT(shade(material), 128) << material;
    EXPECT_EQ(blurStyleOf(7, true), blurStyleOf(17, true));
    EXPECT_EQ(blurStyleOf(7, false), blurStyleOf(12, false));
    EXPECT_EQ(blurStyleOf(99, false), blurStyleOf(4, false));
}

TEST_F(EffectViewTest, LaysItsBackgroundColourOverTheBlur)
{
    auto const root = box(kEffectArea, kWhite);
    auto const blur = effect(kEffectArea, 2);
    root->addSubview(blur);
    Pixel const plain = pixelAt(drawn(root, kEffectSize), 60, 60);

    blur->setBackgroundColor(UIColor::of({ 1, 0, 0, 0.5 }));
    Pixel const tinted = pixelAt(drawn(root, kEffectSize), 60, 60);

    EXPECT_TRUE(isNear(tinted, { (plain.red + 255) / 2, plain.green / 2, plain.blue / 2 })) << tinted;
}

TEST_F(EffectViewTest, CutsTheBackdropByItsRoundCorners)
{
    auto const root = box(kEffectArea, kWhite);
    auto const blur = effect({ { 20, 20 }, { 80, 80 } }, 2);
    blur->setCornerRadius(30);
    blur->setClipsToBounds(true);
    root->addSubview(blur);

    auto const picture = drawn(root, kEffectSize);

    EXPECT_EQ(pixelAt(picture, 23, 23), kWhite);
    EXPECT_LT(pixelAt(picture, 60, 60).red, 128);
}

TEST_F(EffectViewTest, FadesBetweenTheBackdropAndWhatIsBeneath)
{
    auto const root = halves(box({ {}, { 60, 120 } }, kWhite));
    auto const group = make<UIView>(CGRect { { 10, 10 }, { 100, 100 } });
    group->addSubview(effect({ {}, { 100, 100 } }, 2));
    auto const without = drawn(root, kEffectSize, 2);
    root->addSubview(group);
    auto const with = drawn(root, kEffectSize, 2);

    group->setAlpha(0.5);
    auto const faded = drawn(root, kEffectSize, 2);

    for (int x = 0; x < 240; x += 7) {
        for (int y = 0; y < 240; y += 7) {
            Pixel const a = pixelAt(without, x, y);
            Pixel const b = pixelAt(with, x, y);
            EXPECT_TRUE(isNear(pixelAt(faded, x, y),
                { (a.red + b.red) / 2, (a.green + b.green) / 2, (a.blue + b.blue) / 2 }))
                << x << ", " << y << pixelAt(faded, x, y);
        }
    }
}

// At the rim of the group the blur used to miss what lies around it.
TEST_F(EffectViewTest, BlursAsMuchInsideARoundClippedParent)
{
    auto const root = halves(box({ {}, { 60, 120 } }, kWhite));
    auto const parent = make<UIView>(CGRect { { 62, 10 }, { 50, 100 } });
    parent->addSubview(effect({ {}, { 50, 100 } }, 1));
    root->addSubview(parent);
    auto const plain = drawn(root, kEffectSize);

    parent->setClipsToBounds(true);
    parent->setCornerRadius(8);
    auto const rounded = drawn(root, kEffectSize);

    for (int x = 72; x < 112; x += 3)
        EXPECT_EQ(pixelAt(rounded, x, 60), pixelAt(plain, x, 60)) << x;
    EXPECT_EQ(pixelAt(rounded, 62, 60), pixelAt(plain, 62, 60));
    EXPECT_EQ(pixelAt(rounded, 62, 10), kBlack);
}

TEST_F(EffectViewTest, ShowsTheContentViewSharpOverTheBlur)
{
    auto const root = box(kEffectArea, kWhite);
    auto const blur = effect(kEffectArea, 2);
    blur->contentView().addSubview(box({ { 30, 30 }, { 20, 20 } }, kGreen));
    root->addSubview(blur);

    auto const picture = drawn(root, kEffectSize);

    EXPECT_EQ(pixelAt(picture, 30, 30), kGreen);
    EXPECT_LT(pixelAt(picture, 29, 30).red, 128);
}

TEST_F(EffectViewTest, TakesABackdropAgainOnlyWhenWhatIsBeneathChanges)
{
    auto const lower = box({ {}, { 60, 120 } }, kWhite);
    auto const root = halves(lower);
    root->addSubview(effect(kEffectArea, 1));
    auto const draw = [&root](BackdropCache& cache) {
        auto const bitmap = graphics::Bitmap::withPoints({ kEffectSize.width, kEffectSize.height }, 1);
        auto const context = bitmap.newContext();
        cache.beginFrame();
        cairo_rectangle(context.get(), 0, 0, 60, 120);
        cairo_set_source_rgb(context.get(), root->isHidden() ? 1 : 0, 0, 0);
        cairo_fill(context.get());
        cairo_rectangle(context.get(), 0, 0, 120, 120);
        auto const backdrop = cache.take(context.get(), graphics::kLightBlur);
        cache.endFrame();
        return backdrop.bitmap;
    };
    BackdropCache cache;

    auto const first = draw(cache);
    auto const second = draw(cache);
    root->setHidden(true);
    auto const third = draw(cache);

    EXPECT_EQ(cache.hits(), 1u);
    EXPECT_EQ(first, second);
    EXPECT_FALSE(isEqual(first, third));
}

}
