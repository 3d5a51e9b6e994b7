#include "phone/automation/predicate_nodes.hpp"

#include <cctype>
#include <charconv>

namespace phone {

namespace {

using Node = Predicate::Node;
using NodePointer = std::shared_ptr<Node const>;

constexpr int kMaxDepth = 64;

struct OperatorName {
    std::string_view name;
    PredicateOperator op;
};
// Longer ones first.
constexpr OperatorName kSigns[] { { "==", PredicateOperator::equal }, { "!=", PredicateOperator::notEqual },
    { "<>", PredicateOperator::notEqual }, { "<=", PredicateOperator::lessOrEqual },
    { "=<", PredicateOperator::lessOrEqual }, { ">=", PredicateOperator::greaterOrEqual },
    { "=>", PredicateOperator::greaterOrEqual }, { "=", PredicateOperator::equal },
    { "<", PredicateOperator::less }, { ">", PredicateOperator::greater } };
constexpr OperatorName kWords[] { { "BETWEEN", PredicateOperator::between }, { "IN", PredicateOperator::in },
    { "CONTAINS", PredicateOperator::contains }, { "BEGINSWITH", PredicateOperator::beginsWith },
    { "ENDSWITH", PredicateOperator::endsWith }, { "LIKE", PredicateOperator::like },
    { "MATCHES", PredicateOperator::matches } };

bool isWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.'; }

bool isSameWord(std::string_view word, std::string_view upper)
{
    if (word.size() != upper.size())
        return false;
    for (std::size_t i = 0; i < word.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(word[i])) != upper[i])
            return false;
    return true;
}

class Parser {
public:
    explicit Parser(std::string_view text)
        : m_text(text)
    {
    }

    Answer<NodePointer> parse()
    {
        if (m_text.size() > kLongestQuery)
            return invalidSelector("a predicate has at most " + std::to_string(kLongestQuery) + " bytes");
        NodePointer const root = disjunction(0);
        skipSpace();
        if (!m_failure && m_at < m_text.size())
            fail("something stands behind the end");
        if (m_failure)
            return *m_failure;
        return root;
    }

private:
    NodePointer fail(std::string const& what)
    {
        if (!m_failure)
            m_failure = CommandError { ErrorCode::invalidSelector,
                "predicate, position " + std::to_string(m_at + 1) + ": " + what };
        return nullptr;
    }

    void skipSpace()
    {
        while (m_at < m_text.size() && std::isspace(static_cast<unsigned char>(m_text[m_at])))
            ++m_at;
    }
    bool takes(std::string_view sign)
    {
        skipSpace();
        if (!m_text.substr(m_at).starts_with(sign))
            return false;
        m_at += sign.size();
        return true;
    }
    std::string_view peekWord()
    {
        skipSpace();
        std::size_t end = m_at;
        while (end < m_text.size() && isWordCharacter(m_text[end]))
            ++end;
        return m_text.substr(m_at, end - m_at);
    }
    bool takesWord(std::string_view upper)
    {
        std::string_view const word = peekWord();
        if (!isSameWord(word, upper))
            return false;
        m_at += word.size();
        return true;
    }

    // Parts joined by a word or its sign; a single part stands for itself.
    template <class Part>
    NodePointer joined(Node::Kind kind, std::string_view word, std::string_view sign, Part part)
    {
        NodePointer const first = part();
        if (!first)
            return nullptr;
        Node node;
        node.kind = kind;
        node.parts.push_back(first);
        while (takesWord(word) || takes(sign)) {
            NodePointer const next = part();
            if (!next)
                return nullptr;
            node.parts.push_back(next);
        }
        return node.parts.size() == 1 ? first : std::make_shared<Node const>(std::move(node));
    }

    NodePointer disjunction(int depth)
    {
        if (depth > kMaxDepth)
            return fail("too many brackets");
        return joined(Node::Kind::disjunction, "OR", "||", [this, depth] {
            return joined(Node::Kind::conjunction, "AND", "&&", [this, depth] { return part(depth); });
        });
    }

    NodePointer part(int depth)
    {
        if (depth > kMaxDepth)
            return fail("too many brackets");
        skipSpace();
        bool const isSign =
            m_at < m_text.size() && m_text[m_at] == '!' && !m_text.substr(m_at).starts_with("!=");
        if (isSign || isSameWord(peekWord(), "NOT")) {
            m_at += isSign ? 1 : 3;
            NodePointer const inner = part(depth + 1);
            if (!inner)
                return nullptr;
            Node node;
            node.kind = Node::Kind::negation;
            node.parts.push_back(inner);
            return std::make_shared<Node const>(std::move(node));
        }
        if (takes("(")) {
            NodePointer const inner = disjunction(depth + 1);
            if (inner && !takes(")"))
                return fail("a closing bracket is missing");
            return inner;
        }
        for (bool const constant : { true, false }) {
            if (takesWord(constant ? "TRUEPREDICATE" : "FALSEPREDICATE")) {
                Node node;
                node.constant = constant;
                return std::make_shared<Node const>(std::move(node));
            }
        }
        return comparison();
    }

    NodePointer comparison()
    {
        Node node;
        node.kind = Node::Kind::comparison;
        PredicateComparison& comparison = node.comparison;
        if (!operand(comparison.left, 0) || !comparisonOperator(comparison) || !operand(comparison.right, 0))
            return nullptr;
        return check(comparison) ? std::make_shared<Node const>(std::move(node)) : nullptr;
    }

