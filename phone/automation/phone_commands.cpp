#include "phone/automation/phone_commands.hpp"

#include "phone/automation/scripts/script_targets.hpp"
#include "phone/automation/source_document.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/alert_presentation.hpp"
#include "phone/uikit/touch_delivery.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/ui_scroll_view.hpp"

#include <algorithm>
#include <cmath>

namespace phone {

namespace {

constexpr double kSearchStep = 0.1;     // seconds between two looks while a search waits
constexpr double kLongestWait = 3600;   // seconds that a search waits at most, whatever the session's timeout
constexpr double kLongestAnimation = 2;   // seconds that a tap waits for a view that moves to take touches

// The text under a key of the body, or `invalid argument`.
Answer<std::string> textParameter(Json const& parameters, char const* name)
{
    auto const at = parameters.find(name);
    if (at == parameters.end() || !at->is_string())
        return invalidArgument(std::string("`") + name + "` is a text");
    return at->get<std::string>();
}

std::string upper(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

UIScrollView scrollViewAround(UIView view)
{
    for (UIView each = view.superview(); each; each = each.superview())
        if (auto const scroll = objc::cast<UIScrollView>(each))
            return scroll;
    return {};
}

bool isBlocked(UIView view)
{
    for (UIView each = view; each; each = each.superview())
        if (each.isBlockedByAnimation())
            return true;
    return false;
}

}

PhoneCommands::Row const PhoneCommands::kRows[] {
    { "findElement", &PhoneCommands::findElement },
    { "findElements", &PhoneCommands::findElements },
    { "activeElement", &PhoneCommands::activeElement },
    { "elementText", &PhoneCommands::elementText },
    { "elementName", &PhoneCommands::elementName },
    { "elementAttribute", &PhoneCommands::elementAttribute },
    { "elementRect", &PhoneCommands::elementRect },
    { "elementDisplayed", &PhoneCommands::elementDisplayed },
    { "elementEnabled", &PhoneCommands::elementEnabled },
    { "elementSelected", &PhoneCommands::elementSelected },
    { "elementClick", &PhoneCommands::elementClick },
    { "elementSendKeys", &PhoneCommands::elementSendKeys },
    { "elementClear", &PhoneCommands::elementClear },
    { "elementScreenshot", &PhoneCommands::elementScreenshot },
    { "screenshot", &PhoneCommands::screenshot },
    { "source", &PhoneCommands::source },
    { "windowRect", &PhoneCommands::windowRect },
    { "orientation", &PhoneCommands::orientation },
    { "setOrientation", &PhoneCommands::setOrientation },
    { "performActions", &PhoneCommands::performActions },
    { "releaseActions", &PhoneCommands::releaseActions },
    { "alertText", &PhoneCommands::alertText },
    { "alertSendText", &PhoneCommands::alertSendText },
    { "alertAccept", &PhoneCommands::alertAccept },
    { "alertDismiss", &PhoneCommands::alertDismiss },
    { "executeScript", &PhoneCommands::executeScript },
};

PhoneCommands::PhoneCommands(BootOptions usual, std::uint64_t elementsGiven, Gestures::PassTime passTime)
    : m_usual(std::move(usual))
    , m_elements(elementsGiven)
    , m_gestures(passTime)
    , m_passTime(std::move(passTime))
{
}

Answer<Json> PhoneCommands::run(PhoneCommand const& command)
{
    AutoreleasePool const pool;
    for (Row const& row : kRows) {
        if (row.name == command.name)
            return (this->*row.handler)(command);
    }
    return CommandError { ErrorCode::unknownCommand, "the phone has no command " + command.name };
}

Answer<objc::handle> PhoneCommands::objectOfElement(std::string const& id)
{
    auto const object = m_elements.objectOf(id);
    if (object && !isOnPhone(*object))
        return CommandError { ErrorCode::staleElement, "the element " + id + " is no longer on the screen" };
    return object;
}

void PhoneCommands::passTime(double seconds) { m_passTime(seconds); }

void PhoneCommands::boot(Json const& arguments) { m_next = NextPhone { false, arguments }; }

void PhoneCommands::respring() { m_next = NextPhone { true, nullptr }; }

// ---- elements

Json PhoneCommands::elementObject(void* object)
{
    std::string const name = m_elements.nameOf(objc::handle { static_cast<id>(object) });
    return Json::object({ { kElementKey, name }, { "ELEMENT", name } });
}

Answer<Element> PhoneCommands::elementNamed(std::string const& id)
{
    auto const object = objectOfElement(id);
    if (!object)
        return object.error();
    ElementTree const tree = takeSnapshot();
    if (auto const number = findObject(tree, *object))
        return tree[*number];
    return describeHidden(*object);
}

Answer<std::vector<objc::handle>> PhoneCommands::search(PhoneCommand const& command, bool wantsOne)
{
    auto const strategy = textParameter(command.parameters, "using");
    if (!strategy)
        return strategy.error();
    auto const value = textParameter(command.parameters, "value");
    if (!value)
        return value.error();
    auto const locator = Locator::make(*strategy, *value);
    if (!locator)
        return locator.error();
    double const patience = std::min(command.implicitSeconds, kLongestWait);
    double waited = 0;
    while (true) {
        ElementTree const tree = takeSnapshot();
        std::optional<std::size_t> start = 0;
        if (!command.element.empty()) {
            auto const object = objectOfElement(command.element);
            if (!object)
                return object.error();
            start = findObject(tree, *object);
        }
        std::vector<objc::handle> objects;
        if (start) {
            auto const found = locator->find(tree, *start);
            if (!found)
                return found.error();
            for (std::size_t const number : *found)
                objects.emplace_back(static_cast<id>(tree[number].object));
        }
        if (!objects.empty())
            return objects;
        if (waited >= patience) {
            if (wantsOne)
                return CommandError { ErrorCode::noSuchElement, "no element with " + locator->description() };
            return objects;
        }
        // Nothing new can be found on a screen that has not changed.
        std::uint64_t const seen = displayRevision();
        do {
            double const step = std::min(kSearchStep, patience - waited);
            m_passTime(step);
            waited += step;
        } while (displayRevision() == seen && waited < patience);
    }
}

Answer<Json> PhoneCommands::findElement(PhoneCommand const& command)
{
    auto const found = search(command, true);
    if (!found)
        return found.error();
    return elementObject(found->front().object);
}

Answer<Json> PhoneCommands::findElements(PhoneCommand const& command)
{
    auto const found = search(command, false);
    if (!found)
        return found.error();
    Json elements = Json::array();
    for (objc::handle const each : *found)
        elements.push_back(elementObject(each.object));
    return elements;
}

Answer<Json> PhoneCommands::activeElement(PhoneCommand const&)
{
    UIView const view = objc::cast<UIView>(firstResponder());
    if (!view || !isOnPhone(view))
        return CommandError { ErrorCode::noSuchElement, "no element has the keyboard" };
    return elementObject(view.object);
}

Answer<Json> PhoneCommands::elementText(PhoneCommand const& command)
{
    auto const element = elementNamed(command.element);
    if (!element)
        return element.error();
    return Json(element->text());
}

Answer<Json> PhoneCommands::elementName(PhoneCommand const& command)
{
    auto const element = elementNamed(command.element);
    if (!element)
        return element.error();
    return Json(element->type);
}

Answer<Json> PhoneCommands::elementAttribute(PhoneCommand const& command)
{
    auto const element = elementNamed(command.element);
    if (!element)
        return element.error();
    auto const value = attributeOf(*element, command.argument);
    if (!value)
        return invalidArgument(
            "no element has an attribute \"" + command.argument + "\"; there are " + attributeNames());
    return attributeText(*value);
}

Answer<Json> PhoneCommands::elementRect(PhoneCommand const& command)
{
    auto const element = elementNamed(command.element);
    if (!element)
        return element.error();
    ElementRect const& rect = element->rect;
    return Json::object(
        { { "x", rect.x }, { "y", rect.y }, { "width", rect.width }, { "height", rect.height } });
}

Answer<Json> PhoneCommands::elementDisplayed(PhoneCommand const& command)
{
    auto const element = elementNamed(command.element);
    if (!element)
        return element.error();
    return Json(element->isVisible);
}

Answer<Json> PhoneCommands::elementEnabled(PhoneCommand const& command)
{
    auto const element = elementNamed(command.element);
    if (!element)
        return element.error();
    return Json(element->isEnabled);
}

Answer<Json> PhoneCommands::elementSelected(PhoneCommand const& command)
{
    auto const element = elementNamed(command.element);
    if (!element)
        return element.error();
    return Json(element->isSelected);
}

// ---- touching

Answer<CGRect> PhoneCommands::placeOf(std::string const& id)
{
    auto const element = elementNamed(id);
    if (!element)
        return element.error();
    ElementRect const& rect = element->rect;
    return CGRect { { double(rect.x), double(rect.y) }, { double(rect.width), double(rect.height) } };
}

Answer<CGPoint> PhoneCommands::touchablePoint(objc::handle object)
{
    CommandError const hidden { ErrorCode::elementNotInteractable, "the element is not visible" };
    UIView const view = objc::cast<UIView>(object);
    // What an animation brings in takes touches once it has arrived.
    for (double waited = 0; view && isBlocked(view) && waited < kLongestAnimation; waited += kFrameSeconds)
        m_passTime(kFrameSeconds);
    for (bool const hasScrolled : { false, true }) {
        ElementTree const tree = takeSnapshot();
        auto const number = findObject(tree, object);
        if (!number)
            return hidden;
        Element const& element = tree[*number];
        CGRect const whole { { double(element.rect.x), double(element.rect.y) },
            { double(element.rect.width), double(element.rect.height) } };
        CGRect const screen = screenBounds();
        CGRect const shown = intersection(whole, screen);
        UIScrollView const scroll = view ? scrollViewAround(view) : UIScrollView {};
        if (!element.isVisible) {
            if (hasScrolled || !scroll)
                return hidden;
            scroll.scrollRectToVisible(scroll.convertRectFromView(view.bounds(), view), false);
            phone().advance(0);
            continue;
        }
        CGPoint const point = contains(screen, center(whole)) ? center(whole) : center(shown);
        // An alert over the rest of its window takes the touches there.
        UIAlertController const alert = frontMostAlert();
        UIView const hit = touchDelivery().hitTest(point);
        if (alert && view && hit && hit.isDescendantOfView(alert.alertView())
            && !view.isDescendantOfView(alert.alertView()) && !alert.alertView().isDescendantOfView(view))
            return CommandError { ErrorCode::elementClickIntercepted, "an alert lies over the element" };
        return point;
    }
    return hidden;
}

Answer<Json> PhoneCommands::tapObject(objc::handle object)
{
    auto const point = touchablePoint(object);
    if (!point)
        return point.error();
    m_gestures.press(*point, kTapSeconds);
    return Json();
}

Answer<Json> PhoneCommands::elementClick(PhoneCommand const& command)
{
    auto const object = objectOfElement(command.element);
    if (!object)
        return object.error();
    return tapObject(*object);
}

Answer<Json> PhoneCommands::elementSendKeys(PhoneCommand const& command)
{
    auto const object = objectOfElement(command.element);
    if (!object)
        return object.error();
    std::string text;
    auto const whole = command.parameters.find("text");
    auto const parts = command.parameters.find("value");
    if (whole != command.parameters.end() && whole->is_string()) {
        text = *whole;
    } else if (parts != command.parameters.end() && parts->is_array()
        && std::ranges::all_of(*parts, [](Json const& each) { return each.is_string(); })) {
        for (Json const& each : *parts)
            text += each.get<std::string>();
    } else {
        return invalidArgument("`text` is a text");
    }
    if (!object->responds<"insertText:">())
        return CommandError { ErrorCode::elementNotInteractable, "the element takes no text" };
    UIResponder { object->object }.send<"becomeFirstResponder", BOOL>();
    object->send<"insertText:">(toNSString(text));
    phone().advance(0);
    return Json();
}

Answer<Json> PhoneCommands::elementClear(PhoneCommand const& command)
{
    auto const object = objectOfElement(command.element);
    if (!object)
        return object.error();
    if (!object->responds<"insertText:">() || !object->responds<"setText:">())
        return CommandError { ErrorCode::invalidElementState, "the element takes no text" };
    object->send<"setText:">(toNSString(""));
    phone().advance(0);
    return Json();
}

Answer<Json> PhoneCommands::performActions(PhoneCommand const& command)
{
    auto const sources = parseActions(command.parameters);
    if (!sources)
        return sources.error();
    auto const done =
        m_gestures.perform(*sources, [this](std::string const& element) { return placeOf(element); });
    if (!done)
        return done.error();
    return Json();
}

Answer<Json> PhoneCommands::releaseActions(PhoneCommand const&)
{
    m_gestures.release();
    return Json();
}

// ---- the screen

Answer<Json> PhoneCommands::pictureOf(std::optional<ElementRect> part)
{
    double const scale = phone().options().scale;
    graphics::Bitmap picture = m_renderer.drawScreen(scale);
    if (picture && part)
        picture = graphics::cropped(
            picture, { part->x * scale, part->y * scale, part->width * scale, part->height * scale });
    auto const png = picture ? graphics::encodePng(picture) : std::vector<std::uint8_t> {};
    if (png.empty())
        return CommandError { ErrorCode::unableToCaptureScreen,
            part ? "nothing of the element is on the screen" : "the screen can't be drawn" };
    return Json(base64(png.data(), png.size()));
}

Answer<Json> PhoneCommands::screenshot(PhoneCommand const&) { return pictureOf({}); }

Answer<Json> PhoneCommands::elementScreenshot(PhoneCommand const& command)
{
    auto const element = elementNamed(command.element);
    if (!element)
        return element.error();
    return pictureOf(element->rect);
}

Answer<Json> PhoneCommands::source(PhoneCommand const& command)
{
    SourceOptions options;
    auto const excluded = command.settings.find("pageSourceExcludedAttributes");
    if (excluded != command.settings.end() && excluded->is_string()) {
        std::string name;
        for (char const c : excluded->get<std::string>() + ",") {
            if (c == ',') {
                options.without.push_back(std::move(name));
                name.clear();
            } else if (c != ' ') {
                name += c;
            }
        }
    }
    if (command.settings.value("includeHittableInPageSource", false))
        options.additional.emplace_back("hittable");
    return Json(sourceXml(takeSnapshot(), options));
}

Answer<Json> PhoneCommands::windowRect(PhoneCommand const&)
{
    CGSize const size = screenBounds().size;
    return Json::object({ { "x", 0 }, { "y", 0 }, { "width", std::lround(size.width) },
        { "height", std::lround(size.height) } });
}

Answer<Json> PhoneCommands::orientation(PhoneCommand const&)
{
    return Json(phone().orientation() >= 3 ? "LANDSCAPE" : "PORTRAIT");
}

Answer<Json> PhoneCommands::setOrientation(PhoneCommand const& command)
{
    auto const given = textParameter(command.parameters, "orientation");
    if (!given)
        return given.error();
    std::string const name = upper(*given);
    if (name != "PORTRAIT" && name != "LANDSCAPE")
        return invalidArgument("an orientation is PORTRAIT or LANDSCAPE, not \"" + *given + "\"");
    bool const isLandscape = phone().orientation() >= 3;
    if (isLandscape != (name == "LANDSCAPE"))
        phone().setOrientation(name == "LANDSCAPE" ? 3 : 1);
    return Json();
}

}
