#include "phone/springboard/media_card.hpp"

#include "objc/define.hpp"
#include "phone/graphics/path.hpp"
#include "phone/graphics/wallpaper.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/springboard/texts.hpp"
#include "phone/uikit/ns_layout.hpp"

namespace phone {

namespace {

constexpr double kPlayed = 0.38;   // of the song
// Begin with a left-to-right mark: the minus sign stays in front of the digits in every language.
constexpr char kElapsed[] = "\u200e1:24";
constexpr char kRemaining[] = "\u200e-2:17";

struct MediaCardState {
    objc::ref<UIView> blur;
    objc::ref<DrawnView> artwork;
    objc::ref<UILabel> song;
    objc::ref<UILabel> artist;
    objc::ref<DrawnView> scrubber;
    objc::ref<UILabel> elapsed;
    objc::ref<UILabel> remaining;
    objc::ref<DrawnView> previous;
    objc::ref<DrawnView> pause;
    objc::ref<DrawnView> next;
};

struct MediaCard : objc::subclass<MediaCard, "MRUNowPlayingView", UIView> {
    using subclass::subclass;
    MediaCardState& parts() const { return objc::state<MediaCardState>(*this); }
    void layoutSubviews() const;
};

void drawArtwork(DrawContext& context, CGRect bounds)
{
    cairo_save(context.cairo);
    graphics::addRoundedRect(context.cairo, toGraphics(bounds), 6);
    cairo_clip(context.cairo);
    graphics::paintWallpaper(context.cairo, toGraphics(bounds), graphics::WallpaperVariant::light);
    cairo_restore(context.cairo);
}

void drawScrubber(DrawContext& context, CGRect bounds)
{
    graphics::Rect const track = toGraphics(bounds);
    graphics::addCapsule(context.cairo, track);
    graphics::fill(context.cairo, graphics::Color::white(1, 0.28));
    graphics::addCapsule(context.cairo, { track.x, track.y, track.width * kPlayed, track.height });
    graphics::fill(context.cairo, graphics::Color::white(1, 0.95));
}

}

void MediaCard::layoutSubviews() const
{
    objc::send_super<MediaCard, "layoutSubviews">(*this);
    auto const& part = parts();
    if (!part.blur)
        return;
    double const width = bounds().size.width;
    double const left = kCardMargin;
    double const inner = width - 2 * kCardMargin;
    auto const place = [&](UIView view, graphics::Rect rect) {
        rect.x += left;
        view.setFrame(fromGraphics(isRightToLeft() ? mirrored(rect, width) : rect));
    };
    place(part.blur, { 0, 0, inner, kMediaCardHeight });
    place(part.artwork, { 16, 16, 58, 58 });
    place(part.song, { 86, 22, inner - 102, 20 });
    place(part.artist, { 86, 46, inner - 102, 20 });
    place(part.scrubber, { 16, 90, inner - 32, 4 });
    place(part.elapsed, { 16, 97, 60, 15 });
    place(part.remaining, { inner - 76, 97, 60, 15 });
    // Transport signs keep their places in every language.
    auto const placeSign = [&](UIView view, double middle, double side) {
        view.setFrame({ { left + middle - side / 2, 133 - side / 2 }, { side, side } });
    };
    placeSign(part.previous, inner / 2 - 84, 30);
    placeSign(part.pause, inner / 2, 28);
    placeSign(part.next, inner / 2 + 84, 30);
}

objc::ref<UIView> makeMediaCard(double cornerRadius)
{
    graphics::Color const white = graphics::Color::white();
    graphics::Color const faint = graphics::Color::white(1, 0.6);
    Texts const& texts = textsFor(bootOptions().language);
    auto const card = make<MediaCard>({ {}, { 300, kMediaCardHeight } });
    auto& part = card->parts();
    part.blur = asBase<UIView>(makeBlur(2, cornerRadius));
    part.artwork = DrawnView::make({}, drawArtwork);
    part.song = makeText(texts.song, 16, graphics::FontWeight::kSemibold, white);
    part.artist = makeText(texts.artist, 15, graphics::FontWeight::kRegular, faint);
    part.scrubber =
        DrawnView::make({}, [](DrawContext& context, CGRect bounds) { drawScrubber(context, bounds); });
    part.elapsed = makeText(kElapsed, 11, graphics::FontWeight::kMedium, faint);
    part.remaining = makeText(kRemaining, 11, graphics::FontWeight::kMedium, faint);
    part.remaining->setTextAlignment(
        NSInteger(isRightToLeft() ? NSTextAlignment::left : NSTextAlignment::right));
    part.previous = makeGlyph(graphics::Glyph::previousTrack, white);
    part.pause = makeGlyph(graphics::Glyph::pause, white);
    part.next = makeGlyph(graphics::Glyph::nextTrack, white);
    for (UIView const each : std::initializer_list<UIView> { part.blur, part.artwork, part.song, part.artist,
             part.scrubber, part.elapsed, part.remaining, part.previous, part.pause, part.next })
        card->addSubview(each);
    identify(card, "media");
    card->setTranslatesAutoresizingMaskIntoConstraints(false);
    TraceOwnScope const own;
    card->heightAnchor().constraintEqualToConstant(kMediaCardHeight).setActive(true);
    return asBase<UIView>(card);
}

void defineMediaCard()
{
    objc::define<MediaCard>()
        .state<MediaCardState>()
        .method<"layoutSubviews", &MediaCard::layoutSubviews>()
        .install();
}

}
