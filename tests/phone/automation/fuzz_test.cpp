// Damaged input by the thousand, the same on every run: nothing crashes, nothing hangs, and what is refused is refused with one of
// WebDriver's errors.
#include "phone/automation/actions.hpp"
#include "phone/automation/http_server.hpp"
#include "phone/automation/locator.hpp"
#include "phone/automation/session_server.hpp"
#include "phone/automation/source_document.hpp"
#include "tests/phone/automation/http_client.hpp"
#include "tests/phone/automation/sample_screen.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <random>

namespace phone {
namespace {

// Changes, drops, doubles, swaps and splices bytes of texts that are in order.
class Mutator {
public:
    explicit Mutator(unsigned seed)
        : m_random(seed)
    {
    }

    std::string mutate(std::vector<std::string> const& seeds)
    {
        std::string text = seeds[below(seeds.size())];
        for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
            std::size_t const at = below(text.size() + 1);
            std::size_t const count = std::min(below(8), text.size() - at);
            switch (below(7)) {
            case 0: text.erase(at, count); break;
            case 1: text.insert(at, text.substr(at, count)); break;
            case 2: text.insert(at, 1, static_cast<char>(below(256))); break;
            case 3:
                if (at < text.size())
                    text[at] = static_cast<char>(text[at] ^ (1 << below(8)));
                break;
            case 4: text.insert(at, kTokens[below(std::size(kTokens))]); break;
            case 5: text.resize(at); break;
            default: {
                std::string const& other = seeds[below(seeds.size())];
                text.replace(at, text.npos, other.substr(below(other.size() + 1)));
                break;
            }
            }
        }
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : m_random() % limit; }

