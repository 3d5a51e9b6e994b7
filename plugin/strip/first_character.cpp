#include "plugin/strip/first_character.hpp"

#include <algorithm>

namespace {

constexpr char32_t kZeroWidthJoiner = 0x200D;

struct CodePoint {
    char32_t value;
    NSUInteger end;   // index of the unit after it
};

bool isIn(char32_t value, char32_t first, char32_t last) { return value >= first && value <= last; }

CodePoint codePointAt(NSString text, NSUInteger index)
{
    char32_t const high = text.characterAtIndex(index);
    if (isIn(high, 0xD800, 0xDBFF) && index + 1 < text.length()) {
        char32_t const low = text.characterAtIndex(index + 1);
        if (isIn(low, 0xDC00, 0xDFFF))
            return { 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00), index + 2 };
    }
    return { high, index + 1 };
}

bool isRegionalIndicator(char32_t value) { return isIn(value, 0x1F1E6, 0x1F1FF); }

// What belongs to the character before it. The platform's composed sequences know marks but, depending on the system's age, not
// every part of an emoji: variation selectors, skin tones, the keycap, tags, joiners.
bool extends(char32_t value)
{
    return value == kZeroWidthJoiner || isIn(value, 0xFE00, 0xFE0F) || isIn(value, 0x1F3FB, 0x1F3FF)
        || value == 0x20E3 || isIn(value, 0xE0020, 0xE007F)
        || NSCharacterSet::nonBaseCharacterSet().longCharacterIsMember(value);
}

}

NSString firstCharacter(NSString text)
{
    NSUInteger const length = text.length();
    CodePoint last = codePointAt(text, 0);
    bool const flag = isRegionalIndicator(last.value);
    if (flag && last.end < length) {
        CodePoint const second = codePointAt(text, last.end);
        if (isRegionalIndicator(second.value))
            last = second;
    }
    while (last.end < length) {
        CodePoint const next = codePointAt(text, last.end);
        if (!extends(next.value) && last.value != kZeroWidthJoiner)
            break;
        last = next;
    }
    NSRange const composed = text.rangeOfComposedCharacterSequenceAtIndex(0);
    return text.substringToIndex(std::min(length, std::max(last.end, composed.location + composed.length)));
}
