#include "phone/automation/nursery.hpp"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>

namespace phone {

namespace {

constexpr int kPatience = 2000;   // milliseconds in which a phone ends by itself

// One question: bear a phone (with a descriptor beside it), or bury one.
struct Question {
    char kind { 'b' };
    pid_t phone { 0 };
};

bool sendQuestion(int control, Question question, int descriptor)
{
    iovec part { &question, sizeof question };
    msghdr message {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    alignas(cmsghdr) char space[CMSG_SPACE(sizeof(int))] {};
    if (descriptor >= 0) {
        message.msg_control = space;
        message.msg_controllen = sizeof space;
        cmsghdr* const header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof(int));
        std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
    }
    return sendmsg(control, &message, MSG_NOSIGNAL) == ssize_t(sizeof question);
}

// False when nobody asks any more.
bool receiveQuestion(int control, Question& question, int& descriptor)
{
    iovec part { &question, sizeof question };
    msghdr message {};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    alignas(cmsghdr) char space[CMSG_SPACE(sizeof(int))] {};
    message.msg_control = space;
    message.msg_controllen = sizeof space;
    ssize_t got = 0;
    do
        got = recvmsg(control, &message, MSG_CMSG_CLOEXEC);
    while (got < 0 && errno == EINTR);
    if (got != ssize_t(sizeof question))
        return false;
    descriptor = -1;
    cmsghdr const* const header = CMSG_FIRSTHDR(&message);
    if (header && header->cmsg_type == SCM_RIGHTS)
        std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
    return true;
}

int statusAfterPatience(pid_t phone)
{
    int status = 0;
    for (int waited = 0; waited < kPatience; waited += 5) {
        pid_t const found = waitpid(phone, &status, WNOHANG);
        if (found == phone)
            return status;
        if (found < 0)
            return 0;
        poll(nullptr, 0, 5);
    }
    kill(phone, SIGKILL);
    waitpid(phone, &status, 0);
    return status;
}

[[noreturn]] void runNursery(int control, Nursery::Life const& life)
{
    Question question;
    int descriptor = -1;
    while (receiveQuestion(control, question, descriptor)) {
        int answer = 0;
        if (question.kind == 'b') {
            std::fflush(nullptr);
            answer = fork();
            if (answer == 0) {
                close(control);
                int const status = life(Channel(descriptor));
                std::fflush(nullptr);
                _exit(status);
            }
            close(descriptor);
        } else {
            answer = statusAfterPatience(question.phone);
        }
        if (send(control, &answer, sizeof answer, MSG_NOSIGNAL) != ssize_t(sizeof answer))
            break;
    }
    _exit(0);
}

int answerFrom(int control)
{
    int answer = 0;
    ssize_t got = 0;
    do
        got = recv(control, &answer, sizeof answer, 0);
    while (got < 0 && errno == EINTR);
    return got == ssize_t(sizeof answer) ? answer : 0;
}

}

std::optional<Nursery> Nursery::start(std::function<void()> warm, Life life)
{
    int ends[2] { -1, -1 };
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        return {};
    std::fflush(nullptr);
    pid_t const process = fork();
    if (process == 0) {
        close(ends[0]);
        // Whoever ends the program by a key ends the server, which ends its phones.
        signal(SIGINT, SIG_IGN);
        sigset_t none;
        sigemptyset(&none);
        pthread_sigmask(SIG_SETMASK, &none, nullptr);
        warm();
        runNursery(ends[1], life);
    }
    close(ends[1]);
    if (process < 0) {
        close(ends[0]);
        return {};
    }
    return Nursery(ends[0], process);
}

Nursery::Nursery(Nursery&& other) noexcept
    : m_control(std::exchange(other.m_control, -1))
    , m_process(std::exchange(other.m_process, 0))
{
}

Nursery::~Nursery()
{
    if (m_control < 0)
        return;
    close(m_control);
    waitpid(m_process, nullptr, 0);
}

pid_t Nursery::bear(Channel end)
{
    std::unique_lock const lock(m_mutex);
    if (!sendQuestion(m_control, { 'b', 0 }, end.descriptor()))
        return 0;
    int const phone = answerFrom(m_control);
    return phone > 0 ? phone : 0;
}

int Nursery::bury(pid_t phone)
{
    std::unique_lock const lock(m_mutex);
    if (!sendQuestion(m_control, { 'w', phone }, -1))
        return 0;
    return answerFrom(m_control);
}

}
