#include "phone/kernel/system_version.hpp"

#include <cstddef>

namespace phone {

namespace {

struct KnownNumber {
    int major;
    int minor;
    double number;
};

// kCFCoreFoundationVersionNumber by system, ascending.
//
// Up to 11.4 they are the constants kCFCoreFoundationVersionNumber_iOS_… of the platform's CFBase.h and of
// the version tables that developers share; from 12.0 on the platform publishes none (only 12_x_Max 1599 and
// its like), and they are the readings in those tables. None was checked on a device by us.
// Marked `~`: no reading is known to us, the value is interpolated, and only its order is to be relied on.
// Nothing in SpringBoard or in a plug-in of ours depends on more than the side of 1600 a number is on.
constexpr KnownNumber kNumbers[] = {
    { 9, 0, 1240.1 }, { 9, 2, 1242.13 }, { 9, 3, 1280.30 }, { 10, 0, 1348.00 }, { 10, 1, 1348.00 },
    { 10, 2, 1348.22 }, { 10, 3, 1349.56 }, { 11, 0, 1443.00 }, { 11, 1, 1445.32 }, { 11, 2, 1450.14 },
    { 11, 3, 1452.23 }, { 11, 4, 1452.23 }, { 12, 0, 1556.00 }, { 12, 1, 1560.10 }, { 12, 2, 1570.15 },
    { 12, 3, 1575.13 }, { 12, 4, 1575.17 }, { 12, 5, 1575.23 },   // ~
    { 13, 0, 1665.15 }, { 13, 1, 1671.101 }, { 13, 2, 1673.126 }, { 13, 3, 1674.102 }, { 13, 4, 1675.129 },
    { 13, 5, 1676.104 }, { 13, 6, 1677.104 }, { 13, 7, 1677.104 }, { 14, 0, 1751.108 }, { 14, 1, 1751.108 },
    { 14, 2, 1770.106 }, { 14, 3, 1770.300 }, { 14, 4, 1774.101 }, { 14, 5, 1775.118 },   // ~
    { 14, 6, 1776.103 }, { 14, 7, 1777.103 }, { 14, 8, 1778.101 }, { 15, 0, 1854.000 }, { 15, 1, 1855.105 },
    { 15, 2, 1856.105 }, { 15, 3, 1856.105 },   // ~
    { 15, 4, 1858.112 }, { 15, 5, 1858.112 },   // ~
    { 15, 6, 1858.112 },                        // ~
    { 16, 0, 1946.102 }, { 16, 1, 1953.255 },   // ~ { 16, 2, 1953.300 },   // ~
    { 16, 3, 1953.300 },                        // ~
    { 16, 4, 1971.000 },                        // ~
    { 16, 5, 1971.000 },                        // ~
    { 16, 6, 1971.000 },                        // ~
};

// Reads one number of at most three digits off the front; -1 when there is none.
int readNumber(std::string_view& text)
{
    int value = 0;
    std::size_t digits = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
        if (digits == 3)
            return -1;
        value = value * 10 + (text[digits] - '0');
        ++digits;
    }
    text.remove_prefix(digits);
    return digits == 0 ? -1 : value;
}

}

Result<SystemVersion> SystemVersion::parse(std::string_view text)
{
    int parts[3] = { 0, 0, 0 };
    std::string_view rest = text;
    std::size_t count = 0;
    bool isGood = true;
    while (isGood) {
        if (count == 3 || (parts[count] = readNumber(rest)) < 0) {
            isGood = false;
            break;
        }
        ++count;
        if (rest.empty())
            break;
        isGood = rest[0] == '.';
        rest.remove_prefix(1);
    }
    if (!isGood || parts[0] < 1)
        return Error { "not a system version (such as 13.7): '" + std::string(text.substr(0, 40)) + "'" };
    return SystemVersion { parts[0], parts[1], parts[2] };
}

std::string SystemVersion::text() const
{
    std::string text = std::to_string(major) + '.' + std::to_string(minor);
    if (patch != 0)
        text += '.' + std::to_string(patch);
    return text;
}

double coreFoundationNumber(SystemVersion version)
{
    double number = kNumbers[0].number;
    for (KnownNumber const& known : kNumbers) {
        if (SystemVersion { known.major, known.minor, 0 } > version)
            break;
        number = known.number;
    }
    return number;
}

ClassFamily classFamily(double coreFoundationNumber)
{
    return coreFoundationNumber > kLastDashBoardNumber ? ClassFamily::coverSheet : ClassFamily::dashBoard;
}

}
