// Foundation, as far as the plug-in and the phone send messages to it. Handles own nothing; a result is lent unless its
// comment says that it is owned (+1). Nil receivers answer zero.
#pragma once

#include "objc/block.hpp"
#include "objc/ref.hpp"

#include <string>

struct NSString;

struct NSRange {
    NSUInteger location, length;
};
template <>
struct objc::encoding<NSRange> {
    static constexpr fixed_string value { "{_NSRange=QQ}" };
};

struct NSObject : objc::subclass<NSObject, "NSObject", objc::handle> {
    using subclass::subclass;
    template <class Self = NSObject>
    Self init() const
    {
        return send<"init", Self>();
    }   // consumes and answers +1
    BOOL isEqual(objc::handle other) const { return send<"isEqual:", BOOL>(other); }
    objc::handle valueForKey(NSString key) const;
    void setValue(objc::handle value, NSString key) const;
    NSString description() const;
};

struct NSString : objc::subclass<NSString, "NSString", NSObject> {
    using subclass::subclass;

    // UTF-8, zero-terminated. Nil from bytes that are no UTF-8.
    static NSString stringWithUTF8String(char const* text)
    {
        return cls().send<"stringWithUTF8String:", NSString>(text);
    }

    // Copies; UTF-16 code units.
    static NSString stringWithCharacters(char16_t const* units, NSUInteger count)
    {
        return cls().send<"stringWithCharacters:length:", NSString>(units, count);
    }

    NSUInteger length() const { return send<"length", NSUInteger>(); }   // UTF-16 code units
    char16_t characterAtIndex(NSUInteger index) const
    {
        return send<"characterAtIndex:", char16_t>(index);
    }   // raises past the end
    char const* UTF8String() const
    {
        return send<"UTF8String", char const*>();
    }   // lent until the pool drains
    BOOL isEqualToString(NSString other) const { return send<"isEqualToString:", BOOL>(other); }
    int intValue() const { return send<"intValue", int>(); }
    float floatValue() const { return send<"floatValue", float>(); }

    NSString stringByAppendingString(NSString tail) const
    {
        return send<"stringByAppendingString:", NSString>(tail);
    }
    NSString stringByReplacingOccurrencesOfString(NSString target, NSString replacement) const
    {
        return send<"stringByReplacingOccurrencesOfString:withString:", NSString>(target, replacement);
    }
    NSRange rangeOfComposedCharacterSequenceAtIndex(NSUInteger index) const
    {
        return send<"rangeOfComposedCharacterSequenceAtIndex:", NSRange>(index);
    }
    NSString substringToIndex(NSUInteger end) const { return send<"substringToIndex:", NSString>(end); }

    // options 64: runs of digits compare as numbers (NSNumericSearch). -1 ascending, 0 same, 1 descending.
    NSInteger compareOptions(NSString other, NSUInteger options) const
    {
        return send<"compare:options:", NSInteger>(other, options);
    }
};
inline constexpr NSUInteger NSNumericSearch = 64;
inline constexpr NSInteger NSOrderedAscending = -1;

inline objc::handle NSObject::valueForKey(NSString key) const
{
    return send<"valueForKey:", objc::handle>(key);
}
inline void NSObject::setValue(objc::handle value, NSString key) const
{
    send<"setValue:forKey:">(value, key);
}
inline NSString NSObject::description() const { return send<"description", NSString>(); }

struct ConstantText {
    char const* text;
    NSString made;   // nil until the first use
};
template <objc::fixed_string Text>
inline constinit ConstantText constantText { Text.c_str(), {} };
[[gnu::noinline]] inline NSString keptText(ConstantText& record)
{
    if (!record.made)
        record.made = objc::leak(objc::retain(NSString::stringWithUTF8String(record.text)));
    return record.made;
}
// A constant string, made at its first use and kept: "CVL"_ns.
template <objc::fixed_string Text>
NSString operator""_ns()
{
    return keptText(constantText<Text>);
}

struct NSCharacterSet : objc::subclass<NSCharacterSet, "NSCharacterSet", NSObject> {
    using subclass::subclass;
    static NSCharacterSet nonBaseCharacterSet()
    {
        return cls().send<"nonBaseCharacterSet", NSCharacterSet>();
    }   // marks
    BOOL longCharacterIsMember(char32_t codePoint) const
    {
        return send<"longCharacterIsMember:", BOOL>(codePoint);
    }
};

