#include "phone/automation/predicate_nodes.hpp"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace phone {

namespace {

// Steps of ICU's matcher, some milliseconds: a pattern that runs away finds nothing.
constexpr int kPatternTimeLimit = 200;
constexpr int kPatternStackLimit = 1 << 20;   // bytes

AttributeValue valueOf(PredicateOperand const& operand, Element const& element)
{
    if (operand.key.empty())
        return operand.value;
    return attributeOf(element, operand.key).value_or(AttributeValue());
}

std::optional<double> numberOf(AttributeValue const& value)
{
    if (auto const* const number = std::get_if<double>(&value))
        return *number;
    if (auto const* const flag = std::get_if<bool>(&value))
        return *flag ? 1 : 0;
    if (auto const* const text = std::get_if<std::string>(&value)) {
        if (*text == "true" || *text == "false")
            return *text == "true" ? 1 : 0;
        double number = 0;
        auto const [end, failure] = std::from_chars(text->data(), text->data() + text->size(), number);
        if (failure == std::errc() && end == text->data() + text->size() && !text->empty())
            return number;
    }
    return {};
}

std::optional<std::string> textOf(AttributeValue const& value)
{
    Json const text = attributeText(value);
    if (!text.is_string())
        return {};
    return text.get<std::string>();
}

bool isText(AttributeValue const& value) { return std::holds_alternative<std::string>(value); }
bool isNone(AttributeValue const& value) { return std::holds_alternative<std::monostate>(value); }

icu::UnicodeString folded(PredicateComparison const& comparison, std::string const& text)
{
    return foldedText(text, comparison.ignoresCase, comparison.ignoresMarks);
}

// Negative, zero, positive; none when the two can't be compared.
std::optional<int> compare(
    PredicateComparison const& comparison, AttributeValue const& left, AttributeValue const& right)
{
    if (isNone(left) || isNone(right))
        return {};
    if (isText(left) && isText(right)) {
        return folded(comparison, *textOf(left)).compareCodePointOrder(folded(comparison, *textOf(right)));
    }
    auto const leftNumber = numberOf(left);
    auto const rightNumber = numberOf(right);
    if (!leftNumber || !rightNumber)
        return {};
    return *leftNumber < *rightNumber ? -1 : *leftNumber > *rightNumber ? 1 : 0;
}

bool isEqual(PredicateComparison const& comparison, AttributeValue const& left, AttributeValue const& right)
{
    if (isNone(left) || isNone(right))
        return isNone(left) && isNone(right);
    return compare(comparison, left, right) == 0;
}

bool holdsForTexts(PredicateComparison const& comparison, std::string const& left, std::string const& right)
{
    icu::UnicodeString const whole = folded(comparison, left);
    icu::UnicodeString const part = folded(comparison, right);
    switch (comparison.op) {
    case PredicateOperator::contains: return whole.indexOf(part) >= 0 || part.isEmpty();
    case PredicateOperator::beginsWith: return bool(whole.startsWith(part));
    case PredicateOperator::endsWith: return bool(whole.endsWith(part));
    default: return false;
    }
}

bool holdsForPattern(PredicateComparison const& comparison, std::string const& text)
{
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString const input = foldedText(text, false, comparison.ignoresMarks);
    std::unique_ptr<icu::RegexMatcher> const matcher(comparison.pattern->matcher(input, status));
    if (U_FAILURE(status))
        return false;
    matcher->setTimeLimit(kPatternTimeLimit, status);
    matcher->setStackLimit(kPatternStackLimit, status);
    bool const isMatch = matcher->matches(status);
    return U_SUCCESS(status) && isMatch;
}

bool holdsForList(PredicateComparison const& comparison, AttributeValue const& left, Element const& element)
{
    return std::ranges::any_of(comparison.right.list,
        [&](PredicateOperand const& each) { return isEqual(comparison, left, valueOf(each, element)); });
}

bool holdsComparison(PredicateComparison const& comparison, Element const& element)
{
    AttributeValue const left = valueOf(comparison.left, element);
    AttributeValue const right = valueOf(comparison.right, element);
    switch (comparison.op) {
    case PredicateOperator::equal: return isEqual(comparison, left, right);
    case PredicateOperator::notEqual: return !isEqual(comparison, left, right);
    case PredicateOperator::less:
    case PredicateOperator::greater:
    case PredicateOperator::lessOrEqual:
    case PredicateOperator::greaterOrEqual: {
        auto const order = compare(comparison, left, right);
        if (!order)
            return false;
        switch (comparison.op) {
        case PredicateOperator::less: return *order < 0;
        case PredicateOperator::greater: return *order > 0;
        case PredicateOperator::lessOrEqual: return *order <= 0;
        default: return *order >= 0;
        }
    }
    case PredicateOperator::between: {
        auto const low = compare(comparison, left, valueOf(comparison.right.list[0], element));
        auto const high = compare(comparison, left, valueOf(comparison.right.list[1], element));
        return low && high && *low >= 0 && *high <= 0;
    }
    case PredicateOperator::in: {
        if (comparison.right.isList)
            return holdsForList(comparison, left, element);
        // In a text: as a part of it.
        if (!isText(left) || !isText(right))
            return false;
        return folded(comparison, *textOf(right)).indexOf(folded(comparison, *textOf(left))) >= 0;
    }
    case PredicateOperator::contains:
    case PredicateOperator::beginsWith:
    case PredicateOperator::endsWith: {
        auto const leftText = textOf(left);
        auto const rightText = textOf(right);
        return leftText && rightText && holdsForTexts(comparison, *leftText, *rightText);
    }
    case PredicateOperator::like:
    case PredicateOperator::matches: {
        auto const text = textOf(left);
        return text && comparison.pattern && holdsForPattern(comparison, *text);
    }
    }
    return false;
}

}

bool holds(Predicate::Node const& node, Element const& element, SearchLimit& limit)
{
    using Kind = Predicate::Node::Kind;
    auto const part = [&](auto const& each) { return holds(*each, element, limit); };
    switch (node.kind) {
    case Kind::constant: return node.constant;
    case Kind::comparison: return !limit.isOver() && holdsComparison(node.comparison, element);
    case Kind::conjunction: return std::ranges::all_of(node.parts, part);
    case Kind::disjunction: return std::ranges::any_of(node.parts, part);
    case Kind::negation: return !part(node.parts.front());
    }
    return false;
}

icu::UnicodeString foldedText(std::string const& text, bool ignoresCase, bool ignoresMarks)
{
    icu::UnicodeString result = icu::UnicodeString::fromUTF8(text);
    if (ignoresMarks) {
        UErrorCode status = U_ZERO_ERROR;
        auto const* const decompose = icu::Normalizer2::getNFDInstance(status);
        icu::UnicodeString const decomposed =
            U_SUCCESS(status) ? decompose->normalize(result, status) : result;
        icu::UnicodeString bare;
        for (std::int32_t at = 0; at < decomposed.length();) {
            UChar32 const c = decomposed.char32At(at);
            if (u_charType(c) != U_NON_SPACING_MARK)
                bare.append(c);
            at += U16_LENGTH(c);
        }
        result = bare;
    }
    if (ignoresCase)
        result.foldCase();
    return result;
}

std::string patternOfLike(std::string_view text)
{
    std::string pattern;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '*') {
            pattern += ".*";
            continue;
        }
        if (c == '?') {
            pattern += '.';
            continue;
        }
        if (c == '\\' && i + 1 < text.size())
            c = text[++i];
        if (std::string_view("\\^$.|+()[]{}*?").find(c) != std::string_view::npos)
            pattern += '\\';
        pattern += c;
    }
    return pattern;
}

}
