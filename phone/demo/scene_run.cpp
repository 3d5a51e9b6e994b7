#include "phone/demo/scene_run.hpp"

#include "phone/graphics/image_codec.hpp"
#include "phone/screen/device_frame.hpp"
#include "phone/screen/renderer.hpp"
#include "phone/springboard/view_tree.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <thread>

namespace phone {

namespace {

constexpr double kPictureScale = 2;   // pixels per point
constexpr char kPasscode[] = "1234";

std::string numberText(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%g", number);
    return text;
}

std::string describe(BootOptions const& options)
{
    std::string text = "iOS " + options.ios.text() + ", " + numberText(options.width) + "x"
        + numberText(options.height) + " points, " + options.language + ", "
        + (options.appearance == Appearance::dark ? "dark" : "light") + ", " + options.date;
    if (options.contacts)
        text += ", " + std::to_string(options.contacts->size()) + " contacts";
    if (options.settings)
        text += ", settings " + options.settings->dump();
    return text;
}

// Addresses differ from run to run; a transcript shouldn't.
std::string withoutAddresses(std::string text)
{
    for (std::size_t at = text.find("0x"); at != std::string::npos; at = text.find("0x", at + 2)) {
        std::size_t const end = text.find_first_not_of("0123456789abcdef", at + 2);
        text.erase(at + 2, std::min(end, text.size()) - at - 2);
    }
    return text;
}

// One line a view: class, frame in its superview, and what is unusual about it.
void appendTree(std::string& text, Json const& view, std::size_t depth)
{
    text.append(4 + 2 * depth, ' ');
    text += view["class"].get<std::string>();
    for (Json const& number : view["frame"]["rect"])
        text += " " + numberText(number.get<double>());
    if (view["hidden"].get<bool>())
        text += ", hidden";
    if (double const alpha = view["alpha"].get<double>(); alpha != 1)
        text += ", alpha " + numberText(alpha);
    if (view["text"].is_string())
        text += ", " + view["text"].dump(-1, ' ', false, Json::error_handler_t::replace);
    text += "\n";
    for (Json const& child : view["children"])
        appendTree(text, child, depth + 1);
}

// What the plug-in caused, then its strip as a tree. Look-ups of classes are many and tell little here.
std::string transcriptOf(Phone& device)
{
    std::string text = "  phone: " + describe(device.options()) + "\n";
    for (PluginReport const& plugin : device.plugins()) {
        text += "  plug-in: " + plugin.path.filename().string()
            + (plugin.isLoaded ? " loaded" : " not loaded: " + plugin.problem) + "\n";
    }
    text += "  recorded, but for look-ups by name:\n";
    for (Json const& event : device.trace().events()) {
        if (!event.contains("own") && event["kind"] != "lookup")
            text +=
                "    " + withoutAddresses(event.dump(-1, ' ', false, Json::error_handler_t::replace)) + "\n";
    }
    for (auto const& [name, view] :
        { std::pair { "strip", device.strip() }, { "overlay", device.overlay() } }) {
        if (!view)
            continue;
        text += std::string("  ") + name + ", with frames in points (x, y, width, height):\n";
        appendTree(text, viewTree(view, { .detail = false, .presentation = false, .handles = false }), 0);
    }
    return text;
}

// In the child. Answers the problem, or nothing.
std::string play(Scene const& scene, std::filesystem::path const& picturePath, std::string& transcript)
{
    auto& device = phone();
    BootOptions options;
    options.scale = kPictureScale;
    options.passcode = kPasscode;
    scene.prepare(options);
    auto root = DeviceRoot::makeTemporary();
    if (!root)
        return root.message();
    device.useRoot(std::move(*root));
    if (auto const booted = device.boot(options); !booted)
        return booted.message();
    if (!device.strip())
        return "the plug-in has put no strip on the lock screen";
    device.advance(kSecondsToRest);
    if (scene.act) {
        scene.act(device);
        if (scene.rest > 0)
            device.advance(scene.rest);
    }
    Renderer renderer;
    DeviceFrame const frame({ options.width, options.height }, device.orientation());
    auto const picture = frame.picture(renderer.drawScreen(kPictureScale));
    if (!graphics::writePngFile(picture, picturePath.string()))
        return "cannot write " + picturePath.string();
    transcript = transcriptOf(device);
    return {};
}

// A file without a name that parent and child share: the first line is the problem, the rest the transcript.
using SharedFile = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::string contentsOf(std::FILE* file)
{
    std::string text;
    std::rewind(file);
    char buffer[8192];
    while (std::size_t const count = std::fread(buffer, 1, sizeof buffer, file))
        text.append(buffer, count);
    return text;
}

[[noreturn]] void runChild(Scene const& scene, std::filesystem::path const& picture, std::FILE* answer)
{
    std::string transcript;
    std::string const problem = play(scene, picture, transcript);
    std::string const text = problem + "\n" + transcript;
    std::fwrite(text.data(), 1, text.size(), answer);
    std::fflush(nullptr);
    phone::phone().close();
    _exit(0);
}

}

std::vector<SceneResult> runScenes(std::span<Scene const> scenes, std::filesystem::path const& folder)
{
    struct Running {
        std::size_t index;
        SharedFile answer;
    };
    std::vector<SceneResult> results(scenes.size());
    std::map<pid_t, Running> running;
    std::size_t const atOnce = std::max(2u, std::thread::hardware_concurrency());

    auto const waitForOne = [&] {
        int status = 0;
        pid_t const child = waitpid(-1, &status, 0);
        auto const found = running.find(child);
        if (found == running.end())
            return;
        SceneResult& result = results[found->second.index];
        std::string const text = contentsOf(found->second.answer.get());
        running.erase(found);
        std::size_t const end = text.find('\n');
        if (WIFSIGNALED(status))
            result.problem = std::string("ended by signal ") + strsignal(WTERMSIG(status));
        else if (end == std::string::npos)
            result.problem = "ended without an answer";
        else
            result.problem = text.substr(0, end);
        if (end != std::string::npos)
            result.transcript = text.substr(end + 1);
        if (!result.problem.empty())
            return;
        result.image = graphics::readImageFile(result.picture.string());
        if (!result.image)
            result.problem = "left no picture";
    };

    for (std::size_t i = 0; i < scenes.size(); ++i) {
        while (running.size() >= atOnce)
            waitForOne();
        results[i].scene = &scenes[i];
        results[i].picture = folder / (std::string(scenes[i].name) + ".png");
        SharedFile answer(std::tmpfile(), std::fclose);
        std::fflush(nullptr);
        pid_t const child = answer ? fork() : -1;
        if (child == 0)
            runChild(scenes[i], results[i].picture, answer.get());
        if (child < 0)
            results[i].problem = std::string("cannot start: ") + std::strerror(errno);
        else
            running.emplace(child, Running { i, std::move(answer) });
    }
    while (!running.empty())
        waitForOne();
    return results;
}

}
