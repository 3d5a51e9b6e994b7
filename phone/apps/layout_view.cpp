#include "phone/apps/layout_view.hpp"

#include "objc/define.hpp"

namespace phone {

objc::ref<LayoutView> LayoutView::make(CGRect frame) { return phone::make<LayoutView>(frame); }

void LayoutView::setLayout(Layout layout) const
{
    objc::state<Layout>(*this) = std::move(layout);
    setNeedsLayout();
}

void LayoutView::layoutSubviews() const
{
    objc::send_super<LayoutView, "layoutSubviews">(*this);
    if (Layout const& layout = objc::state<Layout>(*this))
        layout(bounds());
}

void defineLayoutView()
{
    objc::define<LayoutView>()
        .state<LayoutView::Layout>()
        .method<"layoutSubviews", &LayoutView::layoutSubviews>()
        .install();
}

}
