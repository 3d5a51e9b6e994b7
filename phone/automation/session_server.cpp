#include "phone/automation/session_server.hpp"

#include "phone/automation/mobile_scripts.hpp"

#include <sys/random.h>

#include <array>

namespace phone {

namespace {

constexpr int kMaxDepth = 64;
constexpr char kVersion[] = "1.0";
constexpr char kContext[] = "NATIVE_APP";

// Deeper than any request is; a deep one would cost stack wherever it is walked.
bool isTooDeep(std::string_view text)
{
    int depth = 0;
    bool isInText = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char const c = text[i];
        if (isInText) {
            if (c == '\\')
                ++i;
            else if (c == '"')
                isInText = false;
        } else if (c == '"') {
            isInText = true;
        } else if (c == '[' || c == '{') {
            if (++depth > kMaxDepth)
                return true;
        } else if (c == ']' || c == '}') {
            --depth;
        }
    }
    return false;
}

bool isBlank(std::string_view text) { return text.find_first_not_of(" \t\r\n") == std::string_view::npos; }

Answer<Json> parseBody(std::string_view verb, std::string_view body)
{
    if (verb != "POST" || isBlank(body))
        return Json::object();
    if (isTooDeep(body))
        return invalidArgument("the body is nested more than 64 levels deep");
    Json json = Json::parse(body, nullptr, false);
    if (json.is_discarded())
        return invalidArgument("the body is no JSON in UTF-8");
    if (!json.is_object())
        return invalidArgument("the body is a JSON object");
    return json;
}

// 128 random bits, as hexadecimal digits: an id that nobody guesses.
std::string newId()
{
    std::array<unsigned char, 16> bytes {};
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        ssize_t const got = getrandom(bytes.data() + filled, bytes.size() - filled, 0);
        if (got > 0)
            filled += static_cast<std::size_t>(got);
    }
    std::string id;
    for (unsigned char const byte : bytes) {
        id += "0123456789abcdef"[byte >> 4];
        id += "0123456789abcdef"[byte & 15];
    }
    return id;
}

Json usualSettings()
{
    return Json::object({ { "pageSourceExcludedAttributes", "" }, { "includeHittableInPageSource", false },
        { "acceptAlertButtonSelector", "" }, { "dismissAlertButtonSelector", "" } });
}

}

WireAnswer wireAnswer(Json value)
{
    Json const body = Json::object({ { "value", std::move(value) } });
    return { 200, body.dump(-1, ' ', false, Json::error_handler_t::replace) };
}

WireAnswer wireAnswer(CommandError const& error)
{
    WireAnswer answer = wireAnswer(errorValue(error));
    answer.status = httpStatus(error.code);
    return answer;
}

WireAnswer SessionServer::handle(std::string_view verb, std::string_view target, std::string_view body)
{
    auto const route = routeOf(verb, target);
    if (!route)
        return wireAnswer(route.error());
    auto const parameters = parseBody(verb, body);
    if (!parameters)
        return wireAnswer(parameters.error());
    auto const value = run(*route, *parameters);
    return value ? wireAnswer(*value) : wireAnswer(value.error());
}

Answer<Json> SessionServer::run(Route const& route, Json const& parameters)
{
    if (route.isForPhone)
        return runOnPhone(route, parameters);
    std::unique_lock const lock(m_mutex);
    endIfForgotten();
    if (route.command == "status")
        return status();
    if (route.command == "newSession")
        return newSession(parameters);
    if (route.command == "sessions")
        return sessions();
    auto const session = find(route.session);
    if (!session)
        return session.error();
    (*session)->lastCommand = Time::now();
    return runForSession(route, parameters, **session);
}

Answer<Json> SessionServer::runForSession(Route const& route, Json const& parameters, Session& session)
{
    std::string const& command = route.command;
    if (command == "deleteSession") {
        m_session.reset();
        return Json();
    }
    if (command == "sessionCapabilities")
        return flatCapabilities(session.capabilities);
    if (command == "appiumCapabilities")
        return Json::object({ { "capabilities", flatCapabilities(session.capabilities) } });
    if (command == "timeouts")
        return session.timeouts;
    if (command == "setTimeouts") {
        if (auto const merged = mergeTimeouts(parameters, session.timeouts); !merged)
            return merged.error();
        return Json();
    }
    if (command == "setImplicitWait") {
        Json const given = Json::object({ { "implicit", parameters.value("ms", Json()) } });
        if (auto const merged = mergeTimeouts(given, session.timeouts); !merged)
            return merged.error();
        return Json();
    }
    if (command == "windowHandle")
        return Json("1");
    if (command == "windowHandles")
        return Json::array({ "1" });
    if (command == "settings")
        return session.settings;
    if (command == "setSettings")
        return setSettings(parameters, session);
    if (command == "context")
        return Json(kContext);
    if (command == "contexts")
        return Json::array({ kContext });
    if (command == "setContext") {
        auto const name = parameters.find("name");
        if (name == parameters.end() || !name->is_string())
            return invalidArgument("`name` is a text");
        if (*name != kContext)
            return CommandError { ErrorCode::noSuchWindow, "there is no context but NATIVE_APP" };
        return Json();
    }
    if (command == "appiumCommands")
        return Json::object(
            { { "rest", Json::object({ { "base", routeTable() }, { "driver", Json::object() } }) } });
    Json scripts = Json::object();   // appiumExtensions
    for (std::string const& name : MobileScripts::names())
        scripts["mobile: " + name] = Json::object({ { "command", name } });
    for (std::string const& name : phoneScriptNames())
        scripts["phone: " + name] = Json::object({ { "command", name } });
    return Json::object({ { "rest", Json::object({ { "driver", std::move(scripts) } }) } });
}

