// Locators: the strategies by which clients find elements. Any thread; nothing throws.
#pragma once

#include "phone/automation/element_tree.hpp"
#include "phone/automation/search_limit.hpp"

#include <functional>

namespace phone {

// A strategy and its value, checked and ready for any number of searches.
class Locator {
public:
    // `using` as on the wire, as `accessibility id`. An unknown strategy or a malformed value: `invalid selector`.
    static Answer<Locator> make(std::string const& strategy, std::string const& value);

    // In document order. The start itself counts too, but not for XPath and class chains. An XPath may turn out not to give
    // elements only here. `timeout` when it takes longer than kSearchSeconds.
    Answer<std::vector<std::size_t>> find(ElementTree const& tree, std::size_t start) const;

    // For an error: `accessibility id "Anna"`.
    std::string const& description() const { return m_description; }

private:
    using Search =
        std::function<Answer<std::vector<std::size_t>>(ElementTree const&, std::size_t, SearchLimit&)>;
    Locator(std::string description, Search search)
        : m_description(std::move(description))
        , m_search(std::move(search))
    {
    }

    std::string m_description;
    Search m_search;
};

}
