// PhoneHost: the phone as the process that serves clients sees it: one at a time, in a process of its own, replaced by another one
// at a boot and a restart. Any thread; commands run one after the other.
#pragma once

#include "phone/automation/capabilities.hpp"
#include "phone/automation/nursery.hpp"
#include "phone/automation/phone_command.hpp"
#include "phone/automation/phone_life.hpp"
#include "phone/kernel/device_root.hpp"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace phone {

class PhoneHost {
public:
    // The first phone lives on `root`; every later one that `phone: boot` asks for on a disk of its own. `setup` has to be the one
    // that the nursery's phones have.
    PhoneHost(Nursery nursery, DeviceRoot root);
    ~PhoneHost();
    PhoneHost(PhoneHost const&) = delete;
    PhoneHost& operator=(PhoneHost const&) = delete;

    // Boots the first phone.
    Status start();

    // When the phone ends by itself, which is told, only `phone: boot` brings the next one.
    Answer<Json> run(PhoneCommand const& command);

    PhoneFacts facts() const;

    // Called once, on some thread, when the user has closed the phone's window.
    void onClosed(std::function<void()> closed) { m_closed = std::move(closed); }

    // A command that waits is answered; afterwards there is no phone.
    void stop();

private:
    // One phone's process. Its messages are read by a thread of its own.
    struct Process {
        Channel channel;
        pid_t pid { 0 };
        std::thread reader;
        std::shared_ptr<DeviceRoot> root;
        Json bootArguments;   // null: the command line's
        // Under PhoneHost's m_stateMutex:
        std::deque<Json> replies;
        std::string restartFile;   // it waits to be replaced
        bool hasEnded { false };
    };
    using ProcessPointer = std::shared_ptr<Process>;

    // `resume` empty: a fresh phone. Answers it once it has booted.
    Answer<ProcessPointer> bear(
        Json const& arguments, std::string const& resume, std::shared_ptr<DeviceRoot> root);
    void read(Process& process);
    std::optional<Json> nextReply(Process& process);
    int end(ProcessPointer process);
    Answer<void> bootNext(Json const& arguments);
    Answer<void> restart(std::string const& file);
    CommandError deadPhone();
    void keep();

    Nursery m_nursery;
    std::shared_ptr<DeviceRoot> m_firstRoot;
    std::function<void()> m_closed;

    std::mutex m_commandMutex;   // held while a command runs; guards m_process
    ProcessPointer m_process;    // null: none lives
    std::uint64_t m_elements { 0 };
    std::string m_death;   // how the last phone ended; empty for none

    mutable std::mutex m_stateMutex;   // what reader threads write, and the facts
    std::condition_variable m_changed;
    PhoneFacts m_facts;
    bool m_isStopping { false };
    bool m_wantsKeeper { false };
    std::thread m_keeper;   // restarts a phone that asks for it between commands
};

}
