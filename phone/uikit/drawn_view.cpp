#include "phone/uikit/drawn_view.hpp"

#include "objc/define.hpp"

namespace phone {

namespace {
struct DrawnViewState {
    DrawnView::Draw draw;
};
}

objc::ref<DrawnView> DrawnView::make(CGRect frame, Draw draw)
{
    auto view = phone::make<DrawnView>(frame);
    view->setUserInteractionEnabled(false);
    view->setOpaque(false);
    view->setDraw(std::move(draw));
    return view;
}

void DrawnView::setDraw(Draw draw) const
{
    objc::state<DrawnViewState>(DrawnView { object }).draw = std::move(draw);
    setNeedsDisplay();
}

void DrawnView::drawContent(DrawContext* context) const
{
    if (auto const& draw = objc::state<DrawnViewState>(DrawnView { object }).draw)
        draw(*context, bounds());
}

void defineDrawnView()
{
    objc::define<DrawnView>()
        .state<DrawnViewState>()
        .method<"phone_drawContent:", &DrawnView::drawContent>()
        .install();
}

}
