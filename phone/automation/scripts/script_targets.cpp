#include "phone/automation/scripts/script_targets.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/object_handles.hpp"

#include <array>
#include <string_view>

namespace phone {

namespace {

// The standard's name for an element in JSON, and the one before it, which some clients still send.
constexpr char const* kElementKey = "element-6066-11e4-a52e-4f735466cecf";
constexpr char const* kOldElementKey = "ELEMENT";

struct NamedTarget {
    std::string_view name;
    objc::handle (*find)();
    char const* absence;
};
constexpr std::array kNamedTargets {
    NamedTarget {
        "strip", [] { return objc::handle { phone().strip().object }; }, "no strip is on the lock screen" },
    NamedTarget { "overlay", [] { return objc::handle { phone().overlay().object }; }, "no overlay is up" },
    NamedTarget { "host", [] { return objc::handle { phone().adjunctController().object }; },
        "there is no adjunct-list controller" },
    NamedTarget { "manager", [] { return phone().lockScreenManager(); }, "there is no lock-screen manager" },
    NamedTarget { "passcode", [] { return objc::handle { phone().passcodeController().object }; },
        "there is no passcode controller" },
};

CommandError noSuchElement(std::string message) { return { ErrorCode::noSuchElement, std::move(message) }; }

Answer<objc::handle> handleTarget(Json const& value)
{
    if (!value.is_string())
        return invalidArgument("a handle is a text");
    auto const object = objectOfHandle(value.get<std::string>());
    if (!object || !*object)
        return noSuchElement("no object has the handle " + value.get<std::string>());
    return *object;
}

Answer<objc::handle> textTarget(std::string const& text, ScriptContext& context)
{
    for (auto const& [name, find, absence] : kNamedTargets) {
        if (text != name)
            continue;
        objc::handle const object = find();
        return object ? Answer<objc::handle>(object) : noSuchElement(absence);
    }
    if (isHandle(text))
        return handleTarget(text);
    if (Class const cls = objc_getClass(text.c_str()))
        return objc::handle { reinterpret_cast<id>(cls) };
    auto element = context.objectOfElement(text);
    if (!element && element.error().code == ErrorCode::noSuchElement)
        return noSuchElement("no class, handle or element is called " + text);
    return element;
}

}

std::optional<std::string> elementIdOf(Json const& value)
{
    if (!value.is_object())
        return std::nullopt;
    for (char const* const key : { kElementKey, kOldElementKey }) {
        auto const found = value.find(key);
        if (found != value.end() && found->is_string())
            return found->get<std::string>();
    }
    return std::nullopt;
}

Answer<objc::handle> targetOf(Json const& value, ScriptContext& context)
{
    if (value.is_string())
        return textTarget(value.get<std::string>(), context);
    if (auto const element = elementIdOf(value))
        return context.objectOfElement(*element);
    if (value.is_object() && value.contains("handle"))
        return handleTarget(value["handle"]);
    return invalidArgument(
        "`target` is an element, a handle, the name of a class, `strip`, `overlay`, `host`, "
        "`manager` or `passcode`, not "
        + value.dump(-1, ' ', false, Json::error_handler_t::replace).substr(0, 80));
}

Answer<objc::handle> viewTargetOf(Json const& value, ScriptContext& context)
{
    auto target = targetOf(value, context);
    if (target && !objc::cast<UIView>(*target))
        return invalidArgument("`target` is a view, not a " + classNameOf(*target));
    return target;
}

}
