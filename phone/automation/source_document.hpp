// The screen's elements as XML: the source that clients read. Any thread; nothing throws.
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

}
