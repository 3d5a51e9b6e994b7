// The connection to a phone behind WebDriver: who is let in, what is read, and what is left behind.
#include "tests/phone/automation/web_driver_fixture.hpp"

#include <gmock/gmock.h>

#include <filesystem>
#include <thread>

namespace phone {
namespace {

using testing::HasSubstr;

TEST_F(WebDriver, RefusesStrangersBeforeAnythingElse)
{
    start();
    std::string const post = "POST " + std::string(kPath) + m_session + "/appium/device/lock HTTP/1.1\r\n";
    auto const ask = [&](std::string const& head) {
        HttpClient client(m_server->port());
        client.send(post + head + "Content-Length: 2\r\n\r\n{}");
        return client.receive().status;
    };
    std::string const host = "Host: " + m_client->host() + "\r\n";
    std::string const json = "Content-Type: application/json\r\n";
    EXPECT_EQ(ask(host + json), 200);
    EXPECT_EQ(ask(json), 403);
    EXPECT_EQ(ask(host + host + json), 403);
    EXPECT_EQ(ask("Host: example.org\r\n" + json), 403);
    EXPECT_EQ(ask("Host: 127.0.0.1\r\n" + json), 403);
    EXPECT_EQ(ask(host + json + "Origin: http://example.org\r\n"), 403);
    EXPECT_EQ(ask(host + json + "Origin: null\r\n"), 403);
    EXPECT_EQ(ask(host + json + "Origin: file://\r\n"), 200);
    EXPECT_EQ(ask(host + json + "Origin: http://" + m_client->host() + "\r\n"), 200);
    EXPECT_EQ(ask(host), 415);
    EXPECT_EQ(ask(host + "Content-Type: text/plain\r\n"), 415);
    auto const options = m_client->ask("OPTIONS", "/session");
    EXPECT_EQ(options.status, 405);
    EXPECT_EQ(options.head.find("Access-Control"), std::string::npos);
}

TEST_F(WebDriver, TakesNoRequestOutOfARefusedBody)
{
    start();
    std::string const inner =
        "DELETE " + std::string(kPath) + m_session + " HTTP/1.1\r\nHost: " + m_client->host() + "\r\n\r\n";
    for (std::string const& head : { "POST /session HTTP/1.1\r\nHost: " + m_client->host()
                 + "\r\nOrigin: http://example.org\r\nContent-Type: text/plain\r\n",
             "GET /status HTTP/1.1\r\nHost: " + m_client->host() + "\r\nContent-Type: application/json\r\n",
             "OPTIONS /status HTTP/1.1\r\nHost: " + m_client->host()
                 + "\r\nContent-Type: application/json\r\n" }) {
        HttpClient client(m_server->port());
        client.send(head + "Content-Length: " + std::to_string(inner.size()) + "\r\n\r\n" + inner);
        EXPECT_NE(client.receive().status, 0);
        EXPECT_EQ(client.receive(2).status, 0) << head;   // no second answer
    }
    for (char const* const framing : { "Content-Length: 5\r\nTransfer-Encoding: chunked\r\n",
             "Content-Length: 0\r\nContent-Length: 50\r\n", "Transfer-Encoding: gzip, chunked\r\n",
             "Content-Length: +5\r\n", "Content-Length: x\r\n" }) {
        HttpClient client(m_server->port());
        client.send("POST /status HTTP/1.1\r\nHost: " + client.host()
            + "\r\nContent-Type: application/json\r\n" + framing + "\r\n0\r\n\r\n" + inner);
        EXPECT_EQ(client.receive().status, 400) << framing;
        EXPECT_EQ(client.receive(2).status, 0) << framing;
    }
    EXPECT_EQ(get("/timeouts").status, 200);   // the session is there
}

TEST_F(WebDriver, UnpacksNothing)
{
    // A few bytes would become as many as the sender likes.
    serve();
    for (char const* const coding : { "gzip", "deflate", "br", "identity, gzip" }) {
        auto const reply = m_client->ask("POST", "/session", R"({"capabilities": {}})",
            "Content-Encoding: " + std::string(coding) + "\r\n");
        EXPECT_EQ(reply.status, 415) << coding;
        EXPECT_EQ(reply.error(), "invalid argument") << coding;
        m_client->close();
    }
    EXPECT_EQ(
        m_client->ask("POST", "/session", R"({"capabilities": {}})", "Content-Encoding: identity\r\n").status,
        200);
}

TEST_F(WebDriver, KnowsNoOtherVerbs)
{
    serve();
    for (char const* const verb : { "TRACE", "CONNECT", "FLY", "PUT", "PATCH", "OPTIONS" }) {
        auto const reply = m_client->ask(verb, "/status");
        EXPECT_EQ(reply.status, 405) << verb;
        EXPECT_EQ(reply.error(), "unknown method") << verb;
        m_client->close();
    }
}

TEST_F(WebDriver, LimitsWhatItReads)
{
    HttpOptions http;
    http.requestSeconds = 1;
    serve(options(), http);
    openSession();
    auto const statusOf = [&](std::string const& bytes) {
        HttpClient client(m_server->port());
        client.send(bytes);
        return client.receive().status;
    };
    std::string const host = "Host: " + m_client->host() + "\r\n";
    EXPECT_EQ(statusOf("POST /session HTTP/1.1\r\n" + host
                  + "Content-Type: application/json\r\nContent-Length: 17825792\r\n\r\n"
                  + std::string(17 * 1024 * 1024, ' ')),
        413);
    std::string const chunk = "100000\r\n" + std::string(1 << 20, ' ') + "\r\n";
    std::string chunks;
    for (int i = 0; i < 17; ++i)
        chunks += chunk;
    EXPECT_EQ(
        statusOf("POST /session HTTP/1.1\r\n" + host
            + "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n" + chunks + "0\r\n\r\n"),
        413);
    EXPECT_EQ(statusOf("GET /" + std::string(20'000, 'a') + " HTTP/1.1\r\n" + host + "\r\n") / 100, 4);
    EXPECT_NE(
        statusOf("GET /status HTTP/1.1\r\n" + host + "X: " + std::string(20'000, 'a') + "\r\n\r\n"), 200);
    std::string many;
    for (int i = 0; i < 20'000; ++i)
        many += "X: y\r\n";
    EXPECT_NE(statusOf("GET /status HTTP/1.1\r\n" + host + many + "\r\n"), 200);
    for (char const* const bytes :
        { "\r\n\r\n", "GET\r\n\r\n", "\x16\x03\x01\x02", "GET / HTTP/9.9\r\n\r\n", "FLY / HTTP/1.1\r\n\r\n" })
        EXPECT_NE(statusOf(bytes), 200);
    // A body that stops coming: its thread is free again once the request's time is over.
    HttpClient slow(m_server->port());
    slow.send("POST /session HTTP/1.1\r\n" + host
        + "Content-Type: application/json\r\nContent-Length: 100\r\n\r\n{");
    EXPECT_TRUE(slow.isClosedByServer());
    HttpClient dropped(m_server->port());
    dropped.send("POST /session HTTP/1.1\r\n" + host
        + "Content-Type: application/json\r\nContent-Length: 100\r\n\r\n{");
    dropped.close();
    EXPECT_EQ(get("/timeouts").status, 200);
    for (int i = 0; i < 50 && m_server->connectionCount() > 1; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(m_server->connectionCount(), 1u);
}

TEST_F(WebDriver, ServesChunkedAndPipelinedRequests)
{
    start();
    std::string const head = " HTTP/1.1\r\nHost: " + m_client->host() + "\r\n";
    m_client->send("POST " + std::string(kPath) + m_session + "/timeouts" + head
        + "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n11\r\n{\"implicit\": 1234\r\n1\r\n}\r\n0\r\n\r\n");
    EXPECT_EQ(m_client->receive().status, 200);
    HttpClient client(m_server->port());
    std::string const ask = "GET " + std::string(kPath) + m_session + "/timeouts" + head + "\r\n";
    client.send(ask + ask + ask);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client.receive().value()["implicit"], 1234);
    EXPECT_EQ(m_client->ask("DELETE", kPath + m_session, "{}").status, 200);   // with a body
    EXPECT_EQ(m_client->ask("GET", "/status").value()["ready"], true);
}

TEST_F(WebDriver, AnswersManyConnectionsAtOnce)
{
    start();
    std::vector<std::unique_ptr<HttpClient>> clients;
    for (int i = 0; i < 100; ++i) {   // more than there are threads: those that rest make room
        clients.push_back(std::make_unique<HttpClient>(m_server->port()));
        ASSERT_EQ(clients.back()->ask("GET", "/status").status, 200) << i;
    }
    EXPECT_EQ(m_client->ask("GET", "/status").status == 200
            || HttpClient(m_server->port()).ask("GET", "/status").status == 200,
        true);
}

TEST_F(WebDriver, GivesAThreadThatWaitsForItsRequestToOthers)
{
    serve();
    std::vector<std::unique_ptr<HttpClient>> slow;
    for (int i = 0; i < 80; ++i) {
        slow.push_back(std::make_unique<HttpClient>(m_server->port()));
        slow.back()->send("GET /status HTTP/1.1\r\nHost:");
    }
    auto const began = std::chrono::steady_clock::now();
    EXPECT_EQ(m_client->ask("GET", "/status").status, 200);
    EXPECT_LT(
        std::chrono::steady_clock::now() - began, std::chrono::seconds(15));   // of the thirty that each has
}

TEST_F(WebDriver, LeavesNothingOfTenThousandSessions)
{
    ASSERT_NO_FATAL_FAILURE(serve());
    auto const descriptors = [] {
        auto const folder = std::filesystem::directory_iterator("/proc/self/fd");
        return std::distance(begin(folder), end(folder));
    };
    ASSERT_NO_FATAL_FAILURE(openSession());
    auto const before = descriptors();
    for (int i = 0; i < 10'000; ++i) {
        ASSERT_EQ(m_client->ask("DELETE", kPath + m_session).status, 200);
        ASSERT_NO_FATAL_FAILURE(openSession());
        // Some are dropped rather than closed, by clients that go away.
        if (i % 100 == 0)
            m_client->close();
    }
    EXPECT_EQ(m_client->ask("DELETE", kPath + m_session).status, 200);
    EXPECT_EQ(m_client->ask("GET", "/sessions").value(), Json::array());
    for (int i = 0; i < 50 && m_server->connectionCount() > 1; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(m_server->connectionCount(), 1u);
    EXPECT_EQ(descriptors(), before);
}

TEST_F(WebDriver, ServesTheFilesOfAnInspectorAndNoOthers)
{
    auto root = DeviceRoot::makeTemporary();
    ASSERT_TRUE(root);
    ASSERT_TRUE(root->write("/index.html", "hello", 5));
    HttpOptions http;
    http.inspector = root->folder();
    serve(options(), http);
    EXPECT_EQ(m_client->ask("GET", "/inspector/index.html").body, "hello");
    EXPECT_EQ(m_client->ask("GET", "/inspector/").body, "hello");
    EXPECT_EQ(m_client->ask("GET", "/inspector/nothing").status, 404);
    for (char const* const path :
        { "/inspector/../../etc/passwd", "/inspector/%2e%2e/%2e%2e/etc/passwd", "/inspector//etc/passwd" })
        EXPECT_EQ(m_client->ask("GET", path).body.find("root:"), std::string::npos) << path;
    HttpClient stranger(m_server->port());
    stranger.send("GET /inspector/index.html HTTP/1.1\r\nHost: example.org\r\n\r\n");
    EXPECT_EQ(stranger.receive().status, 403);
    HttpServer missing({ .host = {}, .port = 0, .allowedOrigins = {}, .inspector = "/nowhere" },
        [](std::string_view, std::string_view, std::string_view) { return WireAnswer {}; });
    EXPECT_FALSE(missing.start());
}

TEST_F(WebDriver, TakesAPortOfItsOwn)
{
    serve();
    HttpOptions same;
    same.port = m_server->port();
    HttpServer second(
        same, [](std::string_view, std::string_view, std::string_view) { return WireAnswer {}; });
    auto const started = second.start();
    ASSERT_FALSE(started);
    EXPECT_THAT(started.message(), HasSubstr(std::to_string(same.port)));
}

}
}
