// What tests of UIKit's core start from: the classes defined, a screen of 390 by 844 points at 3x, the clock
// at zero, a window that is shown.
#pragma once

#include "objc/define.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/ui_application.hpp"
#include "phone/uikit/ui_view_controller.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace phone::testing {

// A view that notes what it is told.
struct NotesState {
    std::vector<std::string> notes;
    std::function<void()> onDidMoveToWindow;
    std::function<void()> onLayout;
};
struct NotingView : objc::subclass<NotingView, "TestNotingView", UIView> {
    using subclass::subclass;
    std::vector<std::string>& notes() const { return state().notes; }
    NotesState& state() const { return objc::state<NotesState>(*this); }
    void willMoveToSuperview(UIView view) const;
    void didMoveToSuperview() const;
    void didMoveToWindow() const;
    void layoutSubviews() const;
    void tintColorDidChange() const;
};

class CoreTest : public ::testing::Test {
protected:
    CoreTest();
    ~CoreTest() override;

    UIWindow window() const { return m_window; }
    UIView root() const { return m_window->rootViewController().view(); }
    void advance(double seconds) { ASSERT_TRUE(clock().advance(seconds)); }
    static void layout()
    {
        clock().runLoopTurn();
        layoutWindowsIfNeeded();
    }
    static Json events(std::string const& kind);
    objc::ref<UIView> addView(CGRect frame) const
    {
        auto view = make<UIView>(frame);
        root().addSubview(view);
        return view;
    }

private:
    AutoreleasePool m_pool;
    objc::ref<UIWindow> m_window;
};

}
