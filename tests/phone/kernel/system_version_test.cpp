#include "phone/kernel/system_version.hpp"

#include <cmath>
#include <gtest/gtest.h>

namespace phone {
namespace {

TEST(SystemVersion, ReadsOneToThreeNumbers)
{
    EXPECT_EQ(*SystemVersion::parse("13"), (SystemVersion { 13, 0, 0 }));
    EXPECT_EQ(*SystemVersion::parse("13.7"), (SystemVersion { 13, 7, 0 }));
    EXPECT_EQ(*SystemVersion::parse("16.1.2"), (SystemVersion { 16, 1, 2 }));
    EXPECT_EQ(*SystemVersion::parse("99.98"), (SystemVersion { 99, 98, 0 }));
}

TEST(SystemVersion, RefusesOtherTexts)
{
    for (char const* text : { "", ".", "13.", ".7", "13..7", "13.7.", "1.2.3.4", "iOS 13", "13.7b2", " 13",
             "13 ", "-13", "+13", "0", "0.5", "13.1000", "99999999999999999999", "13,7" }) {
        auto const version = SystemVersion::parse(text);
        ASSERT_FALSE(version) << text;
        EXPECT_NE(version.message().find(text), std::string::npos);
    }
}

TEST(SystemVersion, IsWrittenAsTheSystemWritesIt)
{
    EXPECT_EQ((SystemVersion { 13, 0, 0 }).text(), "13.0");
    EXPECT_EQ((SystemVersion { 13, 7, 0 }).text(), "13.7");
    EXPECT_EQ((SystemVersion { 16, 1, 2 }).text(), "16.1.2");
}

TEST(CoreFoundationNumber, FollowsTheVersion)
{
    EXPECT_EQ(coreFoundationNumber({ 12, 0, 0 }), 1556.00);
    EXPECT_EQ(coreFoundationNumber({ 12, 4, 0 }), 1575.17);
    EXPECT_EQ(coreFoundationNumber({ 13, 7, 0 }), 1677.104);
    EXPECT_EQ(coreFoundationNumber({ 14, 8, 0 }), 1778.101);
    EXPECT_EQ(coreFoundationNumber({ 15, 4, 0 }), 1858.112);
    EXPECT_EQ(coreFoundationNumber({ 16, 0, 3 }), 1946.102);
}

TEST(CoreFoundationNumber, UnknownVersionsTakeTheNearestBefore)
{
    EXPECT_EQ(coreFoundationNumber({ 9, 1, 0 }), coreFoundationNumber({ 9, 0, 0 }));
    EXPECT_EQ(coreFoundationNumber({ 12, 9, 0 }), coreFoundationNumber({ 12, 5, 0 }));
    EXPECT_EQ(coreFoundationNumber({ 4, 2, 1 }), coreFoundationNumber({ 9, 0, 0 }));
    EXPECT_EQ(coreFoundationNumber({ 26, 0, 0 }), coreFoundationNumber({ 16, 6, 0 }));
}

TEST(CoreFoundationNumber, NeverFallsFromOneSystemToTheNext)
{
    double last = 0;
    for (int major = 9; major <= 18; ++major) {
        for (int minor = 0; minor < 10; ++minor) {
            double const number = coreFoundationNumber({ major, minor, 0 });
            EXPECT_GE(number, last) << major << '.' << minor;
            last = number;
        }
    }
}

TEST(ClassFamily, PartsAt1600)
{
    EXPECT_EQ(classFamily(1600.0), ClassFamily::dashBoard);
    EXPECT_EQ(classFamily(1600.001), ClassFamily::coverSheet);
    EXPECT_EQ(classFamily(std::nan("")), ClassFamily::dashBoard);
    EXPECT_EQ(classFamily(coreFoundationNumber({ 12, 5, 0 })), ClassFamily::dashBoard);
    EXPECT_EQ(classFamily(coreFoundationNumber({ 13, 0, 0 })), ClassFamily::coverSheet);
}

}
}
