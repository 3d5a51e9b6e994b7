#include "phone/automation/element_registry.hpp"

#include <charconv>

namespace phone {

namespace {

constexpr std::string_view kElementPrefix = "element-";

}

std::string ElementRegistry::nameOf(objc::handle object)
{
    std::uint64_t number = 0;
    auto const known = m_numbers.find(object.object);
    // Another object may have been made where a former one lay.
    if (known != m_numbers.end() && m_objects.at(known->second).get() == object) {
        number = known->second;
    } else {
        if (m_objects.size() >= m_sweepAt)
            forgetGone();
        number = ++m_given;
        m_numbers[object.object] = number;
        m_objects.emplace(number, Weak<objc::handle>(object));
    }
    return std::string(kElementPrefix) + std::to_string(number);
}

Answer<objc::handle> ElementRegistry::objectOf(std::string const& name) const
{
    std::uint64_t number = 0;
    char const* const end = name.data() + name.size();
    bool isName = name.starts_with(kElementPrefix);
    if (isName) {
        auto const [stop, failure] = std::from_chars(name.data() + kElementPrefix.size(), end, number);
        isName = failure == std::errc() && stop == end && number > 0
            && name == std::string(kElementPrefix) + std::to_string(number);
    }
    if (!isName || number > m_given)
        return CommandError { ErrorCode::noSuchElement, "no element was ever named \"" + name + "\"" };
    auto const at = m_objects.find(number);
    objc::handle const object = at == m_objects.end() ? objc::handle {} : at->second.get();
    if (!object)
        return CommandError { ErrorCode::staleElement, "the element " + name + " is gone" };
    return object;
}

void ElementRegistry::forgetGone()
{
    std::erase_if(m_objects, [](auto const& each) { return !each.second; });
    std::erase_if(m_numbers, [this](auto const& each) {
        auto const at = m_objects.find(each.second);
        return at == m_objects.end() || at->second.get().object != each.first;
    });
    m_sweepAt = 2 * m_objects.size() + 1024;
}

}
