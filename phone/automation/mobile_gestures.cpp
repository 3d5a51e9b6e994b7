// Scripts that touch the screen or press a button, and what they share.
#include "phone/automation/mobile_scripts.hpp"

#include "phone/automation/scripts/script_targets.hpp"
#include "phone/kernel/ascii.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_scroll_view.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

constexpr double kBetweenTaps = 0.1;
constexpr double kSwipeSeconds = 0.15;
constexpr double kScrollSeconds = 0.6;
constexpr double kFingersApart = 40;   // points, of two that tap at once

}

Answer<Json> MobileScripts::lock()
{
    double const seconds = m_in.optionalNumber("seconds").value_or(0);
    if (!(seconds >= 0 && seconds <= kLongestPress))
        m_in.refuse("`seconds` is a number up to 600");
    if (!m_in.isGood())
        return m_in.error();
    phone().lock();
    if (!(seconds > 0))
        return Json();
    m_commands.passTime(seconds);
    phone().requestUnlock();
    return m_commands.waitUntilUnlocked();
}

Answer<Json> MobileScripts::unlock()
{
    if (!m_in.isGood())
        return m_in.error();
    if (phone().isLocked() && !phone().isPasscodeShown())
        phone().requestUnlock();
    return m_commands.waitUntilUnlocked();
}

Answer<Json> MobileScripts::isLocked()
{
    if (!m_in.isGood())
        return m_in.error();
    return Json(phone().isLocked());
}

Answer<Json> MobileScripts::pressButton()
{
    std::string const name = lowercase(m_in.text("name"));
    constexpr std::string_view kNames[] { "home", "volumeup", "volumedown", "action", "camera", "lock",
        "power" };
    if (std::ranges::find(kNames, name) == std::end(kNames))
        m_in.refuse("`name` is home, volumeup, volumedown, action, camera, lock or power");
    static_cast<void>(m_in.optionalNumber("durationSeconds"));
    if (!m_in.isGood())
        return m_in.error();
    if (name == "lock" || name == "power")
        phone().lock();
    else if (name == "home" && phone().isLocked())
        phone().requestUnlock();
    else if (name == "home")
        phone().launch(kSpringBoardIdentifier);
    return Json();   // nothing here listens to the others
}

Answer<Json> MobileScripts::touchAndHold()
{
    double const duration = seconds("duration");
    auto const x = m_in.optionalNumber("x");
    auto const y = m_in.optionalNumber("y");
    return tapAt(x, y, duration, 1, 1);
}

Answer<Json> MobileScripts::tap()
{
    double const x = m_in.number("x");
    double const y = m_in.number("y");
    return tapAt(x, y, kTapSeconds, 1, 1);
}

Answer<Json> MobileScripts::doubleTap() { return tapAt(optional("x"), optional("y"), kTapSeconds, 2, 1); }

Answer<Json> MobileScripts::twoFingerTap() { return tapAt(optional("x"), optional("y"), kTapSeconds, 1, 2); }

Answer<Json> MobileScripts::tapWithNumberOfTaps()
{
    auto const taps = m_in.integer("numberOfTaps", 1, 10);
    auto const touches = m_in.integer("numberOfTouches", 1, 5);
    return tapAt(optional("x"), optional("y"), kTapSeconds, taps, touches);
}

Answer<Json> MobileScripts::tapAt(
    std::optional<double> x, std::optional<double> y, double seconds, long long taps, long long touches)
{
    auto const element = elementId();
    if (!m_in.isGood())
        return m_in.error();
    auto const at = point(element, x, y);
    if (!at)
        return at.error();
    std::vector<CGPoint> fingers;
    for (long long i = 0; i < touches; ++i)
        fingers.push_back({ at->x + kFingersApart * (double(i) - double(touches - 1) / 2), at->y });
    for (long long i = 0; i < taps; ++i) {
        if (i > 0)
            m_commands.passTime(kBetweenTaps);
        m_commands.m_gestures.press(fingers, seconds);
    }
    return Json();
}

CGPoint MobileScripts::directionOf(std::string const& name)
{
    if (name == "up")
        return { 0, -1 };
    if (name == "down")
        return { 0, 1 };
    return { name == "left" ? -1.0 : 1.0, 0 };
}

Answer<CGRect> MobileScripts::shownPart(Answer<CGRect> const& rect)
{
    if (!rect)
        return rect.error();
    CGRect const shown = intersection(*rect, screenBounds());
    if (!(shown.size.width > 0 && shown.size.height > 0))
        return CommandError { ErrorCode::elementNotInteractable, "nothing of the element is on the screen" };
    return shown;
}