    bool comparisonOperator(PredicateComparison& comparison)
    {
        skipSpace();
        bool isFound = false;
        for (auto const& [name, op] : kSigns) {
            if (takes(name)) {
                comparison.op = op;
                isFound = true;
                break;
            }
        }
        if (!isFound) {
            for (auto const& [name, op] : kWords) {
                if (takesWord(name)) {
                    comparison.op = op;
                    isFound = true;
                    break;
                }
            }
        }
        if (!isFound) {
            fail("here a comparison is expected, as == or CONTAINS");
            return false;
        }
        if (m_at < m_text.size() && m_text[m_at] == '[') {
            std::size_t const start = ++m_at;
            for (; m_at < m_text.size() && m_text[m_at] != ']'; ++m_at) {
                char const c = static_cast<char>(std::tolower(static_cast<unsigned char>(m_text[m_at])));
                bool& flag = c == 'c' ? comparison.ignoresCase : comparison.ignoresMarks;
                if ((c != 'c' && c != 'd') || flag) {
                    fail("a comparison's options are [c], [d] or [cd]");
                    return false;
                }
                flag = true;
            }
            if (m_at == start || m_at == m_text.size()) {
                fail("a comparison's options are [c], [d] or [cd]");
                return false;
            }
            ++m_at;
        }
        return true;
    }

    bool operand(PredicateOperand& operand, int depth)
    {
        skipSpace();
        if (m_at == m_text.size()) {
            fail("the end, where a key or a value is expected");
            return false;
        }
        char const c = m_text[m_at];
        if (c == '\'' || c == '"')
            return text(operand, c);
        if (c == '{')
            return list(operand, depth);
        if (std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '+')
            return number(operand);
        std::string_view const word = peekWord();
        if (word.empty()) {
            fail("here a key or a value is expected");
            return false;
        }
        if (isSameWord(word, "TRUE") || isSameWord(word, "YES"))
            operand.value = true;
        else if (isSameWord(word, "FALSE") || isSameWord(word, "NO"))
            operand.value = false;
        else if (isSameWord(word, "NIL") || isSameWord(word, "NULL"))
            operand.value = std::monostate();
        else if (attributeOf(Element {}, word))
            operand.key = std::string(word);
        else {
            fail("no element has an attribute \"" + std::string(word) + "\"; there are " + attributeNames());
            return false;
        }
        m_at += word.size();
        return true;
    }

    bool text(PredicateOperand& operand, char quote)
    {
        std::string text;
        std::size_t const start = m_at++;
        for (; m_at < m_text.size() && m_text[m_at] != quote; ++m_at) {
            if (m_text[m_at] != '\\') {
                text += m_text[m_at];
                continue;
            }
            if (++m_at == m_text.size())
                break;
            char const c = m_text[m_at];
            text += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
        }
        if (m_at >= m_text.size()) {
            m_at = start;
            fail("a text without its closing quote");
            return false;
        }
        ++m_at;
        operand.value = std::move(text);
        return true;
    }

    bool number(PredicateOperand& operand)
    {
        std::size_t const skipped = m_text[m_at] == '+' ? 1 : 0;
        char const* const end = m_text.data() + m_text.size();
        double value = 0;
        auto const [stop, failure] = std::from_chars(m_text.data() + m_at + skipped, end, value);
        if (failure != std::errc() || (stop < end && isWordCharacter(*stop))) {
            fail("this is no number");
            return false;
        }
        m_at = static_cast<std::size_t>(stop - m_text.data());
        operand.value = value;
        return true;
    }

    bool list(PredicateOperand& list, int depth)
    {
        if (depth > 0) {
            fail("a list in a list");
            return false;
        }
        list.isList = true;
        takes("{");
        if (takes("}"))
            return true;
        do {
            PredicateOperand item;
            if (!operand(item, depth + 1))
                return false;
            list.list.push_back(std::move(item));
        } while (takes(","));
        if (!takes("}")) {
            fail("a list without its closing bracket");
            return false;
        }
        return true;
    }

    // What no element could answer, and patterns.
    bool check(PredicateComparison& comparison)
    {
        bool const isIn = comparison.op == PredicateOperator::in;
        bool const isBetween = comparison.op == PredicateOperator::between;
        if (comparison.left.isList || (comparison.right.isList && !isIn && !isBetween)) {
            fail("a list stands behind IN or BETWEEN alone");
            return false;
        }
        if (isBetween && comparison.right.list.size() != 2) {
            fail("BETWEEN takes two values, as {1, 5}");
            return false;
        }
        bool const isPattern =
            comparison.op == PredicateOperator::matches || comparison.op == PredicateOperator::like;
        if (!isPattern)
            return true;
        auto const* const text = std::get_if<std::string>(&comparison.right.value);
        if (!text || !comparison.right.key.empty()) {
            fail("LIKE and MATCHES take a text");
            return false;
        }
        std::string const source = comparison.op == PredicateOperator::like ? patternOfLike(*text) : *text;
        UErrorCode status = U_ZERO_ERROR;
        UParseError where {};
        // The case is the pattern's own business; marks are taken off both sides.
        std::uint32_t flags = comparison.op == PredicateOperator::like ? UREGEX_DOTALL : 0;
        if (comparison.ignoresCase)
            flags |= UREGEX_CASE_INSENSITIVE;
        comparison.pattern.reset(icu::RegexPattern::compile(
            foldedText(source, false, comparison.ignoresMarks), flags, where, status));
        if (U_FAILURE(status)) {
            fail("the pattern is no regular expression");
            return false;
        }
        return true;
    }

    std::string_view m_text;
    std::size_t m_at { 0 };
    std::optional<CommandError> m_failure;
};

}

Answer<Predicate> Predicate::parse(std::string_view text)
{
    auto root = Parser(text).parse();
    if (!root)
        return root.error();
    return Predicate(*root);
}

bool Predicate::matches(Element const& element, SearchLimit& limit) const
{
    return holds(*m_root, element, limit);
}

}