struct NSNumber : objc::subclass<NSNumber, "NSNumber", NSObject> {
    using subclass::subclass;
    static NSNumber numberWithBool(BOOL value) { return cls().send<"numberWithBool:", NSNumber>(value); }
    BOOL boolValue() const { return send<"boolValue", BOOL>(); }
    int intValue() const { return send<"intValue", int>(); }
    float floatValue() const { return send<"floatValue", float>(); }
};

struct NSData : objc::subclass<NSData, "NSData", NSObject> {
    using subclass::subclass;
    NSUInteger length() const { return send<"length", NSUInteger>(); }   // bytes
};

struct NSPredicate;

struct NSArray : objc::subclass<NSArray, "NSArray", NSObject> {
    using subclass::subclass;
    NSUInteger count() const { return send<"count", NSUInteger>(); }
    objc::handle objectAtIndex(NSUInteger index) const
    {
        return send<"objectAtIndex:", objc::handle>(index);
    }   // raises past the end
    objc::handle firstObject() const { return send<"firstObject", objc::handle>(); }
    BOOL containsObject(objc::handle object) const { return send<"containsObject:", BOOL>(object); }
    NSArray filteredArrayUsingPredicate(NSPredicate predicate) const;
};

struct NSMutableArray : objc::subclass<NSMutableArray, "NSMutableArray", NSArray> {
    using subclass::subclass;
    static NSMutableArray array() { return cls().send<"array", NSMutableArray>(); }
    static NSMutableArray arrayWithArray(NSArray other)
    {
        return cls().send<"arrayWithArray:", NSMutableArray>(other);
    }                                                                           // nil: empty
    void addObject(objc::handle object) const { send<"addObject:">(object); }   // raises on nil
    void removeObject(objc::handle object) const { send<"removeObject:">(object); }
};

struct NSSet : objc::subclass<NSSet, "NSSet", NSObject> {
    using subclass::subclass;
    static NSSet setWithObject(objc::handle object) { return cls().send<"setWithObject:", NSSet>(object); }
    static NSSet setWithArray(NSArray members) { return cls().send<"setWithArray:", NSSet>(members); }
    NSUInteger count() const { return send<"count", NSUInteger>(); }
    objc::handle anyObject() const { return send<"anyObject", objc::handle>(); }
    NSArray allObjects() const { return send<"allObjects", NSArray>(); }
};

struct NSDictionary : objc::subclass<NSDictionary, "NSDictionary", NSObject> {
    using subclass::subclass;
    static NSDictionary dictionary() { return cls().send<"dictionary", NSDictionary>(); }
    objc::handle objectForKey(NSString key) const { return send<"objectForKey:", objc::handle>(key); }
};

struct NSMutableDictionary : objc::subclass<NSMutableDictionary, "NSMutableDictionary", NSDictionary> {
    using subclass::subclass;
    static NSMutableDictionary dictionary() { return cls().send<"dictionary", NSMutableDictionary>(); }
    // A property list whose root is a dictionary; nil from anything else. The receiver is consumed; the result is owned (+1).
    NSMutableDictionary initWithContentsOfFile(NSString path) const
    {
        return send<"initWithContentsOfFile:", NSMutableDictionary>(path);
    }
    void setObject(objc::handle object, NSString key) const
    {
        send<"setObject:forKey:">(object, key);
    }   // raises on nil
    BOOL writeToFile(NSString path, BOOL atomically) const
    {
        return send<"writeToFile:atomically:", BOOL>(path, atomically);
    }
};

struct NSDate : objc::subclass<NSDate, "NSDate", NSObject> {
    using subclass::subclass;
    static NSDate date() { return cls().send<"date", NSDate>(); }   // now
};

struct NSLocale : objc::subclass<NSLocale, "NSLocale", NSObject> {
    using subclass::subclass;
    static NSLocale currentLocale() { return cls().send<"currentLocale", NSLocale>(); }
};

struct NSDateFormatter : objc::subclass<NSDateFormatter, "NSDateFormatter", NSObject> {
    using subclass::subclass;
    void setDateFormat(NSString format) const
    {
        send<"setDateFormat:">(format);
    }   // Unicode pattern, "MMM dd, yyyy"
    void setLocale(NSLocale locale) const { send<"setLocale:">(locale); }
    NSString stringFromDate(NSDate date) const { return send<"stringFromDate:", NSString>(date); }
};