void MobileScripts::dragAcross(CGRect shown, CGPoint direction, double part, double seconds, double rest)
{
    CGPoint const middle = center(shown);
    CGPoint const half { direction.x * shown.size.width * part / 2,
        direction.y * shown.size.height * part / 2 };
    m_commands.m_gestures.drag(middle - half, middle + half, 0, seconds, rest);
}

Answer<Json> MobileScripts::swipe()
{
    std::string const direction = m_in.oneOf("direction", { "up", "down", "left", "right" });
    auto const velocity = m_in.optionalNumber("velocity");
    if (velocity && !(*velocity > 0))
        m_in.refuse("`velocity` is a number of pixels a second above 0");
    auto const element = elementId();
    if (!m_in.isGood())
        return m_in.error();
    auto const rect = shownPart(area(element));
    if (!rect)
        return rect.error();
    constexpr double kPart = 0.7;
    double duration = kSwipeSeconds;
    if (velocity) {
        CGPoint const way = directionOf(direction);
        double const length =
            kPart * (std::abs(way.x) * rect->size.width + std::abs(way.y) * rect->size.height);
        duration = std::clamp(length * screenScale() / *velocity, kFrameSeconds, 60.0);
    }
    dragAcross(*rect, directionOf(direction), kPart, duration, 0);
    return Json();
}

Answer<Json> MobileScripts::scroll()
{
    auto const direction = m_in.optionalOneOf("direction", { "up", "down", "left", "right" });
    double const distance = m_in.optionalNumber("distance").value_or(1);
    if (!(distance > 0 && distance <= 100))
        m_in.refuse("`distance` is a number of screens above 0");
    auto const name = m_in.optionalText("name");
    auto const predicate = m_in.optionalText("predicateString");
    bool const toVisible = m_in.optionalBoolean("toVisible").value_or(false);
    auto const element = elementId();
    if (!m_in.isGood())
        return m_in.error();
    if (direction) {
        auto const rect = shownPart(area(element));
        if (!rect)
            return rect.error();
        // What lies further down comes into view by a finger that goes up; slowly, and at rest at the end.
        CGPoint const way = directionOf(*direction);
        for (double left = distance; left > 0; left -= 1)
            dragAcross(*rect, { -way.x, -way.y }, 0.8 * std::min(left, 1.0), kScrollSeconds, 0.2);
        return Json();
    }
    if (name)
        return scrollToFound("accessibility id", *name, element);
    if (predicate)
        return scrollToFound("-ios predicate string", *predicate, element);
    if (toVisible && element)
        return scrollTo(*element);
    return invalidArgument("`mobile: scroll` takes one of `direction`, `name`, `predicateString` and "
                           "`toVisible` with an element");
}

Answer<Json> MobileScripts::scrollToFound(
    std::string const& strategy, std::string const& value, std::optional<std::string> const& element)
{
    PhoneCommand command;
    command.element = element.value_or("");
    command.parameters = Json::object({ { "using", strategy }, { "value", value } });
    auto const found = m_commands.search(command, true);
    if (!found)
        return found.error();
    return scrollTo(m_commands.m_elements.nameOf(found->front()));
}

Answer<Json> MobileScripts::scrollTo(std::string const& element)
{
    auto const object = m_commands.objectOfElement(element);
    if (!object)
        return object.error();
    UIView const view = objc::cast<UIView>(*object);
    for (UIView each = view ? view.superview() : UIView {}; each; each = each.superview()) {
        if (auto const scroll = objc::cast<UIScrollView>(each)) {
            scroll.scrollRectToVisible(scroll.convertRectFromView(view.bounds(), view), false);
            phone().advance(0);
            return Json();
        }
    }
    return CommandError { ErrorCode::invalidElementState, "the element is in nothing that scrolls" };
}

Answer<Json> MobileScripts::scrollToElement()
{
    auto const element = elementId();
    if (!element)
        m_in.refuse("`elementId` is missing");
    if (!m_in.isGood())
        return m_in.error();
    return scrollTo(*element);
}

Answer<Json> MobileScripts::dragFromTo()
{
    double const hold = seconds("duration");
    double const fromX = m_in.number("fromX");
    double const fromY = m_in.number("fromY");
    double const toX = m_in.number("toX");
    double const toY = m_in.number("toY");
    auto const element = elementId();
    if (!m_in.isGood())
        return m_in.error();
    auto const from = point(element, fromX, fromY);
    if (!from)
        return from.error();
    auto const to = point(element, toX, toY);
    if (!to)
        return to.error();
    m_commands.m_gestures.drag(*from, *to, hold, kSwipeSeconds * 2);
    return Json();
}

}
