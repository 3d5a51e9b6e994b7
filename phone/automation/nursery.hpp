// Nursery: a process with one thread that has loaded what every phone needs, and forks phones. The process that serves clients has
// threads, and could not fork safely; a phone that is forked boots in a fraction of the time that a new program would need.
#pragma once

#include "phone/automation/channel.hpp"

#include <sys/types.h>

#include <functional>
#include <mutex>
#include <optional>

namespace phone {

class Nursery {
public:
    // A phone's whole life: returns when it is over, with the process's status.
    using Life = std::function<int(Channel)>;

    // Forks. To be called before the process has any thread; warm is called in the new process, once. None when the system refuses.
    static std::optional<Nursery> start(std::function<void()> warm, Life life);

    Nursery(Nursery&& other) noexcept;
    ~Nursery();   // phones that live go on until their channel is closed

    // A new phone's process, at the other end of the channel; 0 when the system refuses. Any thread.
    pid_t bear(Channel end);
    // Waits for its end, two seconds at most before it is killed, and answers its status as waitpid() has it. After its channel was
    // closed. Any thread.
    int bury(pid_t phone);

private:
    Nursery(int control, pid_t process)
        : m_control(control)
        , m_process(process)
    {
    }

    std::mutex m_mutex;
    int m_control;
    pid_t m_process;
};

}
