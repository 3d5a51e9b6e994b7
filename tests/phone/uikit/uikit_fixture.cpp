#include "tests/phone/uikit/uikit_fixture.hpp"

#include "phone/foundation/foundation.hpp"
#include "phone/uikit/uikit.hpp"
#include "tests/support/fork_runner.hpp"

#include <algorithm>
#include <cmath>

void warmUpTests() { }

namespace phone::testing {

objc::ref<Recorder> Recorder::make()
{
    return objc::adopt(Recorder { Recorder::alloc().send<"init", objc::handle>().object });
}

std::size_t Recorder::count(std::string const& call) const
{
    return static_cast<std::size_t>(std::ranges::count(calls(), call));
}

void Recorder::down(objc::handle) const { calls().push_back("down"); }
void Recorder::upInside(objc::handle) const { calls().push_back("upInside"); }
void Recorder::upOutside(objc::handle) const { calls().push_back("upOutside"); }
void Recorder::cancelled(objc::handle) const { calls().push_back("cancelled"); }
void Recorder::gesture(objc::handle recognizer) const
{
    calls().push_back("gesture");
    states().push_back(recognizer.send<"state", NSInteger>());
}
void Recorder::other(objc::handle) const { calls().push_back("other"); }
void Recorder::scrollViewDidScroll(objc::handle) const { calls().push_back("didScroll"); }
void Recorder::scrollViewWillBeginDragging(objc::handle) const { calls().push_back("willBeginDragging"); }
void Recorder::scrollViewDidEndDragging(objc::handle, BOOL decelerates) const
{
    calls().push_back(decelerates ? "didEndDragging, decelerates" : "didEndDragging");
}
void Recorder::scrollViewDidEndDecelerating(objc::handle) const { calls().push_back("didEndDecelerating"); }
void Recorder::scrollViewDidEndScrollingAnimation(objc::handle) const
{
    calls().push_back("didEndScrollingAnimation");
}

void UIKitTest::SetUp()
{
    bootOptions() = {};
    bootOptions().width = 375;
    bootOptions().height = 667;
    bootOptions().scale = 2;
    ASSERT_TRUE(clock().start({}));
    defineFoundation();
    defineUIKit();
    defineInteraction();
    objc::define<Recorder>()
        .state<RecorderState>()
        .method<"down:", &Recorder::down>()
        .method<"upInside:", &Recorder::upInside>()
        .method<"upOutside:", &Recorder::upOutside>()
        .method<"cancelled:", &Recorder::cancelled>()
        .method<"gesture:", &Recorder::gesture>()
        .method<"other:", &Recorder::other>()
        .method<"scrollViewDidScroll:", &Recorder::scrollViewDidScroll>()
        .method<"scrollViewWillBeginDragging:", &Recorder::scrollViewWillBeginDragging>()
        .method<"scrollViewDidEndDragging:willDecelerate:", &Recorder::scrollViewDidEndDragging>()
        .method<"scrollViewDidEndDecelerating:", &Recorder::scrollViewDidEndDecelerating>()
        .method<"scrollViewDidEndScrollingAnimation:", &Recorder::scrollViewDidEndScrollingAnimation>()
        .install();
    m_application = objc::adopt(UIApplication { UIApplication::alloc().send<"init", objc::handle>().object });
    m_window = make<UIWindow>(CGRectMake(0, 0, 375, 667));
    m_window->makeKeyAndVisible();
}

void UIKitTest::drag(CGPoint from, CGPoint to, double seconds, double rest)
{
    down(from);
    int const steps = std::max(static_cast<int>(std::lround(seconds * 60)), 1);
    for (int i = 1; i <= steps; ++i) {
        advance(seconds / steps);
        double const part = static_cast<double>(i) / steps;
        move({ from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part });
    }
    if (rest > 0)
        advance(rest);
    up(to);
}

}
