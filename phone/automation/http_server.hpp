// HttpServer: WebDriver's requests from sockets. Connections are kept; each has a thread while it lives.
#pragma once

#include "phone/automation/access_check.hpp"
#include "phone/automation/session_server.hpp"
#include "phone/kernel/result.hpp"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace phone {

struct HttpOptions {
    std::string host;   // empty: this computer alone, by 127.0.0.1 and, where there is one, by ::1
    int port { 0 };     // 0: a free one
    std::vector<std::string> allowedOrigins;
    std::optional<std::filesystem::path> inspector;   // a folder of static files, served under /inspector
    double requestSeconds { 30 };                     // in which a request has to arrive whole
    double idleSeconds { 600 };                       // that a kept connection may rest
};

class HttpServer {
public:
    using Handler =
        std::function<WireAnswer(std::string_view verb, std::string_view target, std::string_view body)>;

    // The handler is called on many threads.
    HttpServer(HttpOptions options, Handler handler);
    ~HttpServer();
    HttpServer(HttpServer const&) = delete;
    HttpServer& operator=(HttpServer const&) = delete;

    // Takes the port and begins to serve. An error when it is taken, or the host is no address of this computer.
    Status start();
    int port() const;
    // Ends every connection; returns once all threads are done.
    void stop();

    // Connections that are open now.
    std::size_t connectionCount() const;

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

}
