#include "phone/automation/channel.hpp"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>

namespace phone {

namespace {

constexpr std::uint32_t kLargestMessage = 1u << 30;   // bytes

bool sendAll(int descriptor, char const* bytes, std::size_t count)
{
    while (count > 0) {
        ssize_t const sent = ::send(descriptor, bytes, count, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        bytes += sent;
        count -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool receiveAll(int descriptor, char* bytes, std::size_t count)
{
    while (count > 0) {
        ssize_t const got = ::recv(descriptor, bytes, count, 0);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        bytes += got;
        count -= static_cast<std::size_t>(got);
    }
    return true;
}

}

std::pair<Channel, Channel> Channel::makePair()
{
    int ends[2] { -1, -1 };
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        return {};
    return { Channel(ends[0]), Channel(ends[1]) };
}

bool Channel::send(Json const& message) const
{
    std::string const text = message.dump(-1, ' ', false, Json::error_handler_t::replace);
    auto const length = static_cast<std::uint32_t>(text.size());
    return text.size() < kLargestMessage
        && sendAll(m_descriptor, reinterpret_cast<char const*>(&length), sizeof length)
        && sendAll(m_descriptor, text.data(), text.size());
}

std::optional<Json> Channel::receive() const
{
    std::uint32_t length = 0;
    if (!receiveAll(m_descriptor, reinterpret_cast<char*>(&length), sizeof length)
        || length > kLargestMessage)
        return {};
    std::string text(length, '\0');
    if (!receiveAll(m_descriptor, text.data(), text.size()))
        return {};
    Json message = Json::parse(text, nullptr, false);
    if (!message.is_object())
        return {};
    return message;
}

bool Channel::waits(double seconds) const
{
    pollfd entry { m_descriptor, POLLIN, 0 };
    int const milliseconds = static_cast<int>(std::ceil(std::clamp(seconds, 0.0, 3600.0) * 1000));
    return poll(&entry, 1, milliseconds) > 0;
}

void Channel::shutDown() const
{
    if (m_descriptor >= 0)
        ::shutdown(m_descriptor, SHUT_RDWR);
}

void Channel::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

}
