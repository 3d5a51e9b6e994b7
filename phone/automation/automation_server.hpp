// AutomationServer: a phone that clients drive over WebDriver: sockets, session and the phone's process together. Make it before
// the process has any thread.
#pragma once

#include "phone/automation/http_server.hpp"
#include "phone/automation/phone_host.hpp"

namespace phone {

class AutomationServer {
public:
    // `setup` has to outlive the server. `root`: the first phone's disk. Boots it; an error names what stood in the way.
    static Result<std::unique_ptr<AutomationServer>> start(
        PhoneSetup const& setup, DeviceRoot root, HttpOptions const& options);
    ~AutomationServer();
    AutomationServer(AutomationServer const&) = delete;
    AutomationServer& operator=(AutomationServer const&) = delete;

    int port() const { return m_http->port(); }
    std::size_t connectionCount() const { return m_http->connectionCount(); }
    PhoneHost& host() { return *m_host; }

    void stop();

private:
    AutomationServer() = default;

    std::unique_ptr<PhoneHost> m_host;
    std::unique_ptr<SessionServer> m_sessions;
    std::unique_ptr<HttpServer> m_http;
};

// Serves until the process is asked to end (SIGINT, SIGTERM) or the phone's window is closed. Prints `listening on HOST:PORT` on a
// line of its own once clients may come. Answers the program's status.
int runAutomationServer(PhoneSetup const& setup, DeviceRoot root, HttpOptions const& options);

}
