// Channel: JSON messages between the process that serves clients and the phone's process, over a socket of their own.
#pragma once

#include "phone/kernel/trace.hpp"

#include <optional>
#include <utility>

namespace phone {

class Channel {
public:
    Channel() = default;
    // Takes the descriptor over.
    explicit Channel(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    Channel(Channel&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    Channel& operator=(Channel&& other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~Channel() { close(); }

    // Two ends of one channel; both closed when the system refuses.
    static std::pair<Channel, Channel> makePair();

    // False when the other end is gone. One thread at a time.
    bool send(Json const& message) const;
    // Waits. None when the other end is gone. One thread at a time.
    std::optional<Json> receive() const;
    // Is there something to receive, or the other end gone? Waits that long at most.
    bool waits(double seconds) const;

    // Makes a receive() that waits, on whatever thread, end.
    void shutDown() const;
    void close();
    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor { -1 };
};

}
