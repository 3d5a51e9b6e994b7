// ClassChain: the language of `-ios class chain`: types from parent to child, with predicates and positions. Any thread; nothing
// throws.
//
// `**/Type` reaches every descendant, otherwise children; `*` is any type; `[`predicate`]` keeps elements that answer it,
// `[$predicate$]` those with a descendant that does; `[n]` picks one of all that a step finds, from 1, negative from the end.
// Inside a predicate its own mark is written twice.
#pragma once

#include "phone/automation/predicate.hpp"

namespace phone {

class ClassChain {
public:
    // Malformed: `invalid selector` with the position, from 1.
    static Answer<ClassChain> parse(std::string_view text);

    // In document order; none when a position is beyond what is there. `timeout` when it takes longer than the limit allows.
    Answer<std::vector<std::size_t>> find(
        ElementTree const& tree, std::size_t start, SearchLimit& limit) const;

private:
    friend class ClassChainParser;
    struct Filter {
        Predicate predicate;
        bool isForDescendants { false };
    };
    struct Step {
        bool reachesDescendants { false };
        std::string type;   // `*`: any
        std::vector<Filter> filters;
        std::optional<int> position;
    };
    static bool passes(Step const& step, ElementTree const& tree, std::size_t number, SearchLimit& limit);

    std::vector<Step> m_steps;
};

}
