// The console: a prompt into the running phone, on standard input and output. Lines are read on a thread of its own,
// with history and completion at a terminal; commands run on the main thread, when that has a moment.
#pragma once

#include "phone/kernel/boot_options.hpp"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace phone {

class Console {
public:
    // Begins to read. Made once a process, on the main thread, after the phone has booted; kept to the end.
    explicit Console(BootOptions const& options);
    Console(Console const&) = delete;
    Console& operator=(Console const&) = delete;

    // Runs what has been typed, outside of any callback of the phone's. Main thread.
    void runCommands();
    // Waits until there is something to run, or the input ends, or the seconds are over.
    void wait(double seconds);
    // `quit` was typed, or the input is at its end.
    bool hasEnded() const { return m_hasEnded; }
    // Of all commands of an input that is no terminal; at one, a mistake is no failure.
    bool hasFailed() const { return m_hasFailed; }

    // Gives the terminal back as it was. Before the process ends, whatever the reason.
    void close();

private:
    void readAll();
    void readTerminal();
    void readPipe();
    // Runs the work on the main thread, and waits for it. False when the phone ends.
    bool onMainThread(std::function<void()> work);
    // Of one line; answers false for `quit`.
    bool runLine(std::string const& line);
    static char** complete(char const* word, int start, int end);
    void end();

    BootOptions m_options;
    bool m_isTerminal { false };
    std::atomic<bool> m_hasEnded { false };
    std::atomic<bool> m_hasFailed { false };
    std::mutex m_mutex;   // guards what follows
    std::condition_variable m_changed;
    std::function<void()> m_work;   // null: none
};

}
