#include "phone/automation/element_tree.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>

namespace phone {

namespace {

// XCTest's public enumeration XCUIElementType, in its order.
constexpr std::string_view kTypes[] { "Any", "Other", "Application", "Group", "Window", "Sheet", "Drawer",
    "Alert", "Dialog", "Button", "RadioButton", "RadioGroup", "CheckBox", "DisclosureTriangle", "PopUpButton",
    "ComboBox", "MenuButton", "ToolbarButton", "Popover", "Keyboard", "Key", "NavigationBar", "TabBar",
    "TabGroup", "Toolbar", "StatusBar", "Table", "TableRow", "TableColumn", "Outline", "OutlineRow",
    "Browser", "CollectionView", "Slider", "PageIndicator", "ProgressIndicator", "ActivityIndicator",
    "SegmentedControl", "Picker", "PickerWheel", "Switch", "Toggle", "Link", "Image", "Icon", "SearchField",
    "ScrollView", "ScrollBar", "StaticText", "TextField", "SecureTextField", "DatePicker", "TextView", "Menu",
    "MenuItem", "MenuBar", "MenuBarItem", "Map", "WebView", "IncrementArrow", "DecrementArrow", "Timeline",
    "RatingIndicator", "ValueIndicator", "SplitGroup", "Splitter", "RelevanceIndicator", "ColorWell",
    "HelpTag", "Matte", "DockItem", "Ruler", "RulerMarker", "Grid", "LevelIndicator", "Cell", "LayoutArea",
    "LayoutItem", "Handle", "Stepper", "Tab", "TouchBar", "StatusItem" };

AttributeValue textOrNone(std::optional<std::string> const& text)
{
    if (text)
        return *text;
    return std::monostate();
}

AttributeValue nonEmpty(std::string const& text)
{
    if (text.empty())
        return std::monostate();
    return text;
}

struct Row {
    std::string_view name;
    AttributeValue (*value)(Element const&);
};

constexpr Row kRows[] {
    { "type", [](Element const& e) -> AttributeValue { return e.type; } },
    { "value", [](Element const& e) -> AttributeValue { return textOrNone(e.value); } },
    { "name", [](Element const& e) -> AttributeValue { return textOrNone(e.name()); } },
    { "label", [](Element const& e) -> AttributeValue { return textOrNone(e.label); } },
    { "identifier", [](Element const& e) -> AttributeValue { return nonEmpty(e.identifier); } },
    { "enabled", [](Element const& e) -> AttributeValue { return e.isEnabled; } },
    { "visible", [](Element const& e) -> AttributeValue { return e.isVisible; } },
    { "accessible", [](Element const& e) -> AttributeValue { return e.isAccessible; } },
    { "selected", [](Element const& e) -> AttributeValue { return e.isSelected; } },
    { "focused", [](Element const& e) -> AttributeValue { return e.isFocused; } },
    { "hittable", [](Element const& e) -> AttributeValue { return e.isHittable; } },
    { "rect", [](Element const& e) -> AttributeValue { return e.rect; } },
    { "x", [](Element const& e) -> AttributeValue { return double(e.rect.x); } },
    { "y", [](Element const& e) -> AttributeValue { return double(e.rect.y); } },
    { "width", [](Element const& e) -> AttributeValue { return double(e.rect.width); } },
    { "height", [](Element const& e) -> AttributeValue { return double(e.rect.height); } },
    { "rect.x", [](Element const& e) -> AttributeValue { return double(e.rect.x); } },
    { "rect.y", [](Element const& e) -> AttributeValue { return double(e.rect.y); } },
    { "rect.width", [](Element const& e) -> AttributeValue { return double(e.rect.width); } },
    { "rect.height", [](Element const& e) -> AttributeValue { return double(e.rect.height); } },
    { "index", [](Element const& e) -> AttributeValue { return double(e.index); } },
    { "placeholderValue", [](Element const& e) -> AttributeValue { return textOrNone(e.placeholder); } },
    { "traits", [](Element const& e) -> AttributeValue { return e.traitNames(); } },
    { "processId",
        [](Element const& e) -> AttributeValue {
            if (e.processId)
                return double(*e.processId);
            return std::monostate();
        } },
    { "bundleId", [](Element const& e) -> AttributeValue { return nonEmpty(e.bundleId); } },
};

std::string withoutAlias(std::string_view name)
{
    if (name.size() < 3 || !name.starts_with("wd") || !std::isupper(static_cast<unsigned char>(name[2])))
        return std::string(name);
    std::string plain(name.substr(2));
    plain[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(plain[0])));
    return plain;
}

}

std::optional<std::string> Element::name() const
{
    if (!identifier.empty())
        return identifier;
    if (label && !label->empty())
        return label;
    return {};
}

std::string Element::text() const
{
    if (value)
        return *value;
    return label.value_or("");
}

std::string Element::traitNames() const
{
    struct TraitName {
        std::uint64_t bit;
        char const* name;
    };
    constexpr TraitName kNames[] { { ElementTrait::button, "Button" }, { ElementTrait::link, "Link" },
        { ElementTrait::image, "Image" }, { ElementTrait::staticText, "StaticText" },
        { ElementTrait::header, "Header" }, { ElementTrait::selected, "Selected" } };
    std::string names;
    for (auto const& [bit, name] : kNames) {
        if (traits & bit)
            names += (names.empty() ? "" : ", ") + std::string(name);
    }
    return names;
}

std::vector<std::size_t> ElementTree::children(std::size_t number) const
{
    std::vector<std::size_t> found;
    for (std::size_t at = number + 1; at < elements[number].end; at = elements[at].end)
        found.push_back(at);
    return found;
}

std::size_t ElementTree::open(Element element, std::size_t parent)
{
    std::size_t const number = elements.size();
    element.parent = number == 0 ? 0 : parent;
    element.index = 0;
    if (number > 0) {
        // The siblings before it are closed; the parent is still open.
        for (std::size_t at = parent + 1; at < number; at = elements[at].end)
            ++element.index;
    }
    element.end = number + 1;
    elements.push_back(std::move(element));
    return number;
}

std::optional<AttributeValue> attributeOf(Element const& element, std::string_view name)
{
    std::string const plain = withoutAlias(name);
    for (Row const& row : kRows)
        if (row.name == plain)
            return row.value(element);
    return {};
}

std::string const& attributeNames()
{
    static std::string const names = [] {
        std::string all;
        for (Row const& row : kRows)
            all += (all.empty() ? "" : ", ") + std::string(row.name);
        return all;
    }();
    return names;
}

Json attributeText(AttributeValue const& value)
{
    if (auto const* const flag = std::get_if<bool>(&value))
        return *flag ? "true" : "false";
    if (auto const* const number = std::get_if<double>(&value))
        return std::to_string(std::lround(*number));
    if (auto const* const text = std::get_if<std::string>(&value))
        return *text;
    if (auto const* const rect = std::get_if<ElementRect>(&value))
        return Json::object(
            { { "x", rect->x }, { "y", rect->y }, { "width", rect->width }, { "height", rect->height } })
            .dump();
    return nullptr;
}

bool isElementType(std::string_view name)
{
    return name.starts_with(kTypePrefix)
        && std::ranges::find(kTypes, name.substr(kTypePrefix.size())) != std::end(kTypes);
}

}
