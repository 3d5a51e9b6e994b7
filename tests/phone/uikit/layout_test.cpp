#include "phone/uikit/ui_label.hpp"
#include "phone/uikit/ui_stack_view.hpp"
#include "tests/phone/uikit/core_fixture.hpp"

#include <algorithm>
#include <vector>

namespace phone::testing {

class Layout : public CoreTest {
protected:
    static objc::ref<UIView> freeView()
    {
        auto view = make<UIView>();
        view->setTranslatesAutoresizingMaskIntoConstraints(false);
        return view;
    }
    static NSLayoutConstraint activate(NSLayoutConstraint constraint)
    {
        constraint.setActive(true);
        return constraint;
    }
};

TEST_F(Layout, PinsALabelUnderAButton)
{
    auto const cell = addView(CGRectMake(0, 0, 74, 65));
    auto const button = make<UIView>(CGRectMake(14.5, 0, 45, 45));
    cell->addSubview(button);
    auto const label = make<UILabel>(CGRectMake(0, 42, 60, 20));
    label->setText("Ada"_ns);
    label->setFont(UIFont::systemFontOfSize(9.5));
    cell->addSubview(label);
    label->setTranslatesAutoresizingMaskIntoConstraints(false);

    activate(label->topAnchor().constraintEqualToAnchorConstant(button->bottomAnchor(), 0));
    activate(label->centerXAnchor().constraintEqualToAnchor(button->centerXAnchor()));
    activate(label->widthAnchor().constraintLessThanOrEqualToConstant(60));
    activate(label->heightAnchor().constraintEqualToConstant(15));
    layout();

    CGRect const frame = label->frame();
    EXPECT_EQ(frame.origin.y, 45);
    EXPECT_EQ(frame.size.height, 15);
    EXPECT_NEAR(frame.size.width, label->intrinsicContentSize().width, 0.34);
    EXPECT_NEAR(midX(frame), 37, 0.34);

    label->setText("A name that is far too long for the cell"_ns);
    layout();
    EXPECT_NEAR(label->frame().size.width, 60, 0.34);
    EXPECT_NEAR(midX(label->frame()), 37, 0.34);
}

TEST_F(Layout, WordsTheConstraintInTheTrace)
{
    auto const view = freeView();
    root().addSubview(view);

    activate(view->leadingAnchor().constraintEqualToAnchorConstant(root().leadingAnchor(), 10));
    activate(view->trailingAnchor().constraintEqualToAnchorConstant(root().trailingAnchor(), -10));
    activate(view->heightAnchor().constraintEqualToConstant(90));
    activate(view->widthAnchor().constraintLessThanOrEqualToConstant(60));

    Json const all = events("constraint");
    ASSERT_EQ(all.size(), 4u);
    EXPECT_EQ(all[0]["what"], "UIView.leading == UIView.leading + 10");
    EXPECT_EQ(all[1]["what"], "UIView.trailing == UIView.trailing - 10");
    EXPECT_EQ(all[2]["what"], "UIView.height == 90");
    EXPECT_EQ(all[3]["what"], "UIView.width <= 60");
}

TEST_F(Layout, LeadingIsTheRightSideFromRightToLeft)
{
    bootOptions().direction = LayoutDirection::rightToLeft;
    auto const view = freeView();
    root().addSubview(view);

    activate(view->leadingAnchor().constraintEqualToAnchorConstant(root().leadingAnchor(), 10));
    activate(view->widthAnchor().constraintEqualToConstant(50));
    layout();

    EXPECT_EQ(view->frame().origin.x, 390 - 10 - 50);
}

TEST_F(Layout, FollowsTheSuperviewAndTheConstant)
{
    auto const box = addView(CGRectMake(0, 0, 200, 100));
    auto const view = freeView();
    box->addSubview(view);
    activate(view->centerXAnchor().constraintEqualToAnchor(box->centerXAnchor()));
    auto const width = activate(view->widthAnchor().constraintEqualToConstant(20));
    activate(view->topAnchor().constraintEqualToAnchor(box->topAnchor()));
    activate(view->bottomAnchor().constraintEqualToAnchor(box->bottomAnchor()));
    layout();
    EXPECT_EQ(view->frame(), CGRectMake(90, 0, 20, 100));

    box->setFrame(CGRectMake(0, 0, 300, 50));
    width.setConstant(40);
    layout();

    EXPECT_EQ(view->frame(), CGRectMake(130, 0, 40, 50));
}

TEST_F(Layout, AConflictBreaksOneAndLeavesTheRest)
{
    auto const view = freeView();
    root().addSubview(view);
    activate(view->heightAnchor().constraintEqualToConstant(90));
    activate(view->heightAnchor().constraintEqualToConstant(50));
    activate(view->widthAnchor().constraintEqualToConstant(30));

    layout();

    EXPECT_EQ(view->bounds().size, (CGSize { 30, 90 }));
}

TEST_F(Layout, ConstraintsEndWhenTheViewLeaves)
{
    auto const view = freeView();
    root().addSubview(view);
    auto const pin = objc::retain(activate(view->leftAnchor().constraintEqualToAnchor(root().leftAnchor())));
    auto const own = objc::retain(activate(view->widthAnchor().constraintEqualToConstant(5)));

    view->removeFromSuperview();

    EXPECT_FALSE(pin->isActive());
    EXPECT_TRUE(own->isActive());
}

TEST_F(Layout, RaisesWithoutACommonAncestor)
{
    auto const view = freeView();
    auto const other = freeView();

    EXPECT_ANY_THROW(activate(view->leftAnchor().constraintEqualToAnchor(other->leftAnchor())));
}

TEST_F(Layout, AStackKeepsARequiredHeightAndFillsWithTheRest)
{
    auto const stack = make<UIStackView>(CGRectMake(0, 0, 300, 400));
    stack->setAxis(1);
    stack->setAlignment(static_cast<NSInteger>(UIStackViewAlignment::center));
    root().addSubview(stack);
    auto const strip = freeView(), filler = freeView();
    stack->addArrangedSubview(filler);
    stack->addArrangedSubview(strip);
    activate(strip->heightAnchor().constraintEqualToConstant(90));
    activate(strip->centerXAnchor().constraintEqualToAnchor(stack->centerXAnchor()));
    activate(strip->leadingAnchor().constraintEqualToAnchorConstant(stack->leadingAnchor(), 10));
    activate(strip->trailingAnchor().constraintEqualToAnchorConstant(stack->trailingAnchor(), -10));
    layout();

    EXPECT_EQ(strip->frame(), CGRectMake(10, 310, 280, 90));
    EXPECT_EQ(filler->frame().size.height, 310);

    filler->setHidden(true);
    strip->removeFromSuperview();
    EXPECT_EQ(stack->arranged().size(), 1u);
}

TEST_F(Layout, AStackIsAsHighAsWhatItHolds)
{
    auto const stack = make<UIStackView>();
    stack->setTranslatesAutoresizingMaskIntoConstraints(false);
    stack->setAxis(1);
    stack->setSpacing(8);
    root().addSubview(stack);
    activate(stack->topAnchor().constraintEqualToAnchorConstant(root().topAnchor(), 100));
    activate(stack->leadingAnchor().constraintEqualToAnchorConstant(root().leadingAnchor(), 8));
    activate(stack->trailingAnchor().constraintEqualToAnchorConstant(root().trailingAnchor(), -8));
    auto const card = freeView(), strip = freeView();
    stack->addArrangedSubview(card);
    stack->addArrangedSubview(strip);
    activate(card->heightAnchor().constraintEqualToConstant(160));
    activate(strip->heightAnchor().constraintEqualToConstant(90));
    layout();
    EXPECT_EQ(stack->frame(), CGRectMake(8, 100, 374, 258));
    EXPECT_EQ(strip->frame(), CGRectMake(0, 168, 374, 90));

    card->setHidden(true);
    layout();
    EXPECT_EQ(stack->frame().size.height, 90);
    EXPECT_EQ(strip->frame().origin.y, 0);
}

// Which of them is stretched is nobody's wish; where they lie in memory must not decide it.
TEST_F(Layout, AStackOfEqualsIsTheSameInEveryOrderOfMemory)
{
    std::vector<objc::ref<UILabel>> labels;
    for (int i = 0; i < 6; ++i) {
        labels.push_back(make<UILabel>());
        labels.back()->setText("Ada"_ns);
    }
    std::ranges::sort(labels, {}, [](auto const& label) { return label->object; });
    auto const widths = [&] {
        auto const stack = make<UIStackView>(CGRectMake(0, 0, 390, 40));
        root().addSubview(stack);
        for (auto const& label : labels)
            stack->addArrangedSubview(label);
        layout();
        std::vector<double> result;
        for (auto const& label : labels)
            result.push_back(label->frame().size.width);
        return result;
    };
    auto const upwards = widths();
    std::ranges::reverse(labels);
    EXPECT_EQ(widths(), upwards);
    EXPECT_NE(upwards.front(), upwards.back());
}

TEST_F(Layout, AnArrangedViewThatIsRemovedStaysASubview)
{
    auto const stack = make<UIStackView>(CGRectMake(0, 0, 100, 100));
    root().addSubview(stack);
    auto const a = make<UIView>(), b = make<UIView>();
    stack->send<"addArrangedSubview:">(a.get());
    stack->send<"insertArrangedSubview:atIndex:">(b.get(), NSUInteger { 0 });

    stack->send<"removeArrangedSubview:">(a.get());

    EXPECT_EQ(a->superview(), stack.get());
    EXPECT_EQ(stack->arranged(), (std::vector<UIView> { b }));
    Json const all = events("stack");
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0]["call"], "addArrangedSubview:");
    EXPECT_EQ(all[0]["index"], 0);
    EXPECT_EQ(all[1]["call"], "insertArrangedSubview:atIndex:");
    EXPECT_EQ(all[2]["index"], 1);
    EXPECT_ANY_THROW(stack->insertArrangedSubview(a, 5));
}

TEST_F(Layout, AHorizontalStackSharesEquallyAndReadsFromTheRight)
{
    bootOptions().direction = LayoutDirection::rightToLeft;
    auto const stack = make<UIStackView>(CGRectMake(0, 0, 100, 20));
    stack->setDistribution(static_cast<NSInteger>(UIStackViewDistribution::fillEqually));
    stack->setSpacing(10);
    root().addSubview(stack);
    auto const first = make<UIView>(), second = make<UIView>();
    stack->addArrangedSubview(first);
    stack->addArrangedSubview(second);
    layout();

    EXPECT_EQ(first->frame(), (CGRect { { roundToPixel(55), 0 }, { 45, 20 } }));
    EXPECT_EQ(second->frame(), CGRectMake(0, 0, 45, 20));
}

}
