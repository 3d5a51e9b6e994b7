#include "phone/uikit/ui_responder.hpp"

#include "objc/define.hpp"
#include "phone/foundation/weak.hpp"

namespace phone {

namespace {
Weak<UIResponder> g_firstResponder;
}

UIResponder firstResponder() { return g_firstResponder.get(); }

UIResponder UIResponder::nextResponder() const { return {}; }
BOOL UIResponder::canBecomeFirstResponder() const { return false; }

BOOL UIResponder::becomeFirstResponder() const
{
    if (g_firstResponder.get() == *this)
        return true;
    if (!send<"canBecomeFirstResponder", BOOL>())
        return false;
    if (auto const current = g_firstResponder.get(); current && !current.send<"resignFirstResponder", BOOL>())
        return false;
    g_firstResponder = *this;
    return true;
}

BOOL UIResponder::resignFirstResponder() const
{
    if (g_firstResponder.get() == *this)
        g_firstResponder = {};
    return true;
}

BOOL UIResponder::isFirstResponder() const { return g_firstResponder.get() == *this; }

void UIResponder::touchesBegan(objc::handle touches, objc::handle event) const
{
    next().send<"touchesBegan:withEvent:">(touches, event);
}
void UIResponder::touchesMoved(objc::handle touches, objc::handle event) const
{
    next().send<"touchesMoved:withEvent:">(touches, event);
}
void UIResponder::touchesEnded(objc::handle touches, objc::handle event) const
{
    next().send<"touchesEnded:withEvent:">(touches, event);
}
void UIResponder::touchesCancelled(objc::handle touches, objc::handle event) const
{
    next().send<"touchesCancelled:withEvent:">(touches, event);
}

void defineUIResponder()
{
    objc::define<UIResponder>()
        .method<"nextResponder", &UIResponder::nextResponder>()
        .method<"canBecomeFirstResponder", &UIResponder::canBecomeFirstResponder>()
        .method<"becomeFirstResponder", &UIResponder::becomeFirstResponder>()
        .method<"resignFirstResponder", &UIResponder::resignFirstResponder>()
        .method<"isFirstResponder", &UIResponder::isFirstResponder>()
        .method<"touchesBegan:withEvent:", &UIResponder::touchesBegan>()
        .method<"touchesMoved:withEvent:", &UIResponder::touchesMoved>()
        .method<"touchesEnded:withEvent:", &UIResponder::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &UIResponder::touchesCancelled>()
        .install();
}

}
