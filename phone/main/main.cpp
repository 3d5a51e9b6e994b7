// corvel-phone: a phone with Corvel on its lock screen, in a window or on a picture.
#include "phone/apps/address_book.hpp"
#include "phone/automation/console/console.hpp"
#include "phone/graphics/image_codec.hpp"
#include "phone/kernel/services.hpp"
#include "phone/kernel/vcard.hpp"
#include "phone/main/program_options.hpp"
#include "phone/main/restart_file.hpp"
#include "phone/main/web_driver.hpp"
#include "phone/phone.hpp"
#include "phone/screen/device_frame.hpp"
#include "phone/screen/renderer.hpp"
#include "phone/springboard/starter_set.hpp"
#include "phone/window/phone_window.hpp"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace {

using namespace phone;

constexpr int kUsageStatus = 2;   // the command line is wrong, as usual for that

// Long enough for everything that moves at the start to have come to rest.
constexpr double kSecondsBeforeShot = 1;

int fail(std::string const& message, int status = EXIT_FAILURE)
{
    reportProblem(message);
    return status;
}

Status openRoot(ProgramOptions const& options)
{
    auto root = options.root ? DeviceRoot::openGiven(*options.root) : DeviceRoot::openUserData();
    if (!root)
        return root.error();
    if (options.root && options.contacts && !root->wasEmpty())
        return Error { "--contacts would change " + options.root->string()
            + ", which --root keeps as it is; give an empty folder, or leave one of the two out" };
    phone::phone().useRoot(std::move(*root));
    return {};
}

Status readContacts(ProgramOptions& options)
{
    auto const cards = readVcardFile(*options.contacts);
    if (!cards)
        return cards.error();
    for (std::string const& problem : cards->problems)
        reportProblem(problem);
    options.boot.contacts = contactEntries(*cards);
    options.addressBook = addressBookEntries(*cards);
    return {};
}

Status boot(ProgramOptions& options)
{
    auto& thePhone = phone::phone();
    if (options.printsTrace) {
        thePhone.trace().setSink([](std::string_view line) { std::cout << line << std::endl; });
    }
    if (options.contacts) {
        if (auto const read = readContacts(options); !read)
            return read;
    }
    if (options.resume) {
        auto const state = takeRestartFile(*options.resume);
        if (!state)
            return state.error();
        return thePhone.boot(options.boot, *state);
    }
    if (auto const opened = openRoot(options); !opened)
        return opened;
    if (auto const booted = thePhone.boot(options.boot); !booted)
        return booted;
    if (auto const set = thePhone.setAddressBook(options.addressBook); !set)
        return set;
    if (options.playsMusic)
        thePhone.setMusicPlaying(true);
    return {};
}

int writeShot(ProgramOptions const& options)
{
    auto& thePhone = phone::phone();
    thePhone.advance(kSecondsBeforeShot);
    Renderer renderer;
    auto picture = renderer.drawScreen(options.boot.scale);
    if (options.drawsFrame)
        picture =
            DeviceFrame({ options.boot.width, options.boot.height }, thePhone.orientation()).picture(picture);
    if (!picture || !graphics::writePngFile(picture, options.shot->string()))
        return fail("cannot write the picture " + options.shot->string());
    std::printf("%s\n", options.shot->c_str());
    return EXIT_SUCCESS;
}

// The console alone, without a window: until it ends, or the phone wants to restart. A clock that runs is moved along.
PhoneWindow::End runConsole(Console& console, ClockMode mode)
{
    using Time = std::chrono::steady_clock;
    constexpr double kPatience = 0.02;   // seconds
    auto& thePhone = phone::phone();
    bool wantsRestart = false;
    thePhone.setRestartHandler([&wantsRestart] { wantsRestart = true; });
    auto last = Time::now();
    while (!console.hasEnded() && !wantsRestart) {
        console.wait(kPatience);
        console.runCommands();
        auto const now = Time::now();
        thePhone.advance(mode == ClockMode::running ? std::chrono::duration<double>(now - last).count() : 0);
        last = now;
    }
    return wantsRestart ? PhoneWindow::End::restart : PhoneWindow::End::closed;
}

// The phone restarts as another process of the same program, which takes this one's place.
[[noreturn]] void restart(std::vector<std::string> arguments)
{
    auto const file = writeRestartFile(phone::phone().restartState());
    if (!file)
        std::exit(fail(file.message()));
    for (std::size_t i = 0; i + 1 < arguments.size();) {
        if (arguments[i] == "--resume")
            arguments.erase(arguments.begin() + std::ptrdiff_t(i), arguments.begin() + std::ptrdiff_t(i + 2));
        else
            ++i;
    }
    arguments.insert(arguments.end(), { "--resume", file->string() });
    std::string program = "corvel-phone";
    std::vector<char*> words { program.data() };
    for (std::string& argument : arguments)
        words.push_back(argument.data());
    words.push_back(nullptr);
    std::fflush(nullptr);
    execv("/proc/self/exe", words.data());
    std::exit(fail("the phone cannot start again"));
}

}

int main(int count, char** words)
{
    std::vector<std::string> const arguments(words + std::min(count, 1), words + count);
    auto parsed = parseProgramOptions(arguments);
    if (!parsed)
        return fail(parsed.message(), kUsageStatus);
    ProgramOptions& options = *parsed;
    if (options.asksForHelp) {
        std::fputs(programHelp().c_str(), stdout);
        return EXIT_SUCCESS;
    }
    if (options.webDriverPort) {
        if (options.contacts) {
            if (auto const read = readContacts(options); !read)
                return fail(read.message());
        }
        return serveWebDriver(options);
    }
    PhoneWindow window;
    bool isWindowed = !options.shot && !options.isHeadless;
    if (options.isHeadless && !options.shot && !options.opensConsole)
        return fail("--headless goes with --webdriver PORT or --console", kUsageStatus);
    if (isWindowed) {
        auto const opened = window.open({ options.boot.width, options.boot.height });
        if (!opened && !options.opensConsole)
            return fail(opened.message() + "; --shot FILE writes a picture of the screen");
        isWindowed = opened.hasValue();
    }
    if (auto const booted = boot(options); !booted)
        return fail(booted.message());
    if (options.orientation != 1)
        phone::phone().setOrientation(options.orientation);
    if (options.shot)
        return writeShot(options);
    Console* console = nullptr;
    if (options.opensConsole) {
        console = new Console(options.boot);   // its thread may outlive this function
        window.onEachTurn([console] {
            console->runCommands();
            return !console->hasEnded();
        });
    }
    auto const end = isWindowed ? window.run() : runConsole(*console, options.boot.clock);
    if (console)
        console->close();
    if (end == PhoneWindow::End::restart) {
        window.close();
        restart(arguments);
    }
    return console && console->hasFailed() ? EXIT_FAILURE : EXIT_SUCCESS;
}
