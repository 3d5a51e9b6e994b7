#include "phone/kernel/ascii.hpp"

namespace phone {

std::string_view trimmed(std::string_view text, std::string_view spaces)
{
    auto const start = text.find_first_not_of(spaces);
    if (start == text.npos)
        return {};
    return text.substr(start, text.find_last_not_of(spaces) - start + 1);
}

std::string lowercase(std::string_view text)
{
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return result;
}

}
