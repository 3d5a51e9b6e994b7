// Where the overlay strip stands: shown, turned, put away and shown again, on every width of screen, in every orientation, for
// every number of contacts. The expected places are computed from the middle of the strip outwards, in whole numbers.
#include "phone/uikit/geometry.hpp"
#include "tests/plugin/overlay/overlay_fixture.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>

namespace phone {

namespace {

struct ScreenSize {
    int width, height;   // points, with the phone held upright
};

void PrintTo(ScreenSize const& size, std::ostream* stream) { *stream << size.width << "x" << size.height; }

constexpr int kHeight = 88;   // of the strip

struct Situation {
    ScreenSize screen;
    int contacts;
    bool isDynamic;

    // Of the screen's bounds, as they stand.
    int wide(int orientation) const { return orientation >= 3 ? screen.height : screen.width; }
    int high(int orientation) const { return orientation >= 3 ? screen.width : screen.height; }

    // Along the contacts. Made once, for the orientation of the first showing.
    int length(int orientation) const
    {
        int const span = (orientation >= 3 ? high(orientation) : wide(orientation)) - 20;
        return isDynamic ? span * std::min(contacts, 5) / 5 : span;
    }

    // In the window, which stays as the display is held upright.
    CGRect box(double middleX, double middleY, int orientation, int length) const
    {
        double const across = orientation >= 3 ? kHeight : length;
        double const down = orientation >= 3 ? length : kHeight;
        return { { middleX - across / 2, middleY - down / 2 }, { across, down } };
    }
    CGRect shown(int orientation, int length) const
    {
        double const half = wide(orientation) / 2.0;
        switch (orientation) {
        case 1: return box(half, 40 + kHeight / 2.0, 1, length);
        case 2: return box(40 + length / 2.0, half, 2, length);
        case 3: return box(high(3) - 98 + kHeight / 2.0, half, 3, length);
        default: return box(10 + kHeight / 2.0, half, 4, length);
        }
    }
    // Differs from the shown one upside down alone.
    CGRect turned(int orientation, int length) const
    {
        return orientation == 2 ? box(10 + length / 2.0, wide(2) / 2.0, 2, length)
                                : shown(orientation, length);
    }
    CGRect gone(CGRect from, int orientation) const
    {
        if (orientation == 1)
            from.origin.y = -100;
        else
            from.origin.x = orientation == 4 ? -100 : high(orientation) + 100;
        return from;
    }
    CGPoint start(int orientation, int length) const
    {
        CGRect const end = shown(orientation, length);
        switch (orientation) {
        case 1: return { midX(end), -100 + kHeight / 2.0 };
        case 3: return { high(3) - 20 + end.size.width / 2, midY(end) };
        default: return { -100 + end.size.width / 2, midY(end) };
        }
    }
};

std::string text(CGRect r)
{
    char buffer[120];
    std::snprintf(
        buffer, sizeof buffer, "(%g, %g, %g, %g)", r.origin.x, r.origin.y, r.size.width, r.size.height);
    return buffer;
}

bool isNear(CGRect a, CGRect b)
{
    return std::abs(a.origin.x - b.origin.x) < 1e-9 && std::abs(a.origin.y - b.origin.y) < 1e-9
        && std::abs(a.size.width - b.size.width) < 1e-9 && std::abs(a.size.height - b.size.height) < 1e-9;
}

}

class OverlayFrame : public OverlayTest {
protected:
    static void expectFrame(CGRect expected, std::string const& where)
    {
        UIView const strip = phone().overlay();
        ASSERT_TRUE(strip) << where;
        EXPECT_TRUE(isNear(strip.frame(), expected))
            << where << ": " << text(strip.frame()) << " instead of " << text(expected);
    }
    // Whichever way it is turned.
    static void expectSize(UIView strip, int length, std::string const& where)
    {
        EXPECT_NEAR(strip.bounds().size.width, length, 1e-9) << where;
        EXPECT_NEAR(strip.bounds().size.height, kHeight, 1e-9) << where;
    }
    // The strip as it is drawn now.
    static CGPoint drawnMiddle(UIView strip) { return strip.presentation().center; }

    static void tell(Situation const& situation, int first)
    {
        auto const named = [&](char const* what, int orientation) {
            return std::string(what) + " in " + std::to_string(orientation) + ", first shown in "
                + std::to_string(first) + ", " + std::to_string(situation.contacts) + " contacts"
                + (situation.isDynamic ? ", dynamic" : "");
        };
        int const length = situation.length(first);
        turn(first);
        gesture();
        expectFrame(situation.shown(first, length), named("shown", first));
        wait(0.35);
        UIView const strip = phone().overlay();
        ASSERT_TRUE(strip);
        EXPECT_NEAR(drawnMiddle(strip).x, strip.center().x, 1e-9);
        expectSize(strip, length, named("size", first));

        for (int const step : { 1, 2, 3, 0 }) {
            int const orientation = 1 + (first - 1 + step) % 4;
            turn(orientation);
            expectFrame(situation.turned(orientation, length), named("turned", orientation));
            wait(0.35);

            CGRect const before = strip.frame();
            gesture();
            expectFrame(situation.gone(before, orientation), named("put away", orientation));
            wait(0.25);
            EXPECT_FALSE(strip.superview()) << named("put away", orientation);

            gesture();
            expectFrame(situation.shown(orientation, length), named("shown again", orientation));
            CGPoint const start = situation.start(orientation, length);
            EXPECT_NEAR(drawnMiddle(strip).x, start.x, 1e-9) << named("coming", orientation);
            EXPECT_NEAR(drawnMiddle(strip).y, start.y, 1e-9) << named("coming", orientation);
            wait(0.35);
            expectSize(strip, length, named("size", orientation));
        }
    }