Answer<Json> SessionServer::setSettings(Json const& parameters, Session& session)
{
    auto const given = parameters.find("settings");
    if (given == parameters.end() || !given->is_object())
        return invalidArgument("`settings` is an object");
    Json const usual = usualSettings();
    for (auto const& [key, value] : given->items())
        if (usual.contains(key) && value.type() != usual[key].type())
            return invalidArgument("the setting `" + key + "` is " + usual[key].type_name());
    session.settings.update(*given);
    return Json();
}

Answer<Json> SessionServer::runOnPhone(Route const& route, Json const& parameters)
{
    PhoneCommand command;
    {
        std::unique_lock const lock(m_mutex);
        endIfForgotten();
        auto const session = find(route.session);
        if (!session)
            return session.error();
        command.settings = (*session)->settings;
        command.implicitSeconds = (*session)->timeouts["implicit"].get<double>() / 1000;
        ++(*session)->running;
    }
    command.element = route.element;
    command.argument = route.argument;
    if (route.command.starts_with("mobile: ")) {
        // An old path for what is a script now; files had other names there.
        Json arguments = parameters;
        if (route.command.ends_with("File")) {
            for (auto const& [old, name] :
                { std::pair { "path", "remotePath" }, std::pair { "data", "payload" } })
                if (arguments.contains(old) && !arguments.contains(name)) {
                    arguments[name] = std::move(arguments[old]);
                    arguments.erase(old);
                }
        }
        command.name = "executeScript";
        command.parameters =
            Json::object({ { "script", route.command }, { "args", Json::array({ std::move(arguments) }) } });
    } else {
        command.name = route.command;
        command.parameters = parameters;
    }
    auto answer = m_phone(command);
    std::unique_lock const lock(m_mutex);
    if (m_session && m_session->id == route.session) {
        --m_session->running;
        m_session->lastCommand = Time::now();
    }
    return answer;
}

Answer<Json> SessionServer::newSession(Json const& parameters)
{
    PhoneFacts const facts = m_facts();
    auto request = requestedSession(parameters, facts);
    if (!request)
        return request.error();
    if (m_session)
        return CommandError { ErrorCode::sessionNotCreated,
            "the session " + m_session->id + " is open, and a phone has one at a time" };
    Session session;
    session.id = newId();
    session.capabilities = request->capabilities;
    session.timeouts = request->timeouts;
    session.settings = usualSettings();
    session.newCommandTimeout = request->newCommandTimeout;
    session.created = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::system_clock::now().time_since_epoch())
                          .count();
    session.lastCommand = Time::now();
    Json const value =
        Json::object({ { "sessionId", session.id }, { "capabilities", session.capabilities } });
    m_session = std::move(session);
    return value;
}

Answer<Json> SessionServer::status()
{
    PhoneFacts const facts = m_facts();
    return Json::object({ { "ready", !m_session.has_value() },
        { "message", m_session ? "a session is open" : "ready for a session" },
        { "build", Json::object({ { "version", kVersion } }) },
        { "os", Json::object({ { "name", "iOS" }, { "version", facts.systemVersion } }) },
        { "device", "iphone" } });
}

Answer<Json> SessionServer::sessions()
{
    Json list = Json::array();
    if (m_session)
        list.push_back(Json::object({ { "id", m_session->id }, { "created", m_session->created },
            { "capabilities", flatCapabilities(m_session->capabilities) } }));
    return list;
}

Answer<SessionServer::Session*> SessionServer::find(std::string const& id)
{
    if (!m_session || m_session->id != id)
        return CommandError { ErrorCode::invalidSession, "no session " + id.substr(0, 64) };
    return &*m_session;
}

void SessionServer::endIfForgotten()
{
    if (!m_session || m_session->running > 0 || m_session->newCommandTimeout == 0)
        return;
    std::chrono::duration<double> const idle = Time::now() - m_session->lastCommand;
    if (idle.count() > m_session->newCommandTimeout)
        m_session.reset();
}

}
