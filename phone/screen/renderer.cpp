#include "phone/screen/renderer.hpp"

#include "phone/graphics/path.hpp"
#include "phone/kernel/services.hpp"
#include "phone/screen/effect_styles.hpp"
#include "phone/screen/screen_marks.hpp"
#include "phone/screen/shadow.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_view_state.hpp"
#include "phone/uikit/ui_visual_effect_view.hpp"

#include <cairo.h>

#include <cmath>

namespace phone {

namespace {

using graphics::Rect;

// Less than half a step of an 8-bit channel: nothing that could be seen.
constexpr double kLeastAlpha = 0.5 / 255;

// Farther out Cairo's 24.8 fixed-point coordinates wrap.
constexpr double kFarthestPixel = 1 << 22;

cairo_matrix_t toCairo(CGAffineTransform const& t) { return { t.a, t.b, t.c, t.d, t.tx, t.ty }; }

// From bounds space to the superview's, as shown now.
CGAffineTransform transformOf(ViewPresentation const& shown)
{
    CGAffineTransform const toCenter = translation(-midX(shown.bounds), -midY(shown.bounds));
    return concatenated(concatenated(toCenter, shown.transform), translation(shown.center.x, shown.center.y));
}

// Cairo takes no matrix without an inverse, and a view squeezed to a line shows nothing.
bool canDrawWith(cairo_matrix_t const& m)
{
    double const determinant = m.xx * m.yy - m.xy * m.yx;
    return std::isfinite(determinant) && std::isfinite(m.x0) && std::isfinite(m.y0)
        && std::abs(determinant) > 1e-9 && std::abs(m.x0) < kFarthestPixel && std::abs(m.y0) < kFarthestPixel;
}

Rect unionOf(Rect const& a, Rect const& b)
{
    if (a.isEmpty())
        return b;
    if (b.isEmpty())
        return a;
    double const left = std::min(a.x, b.x);
    double const top = std::min(a.y, b.y);
    return { left, top, std::max(a.maxX(), b.maxX()) - left, std::max(a.maxY(), b.maxY()) - top };
}

// Bounding box in device pixels of a rectangle in the context's units.
Rect toDevice(cairo_matrix_t const& m, Rect const& rect)
{
    double xs[4] { rect.x, rect.maxX(), rect.x, rect.maxX() };
    double ys[4] { rect.y, rect.y, rect.maxY(), rect.maxY() };
    for (int i = 0; i < 4; ++i)
        cairo_matrix_transform_point(&m, &xs[i], &ys[i]);
    double const left = *std::min_element(xs, xs + 4);
    double const top = *std::min_element(ys, ys + 4);
    return { left, top, *std::max_element(xs, xs + 4) - left, *std::max_element(ys, ys + 4) - top };
}

Rect wholePixels(Rect const& rect)
{
    double const left = std::floor(rect.x);
    double const top = std::floor(rect.y);
    return { left, top, std::ceil(rect.maxX()) - left, std::ceil(rect.maxY()) - top };
}

// Grown to whole squares of the coarsest grid that backdrops are averaged on: a group's surface then has the
// same grid as the screen, and a backdrop in it the same pixels.
Rect onBlurGrid(Rect const& rect)
{
    constexpr double kSquare = 8;   // pixels
    double const left = std::floor(rect.x / kSquare) * kSquare;
    double const top = std::floor(rect.y / kSquare) * kSquare;
    return { left, top, rect.maxX() - left, rect.maxY() - top };
}

cairo_matrix_t matrixOf(cairo_t* cairo)
{
    cairo_matrix_t matrix;
    cairo_get_matrix(cairo, &matrix);
    return matrix;
}

// The clip's bounding box in device pixels; the matrix stays.
Rect deviceClip(cairo_t* cairo)
{
    cairo_matrix_t const matrix = matrixOf(cairo);
    cairo_identity_matrix(cairo);
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    cairo_clip_extents(cairo, &left, &top, &right, &bottom);
    cairo_set_matrix(cairo, &matrix);
    return { left, top, right - left, bottom - top };
}

bool drawsContent(UIView view)
{
    SEL const drawing = objc::selector<"phone_drawContent:">();
    return class_getMethodImplementation(objc::boundary::class_of(view.object), drawing)
        != class_getMethodImplementation(UIView::cls().get(), drawing);
}

// Pictures that keep their shape may stick out of a view that does not clip them.
bool mayDrawOutside(UIView view)
{
    auto const mode = static_cast<UIViewContentMode>(view.contentMode());
    return mode >= UIViewContentMode::scaleAspectFill && mode != UIViewContentMode::redraw;
}

// The blur style of an effect view; -1 for one without effect and for every other view.
NSInteger effectStyleOf(UIView view)
{
    auto const effectView = objc::cast<UIVisualEffectView>(view);
    return effectView ? effectView.effectStyle() : -1;
}

bool isShown(UIView view) { return !view.isHidden() && view.presentation().alpha >= kLeastAlpha; }

bool hasEffectInside(UIView view)
{
    if (effectStyleOf(view) >= 0)
        return true;
    for (UIView const child : view.children()) {
        if (isShown(child) && hasEffectInside(child))
            return true;
    }
    return false;
}

class Walk {
public:
    Walk(cairo_t* cairo, double scale, BackdropCache& backdrops)
        : m_cairo(cairo)
        , m_scale(scale)
        , m_isDark(bootOptions().appearance == Appearance::dark)
        , m_backdrops(backdrops)
    {
    }

