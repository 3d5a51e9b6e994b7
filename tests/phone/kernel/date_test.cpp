#include "phone/kernel/date.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace phone {
namespace {

TEST(IsoDate, ReadsTheUsualForms)
{
    ASSERT_TRUE(setTimezone("UTC"));
    EXPECT_EQ(parseIsoDate("2001-01-01T00:00:00Z")->sinceReference, 0);
    EXPECT_EQ(parseIsoDate("1970-01-01T00:00:00Z")->since1970(), 0);
    EXPECT_EQ(parseIsoDate("2001-01-01T00:00:01.5Z")->sinceReference, 1.5);
    EXPECT_EQ(parseIsoDate("2001-01-01T02:00:00+02:00")->sinceReference, 0);
    EXPECT_EQ(parseIsoDate("2000-12-31T19:30-0430")->sinceReference, 0);
    EXPECT_EQ(parseIsoDate("2001-01-02")->sinceReference, 86400);
    EXPECT_EQ(parseIsoDate("2001-01-01 00:01")->sinceReference, 60);
}

TEST(IsoDate, WithoutOffsetIsLocalTime)
{
    ASSERT_TRUE(setTimezone("America/New_York"));
    EXPECT_EQ(isoDate(*parseIsoDate("2026-06-18T09:41:00")), "2026-06-18T13:41:00Z");
    EXPECT_EQ(isoDate(*parseIsoDate("2026-01-18T09:41:00")), "2026-01-18T14:41:00Z");
    ASSERT_TRUE(setTimezone("UTC"));
}

TEST(IsoDate, RefusesOtherTexts)
{
    for (char const* text : { "", "x", "2026", "2026-13-01", "2026-02-29", "2026-01-01T", "2026-01-01T25:00Z",
             "2026-01-01T00:60Z", "2026-01-01T00:00:00Zx", "2026-01-01T00:00:00.Z", "2026-01-01T00:00:00+1",
             "26-01-01" })
        EXPECT_FALSE(parseIsoDate(text)) << text;
}

TEST(IsoDate, WritesWholeSecondsRoundedDown)
{
    EXPECT_EQ(isoDate({ 0.9 }), "2001-01-01T00:00:00Z");
    EXPECT_EQ(isoDate({ -0.1 }), "2000-12-31T23:59:59Z");
    EXPECT_EQ(isoDate({ 63113904000 }), "4001-01-01T00:00:00Z");   // NSDate's distantFuture
    EXPECT_EQ(isoDate({ std::nan("") }), "2001-01-01T00:00:00Z");
    EXPECT_EQ(isoDate({ 1e300 }), "2001-01-01T00:00:00Z");
}

TEST(CalendarDay, GoesBothWays)
{
    for (long long days : { -1000000LL, -719468LL, -1LL, 0LL, 11016LL, 20622LL, 1000000LL })
        EXPECT_EQ(daysFrom1970(dayFrom1970(days)), days);
    EXPECT_EQ(daysFrom1970({ 2000, 2, 29 }) + 1, daysFrom1970({ 2000, 3, 1 }));
    EXPECT_TRUE(isCalendarDay({ 2024, 2, 29 }));
    EXPECT_FALSE(isCalendarDay({ 1900, 2, 29 }));
    EXPECT_FALSE(isCalendarDay({ 2024, 0, 1 }));
    EXPECT_FALSE(isCalendarDay({ 2024, 4, 31 }));
}

TEST(Timezone, RefusesWhatIsNoZone)
{
    for (char const* name : { "", "/etc/passwd", "../zoneinfo/UTC", "Europe", "Nowhere/At_All" })
        EXPECT_FALSE(setTimezone(name)) << name;
}

}
}