    // In a process of its own, since a phone makes one overlay strip in its life.
    static void tellApart(Situation const& situation, int first)
    {
        std::fflush(nullptr);
        pid_t const child = fork();
        if (child == 0) {
            putContacts(std::size_t(situation.contacts));
            tell(situation, first);
            std::fflush(nullptr);
            _exit(HasFailure() ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << situation.contacts << " contacts, first shown in " << first;
    }
};

class OverlayFrames : public OverlayFrame, public testing::WithParamInterface<ScreenSize> { };

TEST_P(OverlayFrames, AreTheSameWhicheverWayTheStripCame)
{
    for (bool const isDynamic : { true, false }) {
        std::fflush(nullptr);
        pid_t const child = fork();
        if (child == 0) {
            BootOptions system = options("15.4", { { "isDynamicSize", isDynamic } });
            system.width = GetParam().width;
            system.height = GetParam().height;
            system.scale = 1;
            system.locked = false;
            boot(system);
            for (int contacts = 1; contacts <= 8; ++contacts)
                for (int first = 1; first <= 4; ++first)
                    tellApart({ GetParam(), contacts, isDynamic }, first);
            std::fflush(nullptr);
            phone().close();
            _exit(HasFailure() ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << (isDynamic ? "dynamic size" : "full size");
    }
}

// The screens of phones, and the same widths as they lie on their side.
INSTANTIATE_TEST_SUITE_P(Screens, OverlayFrames,
    testing::Values(ScreenSize { 375, 812 }, ScreenSize { 390, 844 }, ScreenSize { 414, 896 },
        ScreenSize { 430, 932 }, ScreenSize { 736, 414 }, ScreenSize { 812, 375 }, ScreenSize { 844, 390 },
        ScreenSize { 896, 414 }, ScreenSize { 932, 430 }));

TEST_F(OverlayFrame, IsWhatItIsOnAKnownPhone)
{
    struct Row {
        std::size_t contacts;
        bool isDynamic;
        double width;
    };
    // 370 points between the margins, 74 a contact, five at most.
    for (Row const row : { Row { 3, true, 222 }, Row { 7, true, 370 }, Row { 3, false, 370 } }) {
        std::fflush(nullptr);
        pid_t const child = fork();
        if (child == 0) {
            boot(options("15.4", { { "isDynamicSize", row.isDynamic } }, row.contacts));
            gesture();
            expectFrame({ { 195 - row.width / 2, 40 }, { row.width, 88 } }, "shown");
            phone().close();
            _exit(HasFailure() ? 1 : 0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << row.contacts;
    }
}

struct FirstFrame {
    int orientation;
    double x, y;
    // Where it comes in, and where it stays.
    std::vector<double> start, middle, end;
};

void PrintTo(FirstFrame const& row, std::ostream* stream) { *stream << row.orientation; }

class OverlayFirstFrame : public OverlayFrame, public testing::WithParamInterface<FirstFrame> { };

// The strip is made with it, before it is turned and put where it comes in.
TEST_P(OverlayFirstFrame, IsGivenByTheOrientation)
{
    boot(options("15.4", Json::object(), 5));
    turn(GetParam().orientation);
    std::size_t const before = phone().trace().count();

    gesture();

    auto const frames = events("frame", before);
    ASSERT_FALSE(frames.empty());
    EXPECT_EQ(frames[0]["view"], "overlay");
    EXPECT_EQ(frames[0]["call"], "initWithFrame:");
    EXPECT_EQ(frames[0]["value"]["rect"], Json::array({ GetParam().x, GetParam().y, 370.0, 88.0 }));
}

// Then it stands off the screen, and from there it comes in.
TEST_P(OverlayFirstFrame, GivesWayToThePlaceWhereItComesIn)
{
    boot(options("15.4", Json::object(), 5));
    turn(GetParam().orientation);
    std::size_t const before = phone().trace().count();

    gesture();

    auto const frames = events("frame", before);
    ASSERT_GE(frames.size(), 3u);
    auto const expect = [](Json const& frame, char const* call, char const* kind,
                            std::vector<double> const& numbers) {
        EXPECT_EQ(frame["call"], call);
        Json const& value = frame["value"][kind];
        ASSERT_EQ(value.size(), numbers.size());
        for (std::size_t i = 0; i < numbers.size(); ++i)
            EXPECT_NEAR(value[i].get<double>(), numbers[i], 1e-9) << call << ' ' << i;
    };
    auto const last = frames.end();
    expect(last[-3], "setFrame:", "rect", GetParam().start);
    expect(last[-2], "setCenter:", "point", GetParam().middle);
    expect(last[-1], "setFrame:", "rect", GetParam().end);
}

// To the right it begins at a part of the width, by a number that single precision makes a little more than 3.2.
INSTANTIATE_TEST_SUITE_P(Orientations, OverlayFirstFrame,
    testing::Values(FirstFrame { 1, 10, -100, { 10, -100, 370, 88 }, { 195, -56 }, { 10, 40, 370, 88 } },
        FirstFrame { 2, -100, 10, { -100, 151, 370, 88 }, { 85, 195 }, { 40, 151, 370, 88 } },
        FirstFrame {
            3, 370, 844 / 3.200000047683716, { 370, 237, 88, 370 }, { 414, 422 }, { 292, 237, 88, 370 } },
        FirstFrame { 4, -100, 195, { -100, 237, 88, 370 }, { -56, 422 }, { 10, 237, 88, 370 } }));

}
