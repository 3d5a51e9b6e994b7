// The screen's elements as XML: the source that clients read, and XPath over it. Any thread; nothing throws.
#pragma once

#include "phone/automation/element_tree.hpp"

namespace phone {

struct SourceOptions {
    bool hasRoot { true };                 // <AppiumAUT> around the application, as clients expect it
    std::vector<std::string> without;      // attributes that are left out
    std::vector<std::string> additional;   // of `hittable` alone, which is there only on request
};

std::string sourceXml(ElementTree const& tree, SourceOptions const& options = {});

// The same as nested objects: {"type", "name", …, "rect", "children"}.
Json sourceJson(ElementTree const& tree);

// A line an element, indented by depth, for people.
std::string sourceDescription(ElementTree const& tree);

// XPath 1.0 over the source without its root, with the element `start` as context: `//X` searches the whole screen, `.//X` what
// is below. In document order. Malformed, or a result that is no elements: `invalid selector`.
Answer<std::vector<std::size_t>> findByXpath(
    ElementTree const& tree, std::size_t start, std::string_view expression);

}
