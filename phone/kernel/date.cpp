#include "phone/kernel/date.hpp"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace phone {

namespace {

constexpr long long kSecondsADay = 86400;

// Reads digits off the front of a text.
class DigitReader {
public:
    explicit DigitReader(std::string_view text)
        : m_rest(text)
    {
    }

    // Exactly `count` digits; fails for good otherwise.
    int number(int count)
    {
        int value = 0;
        for (int i = 0; i < count; ++i) {
            if (m_rest.empty() || m_rest[0] < '0' || m_rest[0] > '9')
                return fail();
            value = value * 10 + (m_rest[0] - '0');
            m_rest.remove_prefix(1);
        }
        return value;
    }
    bool accept(char c)
    {
        if (m_rest.empty() || m_rest[0] != c)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }
    void expect(char c)
    {
        if (!accept(c))
            fail();
    }
    // `.5` and the like; 0 when there is none.
    double fraction()
    {
        if (!accept('.'))
            return 0;
        double value = 0;
        double weight = 0.1;
        if (m_rest.empty() || m_rest[0] < '0' || m_rest[0] > '9')
            return fail();
        while (!m_rest.empty() && m_rest[0] >= '0' && m_rest[0] <= '9') {
            value += weight * (m_rest[0] - '0');
            weight /= 10;
            m_rest.remove_prefix(1);
        }
        return value;
    }
    bool isAtEnd() const { return m_rest.empty(); }
    bool hasFailed() const { return m_hasFailed; }

private:
    int fail()
    {
        m_hasFailed = true;
        m_rest = {};
        return 0;
    }

    std::string_view m_rest;
    bool m_hasFailed { false };
};

bool isKnownZone(std::string const& name)
{
    if (name == "UTC")
        return true;
    if (name.empty() || name[0] == '/' || name.find("..") != std::string::npos)
        return false;
    char const* folder = std::getenv("TZDIR");
    std::error_code error;
    return std::filesystem::is_regular_file(
        std::filesystem::path(folder ? folder : "/usr/share/zoneinfo") / name, error);
}

}

// Both after Howard Hinnant's description of the civil calendar in eras of 400 years
// (https://howardhinnant.github.io/date_algorithms.html).
long long daysFrom1970(CalendarDay date)
{
    long long const year = date.year - (date.month <= 2 ? 1 : 0);
    long long const era = (year >= 0 ? year : year - 399) / 400;
    long long const yearOfEra = year - era * 400;
    long long const dayOfYear = (153 * (date.month + (date.month > 2 ? -3 : 9)) + 2) / 5 + date.day - 1;
    long long const dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

CalendarDay dayFrom1970(long long days)
{
    days += 719468;
    long long const era = (days >= 0 ? days : days - 146096) / 146097;
    long long const dayOfEra = days - era * 146097;
    long long const yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    long long const dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    long long const shiftedMonth = (5 * dayOfYear + 2) / 153;
    int const day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
    int const month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
    return { yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, day };
}

bool isCalendarDay(CalendarDay date)
{
    return date.month >= 1 && date.month <= 12 && date.day >= 1 && date.day <= 31
        && dayFrom1970(daysFrom1970(date)) == date;
}

std::optional<Date> parseIsoDate(std::string_view text)
{
    DigitReader reader(text);
    CalendarDay day;
    day.year = reader.number(4);
    reader.expect('-');
    day.month = reader.number(2);
    reader.expect('-');
    day.day = reader.number(2);
    int hour = 0;
    int minute = 0;
    double second = 0;
    bool hasOffset = false;
    int offsetMinutes = 0;
    if (!reader.isAtEnd()) {
        if (!reader.accept('T'))
            reader.expect(' ');
        hour = reader.number(2);
        reader.expect(':');
        minute = reader.number(2);
        if (reader.accept(':')) {
            second = reader.number(2);
            second += reader.fraction();
        }
        if (reader.accept('Z')) {
            hasOffset = true;
        } else if (!reader.isAtEnd()) {
            bool const isWest = reader.accept('-');
            if (!isWest)
                reader.expect('+');
            hasOffset = true;
            offsetMinutes = reader.number(2) * 60;
            reader.accept(':');
            offsetMinutes += reader.number(2);
            if (isWest)
                offsetMinutes = -offsetMinutes;
        }
    }
    if (reader.hasFailed() || !reader.isAtEnd() || !isCalendarDay(day) || hour > 24 || minute > 59
        || second >= 61)
        return std::nullopt;

    if (hasOffset) {
        long long const minutes = daysFrom1970(day) * 24 * 60 + hour * 60 + minute - offsetMinutes;
        return Date::since1970(static_cast<double>(minutes) * 60 + second);
    }
    std::tm local {};
    local.tm_year = static_cast<int>(day.year) - 1900;
    local.tm_mon = day.month - 1;
    local.tm_mday = day.day;
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_isdst = -1;
    return Date::since1970(static_cast<double>(std::mktime(&local)) + second);
}

std::string isoDate(Date date)
{
    double const seconds = std::floor(date.since1970());
    // Past this the calendar's integers would overflow; no file holds such a date on purpose.
    if (!(std::fabs(seconds) < 1e16))
        return "2001-01-01T00:00:00Z";
    auto const whole = static_cast<long long>(seconds);
    long long days = whole / kSecondsADay;
    long long rest = whole % kSecondsADay;
    if (rest < 0) {
        rest += kSecondsADay;
        --days;
    }
    CalendarDay const day = dayFrom1970(days);
    char text[64];
    std::snprintf(text, sizeof text, "%04lld-%02d-%02dT%02lld:%02lld:%02lldZ", day.year, day.month, day.day,
        rest / 3600, rest / 60 % 60, rest % 60);
    return text;
}

bool setTimezone(std::string const& name)
{
    if (!isKnownZone(name))
        return false;
    setenv("TZ", name.c_str(), /* overwrite: */ 1);
    tzset();
    return true;
}

}
