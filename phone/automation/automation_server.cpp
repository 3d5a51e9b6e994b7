#include "phone/automation/automation_server.hpp"

#include "phone/phone.hpp"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

namespace phone {

Result<std::unique_ptr<AutomationServer>> AutomationServer::start(
    PhoneSetup const& setup, DeviceRoot root, HttpOptions const& options)
{
    auto nursery = Nursery::start(
        [] { Phone::warmUp(); }, [&setup](Channel channel) { return livePhone(std::move(channel), setup); });
    if (!nursery)
        return Error { "the system refuses another process" };
    std::unique_ptr<AutomationServer> server(new AutomationServer);
    server->m_host = std::make_unique<PhoneHost>(std::move(*nursery), std::move(root));
    PhoneHost& host = *server->m_host;
    if (auto const started = host.start(); !started)
        return started.error();
    server->m_sessions = std::make_unique<SessionServer>(
        [&host](PhoneCommand const& command) { return host.run(command); }, [&host] { return host.facts(); });
    SessionServer& sessions = *server->m_sessions;
    server->m_http = std::make_unique<HttpServer>(
        options, [&sessions](std::string_view verb, std::string_view target, std::string_view body) {
            return sessions.handle(verb, target, body);
        });
    if (auto const started = server->m_http->start(); !started)
        return started.error();
    return server;
}

AutomationServer::~AutomationServer() { stop(); }

void AutomationServer::stop()
{
    // The phone first: a command that waits for it ends, and its connection's thread with it.
    if (m_host)
        m_host->stop();
    if (m_http)
        m_http->stop();
}

int runAutomationServer(PhoneSetup const& setup, DeviceRoot root, HttpOptions const& options)
{
    // Taken by sigwait() below, whatever thread they would reach. The nursery's process gets its own mask back.
    sigset_t ends;
    sigemptyset(&ends);
    for (int const signal : { SIGINT, SIGTERM, SIGHUP })
        sigaddset(&ends, signal);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    auto server = AutomationServer::start(setup, std::move(root), options);
    if (!server) {
        reportProblem(server.message());
        return EXIT_FAILURE;
    }
    (*server)->host().onClosed([] { kill(getpid(), SIGTERM); });
    std::printf(
        "listening on %s:%d\n", options.host.empty() ? "127.0.0.1" : options.host.c_str(), (*server)->port());
    std::fflush(stdout);
    int signal = 0;
    sigwait(&ends, &signal);
    (*server)->stop();
    return EXIT_SUCCESS;
}

}
