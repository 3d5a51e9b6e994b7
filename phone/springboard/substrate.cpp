#include "phone/springboard/substrate.hpp"

#include "phone/kernel/plugin_loader.hpp"
#include "phone/kernel/trace.hpp"

#include <set>
#include <utility>

#include <dlfcn.h>

extern "C" {
IMP method_getImplementation(Method method);
IMP method_setImplementation(Method method, IMP implementation);
char const* method_getTypeEncoding(Method method);
id objc_lookUpClass(char const* name);
objc::raw_bool class_isMetaClass(Class cls);
void __objc_update_dispatch_table_for_class(Class cls);
}

namespace phone {

namespace {

// What plug-ins have replaced, by class and selector name (a selector has several addresses here, one for
// each type it was registered with).
std::set<std::pair<Class, std::string>>& hooks()
{
    static std::set<std::pair<Class, std::string>> rows;
    return rows;
}

Json classNameOrNull(Class cls) { return cls ? Json(class_getName(cls)) : Json(); }

void recordHook(Class cls, SEL selector, char const* encoding, bool installed)
{
    deviceTrace().record("hook",
        { { "class", classNameOrNull(cls) }, { "selector", selector ? Json(sel_getName(selector)) : Json() },
            { "encoding", encoding ? Json(encoding) : Json() }, { "installed", installed } });
}

// A class that a plug-in is still defining isn't known by name yet.
bool isRegistered(Class cls)
{
    if (objc::is_true(class_isMetaClass(cls)))
        return objc_lookUpClass(class_getName(cls)) != nullptr;
    return reinterpret_cast<Class>(objc_lookUpClass(class_getName(cls))) == cls;
}

}

bool isHooked(Class cls, SEL selector) { return hooks().contains({ cls, sel_getName(selector) }); }

}

using namespace phone;

void MSHookMessageEx(Class cls, SEL selector, IMP replacement, IMP* previous)
{
    Method const method = cls && selector ? class_getInstanceMethod(cls, selector) : nullptr;
    char const* const encoding = method ? method_getTypeEncoding(method) : nullptr;
    if (!method || !replacement) {
        recordHook(cls, selector, encoding, false);
        return;
    }

    Class const superclass = class_getSuperclass(cls);
    bool const isInherited = superclass && class_getInstanceMethod(superclass, selector) == method;
    if (isInherited) {
        IMP const callSuperclass = superclassCall(cls, selector);
        if (!callSuperclass) {
            recordHook(cls, selector, encoding, false);
            return;
        }
        if (previous)
            *previous = callSuperclass;
        class_addMethod(cls, selector, replacement, encoding);
    } else {
        if (previous)
            *previous = method_getImplementation(method);
        method_setImplementation(method, replacement);
        // GNU libobjc tells this class alone; subclasses that are in use would keep what they inherited.
        __objc_update_dispatch_table_for_class(cls);
    }
    hooks().insert({ cls, sel_getName(selector) });
    recordHook(cls, selector, encoding, true);
}

// The runtime's own function, and a record of what plug-ins add to classes that are in use. Our definition
// comes before the library's in the order of symbol look-up.
extern "C" objc::raw_bool class_addMethod(Class cls, SEL selector, IMP implementation, char const* encoding)
{
    using Function = objc::raw_bool(Class, SEL, IMP, char const*);
    static auto* const addMethod = reinterpret_cast<Function*>(dlsym(RTLD_NEXT, "class_addMethod"));

    objc::raw_bool const added = addMethod(cls, selector, implementation, encoding);
    if (isPluginAddress(__builtin_return_address(0)) && (!cls || isRegistered(cls)))
        deviceTrace().record("addMethod",
            { { "class", classNameOrNull(cls) },
                { "selector", selector ? Json(sel_getName(selector)) : Json() },
                { "encoding", encoding ? Json(encoding) : Json() }, { "installed", objc::is_true(added) } });
    return added;
}
