#include "phone/demo/scene_run.hpp"

#include "phone/demo/finger.hpp"
#include "phone/demo/telling.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/main/restart_file.hpp"
#include "phone/screen/device_frame.hpp"
#include "phone/screen/renderer.hpp"
#include "phone/springboard/view_tree.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <sstream>
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

// From the first touch on, what the finger did and what came of it.
std::string storyOf(Phone& device)
{
    auto const& notes = Finger::notes();
    if (notes.empty())
        return {};
    std::string text = "  what happened, with seconds since the boot:\n";
    auto note = notes.begin();
    auto const addNotes = [&](std::size_t until) {
        for (; note != notes.end() && note->event <= until; ++note)
            text += "              > " + note->text + "\n";
    };
    for (Json const& event : device.trace().events()) {
        std::size_t const number = event["n"];
        addNotes(number);
        std::string const words = number < notes.front().event ? std::string() : inWords(event);
        if (words.empty())
            continue;
        char time[16];
        std::snprintf(time, sizeof time, "%10.2f  ", event["t"].get<double>());
        text += time + withoutAddresses(words) + "\n";
    }
    addNotes(device.trace().count());
    return text;
}

// What the plug-in caused, then its strip as a tree. Look-ups of classes are many and tell little here.
std::string transcriptOf(Phone& device)
{
    std::string text = "  phone: " + describe(device.options()) + "\n";
    for (PluginReport const& plugin : device.plugins()) {
        text += "  plug-in: " + plugin.path.filename().string()
            + (plugin.isLoaded ? " loaded" : " not loaded: " + plugin.problem) + "\n";
    }
    text += storyOf(device);
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

// The disk of a phone that ended in a respring, where the one that came up is a guest: ours to remove. Empty: none.
std::filesystem::path& leftRoot()
{
    static std::filesystem::path path;
    return path;
}

BootOptions optionsOf(Scene const& scene)
{
    BootOptions options;
    options.scale = kPictureScale;
    options.passcode = kPasscode;
    scene.prepare(options);
    return options;
}

// Boots, and does what the scene does up to its picture. Answers the problem, or nothing.
std::string bootAndAct(Scene const& scene, BootOptions const& options)
{
    auto& device = phone();
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
    return {};
}

// The phone before the respring, in a process of its own: it leaves the file of its restart, named in the answer's first line, and
// what its finger did in the lines after it.
[[noreturn]] void runUntilRestart(Scene const& scene, std::FILE* answer)
{
    phone().setRestartHandler([answer] {
        auto const file = writeRestartFile(phone().restartState());
        std::fprintf(answer, "%s\n", file ? file->c_str() : "");
        for (FingerNote const& note : Finger::notes())
            std::fprintf(answer, "%zu %s\n", note.event, note.text.c_str());
        std::fflush(nullptr);
        _exit(EXIT_SUCCESS);
    });
    std::string const problem = bootAndAct(scene, optionsOf(scene));
    std::fprintf(stderr, "corvel-demo: %s: %s\n", scene.name,
        problem.empty() ? "the phone did not restart" : problem.c_str());
    phone().close();
    std::fflush(nullptr);
    _exit(EXIT_FAILURE);
}

// Boots the phone that comes up after the scene's respring. The disk is its predecessor's, which it closes at its end.
std::string bootAfterRestart(Scene const& scene)
{
    SharedFile const answer(std::tmpfile(), std::fclose);
    std::fflush(nullptr);
    pid_t const child = answer ? fork() : -1;
    if (child == 0)
        runUntilRestart(scene, answer.get());
    if (child < 0)
        return std::string("cannot start: ") + std::strerror(errno);
    waitpid(child, nullptr, 0);

    std::istringstream lines(contentsOf(answer.get()));
    std::string path;
    std::getline(lines, path);
    auto const state = takeRestartFile(path);
    if (!state)
        return "the phone did not restart";
    std::vector<FingerNote> notes;
    for (FingerNote note; lines >> note.event && std::getline(lines >> std::ws, note.text);)
        notes.push_back(std::move(note));
    Finger::takeOver(std::move(notes));
    leftRoot() = state->root;
    if (auto const booted = phone().boot(optionsOf(scene), *state); !booted)
        return booted.message();
    phone().advance(kSecondsToRest);
    return {};
}

// In the child. Answers the problem, or nothing.
std::string play(Scene const& scene, std::filesystem::path const& picturePath, std::string& transcript)
{
    std::string const problem =
        scene.restarts ? bootAfterRestart(scene) : bootAndAct(scene, optionsOf(scene));
    if (!problem.empty())
        return problem;
    auto& device = phone();
    Renderer renderer;
    DeviceFrame const frame({ device.options().width, device.options().height }, device.orientation());
    auto const picture = frame.picture(renderer.drawScreen(kPictureScale));
    if (!graphics::writePngFile(picture, picturePath.string()))
        return "cannot write " + picturePath.string();
    transcript = transcriptOf(device);
    return {};
}

[[noreturn]] void runChild(Scene const& scene, std::filesystem::path const& picture, std::FILE* answer)
{
    std::string transcript;
    std::string const problem = play(scene, picture, transcript);
    std::string const text = problem + "\n" + transcript;
    std::fwrite(text.data(), 1, text.size(), answer);
    std::fflush(nullptr);
    phone::phone().close();
    if (!leftRoot().empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(leftRoot(), ignored);
    }
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
