#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_collection_view.hpp"
#include "tests/phone/uikit/uikit_fixture.hpp"

#include <map>
#include <optional>
#include <set>

namespace phone::testing {
namespace {

struct SourceState {
    NSInteger count { 8 };
    bool isMirrored { false };
    bool givesNil { false };
    bool maySelect { true };
    std::vector<NSInteger> built;
    std::vector<NSInteger> selected;
    std::set<id> cells;   // every object that was ever handed out
    NSInteger sizeQuestions { 0 };
    objc::ref<Recorder> recorder { Recorder::make() };
};

// Data source and delegate: cells of 71 by 65 with a button of 45 in each.
struct Source : objc::subclass<Source, "TestSource", NSObject> {
    using subclass::subclass;
    SourceState& its() const { return objc::state<SourceState>(*this); }

    NSInteger count(UICollectionView, NSInteger) const { return its().count; }
    UICollectionViewCell cell(UICollectionView view, NSIndexPath path) const
    {
        its().built.push_back(path.item());
        if (its().givesNil)
            return {};
        auto const cell =
            view.send<"dequeueReusableCellWithReuseIdentifier:forIndexPath:", UICollectionViewCell>(
                "Cell"_ns, path);
        its().cells.insert(cell.object);
        if (its().isMirrored)
            cell.setTransform(scaling(-1, 1));
        for (UIView const old : cell.children()) {
            if (objc::cast<UIButton>(old))
                old.removeFromSuperview();
        }
        auto const button = make<UIButton>(CGRectMake(13, 0, 45, 45));
        button->setTag(path.item());
        button->addTarget(its().recorder.get(), objc::selector<"down:">(), ControlEvent::touchDown);
        button->addTarget(its().recorder.get(), objc::selector<"upInside:">(), ControlEvent::touchUpInside);
        button->addTarget(its().recorder.get(), objc::selector<"cancelled:">(), ControlEvent::touchCancel);
        cell.addSubview(button.get());
        return cell;
    }
    CGSize size(UICollectionView, UICollectionViewLayout, NSIndexPath) const
    {
        ++its().sizeQuestions;
        return { 71, 65 };
    }
    CGFloat lineSpacing(UICollectionView, UICollectionViewLayout, NSInteger) const { return 0; }
    BOOL shouldSelect(UICollectionView, NSIndexPath) const { return its().maySelect; }
    void didSelect(UICollectionView, NSIndexPath path) const { its().selected.push_back(path.item()); }
};

void defineSource()
{
    objc::define<Source>()
        .state<SourceState>()
        .method<"collectionView:numberOfItemsInSection:", &Source::count>()
        .method<"collectionView:cellForItemAtIndexPath:", &Source::cell>()
        .method<"collectionView:layout:sizeForItemAtIndexPath:", &Source::size>()
        .method<"collectionView:layout:minimumLineSpacingForSectionAtIndex:", &Source::lineSpacing>()
        .method<"collectionView:shouldSelectItemAtIndexPath:", &Source::shouldSelect>()
        .method<"collectionView:didSelectItemAtIndexPath:", &Source::didSelect>()
        .install();
}

class Collection : public UIKitTest {
protected:
    void SetUp() override
    {
        UIKitTest::SetUp();
        defineSource();
        m_source = objc::adopt(Source { Source::alloc().send<"init", objc::handle>().object });
    }
    SourceState& source() { return m_source->its(); }
    UICollectionViewFlowLayout layout() const { return m_layout; }

