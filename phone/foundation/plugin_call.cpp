#include "phone/foundation/plugin_call.hpp"

#include "phone/kernel/plugin_loader.hpp"

namespace phone {

bool isPluginCode(void const* address) { return address && isPluginAddress(address); }

CalloutScope::CalloutScope(objc::handle receiver, SEL selector)
{
    if (!receiver || !selector)
        return;
    IMP const code = class_getMethodImplementation(objc::boundary::class_of(receiver.object), selector);
    if (isPluginCode(reinterpret_cast<void const*>(code)))
        m_scope.emplace();
}

}
