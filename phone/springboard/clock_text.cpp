#include "phone/springboard/clock_text.hpp"

#include <unicode/udat.h>
#include <unicode/udatpg.h>
#include <unicode/ustring.h>

#include <array>
#include <map>
#include <memory>
#include <string_view>
#include <tuple>

namespace phone {

namespace {

constexpr int kMaxText = 128;   // UTF-16 units; the longest date of any language has about 40

struct PatternGeneratorDeleter {
    void operator()(void* generator) const
    {
        udatpg_close(static_cast<UDateTimePatternGenerator*>(generator));
    }
};
struct FormatDeleter {
    void operator()(void* format) const { udat_close(static_cast<UDateFormat*>(format)); }
};
using Format = std::unique_ptr<void, FormatDeleter>;

// The language's best pattern for the wanted fields; empty when ICU has none.
std::u16string bestPattern(std::string const& locale, std::u16string_view skeleton)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<void, PatternGeneratorDeleter> const generator { udatpg_open(locale.c_str(), &status) };
    std::array<UChar, kMaxText> pattern {};
    int const length = udatpg_getBestPattern(static_cast<UDateTimePatternGenerator*>(generator.get()),
        skeleton.data(), static_cast<int>(skeleton.size()), pattern.data(), kMaxText, &status);
    return U_SUCCESS(status) ? std::u16string(pattern.data(), static_cast<std::size_t>(length))
                             : std::u16string {};
}

// Without the fields for the day's half (`a`, `b`, `B`) and the spaces beside them: the lock screen's clock
// has none.
std::u16string withoutDayHalf(std::u16string_view pattern)
{
    std::u16string kept;
    for (char16_t c : pattern)
        if (c != u'a' && c != u'b' && c != u'B')
            kept.push_back(c);
    auto const isSpace = [](char16_t c) { return c == u' ' || c == u'\u00a0' || c == u'\u202f'; };
    while (!kept.empty() && isSpace(kept.back()))
        kept.pop_back();
    while (!kept.empty() && isSpace(kept.front()))
        kept.erase(kept.begin());
    return kept;
}

Format makeFormat(std::string const& locale, std::string const& timezone, std::u16string const& pattern)
{
    std::array<UChar, kMaxText> zone {};
    UErrorCode status = U_ZERO_ERROR;
    int zoneLength = 0;
    u_strFromUTF8(zone.data(), kMaxText, &zoneLength, timezone.c_str(), -1, &status);
    if (U_FAILURE(status))
        zoneLength = 0;
    status = U_ZERO_ERROR;
    return Format { udat_open(UDAT_PATTERN, UDAT_PATTERN, locale.c_str(), zone.data(), zoneLength,
        pattern.data(), static_cast<int>(pattern.size()), &status) };
}

std::string formatted(UDateFormat* format, Date date)
{
    std::array<UChar, kMaxText> text {};
    UErrorCode status = U_ZERO_ERROR;
    udat_format(format, date.since1970() * 1000 /* ms */, text.data(), kMaxText, nullptr, &status);
    std::array<char, kMaxText * 3 + 1> utf8 {};
    int length = 0;
    u_strToUTF8(utf8.data(), kMaxText * 3, &length, text.data(), -1, &status);
    return U_SUCCESS(status) ? std::string(utf8.data(), static_cast<std::size_t>(length)) : std::string {};
}

// Patterns are looked up and formats made once: the clock is written anew each minute.
std::string written(
    Date date, std::u16string_view skeleton, std::string const& language, std::string const& timezone)
{
    thread_local std::map<std::tuple<std::u16string, std::string, std::string>, Format> formats;
    std::string const locale = language.empty() ? "en" : language;
    auto [row, isNew] = formats.try_emplace({ std::u16string(skeleton), locale, timezone });
    if (isNew)
        row->second = makeFormat(locale, timezone, withoutDayHalf(bestPattern(locale, skeleton)));
    return row->second ? formatted(static_cast<UDateFormat*>(row->second.get()), date) : std::string {};
}

}

std::string lockScreenTime(Date date, std::string const& language, std::string const& timezone)
{
    return written(date, u"jmm", language, timezone);
}

std::string lockScreenDate(Date date, std::string const& language, std::string const& timezone)
{
    return written(date, u"EEEEMMMMd", language, timezone);
}

}
