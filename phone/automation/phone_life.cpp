#include "phone/automation/phone_life.hpp"

#include "phone/automation/phone_commands.hpp"
#include "phone/main/restart_file.hpp"
#include "phone/phone.hpp"
#include "phone/window/phone_window.hpp"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <thread>

namespace phone {

namespace {

using Time = std::chrono::steady_clock;

constexpr double kIdlePatience = 0.04;   // seconds, while nothing moves

Json errorMessage(CommandError const& error)
{
    return Json::object({ { "error", errorName(error.code) }, { "message", error.message } });
}

class PhoneLife {
public:
    PhoneLife(Channel channel, PhoneSetup const& setup)
        : m_channel(std::move(channel))
        , m_setup(setup)
        , m_usual(setup.boot)
    {
        m_usual.clock = setup.scriptClock;
    }

    int run()
    {
        auto const first = m_channel.receive();
        if (!first)
            return EXIT_FAILURE;
        if (auto const booted = boot(*first); !booted) {
            m_channel.send(errorMessage(booted.error()));
            phone().close();
            return EXIT_FAILURE;
        }
        m_commands = std::make_unique<PhoneCommands>(m_usual, first->value("elements", std::uint64_t(0)),
            [this](double seconds) { passTime(seconds); });
        phone().setRestartHandler([this] { m_wantsRestart = true; });
        m_isRunning = phone().options().clock == ClockMode::running;
        m_channel.send(Json::object({ { "booted", true }, { "ios", phone().version().text() } }));
        if (m_window)
            serveInWindow();
        else
            serve();
        phone().close();
        return EXIT_SUCCESS;
    }

private:
    Answer<void> boot(Json const& first)
    {
        BootOptions options = m_setup.boot;
        bool const isAsked = first.contains("boot") && !first["boot"].is_null();
        if (isAsked) {
            auto const asked = bootOptionsOf(first["boot"], m_usual);
            if (!asked)
                return asked.error();
            options = *asked;
        }
        if (m_setup.printsTrace)
            phone().trace().setSink([](std::string_view line) { std::cout << line << std::endl; });
        auto root = DeviceRoot::openGiven(first.value("root", ""));
        if (!root)
            return CommandError { ErrorCode::unknownError, root.message() };
        phone().useRoot(std::move(*root));
        if (m_setup.pluginFolders)
            phone().usePluginFolders(*m_setup.pluginFolders);
        Status booted;
        if (first.contains("resume") && first["resume"].is_string()) {
            auto const state = takeRestartFile(first["resume"].get<std::string>());
            if (!state)
                return CommandError { ErrorCode::unknownError, state.message() };
            booted = phone().boot(options, *state);
        } else {
            booted = phone().boot(options);
            if (booted && !isAsked) {
                booted = phone().setAddressBook(m_setup.addressBook);
                if (m_setup.playsMusic)
                    phone().setMusicPlaying(true);
                if (m_setup.orientation != 1)
                    phone().setOrientation(m_setup.orientation);
            }
        }
        if (!booted)
            return invalidArgument(booted.message());
        if (m_setup.opensWindow) {
            auto window = std::make_unique<PhoneWindow>();
            if (auto const opened = window->open({ options.width, options.height }); !opened)
                return CommandError { ErrorCode::unknownError, opened.message() };
            m_window = std::move(window);
        }
        return {};
    }

    // ---- time

    void passTime(double seconds)
    {
        if (!m_isRunning) {
            phone().advance(seconds);
            if (m_window)
                m_window->refresh();
            return;
        }
        auto const end = Time::now() + std::chrono::duration<double>(seconds);
        do {
            follow();
            if (m_window)
                m_window->refresh();
            double const left = std::chrono::duration<double>(end - Time::now()).count();
            if (left > 0)
                std::this_thread::sleep_for(std::chrono::duration<double>(std::min(left, kFrameSeconds)));
        } while (Time::now() < end);
        follow();
    }

    // A running clock catches up with the real one.
    void follow()
    {
        auto const now = Time::now();
        phone().advance(std::chrono::duration<double>(now - m_last).count());
        m_last = now;
    }

    // ---- serving

    void serve()
    {
        m_last = Time::now();
        while (!m_isOver) {
            double const patience = phone().clock().isAnimating() ? kFrameSeconds : kIdlePatience;
            if (!m_isRunning || m_channel.waits(patience))
                receiveOne();
            if (m_isRunning)
                follow();
            if (m_wantsRestart && !m_isOver)
                restart();
        }
    }

    void serveInWindow()
    {
        m_window->movesClock(m_isRunning);
        m_window->onEachTurn([this] {
            m_last = Time::now();
            while (!m_isOver && m_channel.waits(0))
                receiveOne();
            if (m_wantsRestart && !m_isOver)
                restart();
            return !m_isOver;
        });
        auto const end = m_window->run();
        if (m_isOver)
            return;
        if (end == PhoneWindow::End::restart) {
            restart();
        } else {
            m_channel.send(Json::object({ { "closed", true } }));
            waitForEnd();
        }
    }

    void receiveOne()
    {
        auto const message = m_channel.receive();
        if (!message) {
            m_isOver = true;
            return;
        }
        PhoneCommand command;
        command.name = message->value("command", "");
        command.element = message->value("element", "");
        command.argument = message->value("argument", "");
        command.parameters = message->value("parameters", Json::object());
        command.settings = message->value("settings", Json::object());
        command.implicitSeconds = message->value("implicit", 0.0);
        if (m_isRunning)
            follow();
        auto const answer = run(command);
        Json reply = answer ? Json::object({ { "value", *answer } }) : errorMessage(answer.error());
        reply["elements"] = m_commands->elementsGiven();
        auto const& next = m_commands->nextPhone();
        if (next && !next->isRestart) {
            reply["boot"] = next->bootArguments;
            m_commands->forgetNextPhone();
        } else if (next || m_wantsRestart) {
            m_commands->forgetNextPhone();
            m_wantsRestart = false;
            auto const file = writeRestartFile(phone().restartState());
            if (file)
                reply["restart"] = file->string();
            else
                reply = errorMessage({ ErrorCode::unknownError, file.message() });
        }
        m_isOver = !m_channel.send(reply);
    }

    // A request that holds something else than a command expects must not end the phone.
    Answer<Json> run(PhoneCommand const& command)
    {
        try {
            return m_commands->run(command);
        } catch (Json::exception const& failure) {
            return invalidArgument(failure.what());
        }
    }

    // The phone restarts by itself, while no command runs.
    void restart()
    {
        m_wantsRestart = false;
        auto const file = writeRestartFile(phone().restartState());
        if (!file) {
            reportProblem(file.message());
            return;
        }
        m_channel.send(Json::object({ { "restart", file->string() } }));
        waitForEnd();
    }

    // Nothing is done here any more; what was under way goes to the next phone.
    void waitForEnd()
    {
        m_isOver = true;
        while (m_channel.receive())
            m_channel.send(Json::object({ { "again", true } }));
    }

    Channel m_channel;
    PhoneSetup const& m_setup;
    BootOptions m_usual;
    std::unique_ptr<PhoneCommands> m_commands;
    std::unique_ptr<PhoneWindow> m_window;
    bool m_isRunning { false };
    bool m_wantsRestart { false };
    bool m_isOver { false };
    Time::time_point m_last { Time::now() };
};

}

int livePhone(Channel channel, PhoneSetup const& setup)
{
    // The phone's objects end with the process, not before: nothing of it is ever undone.
    auto& life = *new PhoneLife(std::move(channel), setup);
    return life.run();
}

}
