// A phone behind WebDriver: real sockets, the phone in its own process, the real plug-in.
#pragma once

#include "phone/automation/actions.hpp"
#include "phone/automation/automation_server.hpp"
#include "tests/phone/automation/http_client.hpp"
#include "tests/support/phone_fixture.hpp"

#include <memory>
#include <string>
#include <vector>

namespace phone {

inline constexpr char kPath[] = "/session/";

class WebDriver : public testing::Test {
protected:
    ~WebDriver() override
    {
        m_client.reset();
        if (m_server)
            m_server->stop();
    }

    // A locked phone of that version with three contacts, whose clock is moved by hand.
    static BootOptions options(std::string const& version = "15.4")
    {
        BootOptions options;
        options.ios = *SystemVersion::parse(version);
        options.passcode = "1234";
        options.settings = Json::object();
        options.contacts = Json::array();
        for (char const* const name : { "Anna", "Bora", "Carl" })
            options.contacts->push_back(
                Json::object({ { "contactFirstName", name }, { "contactLastName", "X" },
                    { "contactUniqueIdentifier", name }, { "contactImage", "" }, { "contactBirthday", "" },
                    { "contactPhoneNumber", "+1 555 0100" }, { "contactEmail", "a@example.com" } }));
        return options;
    }

    void serve(BootOptions const& boot = options(), HttpOptions const& http = {})
    {
        m_setup.boot = boot;
        auto root = DeviceRoot::makeTemporary();
        ASSERT_TRUE(root);
        auto server = AutomationServer::start(m_setup, std::move(*root), http);
        ASSERT_TRUE(server) << server.message();
        m_server = std::move(*server);
        m_client = std::make_unique<HttpClient>(m_server->port());
    }
    void openSession()
    {
        auto const reply = m_client->ask(
            "POST", "/session", R"({"capabilities": {"alwaysMatch": {"platformName": "iOS"}}})");
        ASSERT_EQ(reply.status, 200) << reply.body;
        m_session = reply.value()["sessionId"].get<std::string>();
    }
    void start(BootOptions const& boot = options())
    {
        ASSERT_NO_FATAL_FAILURE(serve(boot));
        ASSERT_NO_FATAL_FAILURE(openSession());
    }

    HttpReply get(std::string const& path) { return m_client->ask("GET", kPath + m_session + path); }
    HttpReply post(std::string const& path, Json const& body = Json::object())
    {
        return m_client->ask("POST", kPath + m_session + path, body.dump());
    }
    HttpReply script(std::string const& name, Json const& arguments = Json::object())
    {
        return post(
            "/execute/sync", Json::object({ { "script", name }, { "args", Json::array({ arguments }) } }));
    }
    HttpReply find(std::string const& strategy, std::string const& value)
    {
        return post("/element", Json::object({ { "using", strategy }, { "value", value } }));
    }
    // The id of the first; empty for none.
    std::string element(std::string const& strategy, std::string const& value)
    {
        Json const found = find(strategy, value).value();
        return found.is_object() ? found.value(kElementKey, "") : "";
    }
    std::size_t count(std::string const& strategy, std::string const& value)
    {
        return post("/elements", Json::object({ { "using", strategy }, { "value", value } })).value().size();
    }
    HttpReply ofElement(std::string const& id, std::string const& what)
    {
        return get("/element/" + id + "/" + what);
    }
    void advance(double seconds)
    {
        EXPECT_EQ(script("phone: advance", Json::object({ { "seconds", seconds } })).status, 200);
    }
    Json press(std::string const& id, int milliseconds)
    {
        return Json::parse(
            R"({"actions":[{"id":"finger","type":"pointer","parameters":{"pointerType":"touch"},"actions":[
            {"type":"pointerMove","x":0,"y":0,"duration":100,"origin":{")"
            + std::string(kElementKey) + R"(":")" + id + R"("}},
            {"type":"pointerDown","button":0},{"type":"pause","duration":)"
            + std::to_string(milliseconds) + R"(},{"type":"pointerUp","button":0}]}]})");
    }
    std::vector<std::string> kinds(std::size_t since = 0)
    {
        std::vector<std::string> kinds;
        for (Json const& event : script("phone: trace", Json::object({ { "since", since } })).value())
            kinds.push_back(event["kind"]);
        return kinds;
    }

    PhoneSetup m_setup;
    std::unique_ptr<AutomationServer> m_server;
    std::unique_ptr<HttpClient> m_client;
    std::string m_session;
};

}
