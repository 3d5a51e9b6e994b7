// OverlayWindow: a window of SpringBoard's over the lock screen that holds one card, while there is one.
// Main thread.
#pragma once

#include "objc/define.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_window.hpp"

namespace phone {

template <objc::fixed_string WindowName, objc::fixed_string ControllerName>
class OverlayWindow {
    struct Window : objc::subclass<Window, WindowName, UIWindow> {
        using Window::subclass::subclass;
    };
    struct Controller : objc::subclass<Controller, ControllerName, UIViewController> {
        using Controller::subclass::subclass;
        BOOL canShowWhileLocked() const { return true; }
    };

public:
    static void defineClasses()
    {
        objc::define<Window>().install();
        objc::define<Controller>()
            .template method<"_canShowWhileLocked", &Controller::canShowWhileLocked>()
            .install();
    }

    // Fades in, in the place of a card that is shown already.
    void show(double level, objc::ref<UIView> card)
    {
        bool const wasShown = isShown();
        auto const window = make<Window>(screenBounds());
        auto const controller =
            objc::adopt(Controller { Controller::alloc().template send<"init", objc::handle>().object });
        card->setFrame(window->bounds());
        card->setAutoresizingMask(Autoresizing::width | Autoresizing::height);
        controller->setView(card);
        window->setWindowLevel(level);
        window->setRootViewController(controller.get());
        window->setHidden(false);
        if (m_window)
            m_window->setHidden(true);
        m_window = objc::retain(UIWindow { window.get().object });
        if (wasShown)
            return;
        card->setAlpha(0);
        animateWithOptions(
            kFadeSeconds, 0, AnimationOption::allowUserInteraction, [card] { card->setAlpha(1); });
    }

    // At once for touches; it fades from the screen.
    void hide()
    {
        if (!m_window)
            return;
        auto const window = std::exchange(m_window, {});
        window->setUserInteractionEnabled(false);
        animate(
            kFadeSeconds, [window] { window->setAlpha(0); }, [window](bool) { window->setHidden(true); });
    }

    bool isShown() const { return bool(m_window); }
    UIWindow window() const { return m_window; }

    // The screen has turned.
    void layOut() const
    {
        if (m_window)
            m_window->setFrame(screenBounds());
    }

private:
    static constexpr double kFadeSeconds = 0.25;

    objc::ref<UIWindow> m_window;
};

}
