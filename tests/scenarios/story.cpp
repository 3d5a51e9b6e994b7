#include "tests/scenarios/story.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/main/restart_file.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/touch_delivery.hpp"
#include "phone/uikit/ui_alert_controller.hpp"
#include "phone/uikit/ui_button.hpp"
#include "phone/uikit/ui_label.hpp"
#include "tests/scenarios/story_pictures.hpp"
#include "tests/support/fork_runner.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <functional>

void warmUpTests() { phone::Phone::warmUp(); }

namespace phone {

namespace {

// The disk of a phone that ended in a respring; the one that comes up is a guest there.
std::filesystem::path g_leftRoot;

std::size_t g_told = 0;   // events of the trace that effects() has told already

std::string yesOrNo(Json const& value) { return value.get<bool>() ? "yes" : "no"; }

std::string textOf(Json const& value) { return value.is_string() ? value.get<std::string>() : value.dump(); }

// Recipients in brackets, objects by their class.
std::string argument(Json const& value)
{
    if (value.is_null())
        return "";
    if (value.is_object() && value.contains("class"))
        return value["class"];
    return value.dump();
}

std::string line(Json const& event)
{
    std::string const kind = event["kind"];
    if (kind == "sound")
        return "sound " + event["id"].dump();
    if (kind == "passcodeTest")
        return "passcodeTest " + yesOrNo(event["answer"]);
    if (kind == "unlockRequest")
        return kind;
    if (kind == "passcode" || kind == "lock")
        return kind + " " + textOf(event["event"]);
    if (kind == "openURL")
        return "openURL " + textOf(event["url"]);
    if (kind == "completion")
        return "completion " + yesOrNo(event["success"]);
    if (kind == "canSend")
        return "canSend " + textOf(event["class"]) + " " + yesOrNo(event["answer"]);
    if (kind == "composer")
        return textOf(event["class"]) + " " + textOf(event["call"]) + "(" + argument(event["value"]) + ")";
    if (kind == "present" && event.contains("style"))
        return event["style"] == 0 ? "sheet " + textOf(event["title"])
                                   : "alert " + textOf(event["title"]) + ": " + textOf(event["message"]);
    if (kind == "present" || kind == "dismiss")
        return kind + " " + textOf(event["class"]);
    if (kind == "assertion")
        return (event["action"] == "add" ? "hold " : "release ") + textOf(event["reason"]);
    if (kind == "siri")
        return "siri " + textOf(event["text"]);
    if (kind == "spawn") {
        std::string text = "spawn " + textOf(event["path"]);
        for (Json const& each : event["arguments"])
            text += " " + textOf(each);
        return text;
    }
    if (kind == "write")
        return "write " + textOf(event["path"]);
    if (kind == "heard")
        return textOf(event["line"]);
    return {};
}

// A text that names the class: `UIButton`.
bool isKind(UIView view, char const* className)
{
    objc::class_handle const cls { objc_getClass(className) };
    return cls && view.send<"isKindOfClass:", BOOL>(cls);
}

CGPoint middleOnScreen(UIView view)
{
    CGRect const bounds = view.bounds();
    return view.convertPointToView({ midX(bounds), midY(bounds) }, {});
}

// A finger in its middle would reach the view or something in it.
bool canBeTouched(UIView view)
{
    UIView const hit = touchDelivery().hitTest(middleOnScreen(view));
    return hit && hit.isDescendantOfView(view);
}

UIView firstThat(std::function<bool(UIView)> const& matches, std::vector<UIView> const& views)
{
    auto const found = std::ranges::find_if(views, matches);
    return found == views.end() ? UIView {} : *found;
}

void collect(UIView view, std::vector<UIView>& views)
{
    if (view.isHidden() || view.alpha() < 0.01)
        return;
    views.push_back(view);
    for (UIView const child : view.children())
        collect(child, views);
}

}

Json annasEntry()
{
    return { { "contactFirstName", "Anna" }, { "contactLastName", "Lind" },
        { "contactUniqueIdentifier", "anna" }, { "contactImage", "" },
        { "contactBirthday", { { "date", "1990-03-09T12:00:00Z" } } },
        { "contactPhoneNumber", "+44 20 7946-0958" }, { "contactEmail", "anna@example.com" } };
}

Json emptyEntry()
{
    return { { "contactFirstName", "Nobody" }, { "contactLastName", "" },
        { "contactUniqueIdentifier", "nobody" }, { "contactImage", "" }, { "contactBirthday", "" },
        { "contactPhoneNumber", "" }, { "contactEmail", "" } };
}

Story::~Story()
{
    takePicture();
    phone().close();
    if (!g_leftRoot.empty())
        std::filesystem::remove_all(g_leftRoot);
}

BootOptions Story::options(std::string const& version, Json settings, Json contacts)
{
    BootOptions options;
    options.ios = *SystemVersion::parse(version);
    options.settings = std::move(settings);
    options.contacts = std::move(contacts);
    return options;
}

void Story::boot(BootOptions const& options)
{
    phone().usePluginFolders({ std::filesystem::path(CORVEL_PLUGIN).parent_path() });
    Status const booted = phone().boot(options);
    ASSERT_TRUE(booted) << booted.message();
    ASSERT_EQ(phone().plugins().size(), 1u);
    ASSERT_TRUE(phone().plugins().front().isLoaded) << phone().plugins().front().problem;
    wait(0.5);
    forget();
}

std::size_t Story::bootAfterRespring(BootOptions const& options, std::function<void()> const& story)
{
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    std::fflush(nullptr);
    pid_t const child = fork();
    if (child == 0) {
        boot(options);
        phone().setRestartHandler([&ends] {
            auto const file = writeRestartFile(phone().restartState());
            std::string const path = file ? file->string() : "";
            bool const isTold = write(ends[1], path.data(), path.size()) == ssize_t(path.size());
            std::fflush(nullptr);
            _exit(HasFailure() || !isTold ? 1 : 0);
        });
        story();
        ADD_FAILURE() << "the phone did not restart";
        std::fflush(nullptr);
        _exit(1);
    }
    close(ends[1]);
    std::string path;
    char letter;
    while (read(ends[0], &letter, 1) == 1)
        path += letter;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0) << "the phone before the respring failed";
    auto const state = takeRestartFile(path);
    if (!state) {
        ADD_FAILURE() << state.message();
        return 0;
    }
    g_leftRoot = state->root;
    phone().usePluginFolders({ std::filesystem::path(CORVEL_PLUGIN).parent_path() });
    Status const booted = phone().boot(options, *state);
    EXPECT_TRUE(booted) << booted.message();
    wait(0.5);
    forget();
    return state->events.size();
}

