#include "phone/automation/locator.hpp"

#include "phone/automation/class_chain.hpp"
#include "phone/automation/xpath.hpp"

#include <cctype>

namespace phone {

namespace {

using Found = Answer<std::vector<std::size_t>>;

template <class Matches>
auto searchWhere(Matches matches)
{
    return [matches](ElementTree const& tree, std::size_t start, SearchLimit& limit) -> Found {
        std::vector<std::size_t> found;
        for (std::size_t at = start; at < tree[start].end; ++at)
            if (matches(tree[at], limit))
                found.push_back(at);
        if (limit.wasOver())
            return SearchLimit::error();
        return found;
    };
}

auto searchByName(std::string const& name)
{
    return searchWhere([name](Element const& element, SearchLimit&) { return element.name() == name; });
}

// `*[id="Ben"]`, `*[name="Ben"]`, `#Ben`: what selenium's By.id and By.name become. None for any other selector.
std::optional<std::string> nameOfCssSelector(std::string const& text)
{
    auto const unescaped = [](std::string_view escaped) {
        std::string plain;
        for (std::size_t i = 0; i < escaped.size(); ++i) {
            if (escaped[i] == '\\' && i + 1 < escaped.size())
                ++i;
            plain += escaped[i];
        }
        return plain;
    };
    if (text.size() > 1 && text[0] == '#') {
        for (std::size_t i = 1; i < text.size(); ++i) {
            auto const c = static_cast<unsigned char>(text[i]);
            bool const isEscape = c == '\\' && i + 1 < text.size();
            if (!isEscape && !std::isalnum(c) && c < 0x80 && c != '-' && c != '_')
                return {};
            i += isEscape;
        }
        return unescaped(std::string_view(text).substr(1));
    }
    for (std::string_view const start : { "*[id=", "*[name=", "[id=", "[name=" }) {
        std::string_view const whole(text);
        if (!whole.starts_with(start) || whole.size() < start.size() + 3 || !whole.ends_with("]"))
            continue;
        std::string_view const quoted = whole.substr(start.size(), whole.size() - start.size() - 1);
        if ((quoted[0] != '"' && quoted[0] != '\'') || quoted.back() != quoted[0])
            return {};
        std::string_view const inner = quoted.substr(1, quoted.size() - 2);
        for (std::size_t i = 0; i < inner.size(); ++i) {
            if (inner[i] == '\\')
                ++i;
            else if (inner[i] == quoted[0])
                return {};
        }
        return unescaped(inner);
    }
    return {};
}

}

Answer<Locator> Locator::make(std::string const& strategy, std::string const& value)
{
    std::string const description = strategy + " \"" + value + "\"";
    if (strategy == "accessibility id" || strategy == "id" || strategy == "name")
        return Locator(description, searchByName(value));
    if (strategy == "class name") {
        std::string const type = value.starts_with(kTypePrefix) ? value : std::string(kTypePrefix) + value;
        bool const isAny = type == "XCUIElementTypeAny";
        return Locator(description, searchWhere([type, isAny](Element const& element, SearchLimit&) {
            return isAny || element.type == type;
        }));
    }
    if (strategy == "xpath")
        return Locator(description, [value](ElementTree const& tree, std::size_t start, SearchLimit& limit) {
            return findByXpath(tree, start, value, limit);
        });
    if (strategy == "-ios predicate string" || strategy == "predicate string") {
        auto predicate = Predicate::parse(value);
        if (!predicate)
            return predicate.error();
        return Locator(
            description, searchWhere([predicate = *predicate](Element const& element, SearchLimit& limit) {
                return predicate.matches(element, limit);
            }));
    }
    if (strategy == "-ios class chain" || strategy == "class chain") {
        auto chain = ClassChain::parse(value);
        if (!chain)
            return chain.error();
        return Locator(
            description, [chain = *chain](ElementTree const& tree, std::size_t start, SearchLimit& limit) {
                return chain.find(tree, start, limit);
            });
    }
    if (strategy == "css selector") {
        auto const name = nameOfCssSelector(value);
        if (!name)
            return invalidSelector(
                "a phone has no CSS; of its selectors only #name, *[id=\"…\"] and *[name=\"…\"] are "
                "understood, not "
                + value);
        return Locator(description, searchByName(*name));
    }
    if (strategy == "link text" || strategy == "partial link text") {
        auto const sign = value.find('=');
        std::string const key = sign == std::string::npos ? "name" : value.substr(0, sign);
        std::string const wanted = sign == std::string::npos ? value : value.substr(sign + 1);
        if (!attributeOf(Element {}, key))
            return invalidSelector(
                "no element has an attribute \"" + key + "\"; there are " + attributeNames());
        bool const isPartial = strategy == "partial link text";
        return Locator(
            description, searchWhere([key, wanted, isPartial](Element const& element, SearchLimit&) {
                Json const text = attributeText(attributeOf(element, key).value_or(AttributeValue()));
                if (!text.is_string())
                    return false;
                auto const& whole = text.get_ref<std::string const&>();
                return isPartial ? whole.find(wanted) != std::string::npos : whole == wanted;
            }));
    }
    return invalidSelector("no strategy \"" + strategy
        + "\"; there are accessibility id, id, name, class name, xpath, -ios predicate string, -ios class chain");
}

Answer<std::vector<std::size_t>> Locator::find(ElementTree const& tree, std::size_t start) const
{
    SearchLimit limit;
    return m_search(tree, start, limit);
}

}
