#include "phone/foundation/strings.hpp"

#include "phone/graphics/text.hpp"

namespace phone {

namespace {
constexpr NSUInteger kUtf8 = 4;   // NSUTF8StringEncoding
}

NSString toNSString(std::string_view utf8)
{
    auto make = [](std::string_view bytes) {
        return NSString { NSString::alloc()
                              .send<"initWithBytes:length:encoding:", objc::handle>(
                                  static_cast<void const*>(bytes.data()),
                                  static_cast<NSUInteger>(bytes.size()), kUtf8)
                              .object };
    };
    NSString made = make(utf8);
    if (!made)
        made = make(graphics::validUtf8(utf8));
    return objc::autorelease(objc::adopt(made));
}

std::string toString(objc::handle text)
{
    NSString const string = objc::cast<NSString>(text);
    if (!string)
        return {};
    auto const data = string.send<"dataUsingEncoding:allowLossyConversion:", NSData>(kUtf8, true);
    if (!data)
        return {};
    auto const* bytes = static_cast<char const*>(data.send<"bytes", void const*>());
    return graphics::validUtf8({ bytes, data.length() });
}

std::string classNameOf(objc::handle object)
{
    if (!object)
        return "nil";
    return class_getName(objc::boundary::class_of(object.object));
}

}
