#include "phone/automation/scripts/scripts.hpp"

#include "phone/automation/scripts/class_description.hpp"
#include "phone/automation/scripts/message_call.hpp"
#include "phone/automation/scripts/message_recorder.hpp"
#include "phone/automation/scripts/script_arguments.hpp"
#include "phone/automation/scripts/script_targets.hpp"
#include "phone/automation/scripts/value_objects.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/starter_set.hpp"
#include "phone/springboard/view_tree.hpp"

#include <algorithm>
#include <array>
#include <limits>

namespace phone {

namespace {

using In = ScriptArguments;

constexpr double kLongestAdvance = 1e9;   // seconds, some thirty years: minutes of real time
constexpr long long kMost = std::numeric_limits<std::int32_t>::max();

// What the phone itself refuses, as an argument that is wrong.
ScriptResult done(Status const& status)
{
    if (!status)
        return invalidArgument(status.message());
    return Json();
}

// ---- the phone as a whole

ScriptResult boot(In&, Json const& arguments, ScriptContext& context)
{
    auto const options = bootOptionsOf(arguments, context.usualBootOptions());
    if (!options)
        return options.error();
    context.boot(arguments);
    return Json();
}

ScriptResult respring(In& in, Json const&, ScriptContext& context)
{
    if (!in.isGood())
        return in.error();
    context.respring();
    return Json();
}

ScriptResult traceEvents(In& in, Json const&, ScriptContext&)
{
    auto const since = in.optionalInteger("since", 0, kMost).value_or(0);
    if (!in.isGood())
        return in.error();
    return phone().trace().events(static_cast<std::size_t>(since));
}

ScriptResult record(In& in, Json const&, ScriptContext&)
{
    bool const messages = in.optionalBoolean("messages").value_or(false);
    auto const classes = in.optionalTexts("classes").value_or(std::vector<std::string> {});
    if (!in.isGood())
        return in.error();
    return done(recordMessages(messages, classes));
}

// A clock that runs jumps ahead too: an hour answers at once.
ScriptResult advance(In& in, Json const&, ScriptContext&)
{
    double const seconds = in.number("seconds");
    if (!(seconds >= 0 && seconds <= kLongestAdvance))
        in.refuse("`seconds` is 0 or more, up to 1000000000");
    if (!in.isGood())
        return in.error();
    return done(phone().advance(seconds));
}

ScriptResult libraries(In& in, Json const&, ScriptContext&)
{
    if (!in.isGood())
        return in.error();
    return libraryDescriptions();
}

// ---- what happens to it

ScriptResult settings(In& in, Json const&, ScriptContext&)
{
    PropertyListDictionary set;
    if (Json const* const given = in.optionalObject("set")) {
        for (auto const& [key, value] : given->items()) {
            auto list = propertyListOf(value, "`set`." + key);
            if (list)
                set.set(key, std::move(*list));
            else
                in.refuse(list.message());
        }
    }
    auto const remove = in.optionalTexts("remove").value_or(std::vector<std::string> {});
    bool const notify = in.optionalBoolean("notify").value_or(true);
    if (!in.isGood())
        return in.error();
    if (auto const changed = phone().changeSettings(set, remove, notify); !changed)
        return CommandError { ErrorCode::unknownError, changed.message() };
    return Json();
}

ScriptResult notify(In& in, Json const&, ScriptContext&)
{
    std::string const name = in.text("name");
    std::string const center = in.oneOf("center", { "darwin", "local", "default" });
    if (!in.isGood())
        return in.error();
    phone().postNotification(center == "darwin" ? NotificationCenterKind::darwin
            : center == "local"                 ? NotificationCenterKind::local
                                                : NotificationCenterKind::standard,
        name);
    return Json();
}

CommandError noPasscodeScreen(std::string message)
{
    return { ErrorCode::invalidElementState, std::move(message) };
}

ScriptResult enterPasscode(In& in, Json const&, ScriptContext&)
{
    std::string const code = in.text("code");
    if (!in.isGood())
        return in.error();
    auto const accepted = phone().enterPasscode(code);
    if (!accepted)
        return noPasscodeScreen(accepted.message());
    return Json(*accepted);
}

ScriptResult cancelPasscode(In& in, Json const&, ScriptContext&)
{
    if (!in.isGood())
        return in.error();
    if (auto const cancelled = phone().cancelPasscode(); !cancelled)
        return noPasscodeScreen(cancelled.message());
    return Json();
}

ScriptResult activator(In& in, Json const&, ScriptContext&)
{
    std::string const name = in.text("name");
    if (!in.isGood())
        return in.error();
    ActivatorAnswer const answer = phone().activate(name);
    return Json::object({ { "delivered", answer.delivered }, { "handled", answer.handled } });
}

ScriptResult orientation(In& in, Json const&, ScriptContext&)
{
    auto const value = in.integer("value", 1, 4);
    auto const names = in.optionalTexts("notify");
    if (names)
        for (std::string const& name : *names)
            if (name != "screenchanged" && name != "rotate")
                in.refuse("`notify` holds `screenchanged` and `rotate`, not `" + name + "`");
    if (!in.isGood())
        return in.error();
    auto const isNamed = [&](char const* name) {
        return !names || std::ranges::find(*names, name) != names->end();
    };
    return done(
        phone().setOrientation(static_cast<int>(value), { isNamed("screenchanged"), isNamed("rotate") }));
}

ScriptResult music(In& in, Json const&, ScriptContext&)
{
    bool const playing = in.boolean("playing");
    if (!in.isGood())
        return in.error();
    phone().setMusicPlaying(playing);
    return Json();
}

ScriptResult launch(In& in, Json const&, ScriptContext&)
{
    std::string const bundle = in.text("bundleId");
    if (!in.isGood())
        return in.error();
    return done(phone().launch(bundle));
}

ScriptResult available(In& in, Json const&, ScriptContext&)
{
    std::string const name = in.text("name");
    bool const value = in.boolean("value");
    if (!in.isGood())
        return in.error();
    return done(phone().setAvailable(name, value));
}

ScriptResult keyWindow(In& in, Json const&, ScriptContext& context)
{
    Json const& given = in.any("window");
    if (!in.isGood())
        return in.error();
    if (given.is_null()) {
        // Whichever was key before would be key again.
        while (UIWindow const key = UIWindow::keyWindow())
            key.resignKeyWindow();
        return Json();
    }
    auto const target = targetOf(given, context);
    if (!target)
        return target.error();
    auto const window = objc::cast<UIWindow>(*target);
    if (!window)
        return invalidArgument("`window` is a window, not a " + classNameOf(*target));
    setKeyWindow(window);
    static_cast<void>(phone().advance(0));
    return Json();
}

ScriptResult addressBook(In& in, Json const&, ScriptContext&)
{
    Json const& contacts = in.any("contacts");
    if (!in.isGood())
        return in.error();
    return done(phone().setAddressBook(contacts));
}

ScriptResult file(In& in, Json const&, ScriptContext&)
{
    std::string const path = in.text("path");
    std::string const kind =
        in.oneOf("kind", { "absent", "directory", "link", "unreadable", "readonly", "pipe", "full" });
    auto const to = in.optionalText("to");
    if (kind == "link" && !to)
        in.refuse("a link needs `to`");
    if (kind != "link" && to)
        in.refuse("`to` is for links alone");
    if (!in.isGood())
        return in.error();
    auto const fault = fileFaultNamed(kind);
    auto const set = phone().root().setFault(path, *fault, to.value_or(""));
    if (!set)
        return invalidArgument(set.message());
    return Json();
}

// ---- looking inside

ScriptResult answer(CallResult result)
{
    if (result.isGood)
        return std::move(result.value);
    return CommandError { result.problem.kind == CallProblem::Kind::request ? ErrorCode::invalidArgument
                                                                            : ErrorCode::unknownError,
        std::move(result.problem.message) };
}

// Elements among the arguments of `send` are their views.
class ElementsAsObjects {
public:
    explicit ElementsAsObjects(ScriptContext& context)
    {
        setObjectResolver([&context](Json const& value) -> std::optional<Result<objc::handle>> {
            auto const id = elementIdOf(value);
            if (!id)
                return std::nullopt;
            auto const object = context.objectOfElement(*id);
            return object ? Result<objc::handle>(*object) : Error { object.error().message };
        });
    }
    ElementsAsObjects(ElementsAsObjects const&) = delete;
    ElementsAsObjects& operator=(ElementsAsObjects const&) = delete;
    ~ElementsAsObjects() { setObjectResolver(nullptr); }
};

ScriptResult send(In& in, Json const&, ScriptContext& context)
{
    Json const& given = in.any("target");
    std::string const selector = in.text("selector");
    Json const* const arguments = in.optionalArray("arguments");
    if (!in.isGood())
        return in.error();
    auto const target = targetOf(given, context);
    if (!target)
        return target.error();
    ElementsAsObjects const elements(context);
    CallResult result = sendMessage(*target, selector, arguments ? *arguments : Json::array());
    static_cast<void>(phone().advance(0));
    return answer(std::move(result));
}

ScriptResult value(In& in, Json const&, ScriptContext& context)
{
    Json const& given = in.any("target");
    std::string const key = in.text("key");
    if (!in.isGood())
        return in.error();
    auto const target = targetOf(given, context);
    if (!target)
        return target.error();
    return answer(valueForKey(*target, key));
}

ScriptResult classByName(In& in, Json const&, ScriptContext&)
{
    std::string const name = in.text("name");
    if (!in.isGood())
        return in.error();
    Json description = classDescription(name);
    if (!description.is_null())
        return description;
    std::string near;
    for (std::string const& each : nearestNames(name, classNames()))
        near += (near.empty() ? "; near: " : ", ") + each;
    return invalidArgument("there is no class " + name + near);
}

ScriptResult views(In& in, Json const&, ScriptContext& context)
{
    Json const* const given = in.optionalAny("target");
    bool const detail = in.optionalBoolean("detail").value_or(false);
    bool const presentation = in.optionalBoolean("presentation").value_or(false);
    if (!in.isGood())
        return in.error();
    if (!given || given->is_null())
        return phone().views(detail, presentation);
    auto const target = viewTargetOf(*given, context);
    if (!target)
        return target.error();
    layoutWindowsIfNeeded();
    return viewTree(UIView { target->object }, { .detail = detail, .presentation = presentation });
}

struct Row {
    char const* name;
    ScriptResult (*run)(In&, Json const& arguments, ScriptContext&);
};
constexpr std::array kScripts {
    Row { "boot", boot },
    Row { "respring", respring },
    Row { "trace", traceEvents },
    Row { "record", record },
    Row { "advance", advance },
    Row { "settings", settings },
    Row { "notify", notify },
    Row { "enterPasscode", enterPasscode },
    Row { "cancelPasscode", cancelPasscode },
    Row { "activator", activator },
    Row { "orientation", orientation },
    Row { "music", music },
    Row { "launch", launch },
    Row { "available", available },
    Row { "keyWindow", keyWindow },
    Row { "addressBook", addressBook },
    Row { "file", file },
    Row { "send", send },
    Row { "value", value },
    Row { "class", classByName },
    Row { "libraries", libraries },
    Row { "views", views },
};

}

std::vector<std::string> phoneScriptNames()
{
    std::vector<std::string> names;
    for (Row const& row : kScripts)
        names.emplace_back(row.name);
    return names;
}

ScriptResult runPhoneScript(std::string const& name, Json const& arguments, ScriptContext& context)
{
    auto const row =
        std::ranges::find(kScripts, name, [](Row const& each) { return std::string_view(each.name); });
    if (row == kScripts.end()) {
        std::string near;
        for (std::string const& each : nearestNames(name, phoneScriptNames()))
            near += (near.empty() ? "; near: " : ", ") + each;
        return CommandError { ErrorCode::unknownMethod, "there is no script `phone: " + name + "`" + near };
    }
    AutoreleasePool const pool;
    ScriptArguments in(name, arguments);
    return row->run(in, arguments, context);
}

}