    void draw(UIView view)
    {
        if (view.isHidden())
            return;
        ViewPresentation const shown = view.presentation();
        if (!(shown.alpha >= kLeastAlpha))
            return;
        cairo_matrix_t const own = toCairo(transformOf(shown));
        cairo_matrix_t whole = matrixOf(m_cairo);
        cairo_matrix_multiply(&whole, &own, &whole);
        if (!canDrawWith(own) || !canDrawWith(whole))
            return;
        cairo_save(m_cairo);
        cairo_set_matrix(m_cairo, &whole);
        drawInPlace(view, shown);
        cairo_restore(m_cairo);
    }

private:
    static Rect boundsOf(ViewPresentation const& shown) { return toGraphics(shown.bounds); }

    void addOutline(UIView view, ViewPresentation const& shown, double inset = 0) const
    {
        LayerProperties const& layer = view.layerProperties();
        Rect const rect = boundsOf(shown).inset(inset, inset);
        double const radius = std::max(0.0, shown.cornerRadius - inset);
        if (rect.isEmpty())
            return;
        if (!(radius > 0) || !(layer.maskedCorners & 15))
            graphics::addRect(m_cairo, rect);
        else if ((layer.maskedCorners & 15) != 15)
            graphics::addRoundedRect(m_cairo, rect,
                { layer.maskedCorners & 1 ? radius : 0, layer.maskedCorners & 2 ? radius : 0,
                    layer.maskedCorners & 8 ? radius : 0, layer.maskedCorners & 4 ? radius : 0 });
        else if (layer.continuousCorners)
            graphics::addContinuousRect(m_cairo, rect, radius);
        else
            graphics::addRoundedRect(m_cairo, rect, radius);
    }

    void drawInPlace(UIView view, ViewPresentation const& shown)
    {
        LayerProperties const& layer = view.layerProperties();
        bool const clips = layer.masksToBounds;
        bool const isRounded = clips && shown.cornerRadius > 0;
        Rect const clip = deviceClip(m_cairo);
        if (clip.isEmpty())
            return;
        if (clips && intersection(toDevice(matrixOf(m_cairo), boundsOf(shown)), clip).isEmpty())
            return;
        bool const hasInside = view.viewState().subviews.size() > 0 || drawsContent(view);
        if (shown.alpha < 1 || (isRounded && hasInside)) {
            drawAsGroup(view, shown, clip);
            return;
        }
        drawBody(view, shown, clips && !isRounded);
    }

    // Draws the view and all in it on a surface of its own, which is then laid down as one picture: faded,
    // and cut by the round corners in a single step, so that edges show nothing of what lies covered.
    //
    // Effect views inside need to see what lies beneath. The surface then starts as a copy of it, and laying
    // it down fades from what was there to what is there now: the same result over an opaque screen.
    void drawAsGroup(UIView view, ViewPresentation const& shown, Rect const& clip)
    {
        bool const clips = view.layerProperties().masksToBounds;
        cairo_matrix_t const matrix = matrixOf(m_cairo);
        Rect region = clips ? toDevice(matrix, boundsOf(shown)) : extentsOf(view, shown, matrix, clip);
        region = intersection(wholePixels(region), clip);
        if (region.isEmpty())
            return;
        bool const isSeeded = hasEffectInside(view);
        // Room for a backdrop's surroundings, so that it blurs just as it would without the group.
        double const margin = isSeeded ? std::ceil(kBackdropReach * m_scale) : 0;
        Rect const surface = intersection(onBlurGrid(wholePixels(region.inset(-margin, -margin))), clip);

        cairo_save(m_cairo);
        cairo_identity_matrix(m_cairo);
        graphics::addRect(m_cairo, surface);
        cairo_clip(m_cairo);
        cairo_surface_t* const beneath = cairo_get_group_target(m_cairo);
        cairo_push_group(m_cairo);
        if (isSeeded) {
            cairo_set_operator(m_cairo, CAIRO_OPERATOR_SOURCE);
            cairo_set_source_surface(m_cairo, beneath, 0, 0);
            cairo_paint(m_cairo);
            cairo_set_operator(m_cairo, CAIRO_OPERATOR_OVER);
        }
        cairo_set_matrix(m_cairo, &matrix);
        drawBody(view, shown, clips && !(shown.cornerRadius > 0));
        cairo_pattern_t* const picture = cairo_pop_group(m_cairo);
        cairo_restore(m_cairo);

        cairo_save(m_cairo);
        if (clips)
            addOutline(view, shown);
        cairo_identity_matrix(m_cairo);
        if (!clips)
            graphics::addRect(m_cairo, region);
        cairo_clip(m_cairo);
        cairo_pattern_set_filter(picture, CAIRO_FILTER_NEAREST);
        cairo_set_source(m_cairo, picture);
        cairo_paint_with_alpha(m_cairo, std::min(shown.alpha, 1.0));
        cairo_restore(m_cairo);
        cairo_pattern_destroy(picture);
    }

