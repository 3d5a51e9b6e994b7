// What tests of scrolling, touches and alerts start from: a window on a screen of 375 by 667 points, the
// clock at zero, and helpers that act as a finger does.
#pragma once

#include "phone/kernel/services.hpp"
#include "phone/uikit/interaction.hpp"
#include "phone/uikit/touch_delivery.hpp"
#include "phone/uikit/ui_application.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_window.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace phone::testing {

// Counts what it is told. Any selector listed here may be used as an action.
struct RecorderState {
    std::vector<std::string> calls;
    std::vector<NSInteger> states;   // of the recogniser that sent `gesture:`
};

using Calls = std::vector<std::string>;

struct Recorder : objc::subclass<Recorder, "TestRecorder", NSObject> {
    using subclass::subclass;
    static objc::ref<Recorder> make();

    std::vector<std::string>& calls() const { return objc::state<RecorderState>(*this).calls; }
    std::vector<NSInteger>& states() const { return objc::state<RecorderState>(*this).states; }
    std::size_t count(std::string const& call) const;

    void down(objc::handle sender) const;
    void upInside(objc::handle sender) const;
    void upOutside(objc::handle sender) const;
    void cancelled(objc::handle sender) const;
    void gesture(objc::handle recognizer) const;
    void other(objc::handle recognizer) const;
    void scrollViewDidScroll(objc::handle view) const;
    void scrollViewWillBeginDragging(objc::handle view) const;
    void scrollViewDidEndDragging(objc::handle view, BOOL decelerates) const;
    void scrollViewDidEndDecelerating(objc::handle view) const;
    void scrollViewDidEndScrollingAnimation(objc::handle view) const;
};

class UIKitTest : public ::testing::Test {
protected:
    void SetUp() override;

    UIWindow window() const { return m_window; }
    void advance(double seconds) { ASSERT_TRUE(clock().advance(seconds)); }
    void down(CGPoint point, int finger = 0) { touchDelivery().touchDown(point, finger); }
    void move(CGPoint point, int finger = 0) { touchDelivery().touchMoved(point, finger); }
    void up(CGPoint point, int finger = 0) { touchDelivery().touchUp(point, finger); }
    void tap(CGPoint point)
    {
        down(point);
        advance(0.05);
        up(point);
        advance(0);
    }
    // In a straight line at display rate; then held for `rest` seconds and lifted.
    void drag(CGPoint from, CGPoint to, double seconds, double rest = 0);

private:
    AutoreleasePool m_pool;
    objc::ref<UIWindow> m_window;
    objc::ref<UIApplication> m_application;
};

}
