#include "phone/automation/scripts/value_objects.hpp"

#include "phone/automation/scripts/value_types.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/kernel/base64.hpp"
#include "phone/kernel/date.hpp"
#include "phone/springboard/object_handles.hpp"
#include "phone/uikit/ui_color.hpp"
#include "phone/uikit/ui_image.hpp"

#include <array>
#include <limits>
#include <utility>

namespace phone {

namespace {

constexpr int kMaxDepth = 64;

ObjectResolver& resolver()
{
    static auto& theResolver = *new ObjectResolver;
    return theResolver;
}

Result<objc::handle> make(Json const& value, std::string const& where, int depth);

Result<objc::handle> makeDate(Json const& value, std::string const& where)
{
    auto const date = value.is_string() ? parseIsoDate(value.get<std::string>()) : std::nullopt;
    if (!date)
        return Error { where + ".date is no ISO 8601 date" };
    return NSDate::cls().send<"dateWithTimeIntervalSinceReferenceDate:", objc::handle>(date->sinceReference);
}

Result<objc::handle> makeData(Json const& value, std::string const& where)
{
    auto const bytes = value.is_string() ? bytesOfBase64(value.get<std::string>()) : std::nullopt;
    if (!bytes)
        return Error { where + ".data is no base64" };
    return NSData::cls().send<"dataWithBytes:length:", objc::handle>(
        static_cast<void const*>(bytes->data()), static_cast<NSUInteger>(bytes->size()));
}

Result<objc::handle> makeColor(Json const& value, std::string const& where)
{
    std::array<double, 4> parts {};
    bool isGood = value.is_array() && value.size() == parts.size();
    for (std::size_t i = 0; isGood && i < parts.size(); ++i) {
        isGood = value[i].is_number();
        parts[i] = isGood ? value[i].get<double>() : 0;
        isGood = isGood && parts[i] >= 0 && parts[i] <= 1;
    }
    if (!isGood)
        return Error { where + ".color is no array of four numbers from 0 to 1" };
    return UIColor::colorWithRed(parts[0], parts[1], parts[2], parts[3]);
}

// `size` follows from the picture and the scale; it is there to be read.
Result<objc::handle> makeImage(Json const& value, std::string const& where)
{
    auto const bytes =
        value["image"].is_string() ? bytesOfBase64(value["image"].get<std::string>()) : std::nullopt;
    if (!bytes)
        return Error { where + ".image is no base64" };
    Json const scale = value.value("scale", Json(1));
    if (!scale.is_number() || !(scale.get<double>() > 0 && scale.get<double>() <= 4))
        return Error { where + ".scale is no number of pixels per point from 1 to 4" };
    Json const mode = value.value("renderingMode", Json(0));
    if (!mode.is_number_integer() || mode < 0 || mode > 2)
        return Error { where + ".renderingMode is none of 0, 1 and 2" };
    auto const bitmap = graphics::decodeUpright(*bytes, scale.get<double>());
    if (!bitmap)
        return Error { where + ".image is no picture" };
    UIImage const image = UIImage::of(bitmap);
    auto const number = mode.get<NSInteger>();
    return number == 0 ? image : image.imageWithRenderingMode(number);
}

// A rectangle and its like, where an object is meant.
Result<objc::handle> makeStruct(char const* encoding, Json const& value, std::string const& where)
{
    auto const type = valueType(encoding);
    if (!type)
        return type.error();
    alignas(16) std::array<std::byte, 64> bytes {};
    if (auto const written = writeValue(**type, value, bytes.data(), where); !written)
        return written.error();
    return objc::cls<"NSValue">().send<"valueWithBytes:objCType:", objc::handle>(
        static_cast<void const*>(bytes.data()), encoding);
}

struct StructKey {
    char const* key;
    char const* encoding;
};
constexpr std::array kStructKeys {
    StructKey { "rect", objc::encoding<CGRect>::value.c_str() },
    StructKey { "size", objc::encoding<CGSize>::value.c_str() },
    StructKey { "point", objc::encoding<CGPoint>::value.c_str() },
    StructKey { "insets", objc::encoding<UIEdgeInsets>::value.c_str() },
    StructKey { "transform", objc::encoding<CGAffineTransform>::value.c_str() },
};

Result<objc::handle> objectOfHandleValue(Json const& value, std::string const& where)
{
    auto const object =
        value.is_string() ? objectOfHandle(value.get<std::string>()) : std::optional<objc::handle>();
    if (!object)
        return Error { where + ".handle names no object" };
    return *object;
}

objc::handle null() { return objc::cls<"NSNull">().send<"null", objc::handle>(); }

Result<objc::handle> makeDictionary(Json const& value, std::string const& where, int depth)
{
    auto const made = NSMutableDictionary::dictionary();
    for (auto const& [key, each] : value.items()) {
        auto const object = make(each, where + "." + key, depth + 1);
        if (!object)
            return object;
        made.setObject(*object ? *object : null(), toNSString(key));
    }
    return made;
}

Result<objc::handle> makeFromObject(Json const& value, std::string const& where, int depth)
{
    if (resolver()) {
        if (auto const known = resolver()(value))
            return *known;
    }
    // What `send` and `value` answer for an object may be handed back as it came.
    bool const isDescribed = value.contains("class") && value.contains("description");
    if (value.contains("handle") && (value.size() == 1 || isDescribed))
        return objectOfHandleValue(value["handle"], where);
    if (value.contains("image"))
        return makeImage(value, where);
    if (value.size() != 1)
        return makeDictionary(value, where, depth);
    if (value.contains("date"))
        return makeDate(value["date"], where);
    if (value.contains("data"))
        return makeData(value["data"], where);
    if (value.contains("color"))
        return makeColor(value["color"], where);
    for (auto const& [key, encoding] : kStructKeys)
        if (value.contains(key))
            return makeStruct(encoding, value, where);
    return makeDictionary(value, where, depth);
}

Result<objc::handle> make(Json const& value, std::string const& where, int depth)
{
    using Kind = Json::value_t;
    if (depth > kMaxDepth)
        return Error { where + " is nested too deeply" };
    switch (value.type()) {
    case Kind::null: return objc::handle {};
    case Kind::boolean: return NSNumber::numberWithBool(value.get<bool>());
    case Kind::number_integer:
        return NSNumber::cls().send<"numberWithLongLong:", objc::handle>(value.get<long long>());
    case Kind::number_unsigned: {
        auto const number = value.get<unsigned long long>();
        if (number > static_cast<unsigned long long>(std::numeric_limits<long long>::max()))
            return NSNumber::cls().send<"numberWithUnsignedLongLong:", objc::handle>(number);
        return NSNumber::cls().send<"numberWithLongLong:", objc::handle>(static_cast<long long>(number));
    }
    case Kind::number_float:
        return NSNumber::cls().send<"numberWithDouble:", objc::handle>(value.get<double>());
    case Kind::string: return toNSString(value.get<std::string>());
    case Kind::array: {
        auto const made = NSMutableArray::array();
        for (std::size_t i = 0; i < value.size(); ++i) {
            auto const object = make(value[i], where + "[" + std::to_string(i) + "]", depth + 1);
            if (!object)
                return object;
            made.addObject(*object ? *object : null());
        }
        return made;
    }
    case Kind::object: return makeFromObject(value, where, depth);
    default: return Error { where + " is no value" };
    }
}

}

Result<objc::handle> objectOfValue(Json const& value, std::string const& where)
{
    return make(value, where, 0);
}

void setObjectResolver(ObjectResolver newResolver) { resolver() = std::move(newResolver); }

}
