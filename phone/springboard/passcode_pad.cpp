#include "phone/springboard/passcode_pad.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/path.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/lock_flow.hpp"
#include "phone/springboard/previous.hpp"
#include "phone/springboard/scene_parts.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/texts.hpp"
#include "phone/uikit/animation.hpp"

#include <algorithm>
#include <array>

namespace phone {

namespace {

using DashBoardPasscode = PasscodeViewController<kDashBoardPasscode>;
using CoverSheetPasscode = PasscodeViewController<kCoverSheetPasscode>;

// Measured on phones 375 to 393 points wide, and on wider ones.
struct PadMeasures {
    double key;
    double columnPitch;
    double rowPitch;
    double firstRow;   // top of the key, from the top of the screen
    double title;
    double dots;
};
constexpr PadMeasures kPad { 75, 103, 91, 294, 162, 206 };
constexpr PadMeasures kWidePad { 85, 115, 100, 329, 180, 226 };

constexpr std::array kLetters { "", "ABC", "DEF", "GHI", "JKL", "MNO", "PQRS", "TUV", "WXYZ", "" };
constexpr double kShakeSeconds = 0.35;
constexpr double kShakeDistance = 40;   // points

struct KeyState {
    int digit { 0 };
};

// A round key. It brightens while a finger is on it.
struct PadKey : objc::subclass<PadKey, "SBPasscodeNumberPadButton", UIControl> {
    using subclass::subclass;
    KeyState& key() const { return objc::state<KeyState>(*this); }
    void drawContent(DrawContext* context) const;
    void setHighlighted(BOOL highlighted) const;
};

void PadKey::drawContent(DrawContext* context) const
{
    CGRect const box = bounds();
    cairo_t* const cairo = context->cairo;
    graphics::addEllipse(cairo, toGraphics(box));
    graphics::fill(cairo, graphics::Color::white(1, isHighlighted() ? 0.5 : 0.2));

    double const side = box.size.height;
    graphics::TextStyle digit;
    digit.font = graphics::systemFont(side * 0.48);
    digit.alignment = graphics::TextAlignment::center;
    char const* const letters = kLetters[static_cast<std::size_t>((key().digit + 9) % 10)];
    double const scale = side / kPad.key;
    double const lift = *letters ? 6 * scale : 0;
    graphics::drawText(cairo, std::to_string(key().digit), digit, { 0, -lift, box.size.width, side },
        graphics::Color::white());
    graphics::TextStyle small;
    small.font = graphics::systemFont(10 * scale, graphics::FontWeight::kSemibold);
    small.alignment = graphics::TextAlignment::center;
    small.tracking = 2 * scale;
    graphics::drawText(
        cairo, letters, small, { 0, side * 0.64, box.size.width, 14 * scale }, graphics::Color::white());
}

void PadKey::setHighlighted(BOOL highlighted) const
{
    objc::send_super<PadKey, "setHighlighted:">(*this, highlighted);
    setNeedsDisplay();
}

void drawDots(DrawContext& context, CGRect bounds, std::size_t count, std::size_t filled)
{
    constexpr double kDiameter = 13;
    constexpr double kPitch = 37;
    double const width = kDiameter + kPitch * (double(count) - 1);
    double x = (bounds.size.width - width) / 2;
    for (std::size_t i = 0; i < count; ++i, x += kPitch) {
        graphics::addEllipse(context.cairo, { x + 0.75, 0.75, kDiameter - 1.5, kDiameter - 1.5 });
        if (i < filled) {
            graphics::setColor(context.cairo, graphics::Color::white());
            cairo_fill_preserve(context.cairo);
        }
        graphics::stroke(context.cairo, graphics::Color::white(), 1.25);
    }
}

bool isNumber(std::string const& code)
{
    return std::all_of(code.begin(), code.end(), [](char c) { return c >= '0' && c <= '9'; });
}

template <class T>
void definePasscodeController()
{
    objc::define<T>()
        .template method<"viewDidDisappear:", &T::viewDidDisappear>()
        .template method<"phone_keyPressed:", &T::keyPressed>()
        .template method<"phone_cancelPressed:", &T::cancelPressed>()
        .install();
}

}

template <objc::fixed_string Name>
void PasscodeViewController<Name>::viewDidDisappear(BOOL animated) const
{
    using Self = PasscodeViewController;
    notePrevious<Self, "viewDidDisappear:">(Json::array({ animated }));
    objc::send_super<Self, "viewDidDisappear:">(*this, animated);
}

template <objc::fixed_string Name>
void PasscodeViewController<Name>::keyPressed(UIControl key) const
{
    springBoard().passcodePad->press(static_cast<int>(key.tag()));
}

template <objc::fixed_string Name>
void PasscodeViewController<Name>::cancelPressed(UIControl) const
{
    springBoard().passcodePad->cancelOrDelete();
}

void definePasscode(ClassFamily family)
{
    objc::define<PadKey>()
        .state<KeyState>()
        .method<"phone_drawContent:", &PadKey::drawContent>()
        .method<"setHighlighted:", &PadKey::setHighlighted>()
        .install();
    if (family == ClassFamily::dashBoard)
        definePasscodeController<DashBoardPasscode>();
    else
        definePasscodeController<CoverSheetPasscode>();
}

objc::ref<UIViewController> makePasscodeController(ClassFamily family)
{
    objc::class_handle const cls =
        family == ClassFamily::dashBoard ? DashBoardPasscode::cls() : CoverSheetPasscode::cls();
    return objc::adopt(cls.send<"alloc", UIViewController>().send<"init", UIViewController>());
}

PasscodePad::PasscodePad(UIViewController controller)
    : m_controller(controller)
    , m_blur(objc::retain(UIView(makeBlur(2, 0).get())))
{
    UIView const view = controller.view();
    Texts const& texts = textsFor(bootOptions().language);
    view.addSubview(m_blur);
    m_title = makeText(texts.enterPasscode, 20, graphics::FontWeight::kRegular, graphics::Color::white());
    m_title->setTextAlignment(NSInteger(NSTextAlignment::center));
    view.addSubview(m_title);
    m_dots = DrawnView::make({},
        [this](DrawContext& context, CGRect bounds) { drawDots(context, bounds, length(), m_typed.size()); });
    identify(m_dots, "passcode dots");
    view.addSubview(m_dots);
    if (length() > 0) {
        for (int digit : { 1, 2, 3, 4, 5, 6, 7, 8, 9, 0 }) {
            auto const key = make<PadKey>({ {}, { kPad.key, kPad.key } });
            key->key().digit = digit;
            key->setTag(digit);
            key->setAccessibilityLabel(toNSString(std::to_string(digit)));
            key->addTarget(controller, objc::selector<"phone_keyPressed:">(), ControlEvent::touchDown);
            view.addSubview(key);
            m_keys.push_back(objc::retain(UIControl(key.get())));
        }
    }
    m_cancel = objc::retain(UIButton(UIButton::buttonWithType(UIButton::cls(), 0)));
    m_cancel->setTitleColor(UIColor::whiteColor(), ControlState::normal);
    m_cancel->addTarget(controller, objc::selector<"phone_cancelPressed:">(), ControlEvent::touchUpInside);
    view.addSubview(m_cancel);
    m_edges = std::make_unique<ScreenEdges>(view, graphics::Color::white());
    view.setHidden(true);
    typedDidChange();
}

std::size_t PasscodePad::length() const
{
    auto const& code = bootOptions().passcode;
    return code && isNumber(*code) ? code->size() : 0;
}

void PasscodePad::layOut(CGRect bounds)
{
    bool const isLandscape = bounds.size.width > bounds.size.height;
    PadMeasures pad = bounds.size.width >= 414 && !isLandscape ? kWidePad : kPad;
    // Shorter screens and screens on their side: the same pad, smaller and as far down as there is room.
    double const scale = std::min({ 1.0, bounds.size.width / 375, bounds.size.height / 700 });
    double const top = isLandscape ? 46 : pad.title * std::min(1.0, bounds.size.height / 812);
    m_blur->setFrame(bounds);
    double const middle = midX(bounds);
    m_title->setFrame({ { 0, top - 12 }, { bounds.size.width, 24 } });
    m_dots->setFrame({ { 0, top + (pad.dots - pad.title) * scale - 6.5 }, { bounds.size.width, 13 } });
    double const firstRow = top + (pad.firstRow - pad.title) * scale * (isLandscape ? 0.7 : 1);
    double const key = pad.key * scale;
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        int const row = static_cast<int>(i) / 3;
        int const column = i == 9 ? 1 : static_cast<int>(i) % 3;
        m_keys[i]->setFrame({ { middle + (column - 1) * pad.columnPitch * scale - key / 2,
                                  firstRow + row * pad.rowPitch * scale },
            { key, key } });
    }
    double const lastRow = firstRow + 3 * pad.rowPitch * scale;
    double const side = isRightToLeft() ? -1 : 1;
    double const cancelMiddle = middle + side * pad.columnPitch * scale;
    m_cancel->setFrame({ { cancelMiddle - 50, lastRow + key / 2 - 22 }, { 100, 44 } });
    m_edges->layOut(bounds);
}

void PasscodePad::typedDidChange()
{
    Texts const& texts = textsFor(bootOptions().language);
    m_cancel->setTitle(toNSString(m_typed.empty() ? texts.cancel : texts.deleteDigit), ControlState::normal);
    m_dots->setNeedsDisplay();
}

void PasscodePad::clear()
{
    m_typed.clear();
    typedDidChange();
}

void PasscodePad::press(int digit)
{
    m_typed.push_back(static_cast<char>('0' + digit));
    typedDidChange();
    if (m_typed.size() >= length())
        static_cast<void>(enterPasscode(m_typed));
}

void PasscodePad::cancelOrDelete()
{
    if (m_typed.empty()) {
        static_cast<void>(cancelPasscode());
        return;
    }
    m_typed.pop_back();
    typedDidChange();
}

void PasscodePad::refuse()
{
    clear();
    UIView const dots = m_dots.get();
    dots.setTransform(translation(kShakeDistance, 0));
    animateWithSpring(kShakeSeconds, 0, 0.2, 0, 0, [dots] { dots.setTransform(kIdentity); });
}

}
