// The lock screen's clock and date, as a language writes them. Any thread.
#pragma once

#include "phone/kernel/date.hpp"

#include <string>

namespace phone {

// Hours and minutes by the language's own habit (`9:41`, `09:41`), without the mark of the day's half.
// `language` is a BCP 47 tag (`tr`, `zh-Hant`), `timezone` an IANA name; unknown ones give English and UTC.
std::string lockScreenTime(Date, std::string const& language, std::string const& timezone);

// Weekday, day and month in full: `Thursday, June 18`, `18 Haziran Perşembe`.
std::string lockScreenDate(Date, std::string const& language, std::string const& timezone);

}