    // As the strip makes its own.
    UICollectionView makeView(CGRect frame = CGRectMake(10, 100, 355, 76.7))
    {
        m_layout = objc::adopt(UICollectionViewFlowLayout {
            UICollectionViewFlowLayout::alloc().send<"init", objc::handle>().object });
        m_layout->setScrollDirection(ScrollDirection::horizontal);
        m_view = objc::adopt(UICollectionView {
            UICollectionView::alloc()
                .send<"initWithFrame:collectionViewLayout:", objc::handle>(frame, m_layout.get())
                .object });
        m_view->setDataSource(m_source.get());
        m_view->setDelegate(m_source.get());
        m_view->registerClass(UICollectionViewCell::cls(), "Cell"_ns);
        window().addSubview(m_view.get());
        return m_view;
    }
    std::vector<NSInteger> visibleItems()
    {
        std::vector<NSInteger> items;
        NSArray const paths = m_view->indexPathsForVisibleItems();
        for (NSUInteger i = 0; i < paths.count(); ++i)
            items.push_back(NSIndexPath { paths.objectAtIndex(i).object }.item());
        return items;
    }
    using Items = std::vector<NSInteger>;

private:
    objc::ref<Source> m_source;
    objc::ref<UICollectionViewFlowLayout> m_layout;
    objc::ref<UICollectionView> m_view;
};

TEST_F(Collection, BuildsOnlyWhatIsInSight)
{
    source().count = 5000;
    auto const view = makeView();
    EXPECT_EQ(source().built.size(), 0u);
    view.layoutIfNeeded();

    EXPECT_EQ(visibleItems(), (Items { 0, 1, 2, 3, 4 }));
    EXPECT_EQ(source().built.size(), 5u);
    EXPECT_EQ(source().sizeQuestions, 5000);
    EXPECT_EQ(view.contentSize().width, 355000);
    EXPECT_NEAR(view.contentSize().height, 76.7, 1e-9);
    EXPECT_EQ(view.visibleCells().count(), 5u);
    CGRect const third = view.cellForItemAtIndexPath(NSIndexPath::of({ 0, 2 })).frame();
    EXPECT_EQ(third.origin.x, 142);
    EXPECT_NEAR(third.origin.y, (76.7 - 65) / 2, 1e-9);
    EXPECT_EQ(third.size, (CGSize { 71, 65 }));
    EXPECT_FALSE(view.cellForItemAtIndexPath(NSIndexPath::of({ 0, 7 })));
}

TEST_F(Collection, ReusesCellsThatLeave)
{
    source().count = 5000;
    auto const view = makeView();
    view.layoutIfNeeded();

    for (int i = 1; i <= 40; ++i) {
        view.setContentOffset({ 100.0 * i, 0 });
        view.layoutIfNeeded();
    }

    EXPECT_EQ(visibleItems(), (Items { 56, 57, 58, 59, 60, 61 }));
    EXPECT_LE(source().cells.size(), 7u);
    // The cells' frames are those of the items that they show now.
    EXPECT_EQ(view.cellForItemAtIndexPath(NSIndexPath::of({ 0, 57 })).frame().origin.x, 57 * 71);
}

TEST_F(Collection, ReloadsWhatTheDataSourceHasNow)
{
    auto const view = makeView();
    view.layoutIfNeeded();
    EXPECT_EQ(view.numberOfItemsInSection(0), 8);

    source().count = 2;
    EXPECT_EQ(view.numberOfItemsInSection(0), 8);
    view.reloadData();
    view.layoutIfNeeded();

    EXPECT_EQ(visibleItems(), (Items { 0, 1 }));
    EXPECT_EQ(view.contentSize().width, 142);
    EXPECT_EQ(view.numberOfItemsInSection(1), 0);
    EXPECT_EQ(view.numberOfSections(), 1);
}

TEST_F(Collection, AsksForSizesAgainWhenTheLayoutIsInvalidated)
{
    auto const view = makeView();
    view.layoutIfNeeded();
    source().sizeQuestions = 0;
    auto const built = source().built.size();

    layout().send<"invalidateLayout">();
    view.layoutIfNeeded();

    EXPECT_EQ(source().sizeQuestions, 8);
    EXPECT_EQ(source().built.size(), built);
}

TEST_F(Collection, FollowsItsHeight)
{
    auto const view = makeView();
    view.layoutIfNeeded();

    view.setFrame(CGRectMake(10, 100, 355, 100));
    view.layoutIfNeeded();

    EXPECT_EQ(view.cellForItemAtIndexPath(NSIndexPath::of({ 0, 0 })).frame().origin.y, 17.5);
}

TEST_F(Collection, TouchesReachTheButtonInACell)
{
    auto const view = makeView();
    view.layoutIfNeeded();

    tap({ 10 + 71 + 30, 120 });

    EXPECT_EQ(source().recorder->calls(), (Calls { "down", "upInside" }));
}

TEST_F(Collection, TouchesReachTheButtonInAMirroredCell)
{
    source().isMirrored = true;
    auto const view = makeView();
    view.setTransform(scaling(-1, 1));
    view.layoutIfNeeded();

    // The first item stands at the right end, and reads the right way round.
    UIView const hit = touchDelivery().hitTest({ 10 + 355 - 71 + 13 + 22, 120 });
    ASSERT_TRUE(objc::cast<UIButton>(hit));
    EXPECT_EQ(hit.tag(), 0);
    UIView const third = touchDelivery().hitTest({ 10 + 355 - 3 * 71 + 13 + 22, 120 });
    EXPECT_EQ(third.tag(), 2);
    UIView const cell = view.cellForItemAtIndexPath(NSIndexPath::of({ 0, 0 }));
    EXPECT_EQ(cell.transform(), scaling(-1, 1));
    EXPECT_NEAR(hit.convertPointToView({ 0, 0 }, {}).x, 10 + 355 - 71 + 13, 1e-9);
    // The mirror of a cell stays when the layout is done again.
    layout().send<"invalidateLayout">();
    view.layoutIfNeeded();
    EXPECT_EQ(cell.transform(), scaling(-1, 1));
}

TEST_F(Collection, ScrollTakesTheTouchFromAPressedButton)
{
    auto const view = makeView();
    view.layoutIfNeeded();

    down({ 111, 120 });
    advance(0.2);
    EXPECT_EQ(source().recorder->calls(), (Calls { "down" }));
    for (int i = 1; i <= 5; ++i) {
        advance(0.02);
        move({ 111.0 - 10 * i, 120 });
    }
    advance(0.3);
    up({ 61, 120 });

    EXPECT_EQ(source().recorder->calls(), (Calls { "down", "cancelled" }));
    EXPECT_NEAR(view.contentOffset().x, 40, 1e-9);
}

TEST_F(Collection, SelectsWhereItMay)
{
    auto const view = makeView();
    view.layoutIfNeeded();

    source().maySelect = false;
    tap({ 20, 165 });
    EXPECT_EQ(source().selected, (Items {}));
    source().maySelect = true;
    tap({ 20, 165 });
    EXPECT_EQ(source().selected, (Items { 0 }));
    EXPECT_TRUE(view.cellForItemAtIndexPath(NSIndexPath::of({ 0, 0 })).isSelected());
    tap({ 10 + 142 + 5, 165 });

    EXPECT_EQ(source().selected, (Items { 0, 2 }));
    EXPECT_FALSE(view.cellForItemAtIndexPath(NSIndexPath::of({ 0, 0 })).isSelected());
    EXPECT_EQ(view.indexPathsForSelectedItems().count(), 1u);
}

TEST_F(Collection, LeavesASlotEmptyWithoutACell)
{
    source().givesNil = true;
    auto const view = makeView();
    ::testing::internal::CaptureStderr();
    view.layoutIfNeeded();
    std::string const said = ::testing::internal::GetCapturedStderr();

    EXPECT_EQ(view.visibleCells().count(), 0u);
    EXPECT_NE(said.find("returned no cell for the item {0, 0}"), std::string::npos) << said;
    source().givesNil = false;
    view.reloadData();
    view.layoutIfNeeded();
    EXPECT_EQ(view.visibleCells().count(), 5u);
}

TEST_F(Collection, OfNothingIsEmpty)
{
    source().count = 0;
    auto const view = makeView();
    view.layoutIfNeeded();
    EXPECT_EQ(view.contentSize().width, 0);
    source().count = -3;
    view.reloadData();
    view.layoutIfNeeded();

    EXPECT_EQ(view.numberOfItemsInSection(0), 0);
    EXPECT_FALSE(view.indexPathForItemAtPoint({ 5, 5 }));
    view.setDataSource({});
    view.layoutIfNeeded();
    EXPECT_EQ(view.numberOfSections(), 0);
}

TEST_F(Collection, ExceptionOfTheDataSourceLeavesItUsable)
{
    auto const view = makeView();
    view.registerClass({}, "Cell"_ns);
    EXPECT_ANY_THROW(view.layoutIfNeeded());

    view.registerClass(UICollectionViewCell::cls(), "Cell"_ns);
    view.reloadData();
    view.layoutIfNeeded();

    EXPECT_EQ(view.visibleCells().count(), 5u);
}

TEST_F(Collection, DataSourceThatIsGoneIsNotAsked)
{
    auto const view = makeView();
    {
        auto const other = objc::adopt(Source { Source::alloc().send<"init", objc::handle>().object });
        view.setDataSource(other.get());
        view.setDelegate(other.get());
    }
    view.layoutIfNeeded();

    EXPECT_EQ(view.numberOfSections(), 0);
}

TEST_F(Collection, ScrollsToAnItem)
{
    source().count = 100;
    auto const view = makeView();
    view.layoutIfNeeded();

    view.scrollToItemAtIndexPath(NSIndexPath::of({ 0, 50 }), ScrollPosition::left, false);
    EXPECT_EQ(view.contentOffset().x, 3550);
    view.scrollToItemAtIndexPath(NSIndexPath::of({ 0, 99 }), ScrollPosition::left, false);
    EXPECT_EQ(view.contentOffset().x, 7100 - 355);
    view.scrollToItemAtIndexPath(NSIndexPath::of({ 0, 0 }), ScrollPosition::none, false);
    EXPECT_EQ(view.contentOffset().x, 0);
}

TEST_F(Collection, WithoutALayoutRaises)
{
    EXPECT_ANY_THROW(UICollectionView::alloc().send<"initWithFrame:collectionViewLayout:">(
        CGRectMake(0, 0, 10, 10), UICollectionViewLayout {}));
}

}
}
