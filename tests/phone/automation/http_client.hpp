// A small HTTP client over real sockets, that can also send what no client should. One connection, kept.
#pragma once

#include "phone/kernel/trace.hpp"

#include <string>
#include <string_view>

namespace phone {

struct HttpReply {
    int status { 0 };   // 0: the connection ended without an answer
    std::string head;   // status line and headers
    std::string body;

    Json value() const;          // of the body; null when there is none
    std::string error() const;   // value.error; empty for none
};

class HttpClient {
public:
    explicit HttpClient(int port)
        : m_port(port)
    {
    }
    ~HttpClient() { close(); }
    HttpClient(HttpClient const&) = delete;
    HttpClient& operator=(HttpClient const&) = delete;

    // With Host, Content-Length and, with a body, Content-Type as a client sends them; `headers` are further lines, each with its
    // end.
    HttpReply ask(std::string const& verb, std::string const& target, std::string const& body = {},
        std::string const& headers = {});

    // Bytes as they are, and then one answer. Waits `seconds` for it at most.
    void send(std::string_view bytes);
    HttpReply receive(double seconds = 20);
    void finishSending();   // the server reads the connection's end; answers still come

    bool isClosedByServer();   // within two seconds
    void close();
    std::string host() const { return "127.0.0.1:" + std::to_string(m_port); }

private:
    bool connect();

    int m_port;
    int m_socket { -1 };
    std::string m_read;
};

}
