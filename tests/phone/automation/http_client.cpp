#include "tests/phone/automation/http_client.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>

namespace phone {

Json HttpReply::value() const
{
    Json const json = Json::parse(body, nullptr, false);
    return json.is_object() && json.contains("value") ? json["value"] : Json();
}

std::string HttpReply::error() const
{
    Json const told = value();
    return told.is_object() && told.contains("error") && told["error"].is_string()
        ? told["error"].get<std::string>()
        : "";
}

bool HttpClient::connect()
{
    if (m_socket >= 0)
        return true;
    m_read.clear();
    m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int const yes = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    sockaddr_in address {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(m_port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_socket, reinterpret_cast<sockaddr const*>(&address), sizeof address) == 0)
        return true;
    close();
    return false;
}

void HttpClient::close()
{
    if (m_socket >= 0)
        ::close(m_socket);
    m_socket = -1;
}

void HttpClient::send(std::string_view bytes)
{
    if (!connect())
        return;
    while (!bytes.empty()) {
        ssize_t const sent = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

HttpReply HttpClient::receive(double seconds)
{
    HttpReply reply;
    auto const deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (std::chrono::steady_clock::now() < deadline) {
        auto const end = m_read.find("\r\n\r\n");
        if (end != std::string::npos) {
            reply.head = m_read.substr(0, end);
            std::size_t length = 0;
            if (auto const at = reply.head.find("Content-Length: "); at != std::string::npos)
                length = std::stoul(reply.head.substr(at + 16));
            if (m_read.size() >= end + 4 + length) {
                reply.status = std::stoi(reply.head.substr(9));
                reply.body = m_read.substr(end + 4, length);
                m_read.erase(0, end + 4 + length);
                return reply;
            }
        }
        pollfd entry { m_socket, POLLIN, 0 };
        if (m_socket < 0 || poll(&entry, 1, 100) < 0)
            break;
        if (entry.revents == 0)
            continue;
        char bytes[64 * 1024];
        ssize_t const got = ::recv(m_socket, bytes, sizeof bytes, 0);
        if (got <= 0) {
            close();
            break;
        }
        m_read.append(bytes, static_cast<std::size_t>(got));
    }
    return reply;
}

HttpReply HttpClient::ask(
    std::string const& verb, std::string const& target, std::string const& body, std::string const& headers)
{
    std::string request = verb + " " + target + " HTTP/1.1\r\nHost: " + host() + "\r\n" + headers;
    if (!body.empty())
        request += "Content-Type: application/json; charset=utf-8\r\n";
    if (!body.empty() || verb == "POST")
        request += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    send(request + "\r\n" + body);
    return receive();
}

void HttpClient::finishSending()
{
    if (m_socket >= 0)
        ::shutdown(m_socket, SHUT_WR);
}

bool HttpClient::isClosedByServer()
{
    for (int i = 0; i < 20 && m_socket >= 0; ++i) {
        pollfd entry { m_socket, POLLIN, 0 };
        if (poll(&entry, 1, 100) <= 0)
            continue;
        char bytes[4096];
        if (::recv(m_socket, bytes, sizeof bytes, 0) <= 0)
            return true;
    }
    return m_socket < 0;
}

}
