#include "phone/uikit/ui_image_view.hpp"

#include "objc/define.hpp"

namespace phone {

namespace {

struct ImageViewState {
    objc::ref<UIImage> image;
    objc::ref<UIImage> highlightedImage;
    bool isHighlighted { false };
    bool isDimmed { false };
};

ImageViewState& stateOf(UIImageView view) { return objc::state<ImageViewState>(UIImageView { view.object }); }

// How far a pressed button darkens its image; as seen, UIKit's own value is not published.
constexpr double kDimming = 0.4;

UIImage shownImage(UIImageView view)
{
    ImageViewState const& state = stateOf(view);
    return state.isHighlighted && state.highlightedImage ? state.highlightedImage : state.image;
}

}

UIImageView UIImageView::initWithFrame(CGRect frame) const
{
    auto const self =
        objc::send_super<UIImageView, "initWithFrame:", UIImageView>(UIImageView { object }, frame);
    if (self)
        self.setUserInteractionEnabled(false);
    return self;
}

UIImageView UIImageView::initWithImage(UIImage image) const
{
    auto const self = send<"initWithFrame:", UIImageView>(CGRect { {}, image.size() });
    if (self)
        self.setImage(image);
    return self;
}

UIImage UIImageView::image() const { return object ? stateOf(*this).image.get() : UIImage {}; }
void UIImageView::setImage(UIImage image) const
{
    if (!object || image == this->image())
        return;
    stateOf(*this).image = objc::retain(image);
    setNeedsDisplay();
    invalidateIntrinsicContentSize();
}
UIImage UIImageView::highlightedImage() const
{
    return object ? stateOf(*this).highlightedImage.get() : UIImage {};
}
void UIImageView::setHighlightedImage(UIImage image) const
{
    stateOf(*this).highlightedImage = objc::retain(image);
    setNeedsDisplay();
}
BOOL UIImageView::isHighlighted() const { return object && stateOf(*this).isHighlighted; }
void UIImageView::setHighlighted(BOOL highlighted) const
{
    stateOf(*this).isHighlighted = highlighted;
    setNeedsDisplay();
}
void UIImageView::setDimmed(bool dimmed) const
{
    if (!object || stateOf(*this).isDimmed == dimmed)
        return;
    stateOf(*this).isDimmed = dimmed;
    setNeedsDisplay();
}

CGSize UIImageView::sizeThatFits(CGSize size) const { return image() ? image().size() : size; }
CGSize UIImageView::intrinsicContentSize() const
{
    return image() ? image().size() : CGSize { kNoIntrinsicMetric, kNoIntrinsicMetric };
}

CGRect imageRect(CGSize image, CGRect bounds, UIViewContentMode mode)
{
    if (!(image.width > 0) || !(image.height > 0))
        return {};
    CGSize const space = bounds.size;
    auto placed = [&](CGSize size, double x, double y) {
        return CGRect { { bounds.origin.x + (space.width - size.width) * x,
                            bounds.origin.y + (space.height - size.height) * y },
            size };
    };
    auto scaled = [&](double factor) { return CGSize { image.width * factor, image.height * factor }; };
    switch (mode) {
    case UIViewContentMode::scaleToFill:
    case UIViewContentMode::redraw: return bounds;
    case UIViewContentMode::scaleAspectFit:
        return placed(scaled(std::min(space.width / image.width, space.height / image.height)), 0.5, 0.5);
    case UIViewContentMode::scaleAspectFill:
        return placed(scaled(std::max(space.width / image.width, space.height / image.height)), 0.5, 0.5);
    case UIViewContentMode::center: return placed(image, 0.5, 0.5);
    case UIViewContentMode::top: return placed(image, 0.5, 0);
    case UIViewContentMode::bottom: return placed(image, 0.5, 1);
    case UIViewContentMode::left: return placed(image, 0, 0.5);
    case UIViewContentMode::right: return placed(image, 1, 0.5);
    case UIViewContentMode::topLeft: return placed(image, 0, 0);
    case UIViewContentMode::topRight: return placed(image, 1, 0);
    case UIViewContentMode::bottomLeft: return placed(image, 0, 1);
    case UIViewContentMode::bottomRight: return placed(image, 1, 1);
    }
    return bounds;
}

void UIImageView::drawContent(DrawContext* context) const
{
    UIImage const image = shownImage(*this);
    if (!image)
        return;
    bool const isTemplate =
        image.renderingMode() == static_cast<NSInteger>(UIImageRenderingMode::alwaysTemplate);
    graphics::Bitmap bitmap =
        isTemplate ? graphics::tinted(image.bitmap(), tintColor().rgba()) : image.bitmap();
    auto const rect =
        toGraphics(imageRect(image.size(), bounds(), static_cast<UIViewContentMode>(contentMode())));
    graphics::drawBitmap(context->cairo, bitmap, rect);
    if (stateOf(*this).isDimmed)
        graphics::drawBitmap(
            context->cairo, graphics::tinted(image.bitmap(), graphics::Color::black()), rect, kDimming);
}

void defineUIImageView()
{
    objc::define<UIImageView>()
        .state<ImageViewState>()
        .method<"initWithFrame:", &UIImageView::initWithFrame>()
        .method<"initWithImage:", &UIImageView::initWithImage>()
        .method<"image", &UIImageView::image>()
        .method<"setImage:", &UIImageView::setImage>()
        .method<"highlightedImage", &UIImageView::highlightedImage>()
        .method<"setHighlightedImage:", &UIImageView::setHighlightedImage>()
        .method<"isHighlighted", &UIImageView::isHighlighted>()
        .method<"setHighlighted:", &UIImageView::setHighlighted>()
        .method<"sizeThatFits:", &UIImageView::sizeThatFits>()
        .method<"intrinsicContentSize", &UIImageView::intrinsicContentSize>()
        .method<"phone_drawContent:", &UIImageView::drawContent>()
        .install();
}

}
