#include "plugin/host/containing_window.hpp"

#include "objc/define.hpp"

BAContainingWindow BAContainingWindow::initWithFrame(CGRect frame) const
{
    auto const self =
        objc::send_super<BAContainingWindow, "initWithFrame:", BAContainingWindow>(*this, frame);
    if (!self)
        return nullptr;
    self.setRootViewController(objc::adopt(UIViewController::alloc().init<UIViewController>()));
    self.setWindowLevel(UIWindowLevelAlert - 1.0);
    self.setHidden(true);
    self.setSecure(true);
    self.setUserInteractionEnabled(true);
    self.makeKeyAndVisible();
    // Four answers to the four orientations; the last one counts.
    for (BOOL const autorotates : { false, false, true, false })
        self.setAutorotates(autorotates);
    self.setUserInteractionEnabled(true);
    self.rootViewController().view().setBackgroundColor(UIColor::clearColor());
    return self;
}

BOOL BAContainingWindow::pointInside(CGPoint point, objc::handle event) const
{
    UIView const root = rootViewController().view();
    UIView const hit = root.hitTest(point, event);
    return hit && !(hit == root);
}

void defineBAContainingWindow()
{
    objc::define<BAContainingWindow>()
        .method<"initWithFrame:", &BAContainingWindow::initWithFrame>()
        .method<"pointInside:withEvent:", &BAContainingWindow::pointInside>()
        .install();
}
