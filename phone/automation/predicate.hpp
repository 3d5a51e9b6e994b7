// Predicate: the language of `-ios predicate string`, over one element's attributes. Own code, since Foundation's
// NSPredicate here answers wrongly or ends the process on what testers write. Any thread; nothing throws.
//
// Comparisons = == != <> < > <= >= =< => BETWEEN IN CONTAINS BEGINSWITH ENDSWITH LIKE MATCHES, with [c], [d] and [cd];
// AND OR NOT && || !, brackets, TRUEPREDICATE, FALSEPREDICATE; texts in quotes with backslash escapes, numbers, true, false, YES,
// NO, nil, NULL, {a, b}; keys as attributeOf() knows them.
#pragma once

#include "phone/automation/element_tree.hpp"
#include "phone/automation/search_limit.hpp"

#include <memory>

namespace phone {

class Predicate {
public:
    // At most 64 KiB and 64 levels of brackets. Otherwise, or malformed: `invalid selector` with the position, from 1.
    static Answer<Predicate> parse(std::string_view text);

    // What it answers once the limit is over means nothing.
    bool matches(Element const& element, SearchLimit& limit) const;

    struct Node;

private:
    explicit Predicate(std::shared_ptr<Node const> root)
        : m_root(std::move(root))
    {
    }
    std::shared_ptr<Node const> m_root;
};

}
