#include "phone/automation/scripts/class_description.hpp"

#include "objc/handle.hpp"
#include "phone/phone.hpp"

#include <algorithm>

extern "C" {
int objc_getClassList(Class* buffer, int count);
Method* class_copyMethodList(Class cls, unsigned* count);
Ivar* class_copyIvarList(Class cls, unsigned* count);
Protocol** class_copyProtocolList(Class cls, unsigned* count);
char const* protocol_getName(Protocol* protocol);
SEL method_getName(Method method);
char const* method_getTypeEncoding(Method method);
char const* ivar_getName(Ivar ivar);
char const* ivar_getTypeEncoding(Ivar ivar);
void free(void* memory);
}

namespace phone {

namespace {

Json textOrNull(char const* text) { return text ? Json(text) : Json(); }

void addMethods(Json& rows, Class cls, bool isOfClass)
{
    unsigned count = 0;
    Method* const methods = class_copyMethodList(cls, &count);
    std::vector<Method> sorted(methods, methods + count);
    free(methods);
    auto const name = [](Method method) { return std::string_view(sel_getName(method_getName(method))); };
    std::ranges::sort(sorted, {}, name);
    for (Method const method : sorted)
        rows.push_back({ { "selector", name(method) },
            { "encoding", textOrNull(method_getTypeEncoding(method)) }, { "class", isOfClass } });
}

}

Json classDescription(std::string const& name)
{
    Class const cls = objc_getClass(name.c_str());
    if (!cls)
        return nullptr;
    Class const superclass = class_getSuperclass(cls);
    Json protocols = Json::array();
    unsigned count = 0;
    Protocol** const adopted = class_copyProtocolList(cls, &count);
    for (unsigned i = 0; i < count; ++i)
        protocols.push_back(protocol_getName(adopted[i]));
    free(adopted);
    std::sort(protocols.begin(), protocols.end());

    Json methods = Json::array();
    addMethods(methods, cls, false);
    addMethods(methods, objc::boundary::class_of(reinterpret_cast<id>(cls)), true);

    Json variables = Json::array();
    Ivar* const ivars = class_copyIvarList(cls, &count);
    for (unsigned i = 0; i < count; ++i)
        if (char const* const variable = ivar_getName(ivars[i]); variable && *variable)
            variables.push_back(
                { { "name", variable }, { "encoding", textOrNull(ivar_getTypeEncoding(ivars[i])) } });
    free(ivars);

    return { { "name", class_getName(cls) },
        { "superclass", superclass ? Json(class_getName(superclass)) : Json() },
        { "protocols", std::move(protocols) }, { "methods", std::move(methods) },
        { "ivars", std::move(variables) } };
}

std::vector<std::string> classNames()
{
    std::vector<Class> classes(static_cast<std::size_t>(std::max(objc_getClassList(nullptr, 0), 0)));
    int const count = objc_getClassList(classes.data(), static_cast<int>(classes.size()));
    classes.resize(std::min(classes.size(), static_cast<std::size_t>(std::max(count, 0))));
    std::vector<std::string> names;
    for (Class const cls : classes)
        names.emplace_back(class_getName(cls));
    std::ranges::sort(names);
    return names;
}

Json libraryDescriptions()
{
    Json libraries = Json::array();
    for (PluginReport const& plugin : phone().plugins())
        if (plugin.isLoaded)
            libraries.push_back({ { "path", plugin.path.string() }, { "name", plugin.name },
                { "needed", plugin.needed }, { "imports", plugin.imports } });
    return libraries;
}

}
