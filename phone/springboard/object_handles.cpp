#include "phone/springboard/object_handles.hpp"

#include <charconv>
#include <chrono>
#include <map>
#include <vector>

namespace phone {

namespace {

// `object-` and what tells this phone from those before and after it: a handle of theirs names nothing here.
std::string const& prefix()
{
    static auto const& text = *new std::string([] {
        auto const now = std::chrono::system_clock::now().time_since_epoch();
        auto const microseconds = std::chrono::duration_cast<std::chrono::microseconds>(now).count();
        char digits[16];
        auto const end = std::to_chars(digits, digits + sizeof digits, microseconds, 36).ptr;
        return "object-" + std::string(digits, end) + "-";
    }());
    return text;
}

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
    return prefix() + std::to_string(row->second);
}

std::optional<objc::handle> objectOfHandle(std::string_view handle)
{
    if (!handle.starts_with(prefix()))
        return std::nullopt;
    handle.remove_prefix(prefix().size());
    std::size_t number = 0;
    auto const [end, failure] = std::from_chars(handle.begin(), handle.end(), number);
    if (failure != std::errc {} || end != handle.end() || number >= handles().objects.size())
        return std::nullopt;
    return handles().objects[number].get();
}

bool isHandle(std::string_view text) { return text.starts_with("object-"); }

}
