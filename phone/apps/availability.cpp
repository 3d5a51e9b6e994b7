#include "phone/apps/availability.hpp"

#include "objc/abi.hpp"
#include "phone/kernel/commands.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/class_changes.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace phone {

namespace {

constexpr std::array<std::string_view, 7> kServices { "activator", "whatsapp", "telegram", "facetime", "mail",
    "messages", "killall" };

bool isService(std::string const& name) { return std::ranges::find(kServices, name) != kServices.end(); }

}

bool isServiceAvailable(std::string const& service) { return !bootOptions().isAbsent(service); }

Status setAvailable(std::string const& name, bool isAvailable)
{
    auto& absent = bootOptions().absent;
    if (namesMember(name)) {
        if (isServiceAvailable(name) == isAvailable)
            return {};
        if (auto const changed = isAvailable ? restoreMember(name) : removeMember(name); !changed)
            return changed;
    } else if (!isService(name) && !objc_getClass(name.c_str())) {
        return Error { "`" + name + "` is no service and no class of the phone" };
    }
    auto const set = [&absent, isAvailable](std::string const& each) {
        std::erase(absent, each);
        if (!isAvailable)
            absent.push_back(each);
    };
    set(name);
    if (name == "activator")
        set("LAActivator");   // what tells a plug-in whether it is installed
    if (name == "killall")
        applyAbsentCommands();
    return {};
}

void applyAbsentCommands() { deviceCommands().setHidden(kKillallPath, !isServiceAvailable("killall")); }

}
