// vCard syntax: a card as a list of properties, by Evolution's parser. For vcard.cpp alone.
#pragma once

#include "phone/kernel/result.hpp"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace phone {

struct VcardProperty {
    std::string group;                                             // `item1` of `item1.EMAIL`, or empty
    std::string name;                                              // in capitals
    std::vector<std::pair<std::string, std::string>> parameters;   // name in capitals, one value each
    std::vector<std::string>
        values;                // split at `;`, with line folding, escapes and transfer encoding undone
    bool isBinary { false };   // it had a base64 encoding: values[0] is bytes

    // Is there a parameter of this name and value, in whatever capitals?
    bool hasParameter(std::string_view parameter, std::string_view value) const;
};

// The cards of a file, each from BEGIN to END; a card inside a card (an agent) belongs to the outer one. A
// last card without END is not among them.
struct VcardTexts {
    std::vector<std::string> cards;
    bool isCutShort { false };
};
VcardTexts splitVcards(std::string_view text);

// The properties of one card, in its order. An error when the parser is not installed on this computer.
Result<std::vector<VcardProperty>> parseVcard(std::string const& card);

}
