// SessionServer: WebDriver's requests to their answers. It holds the session (one at a time) and hands what concerns the phone to
// the phone's process. Any thread; requests may come at once.
#pragma once

#include "phone/automation/capabilities.hpp"
#include "phone/automation/phone_command.hpp"
#include "phone/automation/routes.hpp"

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

namespace phone {

// On its way to a client: the body is {"value": …}.
struct WireAnswer {
    int status { 200 };
    std::string body;
};

WireAnswer wireAnswer(Json value);
WireAnswer wireAnswer(CommandError const& error);

class SessionServer {
public:
    using Phone = std::function<Answer<Json>(PhoneCommand const&)>;
    using Facts = std::function<PhoneFacts()>;

    SessionServer(Phone phone, Facts facts)
        : m_phone(std::move(phone))
        , m_facts(std::move(facts))
    {
    }

    // `body` as it came; at most 64 levels deep.
    WireAnswer handle(std::string_view verb, std::string_view target, std::string_view body);

private:
    using Time = std::chrono::steady_clock;
    struct Session {
        std::string id;
        Json capabilities;
        Json timeouts;
        Json settings;
        double newCommandTimeout { 60 };   // seconds
        long long created { 0 };           // milliseconds since 1970
        Time::time_point lastCommand;
        int running { 0 };   // commands under way
    };

    Answer<Json> run(Route const& route, Json const& parameters);
    Answer<Json> runForSession(Route const& route, Json const& parameters, Session& session);
    Answer<Json> runOnPhone(Route const& route, Json const& parameters);
    Answer<Json> newSession(Json const& parameters);
    Answer<Json> status();
    Answer<Json> sessions();
    Answer<Json> setSettings(Json const& parameters, Session& session);
    // Under the mutex: the session of that id, alive.
    Answer<Session*> find(std::string const& id);
    void endIfForgotten();

    Phone m_phone;
    Facts m_facts;
    std::mutex m_mutex;   // guards m_session
    std::optional<Session> m_session;
};

}
