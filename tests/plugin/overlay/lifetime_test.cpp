// Ten thousand showings and dismissals leave as much behind as one.
#include "phone/springboard/springboard_state.hpp"
#include "tests/plugin/overlay/overlay_fixture.hpp"

#include <malloc.h>

namespace phone {

namespace {

constexpr int kCycles = 10000;
constexpr std::size_t kSlack = 64 * 1024;   // bytes; less than seven for each cycle

std::size_t viewsIn(UIView view)
{
    std::size_t count = 1;
    for (UIView const child : view.children())
        count += viewsIn(child);
    return count;
}

std::size_t allViews()
{
    std::size_t count = 0;
    for (UIWindow const window : phone().windows())
        count += viewsIn(window);
    return count;
}

// What is taken from the heap now.
std::size_t heap() { return mallinfo2().uordblks; }

}

class OverlayLifetime : public OverlayTest {
protected:
    template <class LookShown, class LookGone>
    static void cycle(LookShown lookShown, LookGone lookGone)
    {
        gesture();
        wait(0.35);
        lookShown();
        gesture();
        wait(0.25);
        lookGone();
        // What was recorded is not what is measured.
        phone().trace().reset();
    }
};

TEST_F(OverlayLifetime, IsTheSameAfterTenThousandCycles)
{
    BootOptions system = options("15.4");
    system.locked = false;
    boot(system);
    summon();
    UIView const strip = phone().overlay();
    gesture();
    wait(0.5);
    ASSERT_FALSE(strip.superview());
    for (int i = 0; i < 50; ++i)
        cycle([] {}, [] {});
    std::size_t const views = allViews();
    std::size_t const windows = phone().windows().size();
    std::size_t const inside = viewsIn(strip);
    auto const owners = strip.send<"retainCount", NSUInteger>();
    std::size_t const bytes = heap();

    int shown = 0;
    int gone = 0;
    for (int i = 0; i < kCycles; ++i)
        cycle([&] { shown += strip.superview() && strip.frame().origin.y == 40; },
            [&] { gone += !strip.superview() && strip.frame().origin.y == -100; });

    EXPECT_EQ(shown, kCycles);
    EXPECT_EQ(gone, kCycles);
    EXPECT_LT(heap(), bytes + kSlack);
    EXPECT_EQ(allViews(), views);
    EXPECT_EQ(phone().windows().size(), windows);
    EXPECT_EQ(viewsIn(strip), inside);
    EXPECT_EQ((strip.send<"retainCount", NSUInteger>()), owners);
    EXPECT_TRUE(strip.recognizers().size() == 1);
    summon();
    EXPECT_EQ(phone().overlay(), strip);
}

TEST_F(OverlayLifetime, HidingAndShowingTheLockScreensStripAddsNothing)
{
    boot(options("15.4"));
    auto const cycle = [] {
        gesture(kLockScreenGesture);
        gesture(kLockScreenGesture);
        phone().trace().reset();
    };
    for (int i = 0; i < 20; ++i)
        cycle();
    std::size_t const views = allViews();
    std::size_t const bytes = heap();
    CGRect const place = onScreen(phone().strip());

    for (int i = 0; i < 200; ++i)
        cycle();

    EXPECT_LT(heap(), bytes + kSlack);
    EXPECT_EQ(allViews(), views);
    EXPECT_EQ(onScreen(phone().strip()), place);
}

}
