#include "plugin/strip/first_character.hpp"

#include "tests/support/phone_fixture.hpp"

#include <ostream>

namespace {

struct CharacterRow {
    char const* text;
    char const* first;
    friend std::ostream& operator<<(std::ostream& out, CharacterRow const& row) { return out << row.text; }
};

class FirstCharacter : public phone::CorvelTest, public testing::WithParamInterface<CharacterRow> { };

TEST_P(FirstCharacter, IsWhatAReaderCountsAsOne)
{
    boot();
    EXPECT_STREQ(
        firstCharacter(NSString::stringWithUTF8String(GetParam().text)).UTF8String(), GetParam().first);
}

INSTANTIATE_TEST_SUITE_P(Names, FirstCharacter,
    testing::Values(CharacterRow { "Anna", "A" }, CharacterRow { "a", "a" },
        CharacterRow { "\u0130brahim", "\u0130" }, CharacterRow { "\u05D3\u05E0\u05D4", "\u05D3" },
        CharacterRow { "\u738B\u82B3", "\u738B" }, CharacterRow { "E\u0301milie", "E\u0301" },   // decomposed
        CharacterRow { "\u05E9\u05BC\u05C1\u05E8\u05D4", "\u05E9\u05BC\u05C1" },   // a letter with two points
        CharacterRow { "\U0001F469\u200D\U0001F680 Ada", "\U0001F469\u200D\U0001F680" },   // joined
        CharacterRow { "\U0001F469\U0001F3FD\u200D\U0001F680x", "\U0001F469\U0001F3FD\u200D\U0001F680" },
        CharacterRow { "\U0001F44D\U0001F3FFy", "\U0001F44D\U0001F3FF" },   // skin tone
        CharacterRow { "\u2764\uFE0Fz", "\u2764\uFE0F" },                   // variation selector
        CharacterRow { "1\uFE0F\u20E3a", "1\uFE0F\u20E3" },                 // keycap
        CharacterRow { "\U0001F1F9\U0001F1F7\U0001F1EE\U0001F1F1", "\U0001F1F9\U0001F1F7" },   // two flags
        CharacterRow { "\U0001F1F9x", "\U0001F1F9" },                                          // half a flag
        CharacterRow { "\U0001F3F4\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007Fq",
            "\U0001F3F4\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F" },   // a flag by tags
        CharacterRow { "\U00020000\u4E00", "\U00020000" }));                              // beyond 16 bits

}
