// The runtime's look-ups by name. This program's functions stand before libobjc's: what a plug-in asks for is
// traced, what the boot options call absent is not there for it, and UIKit's protocols exist.
#include "objc/abi.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/kernel/services.hpp"

#include <array>
#include <dlfcn.h>
#include <string_view>

namespace {

template <class F>
F* nextSymbol(char const* name)
{
    return reinterpret_cast<F*>(dlsym(RTLD_NEXT, name));
}

// How GNU libobjc lays a protocol out: what its compiler writes for @protocol, here without methods.
struct ProtocolObject {
    Class isa;
    char const* name;
    void* protocols;
    void* instanceMethods;
    void* classMethods;
};

// The platform's protocols that classes of plug-ins name. Their methods are asked for one by one
// (respondsToSelector:), so a protocol is no more than its name.
std::array g_protocols {
    ProtocolObject { nullptr, "UIApplicationDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UIScrollViewDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UICollectionViewDataSource", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UICollectionViewDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UICollectionViewDelegateFlowLayout", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UITableViewDataSource", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UITableViewDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UIGestureRecognizerDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UINavigationControllerDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "UITextFieldDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "CNContactPickerDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "MFMessageComposeViewControllerDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "MFMailComposeViewControllerDelegate", nullptr, nullptr, nullptr },
    ProtocolObject { nullptr, "LAListener", nullptr, nullptr, nullptr },
};

Class systemClass(char const* name)
{
    static auto* const next = nextSymbol<Class(char const*)>("objc_getClass");
    return next(name);
}

}

extern "C" Class objc_getClass(char const* name)
{
    Class found = name ? systemClass(name) : nullptr;
    if (!name || !phone::isPluginCode(__builtin_return_address(0)))
        return found;
    if (phone::bootOptions().isAbsent(name))
        found = nullptr;
    phone::trace().record("lookup", { { "class", name }, { "found", found != nullptr } });
    return found;
}

extern "C" Protocol* objc_getProtocol(char const* name)
{
    static auto* const next = nextSymbol<Protocol*(char const*)>("objc_getProtocol");
    if (!name)
        return nullptr;
    if (Protocol* const known = next(name))
        return known;
    for (ProtocolObject& each : g_protocols) {
        if (std::string_view(each.name) == name) {
            each.isa = systemClass("Protocol");
            return reinterpret_cast<Protocol*>(&each);
        }
    }
    return nullptr;
}
