#include "phone/springboard/screen_edges.hpp"

#include "phone/graphics/path.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/lock_screen_layout.hpp"
#include "phone/springboard/scene_parts.hpp"

namespace phone {

ScreenEdges::ScreenEdges(UIView superview, graphics::Color const& color)
    : m_statusBar(superview, StatusBarLeading::carrier)
    , m_homeIndicator(DrawnView::make({}, [color](DrawContext& context, CGRect bounds) {
        graphics::addCapsule(context.cairo, toGraphics(bounds));
        graphics::fill(context.cairo, color);
    }))
{
    m_statusBar.setColor(color);
    identify(m_homeIndicator, "home indicator");
    m_homeIndicator->setUserInteractionEnabled(false);
    superview.addSubview(m_homeIndicator);
}

void ScreenEdges::layOut(CGRect screen)
{
    LockScreenLayout const layout = lockScreenLayout(toGraphics(screen.size), bootOptions().ios);
    m_statusBar.layOut(layout.statusBar, layout.statusBarEnd);
    m_homeIndicator->setHidden(!layout.hasHomeIndicator());
    m_homeIndicator->setFrame(fromGraphics(layout.homeIndicator));
}

void ScreenEdges::setStatusBarHidden(bool hidden) { m_statusBar.view().setHidden(hidden); }

}
