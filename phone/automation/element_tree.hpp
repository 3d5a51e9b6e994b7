// ElementTree: what stands on the phone's screen as accessibility tells it, at one moment. Locators, attributes and the source are
// answered from it; it knows no view. Points of the screen, whole numbers. Any thread.
#pragma once

#include "phone/automation/error.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace phone {

struct ElementRect {
    int x { 0 };
    int y { 0 };
    int width { 0 };
    int height { 0 };
    friend bool operator==(ElementRect const&, ElementRect const&) = default;
};

// UIAccessibilityTraits, those that have a name here.
namespace ElementTrait {
inline constexpr std::uint64_t button = 1 << 0, link = 1 << 1, image = 1 << 2, selected = 1 << 3,
                               staticText = 1 << 6, header = 1 << 16;
}

struct Element {
    std::string type;         // XCUIElementTypeCell
    std::string identifier;   // empty: none
    std::optional<std::string> label;
    std::optional<std::string> value;
    std::optional<std::string> placeholder;   // text inputs alone
    bool isEnabled { true };
    bool isVisible { true };
    bool isAccessible { false };
    bool isSelected { false };
    bool isFocused { false };
    bool isHittable { true };
    ElementRect rect;
    int index { 0 };   // among its siblings
    std::uint64_t traits { 0 };
    std::optional<int> processId;   // the application's
    std::string bundleId;
    void* object { nullptr };   // what it stands for; only ever handed back

    std::size_t parent { 0 };   // the root's own number for the root
    std::size_t end { 0 };      // one past its last descendant

    // The identifier, or else the label; none when both are empty.
    std::optional<std::string> name() const;
    // Value, or else label, or else nothing.
    std::string text() const;
    std::string traitNames() const;   // "Button, Selected"
};

// Elements in document order, an element's descendants right behind it. Number 0 is the application.
struct ElementTree {
    std::vector<Element> elements;

    std::size_t size() const { return elements.size(); }
    Element const& operator[](std::size_t number) const { return elements[number]; }
    std::vector<std::size_t> children(std::size_t number) const;

    // Adds an element behind all others, as the last child of `parent` (which must be the latest element or above it). Sets index
    // and parent; close() has to be called once its descendants are there.
    std::size_t open(Element element, std::size_t parent);
    void close(std::size_t number) { elements[number].end = elements.size(); }
};

// None: the element has no such attribute now. A rect is there under `rect`.
using AttributeValue = std::variant<std::monostate, bool, double, std::string, ElementRect>;

// By XCUITest's name, also with the prefix `wd` (`wdName`), also `rect.x`. None for a name that no element has.
std::optional<AttributeValue> attributeOf(Element const& element, std::string_view name);

// The names that attributeOf() knows, for errors: "type, value, …".
std::string const& attributeNames();

// As the wire has it: booleans as "true" and "false", numbers as text, a rect as JSON. Null for none.
Json attributeText(AttributeValue const& value);

inline constexpr std::string_view kTypePrefix = "XCUIElementType";

// Is it one of XCUITest's type names? With `XCUIElementTypeAny`.
bool isElementType(std::string_view name);

}
