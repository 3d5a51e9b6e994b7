#include "phone/automation/phone_host.hpp"

#include <sys/wait.h>

#include <csignal>
#include <cstring>
#include <filesystem>

namespace phone {

namespace {

CommandError errorOf(Json const& message)
{
    return { errorCodeNamed(message.value("error", "")).value_or(ErrorCode::unknownError),
        message.value("message", "") };
}

// A script `phone: boot`, which needs no phone that lives; its arguments.
std::optional<Json> bootArgumentsOf(PhoneCommand const& command)
{
    if (command.name != "executeScript")
        return {};
    Json const script = command.parameters.value("script", Json());
    if (script != "phone: boot" && script != "phone:boot")
        return {};
    Json const arguments = command.parameters.value("args", Json::array());
    if (!arguments.is_array() || arguments.size() > 1)
        return {};
    Json const one = arguments.empty() || arguments[0].is_null() ? Json::object() : arguments[0];
    return one.is_object() ? std::optional(one) : std::nullopt;
}

}

PhoneHost::PhoneHost(Nursery nursery, DeviceRoot root)
    : m_nursery(std::move(nursery))
    , m_firstRoot(std::make_shared<DeviceRoot>(std::move(root)))
    , m_keeper([this] { keep(); })
{
}

PhoneHost::~PhoneHost() { stop(); }

Status PhoneHost::start()
{
    std::unique_lock const lock(m_commandMutex);
    auto first = bear(nullptr, {}, std::move(m_firstRoot));
    if (!first)
        return Error { first.error().message };
    m_process = *first;
    return {};
}

void PhoneHost::stop()
{
    {
        std::unique_lock const lock(m_stateMutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    if (m_keeper.joinable())
        m_keeper.join();
    // A command that waits for its reply hears of the end through the channel.
    ProcessPointer process;
    {
        std::unique_lock const lock(m_commandMutex);
        process = std::move(m_process);
    }
    if (process)
        end(std::move(process));
}

PhoneFacts PhoneHost::facts() const
{
    std::unique_lock const lock(m_stateMutex);
    return m_facts;
}

Answer<PhoneHost::ProcessPointer> PhoneHost::bear(
    Json const& arguments, std::string const& resume, std::shared_ptr<DeviceRoot> root)
{
    CommandError const refused { ErrorCode::unknownError, "the system refuses another process" };
    auto [ours, theirs] = Channel::makePair();
    if (ours.descriptor() < 0)
        return refused;
    auto process = std::make_shared<Process>();
    process->channel = std::move(ours);
    process->root = std::move(root);
    process->bootArguments = arguments;
    process->pid = m_nursery.bear(std::move(theirs));
    if (process->pid == 0)
        return refused;
    process->reader = std::thread([this, each = process.get()] { read(*each); });
    Json const first =
        Json::object({ { "boot", arguments }, { "resume", resume.empty() ? Json() : Json(resume) },
            { "root", process->root->folder().string() }, { "elements", m_elements } });
    process->channel.send(first);
    auto const reply = nextReply(*process);
    if (!reply || !reply->contains("booted")) {
        CommandError const error = reply
            ? errorOf(*reply)
            : CommandError { ErrorCode::unknownError, "the phone ended while it booted" };
        end(std::move(process));
        return error;
    }
    std::unique_lock const lock(m_stateMutex);
    m_facts.systemVersion = reply->value("ios", m_facts.systemVersion);
    return process;
}

// Runs on the process's own thread until its channel ends.
void PhoneHost::read(Process& process)
{
    while (auto message = process.channel.receive()) {
        std::unique_lock lock(m_stateMutex);
        bool const isReply = message->contains("value") || message->contains("error")
            || message->contains("booted") || message->contains("again");
        if (isReply) {
            process.replies.push_back(std::move(*message));
        } else if (message->contains("restart")) {
            process.restartFile = message->value("restart", "");
            m_wantsKeeper = true;
        } else if (message->contains("closed") && m_closed) {
            auto const closed = std::exchange(m_closed, nullptr);
            lock.unlock();
            closed();
            lock.lock();
        }
        m_changed.notify_all();
    }
    std::unique_lock const lock(m_stateMutex);
    process.hasEnded = true;
    m_changed.notify_all();
}

std::optional<Json> PhoneHost::nextReply(Process& process)
{
    std::unique_lock lock(m_stateMutex);
    m_changed.wait(lock, [&] { return !process.replies.empty() || process.hasEnded || m_isStopping; });
    if (process.replies.empty())
        return {};
    Json reply = std::move(process.replies.front());
    process.replies.pop_front();
    return reply;
}

int PhoneHost::end(ProcessPointer process)
{
    process->channel.shutDown();
    process->reader.join();
    process->channel.close();
    return m_nursery.bury(process->pid);
}

// The present phone stays when the next one does not come up.
Answer<void> PhoneHost::bootNext(Json const& arguments)
{
    auto root = DeviceRoot::makeTemporary();
    if (!root)
        return CommandError { ErrorCode::unknownError, root.message() };
    PhoneFacts const before = facts();
    auto next = bear(arguments, {}, std::make_shared<DeviceRoot>(std::move(*root)));
    if (!next) {
        std::unique_lock const lock(m_stateMutex);
        m_facts = before;
        return next.error();
    }
    if (m_process)
        end(std::move(m_process));
    m_process = *next;
    m_death.clear();
    return {};
}

Answer<void> PhoneHost::restart(std::string const& file)
{
    auto next = bear(m_process->bootArguments, file, m_process->root);
    std::error_code failure;
    std::filesystem::remove(file, failure);
    if (!next)
        return next.error();
    end(std::move(m_process));
    m_process = *next;
    return {};
}

CommandError PhoneHost::deadPhone()
{
    if (m_process) {
        int const status = end(std::move(m_process));
        m_process.reset();
        m_death = WIFSIGNALED(status) ? std::string("the phone ended by signal ")
                + std::to_string(WTERMSIG(status)) + ", " + strsignal(WTERMSIG(status))
                                      : std::string("the phone ended");
    }
    return { ErrorCode::unknownError,
        (m_death.empty() ? "there is no phone" : m_death) + "; `phone: boot` starts another" };
}

Answer<Json> PhoneHost::run(PhoneCommand const& command)
{
    std::unique_lock const lock(m_commandMutex);
    Json const message = Json::object({ { "command", command.name }, { "element", command.element },
        { "argument", command.argument }, { "parameters", command.parameters },
        { "settings", command.settings }, { "implicit", command.implicitSeconds } });
    while (true) {
        if (!m_process) {
            auto const arguments = bootArgumentsOf(command);
            if (!arguments)
                return deadPhone();
            if (auto const booted = bootNext(*arguments); !booted)
                return booted.error();
            return Json();
        }
        m_process->channel.send(message);
        auto const reply = nextReply(*m_process);
        if (!reply) {
            CommandError const error = deadPhone();
            if (bootArgumentsOf(command))
                continue;
            return error;
        }
        if (reply->contains("again")) {
            std::string file;
            {
                std::unique_lock const state(m_stateMutex);
                file = std::exchange(m_process->restartFile, {});
            }
            if (file.empty())
                return CommandError { ErrorCode::unknownError, "the phone's window was closed" };
            if (auto const restarted = restart(file); !restarted)
                return restarted.error();
            continue;
        }
        m_elements = reply->value("elements", m_elements);
        if (reply->contains("boot")) {
            if (auto const booted = bootNext((*reply)["boot"]); !booted)
                return booted.error();
        } else if (reply->contains("restart")) {
            if (auto const restarted = restart((*reply)["restart"].get<std::string>()); !restarted)
                return restarted.error();
        }
        if (reply->contains("error"))
            return errorOf(*reply);
        return reply->value("value", Json());
    }
}

void PhoneHost::keep()
{
    while (true) {
        {
            std::unique_lock lock(m_stateMutex);
            m_changed.wait(lock, [this] { return m_wantsKeeper || m_isStopping; });
            if (m_isStopping)
                return;
            m_wantsKeeper = false;
        }
        std::unique_lock const lock(m_commandMutex);
        if (!m_process)
            continue;
        std::string file;
        {
            std::unique_lock const state(m_stateMutex);
            file = std::exchange(m_process->restartFile, {});
        }
        if (!file.empty())
            static_cast<void>(restart(file));
    }
}

}
