// What a parsed predicate is made of; predicate.cpp makes it, predicate_match.cpp answers it.
#pragma once

#include "phone/automation/predicate.hpp"

#include <unicode/regex.h>
#include <unicode/unistr.h>

namespace phone {

enum class PredicateOperator {
    equal,
    notEqual,
    less,
    greater,
    lessOrEqual,
    greaterOrEqual,
    between,
    in,
    contains,
    beginsWith,
    endsWith,
    like,
    matches
};

// A key or a literal.
struct PredicateOperand {
    std::string key;                      // not empty: an attribute
    AttributeValue value;                 // the literal
    std::vector<PredicateOperand> list;   // {a, b}
    bool isList { false };
};

struct PredicateComparison {
    PredicateOperand left;
    PredicateOperator op { PredicateOperator::equal };
    bool ignoresCase { false };
    bool ignoresMarks { false };   // diacritics
    PredicateOperand right;
    std::shared_ptr<icu::RegexPattern const> pattern;   // LIKE and MATCHES with a literal
};

struct Predicate::Node {
    enum class Kind { constant, comparison, conjunction, disjunction, negation };
    Kind kind { Kind::constant };
    bool constant { false };
    PredicateComparison comparison;
    std::vector<std::shared_ptr<Node const>> parts;
};

bool holds(Predicate::Node const& node, Element const& element, SearchLimit& limit);

// As a comparison with these options sees a text.
icu::UnicodeString foldedText(std::string const& text, bool ignoresCase, bool ignoresMarks);

// LIKE's stars and question marks as a regular expression.
std::string patternOfLike(std::string_view text);

}
