// GNUstep Base takes a query or a fragment after a path alone: `whatsapp://send?phone=1` is no URL to it. On
// the platform the path may be empty (RFC 3986, 3.3).
#include "phone/foundation/urls.hpp"

#include "phone/foundation/associated_objects.hpp"
#include "phone/foundation/method_replacement.hpp"
#include "phone/foundation/strings.hpp"

namespace phone {

namespace {

char const kTextKey = 0;   // the URL's text as it was given, where GNUstep's has a path more

Replaced<id(id, SEL, id)> g_initWithString;
Replaced<id(id, SEL)> g_absoluteString;

// Where the path `/` is missing between host and query or fragment; npos: nowhere.
std::size_t missingPath(std::string const& text)
{
    auto const host = text.find("://");
    if (host == text.npos)
        return text.npos;
    auto const end = text.find_first_of("/?#", host + 3);
    return end != text.npos && end > host + 3 && text[end] != '/' ? end : text.npos;
}

// Deviation: such a URL's -path is `/`, the platform's is empty.
id initWithString(id self, SEL cmd, id given)
{
    std::string text = toString(objc::handle { given });
    auto const missing = missingPath(text);
    if (missing == text.npos)
        return g_initWithString(self, cmd, given);
    NSObject const kept { given };
    text.insert(missing, 1, '/');
    id const url = g_initWithString(self, cmd, toNSString(text).object);
    if (url)
        objc_setAssociatedObject(url, &kTextKey,
            kept.send<"copy", NSObject>().send<"autorelease", NSObject>().object,
            OBJC_ASSOCIATION_RETAIN_NONATOMIC);
    return url;
}

id URLWithString(id cls, SEL, id text)
{
    auto const url = objc::class_handle { reinterpret_cast<Class>(cls) }.send<"alloc", objc::handle>();
    return url.send<"initWithString:", objc::handle>(objc::handle { text })
        .send<"autorelease", objc::handle>()
        .object;
}

id absoluteString(id self, SEL cmd)
{
    id const text = objc_getAssociatedObject(self, &kTextKey);
    return text ? text : g_absoluteString(self, cmd);
}

id description(id self, SEL) { return objc::handle { self }.send<"absoluteString", objc::handle>().object; }

}

void replaceUrls()
{
    static bool isDone = false;
    if (std::exchange(isDone, true))
        return;
    watchAssociatedObjects();
    replace<"initWithString:">("NSURL", &initWithString, g_initWithString);
    replace<"URLWithString:">("NSURL", &URLWithString, MethodKind::ofClass);
    replace<"absoluteString">("NSURL", &absoluteString, g_absoluteString);
    replace<"description">("NSURL", &description);
}

}
