#include "phone/automation/class_chain.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <set>

namespace phone {

namespace {

constexpr int kMaxPosition = 1'000'000;
constexpr std::string_view kAnyType = "XCUIElementTypeAny";

}

class ClassChainParser {
public:
    explicit ClassChainParser(std::string_view text)
        : m_text(text)
    {
    }

    Answer<ClassChain> parse()
    {
        if (m_text.size() > kLongestQuery)
            return invalidSelector("a class chain has at most " + std::to_string(kLongestQuery) + " bytes");
        ClassChain chain;
        do {
            ClassChain::Step step;
            if (!takeStep(step))
                return *m_failure;
            chain.m_steps.push_back(std::move(step));
        } while (takes("/"));
        if (m_at < m_text.size()) {
            fail("here the end or a / is expected");
            return *m_failure;
        }
        return chain;
    }

private:
    bool fail(std::string const& what)
    {
        if (!m_failure)
            m_failure = CommandError { ErrorCode::invalidSelector,
                "class chain, position " + std::to_string(m_at + 1) + ": " + what };
        return false;
    }
    bool takes(std::string_view sign)
    {
        if (!m_text.substr(m_at).starts_with(sign))
            return false;
        m_at += sign.size();
        return true;
    }

    bool takeStep(ClassChain::Step& step)
    {
        if (takes("**")) {
            step.reachesDescendants = true;
            if (!takes("/"))
                return fail("behind ** a / is expected");
        }
        if (takes("*")) {
            step.type = "*";
        } else {
            std::size_t end = m_at;
            while (end < m_text.size() && std::isalnum(static_cast<unsigned char>(m_text[end])))
                ++end;
            step.type = m_text.substr(m_at, end - m_at);
            if (!isElementType(step.type))
                return fail(step.type.empty() ? "here a type is expected, as XCUIElementTypeButton or *"
                                              : "there is no type \"" + step.type + "\"");
            m_at = end;
            if (step.type == kAnyType)
                step.type = "*";
        }
        while (takes("[")) {
            if (step.position)
                return fail("nothing stands behind a step's position");
            if (takes("`")       ? !takeFilter(step, '`')
                    : takes("$") ? !takeFilter(step, '$')
                                 : !takePosition(step))
                return false;
            if (!takes("]"))
                return fail("a closing bracket is missing");
        }
        return true;
    }

    bool takeFilter(ClassChain::Step& step, char mark)
    {
        std::size_t const start = m_at;
        std::string text;
        while (m_at < m_text.size()) {
            if (m_text[m_at] != mark) {
                text += m_text[m_at++];
                continue;
            }
            if (m_at + 1 < m_text.size() && m_text[m_at + 1] == mark) {
                text += mark;
                m_at += 2;
                continue;
            }
            break;
        }
        if (m_at == m_text.size()) {
            m_at = start;
            return fail("a predicate without its closing mark");
        }
        ++m_at;
        auto predicate = Predicate::parse(text);
        if (!predicate) {
            m_at = start;
            return fail(predicate.error().message);
        }
        step.filters.push_back({ std::move(*predicate), mark == '$' });
        return true;
    }

    bool takePosition(ClassChain::Step& step)
    {
        int position = 0;
        char const* const begin = m_text.data() + m_at;
        auto const [end, failure] = std::from_chars(begin, m_text.data() + m_text.size(), position);
        if (failure != std::errc())
            return fail("in brackets stands a position, or a predicate in ` or $");
        if (position == 0 || position > kMaxPosition || position < -kMaxPosition)
            return fail("positions count from 1, or from -1 backwards");
        m_at += static_cast<std::size_t>(end - begin);
        step.position = position;
        return true;
    }

    std::string_view m_text;
    std::size_t m_at { 0 };
    std::optional<CommandError> m_failure;
};

Answer<ClassChain> ClassChain::parse(std::string_view text) { return ClassChainParser(text).parse(); }

bool ClassChain::passes(Step const& step, ElementTree const& tree, std::size_t number, SearchLimit& limit)
{
    if (step.type != "*" && tree[number].type != step.type)
        return false;
    return std::ranges::all_of(step.filters, [&](Filter const& filter) {
        if (!filter.isForDescendants)
            return filter.predicate.matches(tree[number], limit);
        for (std::size_t at = number + 1; at < tree[number].end; ++at)
            if (filter.predicate.matches(tree[at], limit))
                return true;
        return false;
    });
}

Answer<std::vector<std::size_t>> ClassChain::find(
    ElementTree const& tree, std::size_t start, SearchLimit& limit) const
{
    std::set<std::size_t> current { start };
    for (Step const& step : m_steps) {
        std::set<std::size_t> reached;
        for (std::size_t const from : current) {
            for (std::size_t at = from + 1; at < tree[from].end;
                 at = step.reachesDescendants ? at + 1 : tree[at].end)
                reached.insert(at);
        }
        std::vector<std::size_t> found;
        for (std::size_t const each : reached)
            if (passes(step, tree, each, limit))
                found.push_back(each);
        if (limit.isOver())
            return SearchLimit::error();
        if (step.position) {
            auto const count = static_cast<int>(found.size());
            int const at = *step.position > 0 ? *step.position - 1 : count + *step.position;
            if (at < 0 || at >= count)
                return std::vector<std::size_t> {};
            found = { found[static_cast<std::size_t>(at)] };
        }
        current = { found.begin(), found.end() };
    }
    return std::vector<std::size_t>(current.begin(), current.end());
}

}
