#include "phone/uikit/alert_presentation.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/animation.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_tap_gesture_recognizer.hpp"

#include <algorithm>
#include <utility>

namespace phone {

namespace {

using graphics::Color;

// Measures in points, as Apple's design resources and measurements of phones give them.
constexpr double kCornerRadius = 14;
constexpr double kSheetMargin = 8;   // to the sides, and between the sheet and Cancel
constexpr double kSheetBottom = 8;   // below Cancel where the safe area ends at the screen's edge
constexpr double kSheetRow = 57;
constexpr double kSheetFont = 20;
constexpr double kSheetHeadingFont = 13;
constexpr double kSheetHeadingSide = 16;
constexpr double kSheetHeadingTop = 13.5;
constexpr double kAlertWidth = 270;
constexpr double kAlertRow = 44;
constexpr double kAlertFont = 17;
constexpr double kAlertTitleFont = 17;
constexpr double kAlertMessageFont = 13;
constexpr double kAlertPadding = 20;
constexpr double kTitleGap = 2;   // between title and message
constexpr double kSheetTitleGap = 7;
constexpr double kAlertGap = 20;   // kept free above and below an alert
constexpr double kIconInset = 16;
constexpr double kActionIconSide = 30;   // images are no larger
constexpr double kRowPadding = 16;

constexpr double kSheetSlideSeconds = 0.335;   // measured
constexpr double kAlertFadeSeconds = 0.25;
constexpr double kAlertScale = 1.2;   // from which an alert shrinks into place

struct Palette {
    Color sheet, alert, cancel, heading, pressed, divider, dimming;
};
constexpr Palette kLight { Color::hex(0xFCFCFC, 0.78), Color::hex(0xF2F2F2, 0.80), Color::white(),
    Color::hex(0x8F8F8F), Color::black(0.08), { 60 / 255.0, 60 / 255.0, 67 / 255.0, 0.29 },
    Color::black(0.20) };
constexpr Palette kDark { Color::hex(0x292929, 0.75), Color::hex(0x1E1E1E, 0.75), Color::hex(0x2C2C2C),
    Color::hex(0x8F8F8F), Color::white(1, 0.12), { 84 / 255.0, 84 / 255.0, 88 / 255.0, 0.60 },
    Color::black(0.48) };

bool isDark() { return bootOptions().appearance == Appearance::dark; }
Palette const& palette() { return isDark() ? kDark : kLight; }
double hairline() { return 1 / screenScale(); }

objc::ref<UILabel> heading(NSString text, UIFont font, UIColor color)
{
    if (!text.length())
        return {};
    auto const label = make<UILabel>();
    label->setText(text);
    label->setFont(font);
    label->setTextColor(color);
    label->setTextAlignment(static_cast<NSInteger>(NSTextAlignment::center));
    label->setNumberOfLines(0);
    return label;
}

double heightOf(UILabel label, double width)
{
    return label ? label.sizeThatFits({ width, 10000 }).height : 0;
}

// Puts title and message below each other; answers the height that they take with their padding.
double layOutHeadings(AlertGroupState const& group, double width, double side, double top, double gap)
{
    if (!group.title && !group.message)
        return 0;
    double y = top;
    if (group.title) {
        double const height = heightOf(group.title, width - 2 * side);
        group.title->setFrame({ { side, y }, { width - 2 * side, height } });
        y += height + (group.message ? gap : 0);
    }
    if (group.message) {
        double const height = heightOf(group.message, width - 2 * side);
        group.message->setFrame({ { side, y }, { width - 2 * side, height } });
        y += height;
    }
    return y + top;
}

// Rows from the top down, each under a hairline; answers their height.
double layOutRows(AlertGroupState const& group, double width, double top, double rowHeight)
{
    double y = top;
    for (std::size_t i = 0; i < group.rows.size(); ++i) {
        group.dividers[i]->setFrame({ { 0, y }, { width, hairline() } });
        group.dividers[i]->setHidden(y == 0);
        group.rows[i]->setFrame({ { 0, y }, { width, rowHeight } });
        y += rowHeight;
    }
    return y;
}

}

objc::ref<AlertRow> AlertRow::make(UIAlertAction action, double fontSize, bool isStrong)
{
    auto const row = phone::make<AlertRow>();
    AlertRowState& state = row->rowState();
    state.action = objc::retain(action);
    state.fontSize = fontSize;
    state.isStrong = isStrong;
    row->setAccessibilityLabel(action.title());
    row->setIsAccessibilityElement(true);
    constexpr NSUInteger kButtonTrait = 1;
    row->setAccessibilityTraits(kButtonTrait);
    row->setEnabled(action.isEnabled());

    state.label = phone::make<UILabel>();
    state.label->setText(action.title());
    state.label->setFont(UIFont::systemFontOfSizeWeight(
        fontSize, isStrong ? graphics::FontWeight::kSemibold : graphics::FontWeight::kRegular));
    state.label->setTextAlignment(static_cast<NSInteger>(NSTextAlignment::center));
    state.label->setAdjustsFontSizeToFitWidth(true);
    state.label->setMinimumScaleFactor(0.6);
    row->addSubview(state.label.get());

    if (UIImage image = action.image()) {
        // An image that doesn't say otherwise takes the colour of the title.
        if (image.renderingMode() == static_cast<NSInteger>(UIImageRenderingMode::automatic))
            image =
                image.imageWithRenderingMode(static_cast<NSInteger>(UIImageRenderingMode::alwaysTemplate));
        state.icon = phone::make<UIImageView>();
        state.icon->setContentMode(static_cast<NSInteger>(UIViewContentMode::scaleAspectFit));
        state.icon->setImage(image);
        row->addSubview(state.icon.get());
    }
    row->takeColor();
    return row;
}

UIAlertAction AlertRow::action() const { return rowState().action; }

double AlertRow::naturalWidth() const { return rowState().label->sizeThatFits({ 10000, 10000 }).width; }

void AlertRow::takeColor() const
{
    AlertRowState const& state = rowState();
    UIColor color = tintColor();
    if (!state.action->isEnabled())
        color = UIColor::systemGrayColor();
    else if (state.action->style() == AlertActionStyle::destructive)
        color = UIColor::systemRedColor();
    state.label->setTextColor(color);
}

void AlertRow::tintColorDidChange() const { takeColor(); }

void AlertRow::layoutSubviews() const
{
    AlertRowState const& state = rowState();
    CGSize const size = bounds().size;
    double side = kRowPadding;
    if (state.icon) {
        CGSize const natural = state.icon->image().size();
        double const longer = std::max({ natural.width, natural.height, 1.0 });
        double const scale = std::min(1.0, kActionIconSide / longer);
        CGSize const icon { natural.width * scale, natural.height * scale };
        double const x =
            effectiveUserInterfaceLayoutDirection() == 1 ? size.width - kIconInset - icon.width : kIconInset;
        state.icon->setFrame({ { x, (size.height - icon.height) / 2 }, icon });
        side = kIconInset + kActionIconSide + 8;   // on both sides, so that the title stays in the middle
    }
    state.label->setFrame({ { side, 0 }, { std::max(size.width - 2 * side, 0.0), size.height } });
}

void AlertRow::setHighlighted(BOOL highlighted) const
{
    objc::send_super<AlertRow, "setHighlighted:">(*this, highlighted);
    setBackgroundColor(highlighted ? UIColor::of(palette().pressed) : UIColor {});
}

objc::ref<AlertView> AlertView::make(UIAlertController controller)
{
    auto const view = phone::make<AlertView>(screenBounds());
    AlertViewState& state = view->alertViewState();
    state.controller = controller;
    view->setAutoresizingMask(Autoresizing::width | Autoresizing::height);

    state.dimming = phone::make<UIView>(view->bounds());
    state.dimming->setAutoresizingMask(Autoresizing::width | Autoresizing::height);
    state.dimming->setBackgroundColor(UIColor::of(palette().dimming));
    view->addSubview(state.dimming.get());
    auto const tap =
        objc::adopt(UITapGestureRecognizer { UITapGestureRecognizer::alloc()
                                                 .send<"initWithTarget:action:", objc::handle>(
                                                     view.get(), objc::selector<"phone_outsideTouched:">())
                                                 .object });
    state.dimming->addGestureRecognizer(tap.get());

    state.container = phone::make<UIView>(view->bounds());
    view->addSubview(state.container.get());
    view->rebuild();
    return view;
}

bool AlertView::isSheet() const
{
    UIAlertController const controller = alertViewState().controller;
    return controller.preferredStyle() == AlertStyle::actionSheet;
}

void AlertView::addGroup(AlertGroupState& group, bool isOpaque) const
{
    AlertViewState const& state = alertViewState();
    group.material = objc::adopt(UIVisualEffectView {
        UIVisualEffectView::alloc()
            .send<"initWithEffect:", objc::handle>(UIBlurEffect::effectWithStyle(isDark() ? 2 : 1))
            .object });
    group.material->setClipsToBounds(true);
    group.material->setCornerRadius(kCornerRadius);
    group.material->layerProperties().continuousCorners = true;
    Color const fill = isOpaque ? palette().cancel : isSheet() ? palette().sheet : palette().alert;
    group.material->contentView().setBackgroundColor(UIColor::of(fill));
    state.container->addSubview(group.material.get());

    group.scroll = phone::make<UIScrollView>();
    group.scroll->setShowsHorizontalScrollIndicator(false);
    group.material->contentView().addSubview(group.scroll.get());
}

void AlertView::addRow(AlertGroupState& group, UIAlertAction action) const
{
    UIAlertController const controller = alertViewState().controller;
    // The preferred action stands out, or else Cancel does.
    UIAlertAction const preferred = controller.preferredAction();
    bool const isStrong = preferred ? preferred == action : action.style() == AlertActionStyle::cancel;
    auto const divider = phone::make<UIView>();
    divider->setBackgroundColor(UIColor::of(palette().divider));
    divider->setUserInteractionEnabled(false);
    auto const row = AlertRow::make(action, isSheet() ? kSheetFont : kAlertFont, isStrong);
    row->addTarget(*this, objc::selector<"phone_rowTouched:">(), ControlEvent::touchUpInside);
    group.scroll->addSubview(row.get());
    group.scroll->addSubview(divider.get());
    group.rows.push_back(row);
    group.dividers.push_back(divider);
}

void AlertView::rebuild() const
{
    AlertViewState& state = alertViewState();
    UIAlertController const controller = state.controller;
    for (AlertGroupState* const group : { &state.main, &state.cancel }) {
        if (group->material)
            group->material->removeFromSuperview();
        *group = {};
    }
    UIAlertAction const cancel = controller.cancelAction();
    auto const& actions = controller.alertState().actions;

    addGroup(state.main, /* isOpaque: */ false);
    bool const hasMessage = controller.message().length() > 0;
    if (isSheet()) {
        auto const color = UIColor::of(palette().heading);
        state.main.title = heading(controller.title(),
            UIFont::systemFontOfSizeWeight(kSheetHeadingFont, graphics::FontWeight::kSemibold), color);
        state.main.message =
            heading(controller.message(), UIFont::systemFontOfSize(kSheetHeadingFont), color);
    } else {
        // A message without a title takes its place.
        state.main.title = heading(controller.title(),
            UIFont::systemFontOfSizeWeight(kAlertTitleFont, graphics::FontWeight::kSemibold),
            UIColor::labelColor());
        state.main.message = heading(controller.message(),
            state.main.title || !hasMessage
                ? UIFont::systemFontOfSize(kAlertMessageFont)
                : UIFont::systemFontOfSizeWeight(kAlertTitleFont, graphics::FontWeight::kSemibold),
            UIColor::labelColor());
    }
    for (auto const& label : { state.main.title, state.main.message }) {
        if (label)
            state.main.material->contentView().addSubview(label.get());
    }

    bool const isPair = !isSheet() && actions.size() == 2;
    // Cancel is the leading one of two, and the last of several.
    if (isPair && cancel)
        addRow(state.main, cancel);
    for (auto const& action : actions) {
        if (action.get() != cancel)
            addRow(state.main, action.get());
    }
    if (cancel && isSheet() && !state.main.rows.empty()) {
        addGroup(state.cancel, /* isOpaque: */ true);
        addRow(state.cancel, cancel);
    } else if (cancel && !isPair) {
        addRow(state.main, cancel);
    }
    setNeedsLayout();
}

void AlertView::layoutSubviews() const
{
    objc::send_super<AlertView, "layoutSubviews">(*this);
    if (!alertViewState().controller)
        return;
    if (isSheet())
        layOutSheet();
    else
        layOutAlert();
}

void AlertView::layOutSheet() const
{
    AlertViewState const& state = alertViewState();
    AlertGroupState const& main = state.main;
    CGSize const screen = bounds().size;
    UIEdgeInsets const safe = safeAreaInsets();
    // In landscape a sheet keeps its upright width.
    double const width = std::min(screen.width, screen.height) - 2 * kSheetMargin;
    double const bottom = std::max(safe.bottom, kSheetBottom);
    double const cancelHeight = state.cancel.rows.empty() ? 0 : kSheetRow + kSheetMargin;

    double const headings = layOutHeadings(main, width, kSheetHeadingSide, kSheetHeadingTop, kSheetTitleGap);
    double const rows = kSheetRow * static_cast<double>(main.rows.size());
    double const room = screen.height - std::max(safe.top, kSheetMargin) - bottom - cancelHeight;
    double const height = std::min(headings + rows, room);

    layOutRows(main, width, 0, kSheetRow);
    if (!main.dividers.empty())
        main.dividers.front()->setHidden(headings == 0);
    main.material->setFrame({ {}, { width, height } });
    main.scroll->setFrame({ { 0, headings }, { width, std::max(height - headings, 0.0) } });
    main.scroll->setContentSize({ width, rows });
    double total = height;
    if (cancelHeight > 0) {
        state.cancel.material->setFrame({ { 0, height + kSheetMargin }, { width, kSheetRow } });
        state.cancel.scroll->setFrame({ {}, { width, kSheetRow } });
        state.cancel.scroll->setContentSize({ width, kSheetRow });
        layOutRows(state.cancel, width, 0, kSheetRow);
        total += cancelHeight;
    }
    state.container->setBounds({ {}, { width, total } });
    state.container->setCenter({ screen.width / 2, screen.height - bottom - total / 2 });
}

void AlertView::layOutAlert() const
{
    AlertViewState& state = alertViewState();
    AlertGroupState& main = state.main;
    CGSize const screen = bounds().size;
    UIEdgeInsets const safe = safeAreaInsets();

    double const headings = layOutHeadings(main, kAlertWidth, kRowPadding, kAlertPadding, kTitleGap);
    double const half = kAlertWidth / 2;
    main.isSideBySide = main.rows.size() == 2 && std::ranges::all_of(main.rows, [half](auto const& row) {
        return row->naturalWidth() <= half - kRowPadding;
    });

    double rows = kAlertRow * static_cast<double>(main.isSideBySide ? 1 : main.rows.size());
    if (main.isSideBySide) {
        bool const isMirrored = effectiveUserInterfaceLayoutDirection() == 1;
        main.rows[0]->setFrame({ { isMirrored ? half : 0, 0 }, { half, kAlertRow } });
        main.rows[1]->setFrame({ { isMirrored ? 0 : half, 0 }, { half, kAlertRow } });
        main.dividers[0]->setFrame({ {}, { kAlertWidth, hairline() } });
        main.dividers[1]->setFrame({ { half, 0 }, { hairline(), kAlertRow } });
        main.dividers[1]->setHidden(false);
    } else {
        rows = layOutRows(main, kAlertWidth, 0, kAlertRow);
    }
    if (!main.dividers.empty())
        main.dividers.front()->setHidden(headings == 0);

    double const room = screen.height - std::max(safe.top, kAlertGap) - std::max(safe.bottom, kAlertGap);
    double const height = std::min(headings + rows, room);
    main.material->setFrame({ {}, { kAlertWidth, height } });
    main.scroll->setFrame({ { 0, headings }, { kAlertWidth, std::max(height - headings, 0.0) } });
    main.scroll->setContentSize({ kAlertWidth, rows });
    state.container->setBounds({ {}, { kAlertWidth, height } });
    state.container->setCenter({ screen.width / 2, screen.height / 2 });
}

std::vector<UIAlertAction> AlertView::actionsInOrder() const
{
    layoutIfNeeded();
    AlertViewState const& state = alertViewState();
    std::vector<UIAlertAction> actions;
    for (AlertGroupState const* const group : { &state.main, &state.cancel }) {
        for (auto const& row : group->rows)
            actions.push_back(row->action());
    }
    if (state.main.isSideBySide && effectiveUserInterfaceLayoutDirection() == 1)
        std::ranges::reverse(actions);
    return actions;
}

void AlertView::rowTouched(AlertRow row) const
{
    UIAlertController const controller = alertViewState().controller;
    auto const action = objc::retain(row.action());
    controller.choose(action.get());
}

// Beside a sheet lies its Cancel; an alert wants an answer.
void AlertView::outsideTouched(objc::handle) const
{
    UIAlertController const controller = alertViewState().controller;
    if (isSheet())
        controller.choose(controller.cancelAction());
}

void AlertView::animate(bool presenting, std::function<void()> done) const
{
    AlertViewState const& state = alertViewState();
    layoutIfNeeded();
    UIView const dimming = state.dimming;
    UIView const container = state.container;
    // Which way is out: a sheet goes below the screen, an alert fades where it is.
    CGAffineTransform const below = translation(0, bounds().size.height - minY(container.frame()));
    bool const slides = isSheet();
    auto const finished = [done = std::move(done), keep = objc::retain(*this)](bool) {
        if (done)
            done();
    };
    if (presenting) {
        performWithoutAnimation([&] {
            dimming.setAlpha(0);
            container.setAlpha(slides ? 1 : 0);
            container.setTransform(slides ? below : scaling(kAlertScale, kAlertScale));
        });
    }
    animateWithOptions(
        slides ? kSheetSlideSeconds : kAlertFadeSeconds, 0,
        presenting ? AnimationOption::curveEaseOut : AnimationOption::curveEaseInOut,
        [=] {
            dimming.setAlpha(presenting ? 1 : 0);
            if (slides)
                container.setTransform(presenting ? kIdentity : below);
            else
                container.setAlpha(presenting ? 1 : 0);
            if (!slides && presenting)
                container.setTransform(kIdentity);
        },
        finished);
}

void defineAlertViews()
{
    objc::define<AlertRow>()
        .state<AlertRowState>()
        .method<"layoutSubviews", &AlertRow::layoutSubviews>()
        .method<"setHighlighted:", &AlertRow::setHighlighted>()
        .method<"tintColorDidChange", &AlertRow::tintColorDidChange>()
        .method<"action", &AlertRow::action>()
        .install();
    objc::define<AlertView>()
        .state<AlertViewState>()
        .method<"layoutSubviews", &AlertView::layoutSubviews>()
        .method<"phone_rowTouched:", &AlertView::rowTouched>()
        .method<"phone_outsideTouched:", &AlertView::outsideTouched>()
        .install();
}

}
