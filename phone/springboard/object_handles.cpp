#include "phone/springboard/object_handles.hpp"

#include <charconv>
#include <map>
#include <vector>

namespace phone {

namespace {

constexpr std::string_view kPrefix = "object-";

struct Handles {
    std::vector<objc::ref<objc::handle>> objects;   // by number
    std::map<id, std::size_t> numbers;
};

// Lives to the end of the process, and so do the objects.
Handles& handles()
{
    static auto& all = *new Handles;
    return all;
}

}

std::string handleOf(objc::handle object)
{
    if (!object)
        return {};
    auto& [objects, numbers] = handles();
    auto const [row, isNew] = numbers.try_emplace(object.object, objects.size());
    if (isNew)
        objects.push_back(objc::retain(object));
    return std::string(kPrefix) + std::to_string(row->second);
}

std::optional<objc::handle> objectOfHandle(std::string_view handle)
{
    if (!handle.starts_with(kPrefix))
        return std::nullopt;
    handle.remove_prefix(kPrefix.size());
    std::size_t number = 0;
    auto const [end, failure] = std::from_chars(handle.begin(), handle.end(), number);
    if (failure != std::errc {} || end != handle.end() || number >= handles().objects.size())
        return std::nullopt;
    return handles().objects[number].get();
}

}