    // Where the view and what is in it may draw, in device pixels; no larger than the clip.
    Rect extentsOf(
        UIView view, ViewPresentation const& shown, cairo_matrix_t const& matrix, Rect const& clip) const
    {
        LayerProperties const& layer = view.layerProperties();
        Rect extents = toDevice(matrix, boundsOf(shown));
        if (!layer.masksToBounds) {
            if (mayDrawOutside(view))
                return clip;
            if (layer.shadowOpacity > 0)
                extents = unionOf(extents, toDevice(matrix, shadowExtents(boundsOf(shown), layer)));
            for (UIView const child : view.children()) {
                if (!isShown(child))
                    continue;
                ViewPresentation const childShown = child.presentation();
                cairo_matrix_t const own = toCairo(transformOf(childShown));
                cairo_matrix_t whole = matrix;
                cairo_matrix_multiply(&whole, &own, &whole);
                if (canDrawWith(whole))
                    extents = unionOf(extents, extentsOf(child, childShown, whole, clip));
            }
        }
        return intersection(extents, clip);
    }

    void drawBody(UIView view, ViewPresentation const& shown, bool clipsToRectangle)
    {
        LayerProperties const& layer = view.layerProperties();
        Rect const bounds = boundsOf(shown);
        if (layer.shadowOpacity > 0 && !layer.masksToBounds && shown.backgroundColor.alpha > 0) {
            addOutline(view, shown);
            drawShadowOfPath(m_cairo, bounds, layer, m_scale);
        }
        cairo_save(m_cairo);
        if (clipsToRectangle) {
            graphics::addRect(m_cairo, bounds);
            cairo_clip(m_cairo);
        }
        if (NSInteger const style = effectStyleOf(view); style >= 0) {
            addOutline(view, shown);
            graphics::BlurStyle const blur = blurStyleOf(style, m_isDark);
            graphics::paintBackdrop(m_cairo, m_backdrops.take(m_cairo, blur));
        }
        if (shown.backgroundColor.alpha > 0) {
            addOutline(view, shown);
            graphics::fill(m_cairo, shown.backgroundColor);
        }
        drawContent(view);
        for (UIView const child : view.children())
            draw(child);
        cairo_restore(m_cairo);
        drawBorder(view, shown);
    }

    void drawContent(UIView view)
    {
        cairo_save(m_cairo);
        bool const isRightToLeft = view.effectiveUserInterfaceLayoutDirection() == 1;
        DrawContext context { m_cairo, m_scale,
            isRightToLeft ? graphics::WritingDirection::rightToLeft : graphics::WritingDirection::leftToRight,
            m_isDark };
        view.sendDrawContent(context);
        cairo_restore(m_cairo);
        cairo_new_path(m_cairo);
    }

    // Inside the bounds, over everything in the view, as the platform has it.
    void drawBorder(UIView view, ViewPresentation const& shown)
    {
        LayerProperties const& layer = view.layerProperties();
        if (!(layer.borderWidth > 0) || !(layer.borderColor.alpha > 0))
            return;
        addOutline(view, shown);
        addOutline(view, shown, layer.borderWidth);
        cairo_set_fill_rule(m_cairo, CAIRO_FILL_RULE_EVEN_ODD);
        graphics::fill(m_cairo, layer.borderColor);
        cairo_set_fill_rule(m_cairo, CAIRO_FILL_RULE_WINDING);
    }

    cairo_t* m_cairo;
    double m_scale;
    bool m_isDark;
    BackdropCache& m_backdrops;
};

}

graphics::Bitmap Renderer::drawScreen(double scale)
{
    auto const bitmap = graphics::Bitmap::withPoints(toGraphics(screenBounds().size), scale);
    if (bitmap)
        drawScreen(bitmap);
    return bitmap;
}

void Renderer::drawScreen(graphics::Bitmap const& target)
{
    layoutWindowsIfNeeded();
    {
        auto const context = target.newContext();
        if (!context)
            return;
        graphics::setColor(context.get(), graphics::Color::black());
        cairo_set_operator(context.get(), CAIRO_OPERATOR_SOURCE);
        cairo_paint(context.get());
    }
    std::vector<UIView> roots;
    for (UIWindow const window : allWindows())
        roots.push_back(window);
    drawViews(roots, target);
    if (auto const context = target.newContext())
        drawScreenMarks(context.get(), toGraphics(screenBounds().size));
}

void Renderer::drawViews(std::vector<UIView> const& roots, graphics::Bitmap const& target)
{
    auto const context = target.newContext();
    if (!context)
        return;
    m_backdrops.beginFrame();
    Walk walk(context.get(), target.scale(), m_backdrops);
    for (UIView const root : roots)
        walk.draw(root);
    m_backdrops.endFrame();
}

}
