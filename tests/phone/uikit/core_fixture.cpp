#include "tests/phone/uikit/core_fixture.hpp"

#include "phone/foundation/foundation.hpp"
#include "phone/uikit/uikit.hpp"
#include "tests/support/fork_runner.hpp"

void warmUpTests() { }

namespace phone::testing {

void NotingView::willMoveToSuperview(UIView view) const
{
    notes().push_back(view ? "willMoveToSuperview" : "willMoveToSuperview nil");
}
void NotingView::didMoveToSuperview() const { notes().push_back("didMoveToSuperview"); }
void NotingView::didMoveToWindow() const
{
    notes().push_back(window() ? "didMoveToWindow" : "didMoveToWindow nil");
    if (auto const act = std::exchange(state().onDidMoveToWindow, {}))
        act();
}
void NotingView::layoutSubviews() const
{
    notes().push_back("layoutSubviews");
    if (state().onLayout)
        state().onLayout();
}
void NotingView::tintColorDidChange() const { notes().push_back("tintColorDidChange"); }

CoreTest::CoreTest()
{
    bootOptions() = {};
    EXPECT_TRUE(clock().start({}));
    defineFoundation();
    defineUIKit();
    objc::define<NotingView>()
        .state<NotesState>()
        .method<"willMoveToSuperview:", &NotingView::willMoveToSuperview>()
        .method<"didMoveToSuperview", &NotingView::didMoveToSuperview>()
        .method<"didMoveToWindow", &NotingView::didMoveToWindow>()
        .method<"layoutSubviews", &NotingView::layoutSubviews>()
        .method<"tintColorDidChange", &NotingView::tintColorDidChange>()
        .install();
    m_window = make<UIWindow>(CGRectMake(0, 0, 390, 844));
    auto const controller = objc::adopt(UIViewController { UIViewController::alloc().init().object });
    m_window->setRootViewController(controller);
    m_window->makeKeyAndVisible();
    layout();
    trace().reset();
}

CoreTest::~CoreTest() { m_window = nullptr; }

Json CoreTest::events(std::string const& kind)
{
    Json found = Json::array();
    for (auto const& event : trace().events()) {
        if (event["kind"] == kind)
            found.push_back(event);
    }
    return found;
}

}
