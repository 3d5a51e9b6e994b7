#include "objc/hook.hpp"
#include "phone/springboard/adjunct_list.hpp"
#include "phone/springboard/lock_screen.hpp"
#include "phone/springboard/media_card.hpp"
#include "phone/springboard/substrate.hpp"
#include "tests/phone/springboard/phone_fixture.hpp"

namespace phone {

namespace {

struct IsPresenting {
    static inline objc::original<BOOL(UIViewController, SEL)> original;
    static inline bool asksBefore = false;
    static BOOL replacement(UIViewController self, SEL cmd) { return !asksBefore || original(self, cmd); }
};
struct Insert {
    static inline objc::original<void(UIViewController, SEL, objc::handle, BOOL)> original;
    static inline int calls = 0;
    static void replacement(UIViewController self, SEL cmd, objc::handle item, BOOL animated)
    {
        original(self, cmd, item, animated);
        ++calls;
    }
};

void hookIsPresenting()
{
    auto const pair = objc::hook<IsPresenting>();
    MSHookMessageEx(objc::boundary::class_of(phone().adjunctController().object),
        objc::selector<"isPresentingContent">(), pair.replacement, pair.slot);
}

}

class AdjunctList : public PhoneTest {
protected:
    static UIStackView stack() { return adjunctStack(phone().adjunctController()); }
    static UIView area() { return springBoard().lockScreen->adjunctArea(); }
};

TEST_F(AdjunctList, ShowsNothingWhileNothingPlays)
{
    boot();

    EXPECT_TRUE(stack().arranged().empty());
    EXPECT_TRUE(area().isHidden());
    EXPECT_FALSE((phone().adjunctController().send<"isPresentingContent", BOOL>()));
}

TEST_F(AdjunctList, ShowsTheMediaItemWhileMusicPlays)
{
    boot();

    phone().setMusicPlaying(true);
    phone().advance(1);

    ASSERT_EQ(stack().arranged().size(), 1u);
    EXPECT_FALSE(area().isHidden());
    layoutWindowsIfNeeded();
    EXPECT_EQ(stack().arranged()[0].frame(), CGRectMake(0, 0, 390, kMediaCardHeight));
    EXPECT_EQ(area().frame().size, (CGSize { 390, kMediaCardHeight }));
}

TEST_F(AdjunctList, TakesTheMediaItemAwayWhenMusicStops)
{
    boot();
    phone().setMusicPlaying(true);

    phone().setMusicPlaying(false);

    EXPECT_TRUE(stack().arranged().empty());
    EXPECT_TRUE(area().isHidden());
}

TEST_F(AdjunctList, ShowsItsAreaWhenAHookSaysThatItPresents)
{
    boot();
    hookIsPresenting();

    phone().adjunctController().send<"_updatePresentingContent">();

    EXPECT_FALSE(area().isHidden());
}

TEST_F(AdjunctList, TellsWhenItsOwnImplementationRuns)
{
    boot();
    hookIsPresenting();
    IsPresenting::asksBefore = true;
    std::size_t const before = phone().trace().count();

    phone().adjunctController().send<"isPresentingContent", BOOL>();

    Json const events = phone().trace().events(before);
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0]["kind"], "previous");
    EXPECT_EQ(events[0]["class"], "CSNotificationAdjunctListViewController");
    EXPECT_EQ(events[0]["selector"], "isPresentingContent");
    EXPECT_EQ(events[0]["result"], false);
}

TEST_F(AdjunctList, InsertsThroughTheMethodThatHooksReplace)
{
    boot();
    auto const pair = objc::hook<Insert>();
    MSHookMessageEx(objc::boundary::class_of(phone().adjunctController().object),
        objc::selector<"_insertItem:animated:">(), pair.replacement, pair.slot);

    phone().setMusicPlaying(true);

    EXPECT_EQ(Insert::calls, 1);
    EXPECT_EQ(stack().arranged().size(), 1u);
}

TEST_F(AdjunctList, AppendsItemsBelowWhatIsThere)
{
    boot();
    AutoreleasePool const pool;
    auto const view = make<UIView>();
    stack().insertArrangedSubview(view, 0);

    phone().setMusicPlaying(true);

    ASSERT_EQ(stack().arranged().size(), 2u);
    EXPECT_EQ(stack().arranged()[0], UIView(view.get()));
}

TEST_F(AdjunctList, TakesNilForNothing)
{
    boot();

    phone().adjunctController().send<"_insertItem:animated:">(objc::handle {}, BOOL(true));
    phone().adjunctController().send<"_removeItem:animated:">(objc::handle {}, BOOL(true));

    EXPECT_TRUE(stack().arranged().empty());
}

TEST_F(AdjunctList, KeepsItsWidthOnItsSide)
{
    boot();
    phone().setMusicPlaying(true);

    EXPECT_TRUE(phone().setOrientation(3));

    EXPECT_EQ(stack().bounds().size.width, 390);
    EXPECT_EQ(phone().windows().front().bounds().size, (CGSize { 844, 390 }));
}

}
