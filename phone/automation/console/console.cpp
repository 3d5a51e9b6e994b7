#include "phone/automation/console/console.hpp"

#include "phone/automation/console/console_commands.hpp"
#include "phone/kernel/ascii.hpp"

#include <editline/readline.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>

namespace phone {

namespace {

constexpr char const* kPrompt = "corvel> ";
constexpr int kHistoryLines = 1000;

// The line editor asks a plain function for completions.
Console* g_console = nullptr;
std::vector<std::string> g_completions;   // the reading thread's

// The terminal as it was before lines were edited, and what signals did.
termios g_terminal {};
struct sigaction g_before[NSIG] { };

// The terminal is given back, and the signal does what it did before: it ends the process, or closes the window.
void endOn(int signal)
{
    int const error = errno;
    tcsetattr(STDIN_FILENO, TCSANOW, &g_terminal);
    struct sigaction const& before = g_before[signal];
    if (before.sa_handler == SIG_DFL) {
        sigaction(signal, &before, nullptr);
        raise(signal);
    } else if (before.sa_handler != SIG_IGN) {
        before.sa_handler(signal);
    }
    errno = error;
}

// Stands still until it is told to go on.
void restOn(int)
{
    int const error = errno;
    termios edited {};
    tcgetattr(STDIN_FILENO, &edited);
    tcsetattr(STDIN_FILENO, TCSANOW, &g_terminal);
    kill(getpid(), SIGSTOP);
    tcsetattr(STDIN_FILENO, TCSANOW, &edited);
    errno = error;
}

// The line editor's own way would send each signal to all processes of the terminal's job, whoever they are.
void handleSignals()
{
    rl_catch_signals = 0;
    tcgetattr(STDIN_FILENO, &g_terminal);
    struct sigaction action { };
    sigfillset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    action.sa_handler = endOn;
    for (int const signal : { SIGHUP, SIGINT, SIGQUIT, SIGTERM })
        sigaction(signal, &action, &g_before[signal]);
    action.sa_handler = restOn;
    sigaction(SIGTSTP, &action, nullptr);
}

// Tells the line editor how wide the terminal is now.
void measureTerminal()
{
    winsize size {};
    if (ioctl(STDIN_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 && size.ws_col > 0)
        rl_set_screen_size(size.ws_row, size.ws_col);
}

// In the user's folder for state; none where there is no home.
std::string historyFile()
{
    std::filesystem::path folder;
    if (char const* const state = std::getenv("XDG_STATE_HOME"); state && *state == '/')
        folder = state;
    else if (char const* const home = std::getenv("HOME"); home && *home == '/')
        folder = std::filesystem::path(home) / ".local/state";
    else
        return {};
    folder /= "corvel";
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    return failure ? std::string() : (folder / "console_history").string();
}

char* nextCompletion(char const*, int state)
{
    auto const index = static_cast<std::size_t>(state);
    return index < g_completions.size() ? strdup(g_completions[index].c_str()) : nullptr;
}

}

Console::Console(BootOptions const& options)
    : m_options(options)
    , m_isTerminal(isatty(STDIN_FILENO) && isatty(STDOUT_FILENO))
{
    g_console = this;
    if (m_isTerminal)
        handleSignals();
    // It may be waiting for a line when the process ends: nobody waits for it then.
    std::thread([this] { readAll(); }).detach();
}

void Console::runCommands()
{
    std::unique_lock lock(m_mutex);
    if (!m_work)
        return;
    auto const work = m_work;
    lock.unlock();
    work();
    lock.lock();
    m_work = nullptr;
    m_changed.notify_all();
}

void Console::wait(double seconds)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(
        lock, std::chrono::duration<double>(seconds), [this] { return m_work != nullptr || m_hasEnded; });
}

void Console::close()
{
    end();
    if (m_isTerminal)
        rl_deprep_terminal();
}

void Console::end()
{
    std::lock_guard const lock(m_mutex);
    m_hasEnded = true;
    m_changed.notify_all();
}

bool Console::onMainThread(std::function<void()> work)
{
    std::unique_lock lock(m_mutex);
    m_work = std::move(work);
    m_changed.notify_all();
    m_changed.wait(lock, [this] { return m_work == nullptr || m_hasEnded; });
    return m_work == nullptr;
}

bool Console::runLine(std::string const& line)
{
    auto const told = [](CommandError const& error) {
        return std::string(errorName(error.code)) + ": " + error.message;
    };
    auto const command = parseConsoleLine(line);
    std::string value;
    std::string error;
    if (!command) {
        error = told(command.error());
    } else if (command->quits) {
        return false;
    } else if (command->asksForHelp) {
        value = consoleHelp();
    } else if (!command->script.empty()) {
        bool const isDone = onMainThread([&] {
            ConsoleContext context(m_options);
            auto const result = runPhoneScript(command->script, command->arguments, context);
            if (result)
                value = printedValue(*result, command->form);
            else
                error = told(result.error());
        });
        if (!isDone)
            return false;
    }
    std::fputs(value.c_str(), stdout);
    std::fflush(stdout);
    if (!error.empty()) {
        std::fprintf(stderr, "%s\n", error.c_str());
        m_hasFailed = m_hasFailed || !m_isTerminal;
    }
    return true;
}

void Console::readAll()
{
    if (m_isTerminal)
        readTerminal();
    else
        readPipe();
    end();
}

// Letter by letter: what has not been read yet is there for the process that takes over after a restart.
void Console::readPipe()
{
    std::string line;
    char letter = 0;
    while (true) {
        ssize_t const count = read(STDIN_FILENO, &letter, 1);
        if (count < 0 && errno == EINTR)
            continue;
        if (count == 1 && letter != '\n') {
            line += letter;
            continue;
        }
        if (!runLine(std::string(trimmed(line))) || count != 1)
            return;
        line.clear();
    }
}

void Console::readTerminal()
{
    using_history();
    stifle_history(kHistoryLines);
    std::string const file = historyFile();
    if (!file.empty())
        read_history(file.c_str());
    // Selectors have colons, and JSON has everything else.
    static char breaks[] = " \t";
    rl_completer_word_break_characters = breaks;
    rl_attempted_completion_function = &Console::complete;
    std::string last;
    measureTerminal();
    while (char* const typed = readline(kPrompt)) {
        std::string const line(trimmed(typed));
        std::free(typed);
        if (!line.empty() && line != last) {
            add_history(line.c_str());
            last = line;
            if (!file.empty()) {
                write_history(file.c_str());
                chmod(file.c_str(), S_IRUSR | S_IWUSR);
            }
        }
        if (!runLine(line))
            return;
        measureTerminal();
    }
    std::putchar('\n');
}

char** Console::complete(char const* word, int, int end)
{
    rl_attempted_completion_over = 1;   // no file names
    std::string const line(rl_line_buffer, static_cast<std::size_t>(end));
    std::vector<std::string> found;
    if (!g_console->onMainThread([&] { found = consoleCompletions(line); }) || found.empty())
        return nullptr;
    g_completions = std::move(found);
    return rl_completion_matches(word, nextCompletion);
}

}
