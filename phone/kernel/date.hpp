// Date: a moment, as the platform counts it, and its ISO 8601 text. Any thread, but for what reads the
// process's time zone (see there).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace phone {

// 1970-01-01 to 2001-01-01, in seconds (NSTimeIntervalSince1970).
inline constexpr double kSecondsFrom1970To2001 = 978307200.0;

// A moment. The same number that NSDate's timeIntervalSinceReferenceDate has.
struct Date {
    double sinceReference { 0 };   // seconds since 2001-01-01 00:00:00 UTC

    static Date since1970(double seconds) { return { seconds - kSecondsFrom1970To2001 }; }
    double since1970() const { return sinceReference + kSecondsFrom1970To2001; }
    Date operator+(double seconds) const { return { sinceReference + seconds }; }
    friend bool operator==(Date const&, Date const&) = default;
};

// A day of the proleptic Gregorian calendar.
struct CalendarDay {
    long long year { 2001 };
    int month { 1 };   // 1 to 12
    int day { 1 };     // 1 to 31
    friend bool operator==(CalendarDay const&, CalendarDay const&) = default;
};

// Days since 1970-01-01, and back. Month 1 to 12, day 1 to 31.
long long daysFrom1970(CalendarDay);
CalendarDay dayFrom1970(long long days);

// False for 30 February and the like.
bool isCalendarDay(CalendarDay);

// Reads `2026-06-18T09:41:00Z`, `…+02:00`, with or without seconds, fraction of a second and offset, or a
// day alone (midnight). Without an offset it is local time of the process's time zone (setTimezone), which
// the C library looks up: main thread. None for anything else.
std::optional<Date> parseIsoDate(std::string_view text);

// `2026-06-18T09:41:00Z`: UTC, whole seconds, rounded down. Moments that no four-digit year holds get a
// longer or signed year; a date that is no number gives `2001-01-01T00:00:00Z`.
std::string isoDate(Date);

// Makes `name` (an IANA name such as `Europe/Istanbul`, or `UTC`) the time zone of the process: TZ in the
// environment, which the C library and Foundation follow. False, and nothing changed, when the system has
// no such zone. Main thread; the phone's boot calls it.
bool setTimezone(std::string const& name);

}