struct NSDateComponents : objc::subclass<NSDateComponents, "NSDateComponents", NSObject> {
    using subclass::subclass;
    NSInteger day() const { return send<"day", NSInteger>(); }
    NSInteger month() const { return send<"month", NSInteger>(); }
    NSDate date() const { return send<"date", NSDate>(); }   // nil when the components have no calendar
};

struct NSCalendar : objc::subclass<NSCalendar, "NSCalendar", NSObject> {
    using subclass::subclass;
    static NSCalendar currentCalendar() { return cls().send<"currentCalendar", NSCalendar>(); }
    NSDateComponents components(NSUInteger units, NSDate date) const
    {
        return send<"components:fromDate:", NSDateComponents>(units, date);
    }
};
inline constexpr NSUInteger NSCalendarUnitMonth = 8;
inline constexpr NSUInteger NSCalendarUnitDay = 16;

struct NSScanner : objc::subclass<NSScanner, "NSScanner", NSObject> {
    using subclass::subclass;
    static NSScanner scannerWithString(NSString text)
    {
        return cls().send<"scannerWithString:", NSScanner>(text);
    }
    // Leading hexadecimal digits, "0x" accepted; all bits set on overflow. NO, and *value untouched, when there are none.
    BOOL scanHexInt(unsigned* value) const { return send<"scanHexInt:", BOOL>(value); }
};

struct NSNotificationCenter : objc::subclass<NSNotificationCenter, "NSNotificationCenter", NSObject> {
    using subclass::subclass;
    static NSNotificationCenter defaultCenter()
    {
        return cls().send<"defaultCenter", NSNotificationCenter>();
    }
    void addObserver(objc::handle observer, SEL selector, NSString name, objc::handle object) const
    {
        send<"addObserver:selector:name:object:">(observer, selector, name, object);
    }
    void postNotificationName(NSString name, objc::handle object, NSDictionary userInfo) const
    {
        send<"postNotificationName:object:userInfo:">(name, object, userInfo);
    }
};

struct NSPredicate : objc::subclass<NSPredicate, "NSPredicate", NSObject> {
    using subclass::subclass;
    // A format without arguments. The method takes variable arguments, none of which is given.
    static NSPredicate predicateWithFormat(NSString format)
    {
        return cls().send<"predicateWithFormat:", NSPredicate>(format);
    }
};
inline NSArray NSArray::filteredArrayUsingPredicate(NSPredicate predicate) const
{
    return send<"filteredArrayUsingPredicate:", NSArray>(predicate);
}

struct NSURL : objc::subclass<NSURL, "NSURL", NSObject> {
    using subclass::subclass;
    static NSURL URLWithString(NSString text)
    {
        return cls().send<"URLWithString:", NSURL>(text);
    }   // nil: no URL
};

struct NSProcessInfo : objc::subclass<NSProcessInfo, "NSProcessInfo", NSObject> {
    using subclass::subclass;
    static NSProcessInfo processInfo() { return cls().send<"processInfo", NSProcessInfo>(); }
    int processIdentifier() const { return send<"processIdentifier", int>(); }
};

struct NSBundle : objc::subclass<NSBundle, "NSBundle", NSObject> {
    using subclass::subclass;
    static NSBundle mainBundle() { return cls().send<"mainBundle", NSBundle>(); }
    NSString bundleIdentifier() const { return send<"bundleIdentifier", NSString>(); }
};

struct NSTimer : objc::subclass<NSTimer, "NSTimer", NSObject> {
    using subclass::subclass;
    // Interval in seconds. The run loop keeps the timer, and the timer its target.
    static NSTimer scheduledTimer(
        double interval, objc::handle target, SEL selector, objc::handle userInfo, BOOL repeats)
    {
        return cls().send<"scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:", NSTimer>(
            interval, target, selector, userInfo, repeats);
    }
};

// What is autoreleased while one lives goes when it does.
class AutoreleasePool {
public:
    AutoreleasePool()
        : m_pool(objc::cls<"NSAutoreleasePool">().send<"new", objc::handle>())
    {
    }
    AutoreleasePool(AutoreleasePool const&) = delete;
    AutoreleasePool& operator=(AutoreleasePool const&) = delete;
    ~AutoreleasePool() { m_pool.send<"drain">(); }

private:
    objc::handle m_pool;
};
