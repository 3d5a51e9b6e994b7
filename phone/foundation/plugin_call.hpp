// Who asks: the phone's own code or a plug-in. The frameworks' functions look at their return address, and
// what calls out to a plug-in's code marks what happens inside as the plug-in's doing.
#pragma once

#include "objc/handle.hpp"
#include "phone/kernel/trace.hpp"

#include <optional>

namespace phone {

// Is the code of a plug-in at this address? (Return addresses, implementations, a block's invoke.)
bool isPluginCode(void const* address);

// Around a call into `code`: a plug-in's code acts for itself, whatever SpringBoard was doing.
class CalloutScope {
public:
    explicit CalloutScope(void const* code)
    {
        if (isPluginCode(code))
            m_scope.emplace();
    }
    // The implementation that the object has of the selector.
    CalloutScope(objc::handle receiver, SEL selector);

private:
    std::optional<TracePluginScope> m_scope;
};

}
