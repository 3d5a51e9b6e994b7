#include "bench/web_driver_bench.hpp"

#include "bench/in_child.hpp"
#include "bench/stop_watch.hpp"
#include "phone/automation/automation_server.hpp"
#include "tests/phone/automation/http_client.hpp"

#include <optional>

namespace {

constexpr int kCalls = 50;

// A server with its phone and a session on it, seen by a client.
class Driven {
public:
    explicit Driven(phone::BootOptions const& boot)
    {
        m_setup.boot = boot;
        auto root = phone::DeviceRoot::makeTemporary();
        if (!root)
            return;
        auto server = phone::AutomationServer::start(m_setup, std::move(*root), {});
        if (!server)
            return;
        m_server = std::move(*server);
        m_client.emplace(m_server->port());
    }

    bool answers() { return m_client && m_client->ask("GET", "/status").status == 200; }

    bool open()
    {
        if (!m_client)
            return false;
        auto const reply = m_client->ask("POST", "/session", R"({"capabilities":{}})");
        if (reply.status != 200)
            return false;
        m_session = "/session/" + reply.value()["sessionId"].get<std::string>();
        return true;
    }

    phone::HttpReply ask(std::string const& verb, std::string const& path, std::string const& body = {})
    {
        return m_client->ask(verb, m_session + path, body);
    }

private:
    phone::PhoneSetup m_setup;
    std::unique_ptr<phone::AutomationServer> m_server;
    std::optional<phone::HttpClient> m_client;
    std::string m_session;
};

using Call = bool (*)(Driven&);

bool find(Driven& driven)
{
    return driven.ask("POST", "/element", R"({"using":"class name","value":"XCUIElementTypeCell"})").status
        == 200;
}

bool findByXpath(Driven& driven)
{
    return driven
               .ask("POST", "/element",
                   R"({"using":"xpath","value":"//XCUIElementTypeCell//XCUIElementTypeStaticText"})")
               .status
        == 200;
}

// In the middle of the lock screen, where nothing happens.
bool click(Driven& driven)
{
    auto const found =
        driven.ask("POST", "/element", R"({"using":"class name","value":"XCUIElementTypeApplication"})")
            .value();
    return driven.ask("POST", "/element/" + found.value("ELEMENT", "") + "/click", "{}").status == 200;
}

bool source(Driven& driven) { return driven.ask("GET", "/source").status == 200; }

bool screenshot(Driven& driven) { return driven.ask("GET", "/screenshot").status == 200; }

void measure(benchmark::State& state, phone::BootOptions const& boot, Call call)
{
    for ([[maybe_unused]] auto const iteration : state) {
        double const seconds = inChild([&]() -> double {
            Driven driven(boot);
            if (!driven.open() || !call(driven))
                return -1;
            auto const start = Clock::now();
            for (int i = 0; i < kCalls; ++i)
                if (!call(driven))
                    return -1;
            return secondsSince(start) / kCalls;
        });
        if (seconds < 0) {
            state.SkipWithError("the phone did not answer");
            return;
        }
        state.SetIterationTime(seconds);
    }
}

void bootToFirstAnswer(benchmark::State& state, phone::BootOptions const& boot)
{
    for ([[maybe_unused]] auto const iteration : state) {
        double const seconds = inChild([&]() -> double {
            auto const start = Clock::now();
            Driven driven(boot);
            if (!driven.answers())
                return -1;
            return secondsSince(start);
        });
        if (seconds < 0) {
            state.SkipWithError("the phone did not answer");
            return;
        }
        state.SetIterationTime(seconds);
    }
}

}

std::vector<benchmark::internal::Benchmark*> registerWebDriverBenchmarks(phone::BootOptions const& boot)
{
    std::vector<benchmark::internal::Benchmark*> all;
    all.push_back(benchmark::RegisterBenchmark(
        "webDriverBootToFirstAnswer", [boot](benchmark::State& state) { bootToFirstAnswer(state, boot); }));
    struct Named {
        char const* name;
        Call call;
    };
    for (auto const& [name, call] : { Named { "webDriverFind", find },
             Named { "webDriverFindByXpath", findByXpath }, Named { "webDriverFindAndClick", click },
             Named { "webDriverSource", source }, Named { "webDriverScreenshot", screenshot } })
        all.push_back(benchmark::RegisterBenchmark(
            name, [boot, call = call](benchmark::State& state) { measure(state, boot, call); }));
    return all;
}
