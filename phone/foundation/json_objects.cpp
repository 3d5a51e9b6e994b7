#include "phone/foundation/json_objects.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/kernel/date.hpp"

namespace phone {

namespace {

nlohmann::ordered_json numberToJson(NSNumber number)
{
    // Foundation keeps two objects for the booleans.
    if (number == NSNumber::numberWithBool(true) || number == NSNumber::numberWithBool(false))
        return bool(number.boolValue());
    auto const* const type = number.send<"objCType", char const*>();
    if (type && (*type == 'f' || *type == 'd'))
        return number.send<"doubleValue", double>();
    if (type && *type == 'Q')
        return number.send<"unsignedLongLongValue", unsigned long long>();
    return number.send<"longLongValue", long long>();
}

}

nlohmann::ordered_json toJson(objc::handle object)
{
    if (!object)
        return nullptr;
    if (objc::cast<NSString>(object))
        return toString(object);
    if (NSNumber const number = objc::cast<NSNumber>(object))
        return numberToJson(number);
    if (NSDate const date = objc::cast<NSDate>(object)) {
        double const seconds = date.send<"timeIntervalSinceReferenceDate", double>();
        return { { "date", isoDate(Date { seconds }) } };
    }
    if (NSData const data = objc::cast<NSData>(object)) {
        return { { "data", base64(data.send<"bytes", void const*>(), data.length()) } };
    }
    if (NSArray const array = objc::cast<NSArray>(object)) {
        nlohmann::ordered_json all = nlohmann::ordered_json::array();
        for (NSUInteger i = 0; i < array.count(); ++i)
            all.push_back(toJson(array.objectAtIndex(i)));
        return all;
    }
    if (NSDictionary const dictionary = objc::cast<NSDictionary>(object)) {
        auto const keys = dictionary.send<"allKeys", NSArray>().send<"sortedArrayUsingSelector:", NSArray>(
            objc::selector<"compare:">());
        nlohmann::ordered_json all = nlohmann::ordered_json::object();
        for (NSUInteger i = 0; i < keys.count(); ++i) {
            NSString const key { keys.objectAtIndex(i).object };
            all[toString(key.description())] = toJson(dictionary.objectForKey(key));
        }
        return all;
    }
    return { { "class", classNameOf(object) },
        { "description", toString(object.send<"description", NSString>()) } };
}

}
