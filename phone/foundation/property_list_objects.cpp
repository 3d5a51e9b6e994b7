#include "phone/foundation/property_list_objects.hpp"

#include "phone/foundation/strings.hpp"

#include <cmath>

namespace phone {

namespace {

constexpr int kMaximumDepth = static_cast<int>(kPropertyListMaximumDepth);

struct ToObject {
    objc::handle operator()(bool value) const { return NSNumber::numberWithBool(value); }
    objc::handle operator()(std::int64_t value) const
    {
        return NSNumber::cls().send<"numberWithLongLong:", objc::handle>(static_cast<long long>(value));
    }
    objc::handle operator()(std::uint64_t value) const
    {
        return NSNumber::cls().send<"numberWithUnsignedLongLong:", objc::handle>(
            static_cast<unsigned long long>(value));
    }
    objc::handle operator()(double value) const
    {
        return NSNumber::cls().send<"numberWithDouble:", objc::handle>(value);
    }
    objc::handle operator()(std::string const& text) const { return toNSString(text); }
    // Deviation: a date of CoreFoundation may be no number, but GNUstep raises for one. It comes as text, so that
    // what stands around it is read.
    objc::handle operator()(Date date) const
    {
        if (std::isnan(date.sinceReference))
            return "nan"_ns;
        return NSDate::cls().send<"dateWithTimeIntervalSinceReferenceDate:", objc::handle>(
            date.sinceReference);
    }
    objc::handle operator()(Bytes const& bytes) const
    {
        return NSData::cls().send<"dataWithBytes:length:", objc::handle>(
            static_cast<void const*>(bytes.data()), static_cast<NSUInteger>(bytes.size()));
    }
    objc::handle operator()(PropertyListArray const& array) const
    {
        auto const made = NSMutableArray::array();
        for (PropertyList const& each : array)
            made.addObject(toObject(each));
        return made;
    }
    objc::handle operator()(PropertyListDictionary const& dictionary) const
    {
        auto const made = NSMutableDictionary::dictionary();
        for (PropertyListEntry const& entry : dictionary)
            made.setObject(toObject(entry.value), toNSString(entry.key));
        return made;
    }
};

std::optional<PropertyList> fromNumber(NSNumber number)
{
    // Foundation keeps two objects for the booleans.
    if (number == NSNumber::numberWithBool(true) || number == NSNumber::numberWithBool(false))
        return PropertyList(bool(number.boolValue()));
    auto const* const type = number.send<"objCType", char const*>();
    if (type && (*type == 'f' || *type == 'd'))
        return PropertyList(number.send<"doubleValue", double>());
    if (type && *type == 'Q')
        return PropertyList(std::uint64_t { number.send<"unsignedLongLongValue", unsigned long long>() });
    return PropertyList(std::int64_t { number.send<"longLongValue", long long>() });
}

std::optional<PropertyList> convert(objc::handle object, int depth)
{
    if (!object || depth > kMaximumDepth)
        return std::nullopt;
    if (objc::cast<NSString>(object))
        return PropertyList(toString(object));
    if (NSNumber const number = objc::cast<NSNumber>(object))
        return fromNumber(number);
    if (NSDate const date = objc::cast<NSDate>(object))
        return PropertyList(Date { date.send<"timeIntervalSinceReferenceDate", double>() });
    if (NSData const data = objc::cast<NSData>(object)) {
        auto const* const bytes = static_cast<std::uint8_t const*>(data.send<"bytes", void const*>());
        return PropertyList(Bytes(bytes, bytes + data.length()));
    }
    if (NSArray const array = objc::cast<NSArray>(object)) {
        PropertyListArray all;
        for (NSUInteger i = 0; i < array.count(); ++i) {
            auto value = convert(array.objectAtIndex(i), depth + 1);
            if (!value)
                return std::nullopt;
            all.push_back(std::move(*value));
        }
        return PropertyList(std::move(all));
    }
    if (NSDictionary const dictionary = objc::cast<NSDictionary>(object)) {
        std::vector<PropertyListEntry> entries;
        auto const keys = dictionary.send<"allKeys", NSArray>();
        for (NSUInteger i = 0; i < keys.count(); ++i) {
            NSString const key = objc::cast<NSString>(keys.objectAtIndex(i));
            auto value = key ? convert(dictionary.objectForKey(key), depth + 1) : std::nullopt;
            if (!value)
                return std::nullopt;
            entries.push_back({ toString(key), std::move(*value) });
        }
        return PropertyList(PropertyListDictionary::of(std::move(entries)));
    }
    return std::nullopt;
}

}

objc::handle toObject(PropertyList const& value) { return std::visit(ToObject {}, value.storage()); }

std::optional<PropertyList> toPropertyList(objc::handle object) { return convert(object, 1); }

}