    static constexpr char const* kTokens[] { "(", ")", "[", "]", "{", "}", "`", "$", "'", "\"", "\\", "**",
        "/", "NOT ", " AND ", "[cd]", "nil", "-1", "1e999", "99999999999999999999", "\xff", "\xED\xA0\x80",
        "%s%n", "//", "ancestor::", "@", "*", "null", ":", "," };
    std::mt19937 m_random;
};

constexpr int kRounds = 4000;

void fuzzLocator(std::string const& strategy, std::vector<std::string> const& seeds, unsigned seed)
{
    Mutator mutator(seed);
    ElementTree const tree = sampleScreen();
    int accepted = 0;
    for (int round = 0; round < kRounds; ++round) {
        std::string const text = mutator.mutate(seeds);
        auto const locator = Locator::make(strategy, text);
        if (!locator) {
            ASSERT_EQ(locator.error().code, ErrorCode::invalidSelector) << text;
            ASSERT_FALSE(locator.error().message.empty()) << text;
            continue;
        }
        auto const found = locator->find(tree, round % 2 == 0 ? 0 : 2);
        if (!found) {
            // One whose time was over has done no harm either.
            ASSERT_TRUE(
                found.error().code == ErrorCode::invalidSelector || found.error().code == ErrorCode::timeout)
                << text;
            continue;
        }
        ++accepted;
        for (std::size_t const number : *found)
            ASSERT_LT(number, tree.size());
        ASSERT_TRUE(std::ranges::is_sorted(*found)) << text;
    }
    EXPECT_GT(accepted, 0);
}

TEST(Damage, LeavesPredicatesInOrder)
{
    fuzzLocator("-ios predicate string",
        { "label == 'Anna' AND visible == 1",
            "(name CONTAINS[cd] 'keller' OR type IN {'a', 'b'}) && NOT rect.x BETWEEN {1, 2.5}",
            "label MATCHES '[A-Z]n+a|(x)\\\\1' || value LIKE '*?\\\\*'",
            "!(selected == true) AND label != nil", "\"it\\'s\" BEGINSWITH wdName" },
        1);
}

TEST(Damage, LeavesClassChainsInOrder)
{
    fuzzLocator("-ios class chain",
        { "**/XCUIElementTypeCell[`label == 'Anna'`][2]/*",
            "XCUIElementTypeWindow[-1]/**/XCUIElementTypeButton[$visible == 1$]", "*/*[3]/XCUIElementTypeAny",
            "**/*[`name == 'a``b'`]" },
        2);
}

TEST(Damage, LeavesXpathsInOrder)
{
    fuzzLocator("xpath",
        { "//XCUIElementTypeCell[@name='Anna']/..",
            "(//*[contains(@label, \"n\") and not(@visible='false')])[last()]",
            "/XCUIElementTypeApplication/*[2]/descendant::XCUIElementTypeAny | .//XCUIElementTypeButton",
            "//*[count(*) > 1 + 2 * 3]" },
        3);
}

TEST(Damage, LeavesCssSelectorsInOrder)
{
    fuzzLocator("css selector", { "*[id=\"Anna\"]", "#second", "[name='a\\'b']" }, 4);
}

TEST(Damage, LeavesActionsInOrder)
{
    std::vector<std::string> const seeds {
        R"({"actions":[{"type":"pointer","id":"f","parameters":{"pointerType":"touch"},"actions":[{"type":"pointerMove","duration":100,"x":5,"y":7.5,"origin":"pointer"},{"type":"pointerDown","button":0},{"type":"pointerUp"}]}]})",
        R"({"actions":[{"type":"key","id":"k","actions":[{"type":"keyDown","value":"a"},{"type":"pause","duration":5}]},{"type":"wheel","id":"w","actions":[]}]})"
    };
    Mutator mutator(5);
    for (int round = 0; round < kRounds; ++round) {
        Json const json = Json::parse(mutator.mutate(seeds), nullptr, false);
        if (!json.is_object())
            continue;
        auto const sources = parseActions(json);
        if (sources)
            continue;
        ErrorCode const code = sources.error().code;
        ASSERT_TRUE(code == ErrorCode::invalidArgument || code == ErrorCode::unsupportedOperation);
    }
}

TEST(Damage, LeavesRequestsInOrder)
{
    SessionServer server([](PhoneCommand const& command) -> Answer<Json> { return command.parameters; },
        [] { return PhoneFacts {}; });
    Mutator mutator(6);
    std::vector<std::string> const paths { "/status", "/session", "/session/%41/element/E/attribute/label",
        "/wd/hub/session/x/timeouts?y=1", "/session/x/execute/sync" };
    std::vector<std::string> const bodies {
        R"({"capabilities":{"alwaysMatch":{"platformName":"iOS","appium:options":{"a":1}},"firstMatch":[{}]}})",
        R"({"script":"mobile: lock","args":[{"seconds":1}]})", R"({"using":"xpath","value":"//*[@a='é']"})",
        "[[[[{}]]]]"
    };
    constexpr char const* kVerbs[] { "GET", "POST", "DELETE", "PUT", "" };
    for (int round = 0; round < kRounds; ++round) {
        auto const answer = server.handle(kVerbs[round % 5], mutator.mutate(paths), mutator.mutate(bodies));
        Json const body = Json::parse(answer.body, nullptr, false);
        ASSERT_TRUE(body.is_object() && body.contains("value"));
        if (answer.status == 200)
            continue;
        ASSERT_TRUE(errorCodeNamed(body["value"]["error"].get<std::string>()));
        ASSERT_TRUE(body["value"]["message"].is_string());
        ASSERT_TRUE(body["value"]["stacktrace"].is_string());
    }
}

// Over real sockets: each connection gets damaged bytes and is left. What reaches the handler named this server in one Host header.
TEST(Damage, LeavesConnectionsInOrder)
{
    std::atomic<int> served = 0;
    HttpOptions options;
    options.requestSeconds = 0.2;
    HttpServer server(options, [&served](std::string_view, std::string_view, std::string_view) {
        ++served;
        return wireAnswer(Json());
    });
    ASSERT_TRUE(server.start());
    std::string const host = "Host: 127.0.0.1:" + std::to_string(server.port()) + "\r\n";
    std::vector<std::string> const seeds { "GET /status HTTP/1.1\r\n" + host
            + "Accept: application/json\r\n\r\n",
        "POST /session HTTP/1.1\r\n" + host
            + "Content-Type: application/json; charset=utf-8\r\nContent-Length: 2\r\n\r\n{}",
        "POST /session HTTP/1.1\r\n" + host
            + "Content-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n{}\r\n0\r\n\r\n",
        "DELETE /session/x HTTP/1.1\r\n" + host
            + "Origin: http://example.org\r\nRange: bytes=0-5\r\nExpect: 100-continue\r\n\r\n",
        "POST /x HTTP/1.1\r\n" + host
            + "Content-Type: multipart/form-data; boundary=a\r\nContent-Length: 9\r\n\r\n--a\r\n\r\nb\r\n",
        "HEAD /%00%zz HTTP/1.0\r\n" + host + "Connection: close\r\nContent-Encoding: gzip\r\n\r\n" };
    Mutator mutator(7);
    for (int round = 0; round < 600; ++round) {
        HttpClient client(server.port());
        client.send(mutator.mutate(seeds));
        client.finishSending();
        HttpReply const reply = client.receive(2);
        if (reply.status == 0 || reply.status == 100)
            continue;
        ASSERT_TRUE(reply.status == 200 || (reply.status >= 400 && reply.status <= 505)) << reply.head;
    }
    EXPECT_GT(served, 0);
    EXPECT_EQ(HttpClient(server.port()).ask("GET", "/status").status, 200);
}

}
}
