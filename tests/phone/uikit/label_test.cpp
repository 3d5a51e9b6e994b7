#include "phone/uikit/ui_label.hpp"

#include "tests/phone/uikit/core_fixture.hpp"

namespace phone::testing {

class Label : public CoreTest { };

TEST_F(Label, StartsWithThePlatformsDefaults)
{
    auto const label = make<UILabel>();

    EXPECT_EQ(label->font().pointSize(), 17);
    EXPECT_EQ(label->textColor(), UIColor::labelColor());
    EXPECT_EQ(label->textAlignment(), static_cast<NSInteger>(NSTextAlignment::natural));
    EXPECT_EQ(label->numberOfLines(), 1);
    EXPECT_EQ(label->lineBreakMode(), 4);
    EXPECT_FALSE(label->isUserInteractionEnabled());
    EXPECT_EQ(label->shadowOffset(), (CGSize { 0, -1 }));
    EXPECT_FALSE(label->text());
}

TEST_F(Label, TakesItsHeightFromTheFont)
{
    auto const label = make<UILabel>();
    label->setText("Ada"_ns);
    double const height = label->intrinsicContentSize().height;
    EXPECT_NEAR(height, 20.33, 0.01);   // 20.29 up to the next pixel at 3x

    label->setText("王芳"_ns);
    EXPECT_EQ(label->intrinsicContentSize().height, height);
    label->setText(""_ns);
    EXPECT_EQ(label->intrinsicContentSize(), CGSize {});
}

TEST_F(Label, WrapsAsManyLinesAsAllowed)
{
    auto const label = make<UILabel>(CGRectMake(0, 0, 100, 0));
    label->setText("one two three four five six seven eight nine ten"_ns);
    label->setNumberOfLines(0);
    double const all = label->sizeThatFits({ 100, 0 }).height;
    label->setNumberOfLines(2);

    EXPECT_GT(all, 60);
    EXPECT_NEAR(label->sizeThatFits({ 100, 0 }).height, 40.67, 0.34);
    EXPECT_LE(label->sizeThatFits({ 100, 0 }).width, 100.34);
    EXPECT_GT(label->sizeThatFits({ 0, 0 }).width, 100);
}

TEST_F(Label, ShrinksOnlyWhenAskedTo)
{
    auto const label = make<UILabel>();
    EXPECT_EQ(label->textStyle().minimumScale, 1);
    label->setAdjustsFontSizeToFitWidth(true);
    EXPECT_EQ(label->textStyle().minimumScale, 1);
    label->setMinimumScaleFactor(0.5);
    EXPECT_EQ(label->textStyle().minimumScale, 0.5);
}

TEST_F(Label, NaturalFollowsTheDirectionOfTheInterface)
{
    auto const label = make<UILabel>();
    EXPECT_EQ(label->textStyle().direction, graphics::WritingDirection::leftToRight);
    bootOptions().language = "he";
    EXPECT_EQ(label->textStyle().direction, graphics::WritingDirection::rightToLeft);
}

TEST_F(Label, FontsAnswerForWhatTheyAre)
{
    EXPECT_FALSE(UIFont::fontWithName("NoSuchFont-Bold"_ns, 12));
    EXPECT_EQ(UIFont::fontWithName("HelveticaNeue-Bold"_ns, 12).pointSize(), 12);
    EXPECT_EQ(UIFont::systemFontOfSizeWeight(10.5, UIFontWeightMedium).font().weight, 0.23);
    EXPECT_TRUE(UIFont::systemFontOfSize(12).isEqual(UIFont::systemFontOfSize(12)));
    EXPECT_NEAR(UIFont::systemFontOfSize(17).lineHeight(), 20.29, 0.01);
}

TEST_F(Label, ColoursAnswerForWhatTheyAre)
{
    UIColor const color = UIColor::colorWithRed(1, 0, 0, 0.5);

    EXPECT_TRUE(color.isEqual(UIColor::colorWithRed(1, 0, 0, 0.5)));
    EXPECT_FALSE(color.isEqual("red"_ns));
    EXPECT_EQ(color.colorWithAlphaComponent(0.1).rgba().alpha, 0.1);
    EXPECT_EQ(color.CGColor()->color, color.rgba());
    EXPECT_FALSE(UIColor {}.colorWithAlphaComponent(1));
    EXPECT_EQ(UIColor::labelColor().rgba(), graphics::Color::black());
    bootOptions().appearance = Appearance::dark;
    EXPECT_EQ(UIColor::labelColor().rgba(), graphics::Color::white());
}

}
