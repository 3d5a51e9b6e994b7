#include "phone/foundation/method_replacement.hpp"

extern "C" {
IMP class_replaceMethod(Class cls, SEL selector, IMP implementation, char const* encoding);
}

namespace phone {

IMP replaceMethod(Class cls, SEL selector, IMP implementation, char const* encoding)
{
    bool const had = objc::is_true(class_respondsToSelector(cls, selector));
    IMP const former = had ? class_getMethodImplementation(cls, selector) : nullptr;
    class_replaceMethod(cls, selector, implementation, encoding);
    return former;
}

}
