#include "phone/springboard/object_values.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/kernel/date.hpp"
#include "phone/springboard/object_handles.hpp"
#include "phone/uikit/ui_color.hpp"
#include "phone/uikit/ui_image.hpp"

#include <map>
#include <string>

namespace phone {

namespace {

constexpr int kMaxDepth = 32;

Json imageValue(UIImage image)
{
    auto const png = graphics::encodePng(image.bitmap());
    return { { "image", base64(png.data(), png.size()) },
        { "size", { image.size().width, image.size().height } }, { "scale", image.scale() },
        { "renderingMode", image.renderingMode() } };
}

Json numberValue(NSNumber number)
{
    // Foundation tells the kind by the encoding; a boolean is a character there.
    char const* const encoding = number.send<"objCType", char const*>();
    switch (encoding ? *encoding : 'q') {
    case 'c':
    case 'C':
    case 'B': return number.boolValue();
    case 'f':
    case 'd': return number.send<"doubleValue", double>();
    case 'Q': return number.send<"unsignedLongLongValue", unsigned long long>();
    default: return number.send<"longLongValue", long long>();
    }
}

Json value(objc::handle object, int depth);

Json arrayValue(NSArray array, int depth)
{
    Json elements = Json::array();
    for (NSUInteger i = 0; i < array.count(); ++i)
        elements.push_back(value(array.objectAtIndex(i), depth + 1));
    return elements;
}

Json dictionaryValue(NSDictionary dictionary, int depth)
{
    Json entries = Json::object();
    auto const keys = dictionary.send<"allKeys", NSArray>();
    // In the order of their texts: the same dictionary reads the same in every run.
    std::map<std::string, objc::handle> sorted;
    for (NSUInteger i = 0; i < keys.count(); ++i) {
        objc::handle const key = keys.objectAtIndex(i);
        sorted[toString(key.send<"description", NSString>())] =
            dictionary.send<"objectForKey:", objc::handle>(key);
    }
    for (auto const& [key, each] : sorted)
        entries[key] = value(each, depth + 1);
    return entries;
}

Json value(objc::handle object, int depth)
{
    if (!object)
        return nullptr;
    if (depth < kMaxDepth) {
        if (auto const text = objc::cast<NSString>(object))
            return toString(text);
        if (auto const number = objc::cast<NSNumber>(object))
            return numberValue(number);
        if (auto const array = objc::cast<NSArray>(object))
            return arrayValue(array, depth);
        if (auto const dictionary = objc::cast<NSDictionary>(object))
            return dictionaryValue(dictionary, depth);
        if (auto const date = objc::cast<NSDate>(object))
            return { { "date", isoDate({ date.send<"timeIntervalSinceReferenceDate", double>() }) } };
        if (auto const data = objc::cast<NSData>(object))
            return { { "data", base64(data.send<"bytes", void const*>(), data.length()) } };
        if (auto const color = objc::cast<UIColor>(object))
            return toJson(color.rgba());
        if (auto const image = objc::cast<UIImage>(object))
            return imageValue(image);
        static objc::handle const null = objc::cls<"NSNull">().send<"null", objc::handle>();
        if (object == null)
            return nullptr;
    }
    return { { "class", classNameOf(object) },
        { "description", toString(object.send<"description", NSString>()) }, { "handle", handleOf(object) } };
}

}

Json objectValue(objc::handle object) { return value(object, 0); }

}
