#include "plugin/actions/text_format.hpp"

#include <string>
#include <string_view>

NSString filled(char const* format, std::initializer_list<NSString> values)
{
    constexpr std::string_view kPlaceholder = "%@";
    std::string_view rest = format;
    NSString text = ""_ns;
    auto const append = [&text](std::string_view part) {
        text = text.stringByAppendingString(NSString::stringWithUTF8String(std::string(part).c_str()));
    };
    for (NSString const value : values) {
        auto const at = rest.find(kPlaceholder);
        if (at == std::string_view::npos)
            break;
        append(rest.substr(0, at));
        if (value)
            text = text.stringByAppendingString(value);
        rest.remove_prefix(at + kPlaceholder.size());
    }
    append(rest);
    return text;
}
