#include "plugin/strip/colors.hpp"

namespace {

constexpr NSUInteger kShortForm = 3;    // rgb
constexpr NSUInteger kOpaqueForm = 6;   // rrggbb

// abc becomes aabbcc.
NSString doubledCharacters(NSString text)
{
    char16_t doubled[2 * kShortForm];
    for (NSUInteger i = 0; i < kShortForm; ++i)
        doubled[2 * i] = doubled[2 * i + 1] = text.characterAtIndex(i);
    return NSString::stringWithCharacters(doubled, 2 * kShortForm);
}

}

UIColor colorWithHexString(NSString text)
{
    NSString digits = text.stringByReplacingOccurrencesOfString("#"_ns, ""_ns);
    if (digits.length() == kShortForm)
        digits = doubledCharacters(digits);
    if (digits.length() == kOpaqueForm)
        digits = digits.stringByAppendingString("ff"_ns);

    unsigned number = 0;   // what stays when there is no digit
    if (digits)
        NSScanner::scannerWithString(digits).scanHexInt(&number);
    auto const component = [number](int shift) -> CGFloat {
        return static_cast<float>(number >> shift & 0xffu) / 255.0f;
    };
    return UIColor::colorWithRed(component(24), component(16), component(8), component(0));
}