void Story::touch(UIView view)
{
    ASSERT_TRUE(view) << "there is nothing to touch";
    takePicture();
    phone().tap(middleOnScreen(view));
}

void Story::hold(UIView view, double seconds)
{
    ASSERT_TRUE(view) << "there is nothing to hold";
    takePicture();
    CGPoint const point = middleOnScreen(view);
    phone().touchDown(point);
    wait(seconds);
    phone().touchUp(point);
    wait(0);
}

void Story::typePasscode(std::string const& code)
{
    for (char const digit : code)
        touch(button(std::string(1, digit)));
}

void Story::cancelPasscode() { touch(button("Cancel")); }

std::vector<UIView> Story::visibleViews()
{
    std::vector<UIView> views;
    for (UIWindow const window : phone().windows())
        collect(window, views);
    std::ranges::reverse(views);   // the front first
    return views;
}

UIView Story::contactButton(std::size_t index)
{
    std::vector<UIView> views;
    collect(phone().strip(), views);
    std::erase_if(views, [](UIView view) { return !isKind(view, "CVLButton"); });
    // In the order of the list: from the leading side on.
    double const way = bootOptions().isRightToLeft() ? -1 : 1;
    std::ranges::sort(views, {}, [way](UIView view) { return way * middleOnScreen(view).x; });
    return index < views.size() ? views[index] : UIView {};
}

UIView Story::button(std::string const& title)
{
    return firstThat(
        [&](UIView view) {
            if (!isKind(view, "UIControl") || !canBeTouched(view))
                return false;
            bool const isTitled =
                isKind(view, "UIButton") && toString(UIButton { view.object }.currentTitle()) == title;
            return isTitled || toString(view.accessibilityLabel()) == title;
        },
        visibleViews());
}

UIView Story::alertRow(std::string const& title)
{
    return firstThat(
        [&](UIView view) {
            return isKind(view, "_UIAlertControllerActionView")
                && toString(view.accessibilityLabel()) == title && canBeTouched(view);
        },
        visibleViews());
}

UIView Story::pickerRow(std::string const& name)
{
    return firstThat(
        [&](UIView view) {
            return isKind(view, "CNContactPickerRow") && toString(view.accessibilityLabel()) == name
                && canBeTouched(view);
        },
        visibleViews());
}

bool Story::shows(std::string const& text)
{
    return bool(firstThat(
        [&](UIView view) {
            return isKind(view, "UILabel") && toString(UILabel { view.object }.text()) == text;
        },
        visibleViews()));
}

UIViewController Story::presented(char const* className)
{
    auto const windows = phone().windows();
    for (auto window = windows.rbegin(); window != windows.rend(); ++window) {
        if (window->isHidden())
            continue;
        auto const controllers = presentedControllers(*window);
        for (auto each = controllers.rbegin(); each != controllers.rend(); ++each)
            if (each->send<"isKindOfClass:", BOOL>(objc::class_handle { objc_getClass(className) }))
                return *each;
    }
    return {};
}

UIViewController Story::alert() { return presented("UIAlertController"); }

std::vector<std::string> Story::alertRows()
{
    std::vector<std::string> titles;
    UIAlertController const controller { alert().object };
    if (controller)
        for (UIAlertAction const action : controller.actionsOnScreen())
            titles.push_back(toString(action.title()));
    return titles;
}

Effects Story::effects()
{
    Effects lines;
    for (Json const& event : phone().trace().events(g_told)) {
        std::string text = line(event);
        if (!text.empty())
            lines.push_back(std::move(text));
    }
    forget();
    return lines;
}

Effects Story::only(Effects const& effects, std::vector<std::string> const& words)
{
    Effects chosen;
    for (std::string const& each : effects)
        if (std::ranges::find(words, each.substr(0, each.find(' '))) != words.end())
            chosen.push_back(each);
    return chosen;
}

void Story::forget() { g_told = phone().trace().count(); }

}
