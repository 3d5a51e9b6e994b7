// XPath 1.0 over the source without its root. Any thread; nothing throws.
#pragma once

#include "phone/automation/element_tree.hpp"
#include "phone/automation/search_limit.hpp"

namespace phone {

// With the element `start` as context: `//X` searches the whole screen, `.//X` what is below. In document order. Malformed, or a
// result that is no elements: `invalid selector`; `timeout` when it takes longer than the limit allows.
Answer<std::vector<std::size_t>> findByXpath(
    ElementTree const& tree, std::size_t start, std::string_view expression, SearchLimit& limit);

// Is it an expression whose cost stays small, by its shape, on a screen of so many elements? What isn't may take for ever, as
// predicates that search the screen within each other do.
bool isQuickXpath(std::string_view expression, std::size_t elements);

}
