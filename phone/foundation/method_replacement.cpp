#include "phone/foundation/method_replacement.hpp"

extern "C" {
IMP class_replaceMethod(Class cls, SEL selector, IMP implementation, char const* encoding);
void __objc_update_dispatch_table_for_class(Class cls);
}

namespace phone {

IMP replaceMethod(Class cls, SEL selector, IMP implementation, char const* encoding)
{
    bool const had = objc::is_true(class_respondsToSelector(cls, selector));
    IMP const former = had ? class_getMethodImplementation(cls, selector) : nullptr;
    class_replaceMethod(cls, selector, implementation, encoding);
    // GNU libobjc tells this class alone; subclasses that are in use would keep what they inherited.
    __objc_update_dispatch_table_for_class(cls);
    return former;
}

}
