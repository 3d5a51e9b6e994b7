#include "phone/automation/http_server.hpp"

#include <httplib.h>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <list>
#include <mutex>
#include <thread>

namespace phone {

namespace {

using Time = std::chrono::steady_clock;

constexpr std::size_t kMaxHead = 64 * 1024;   // request line and all headers
constexpr std::size_t kMaxBody = 16 * 1024 * 1024;
constexpr std::size_t kMaxConnections = 64;
constexpr double kCrowdedSeconds = 2;     // that a request may pause while others wait for a thread
constexpr int kSliceMilliseconds = 100;   // after which a thread that waits looks whether it should go on
constexpr char kJson[] = "application/json; charset=utf-8";

Time::time_point after(double seconds)
{
    return Time::now() + std::chrono::duration_cast<Time::duration>(std::chrono::duration<double>(seconds));
}

// The request that this thread serves.
struct Exchange {
    bool closes { false };       // after the answer
    bool isServed { false };     // the library has read the body whole, and asked the handler
    bool isTooLarge { false };   // chunks went on beyond what a body may have
};
thread_local Exchange t_exchange;

// A connection's bytes. It knows how long a request may take and where its body ends: the library would read a body without a
// length until the connection closes, and would take what is left of one for the next request.
class SocketStream final : public httplib::Stream {
public:
    // `isCrowded`: do others wait for this thread?
    SocketStream(int descriptor, std::atomic<bool> const& isStopping, std::function<bool()> isCrowded)
        : m_descriptor(descriptor)
        , m_isStopping(isStopping)
        , m_isCrowded(std::move(isCrowded))
    {
    }

    // Is there the beginning of a request? False when the connection has ended, or rested too long.
    bool waitForRequest(double seconds)
    {
        if (m_begin < m_end)
            return true;
        m_deadline = after(seconds);
        while (Time::now() < m_deadline && !m_isStopping) {
            if (poll(POLLIN, kSliceMilliseconds))
                return fill();
            if (m_isCrowded())
                return false;
        }
        return false;
    }

    void beginRequest(double seconds)
    {
        m_deadline = after(seconds);
        m_allowance = kMaxHead;
        m_isBodyChunked = false;
        m_hasHead = false;
    }
    // The headers are there: `length` bytes of body follow, or chunks, which have the most of a body with all that frames them.
    void beginBody(std::size_t length, bool isChunked)
    {
        m_hasHead = true;
        m_isBodyChunked = isChunked;
        m_allowance = isChunked ? kMaxBody : length;
    }
    // All of the request was read; of chunks their reader has to say so.
    bool isAtEnd(bool isChunkEnd) const
    {
        return m_hasHead && (m_isBodyChunked ? isChunkEnd : m_allowance == 0);
    }

    bool is_readable() const override { return m_begin < m_end || pollOnce(POLLIN, 0); }
    bool is_writable() const override { return pollOnce(POLLOUT, 0); }

    ssize_t read(char* bytes, std::size_t size) override
    {
        size = std::min(size, m_allowance);
        if (size == 0) {
            t_exchange.isTooLarge = m_isBodyChunked;
            return m_hasHead && !m_isBodyChunked ? 0 : -1;   // a body is over; a head or chunks are too long
        }
        auto const pause = std::min(m_deadline, after(kCrowdedSeconds));
        while (m_begin == m_end) {
            if (Time::now() >= m_deadline || m_isStopping || (Time::now() >= pause && m_isCrowded()))
                return -1;
            if (poll(POLLIN, kSliceMilliseconds) && !fill())
                return -1;
        }
        std::size_t const count = std::min(size, m_end - m_begin);
        std::memcpy(bytes, m_buffer + m_begin, count);
        m_begin += count;
        m_allowance -= count;
        return static_cast<ssize_t>(count);
    }

    ssize_t write(char const* bytes, std::size_t size) override
    {
        auto const deadline = after(30);   // for a client that does not read
        while (Time::now() < deadline && !m_isStopping) {
            if (!poll(POLLOUT, kSliceMilliseconds))
                continue;
            return ::send(m_descriptor, bytes, size, MSG_NOSIGNAL | MSG_DONTWAIT);
        }
        return -1;
    }

    void get_remote_ip_and_port(std::string& ip, int& port) const override
    {
        ip = "127.0.0.1";
        port = 0;
    }
    void get_local_ip_and_port(std::string& ip, int& port) const override
    {
        get_remote_ip_and_port(ip, port);
    }
    socket_t socket() const override { return m_descriptor; }

private:
    bool pollOnce(short events, int milliseconds) const
    {
        pollfd entry { m_descriptor, events, 0 };
        return ::poll(&entry, 1, milliseconds) > 0;
    }
    bool poll(short events, int milliseconds) const { return pollOnce(events, milliseconds); }

    bool fill()
    {
        ssize_t const got = ::recv(m_descriptor, m_buffer, sizeof m_buffer, 0);
        m_begin = 0;
        m_end = got > 0 ? static_cast<std::size_t>(got) : 0;
        return got > 0;
    }

    int m_descriptor;
    std::atomic<bool> const& m_isStopping;
    std::function<bool()> m_isCrowded;
    Time::time_point m_deadline;
    std::size_t m_allowance { 0 };
    bool m_isBodyChunked { false };
    bool m_hasHead { false };
    char m_buffer[16 * 1024] {};
    std::size_t m_begin { 0 };
    std::size_t m_end { 0 };
};

// A thread for each connection, made when there is none free; connections beyond the most wait.
class ConnectionThreads final : public httplib::TaskQueue {
public:
    void enqueue(std::function<void()> work) override
    {
        std::unique_lock const lock(m_mutex);
        m_waiting.push_back(std::move(work));
        if (m_free < m_waiting.size() && m_threads.size() < kMaxConnections)
            m_threads.emplace_back([this] { run(); });
        m_changed.notify_one();
    }
    void shutdown() override
    {
        {
            std::unique_lock const lock(m_mutex);
            m_isOver = true;
        }
        m_changed.notify_all();
        for (std::thread& each : m_threads)
            each.join();
    }

private:
    void run()
    {
        std::unique_lock lock(m_mutex);
        while (true) {
            ++m_free;
            m_changed.wait(lock, [this] { return !m_waiting.empty() || m_isOver; });
            --m_free;
            if (m_waiting.empty())
                return;
            auto const work = std::move(m_waiting.front());
            m_waiting.pop_front();
            lock.unlock();
            work();
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::list<std::function<void()>> m_waiting;
    std::list<std::thread> m_threads;
    std::size_t m_free { 0 };
    bool m_isOver { false };
};

std::vector<std::string> valuesOf(httplib::Request const& request, char const* name)
{
    std::vector<std::string> values;
    auto const [begin, end] = request.headers.equal_range(name);
    for (auto at = begin; at != end; ++at)
        values.push_back(at->second);
    return values;
}

void answer(httplib::Response& response, WireAnswer const& wire)
{
    response.status = wire.status;
    response.set_content(wire.body, kJson);
    response.set_header("Cache-Control", "no-cache");
}

void refuse(httplib::Response& response, CommandError const& error)
{
    answer(response, wireAnswer(error));
    response.set_header("Connection", "close");
    t_exchange.closes = true;
}

// A word in capitals that no path here has: the library knows it from elsewhere, or not at all.
bool isUnknownVerb(std::string_view verb)
{
    constexpr std::string_view kVerbs[] { "GET", "POST", "PUT", "PATCH", "DELETE" };
    return !verb.empty() && verb.size() <= 20
        && std::ranges::all_of(verb, [](char c) { return c >= 'A' && c <= 'Z'; })
        && std::ranges::find(kVerbs, verb) == std::end(kVerbs);
}

// A whole number of bytes; none for anything else.
std::optional<std::size_t> lengthOf(std::string const& text)
{
    if (text.empty() || text.size() > 15 || text.find_first_not_of("0123456789") != std::string::npos)
        return {};
    return std::stoull(text);
}

}

// The library's parser and writer behind our own handling of connections.
class Listener final : public httplib::Server {
public:
    Listener(HttpOptions const& options, AccessRules const& rules, HttpServer::Handler const& handler)
        : m_options(options)
        , m_rules(rules)
        , m_handler(handler)
    {
        set_payload_max_length(kMaxBody);
        set_tcp_nodelay(true);
        // The library's own choice would let two phones share a port.
        set_socket_options([](int socket) {
            int const yes = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
        });
        new_task_queue = [] { return new ConnectionThreads; };
        set_pre_routing_handler([this](httplib::Request const& request, httplib::Response& response) {
            return check(request, response);
        });
        auto const serve = [this](httplib::Request const& request, httplib::Response& response) {
            t_exchange.isServed = true;
            answer(response, m_handler(request.method, request.target, request.body));
        };
        for (auto const add : { &httplib::Server::Get, &httplib::Server::Options })
            (this->*add)(".*", serve);
        using Add = httplib::Server& (httplib::Server::*)(std::string const&, Handler);
        for (Add const add :
            { static_cast<Add>(&httplib::Server::Post), static_cast<Add>(&httplib::Server::Put),
                static_cast<Add>(&httplib::Server::Patch), static_cast<Add>(&httplib::Server::Delete) })
            (this->*add)(".*", serve);
        set_error_handler([](httplib::Request const& request, httplib::Response& response) {
            explain(request.method, response);
        });
        set_exception_handler([](httplib::Request const&, httplib::Response& response, std::exception_ptr) {
            answer(response, wireAnswer(CommandError { ErrorCode::unknownError, "the server failed" }));
        });
        if (options.inspector)
            set_mount_point("/inspector", options.inspector->string());
    }

    bool listenAfterBind()
    {
        // The library lets five connections wait to be taken; further ones come a second later, or three.
        ::listen(svr_sock_, kMaxConnections);
        return listen_after_bind();
    }
    std::size_t connectionCount() const { return m_connections; }
    void end()
    {
        m_isStopping = true;
        stop();
    }

private:
    // What the library answers by itself: the status is there, and nothing for a client to read.
    static void explain(std::string const& verb, httplib::Response& response)
    {
        if (!response.body.empty())
            return;
        int const status = t_exchange.isTooLarge ? 413 : response.status;
        CommandError error { ErrorCode::unknownCommand, "no such path" };
        if (status == 413)
            error = { ErrorCode::payloadTooLarge, "a body has at most 16 MiB" };
        else if (status == 400 && isUnknownVerb(verb))
            error = { ErrorCode::unknownMethod, "no path has the verb " + verb };
        else if (status != 404)
            error = { ErrorCode::invalidArgument, "this is no HTTP request" };
        refuse(response, error);
        if (error.code != ErrorCode::unknownMethod)
            response.status = status;
    }

    HandlerResponse check(httplib::Request const& request, httplib::Response& response)
    {
        auto const lengths = valuesOf(request, "Content-Length");
        auto const codings = valuesOf(request, "Transfer-Encoding");
        bool const isChunked = codings.size() == 1 && codings[0] == "chunked";
        bool const isLengthGood = lengths.empty() || (lengths.size() == 1 && lengthOf(lengths[0]));
        bool const isFramed = isLengthGood && (codings.empty() || (isChunked && lengths.empty()));
        if (!isFramed) {
            refuse(response, invalidArgument("the request does not say where its body ends"));
            return HandlerResponse::Handled;
        }
        // The library would unpack it without a limit.
        for (std::string const& coding : valuesOf(request, "Content-Encoding")) {
            if (coding != "identity") {
                refuse(
                    response, { ErrorCode::unsupportedMediaType, "a body comes as it is, not compressed" });
                return HandlerResponse::Handled;
            }
        }
        bool const hasBody = isChunked || (!lengths.empty() && lengthOf(lengths[0]) != 0);
        RequestHead const head { valuesOf(request, "Host"), valuesOf(request, "Origin"),
            valuesOf(request, "Content-Type"), hasBody };
        if (auto const allowed = checkAccess(head, m_rules); !allowed) {
            refuse(response, allowed.error());
            return HandlerResponse::Handled;
        }
        if (request.method == "HEAD" || request.method == "OPTIONS") {
            refuse(response, { ErrorCode::unknownMethod, "no path has the verb " + request.method });
            return HandlerResponse::Handled;
        }
        return HandlerResponse::Unhandled;
    }

    bool process_and_close_socket(socket_t socket) override
    {
        ++m_connections;
        {
            // When others wait for a thread, a connection that rests makes room.
            SocketStream stream(socket, m_isStopping, [this] { return m_connections >= kMaxConnections; });
            while (stream.waitForRequest(m_options.idleSeconds)) {
                stream.beginRequest(m_options.requestSeconds);
                t_exchange = {};
                bool isClosed = false;
                bool const isGood =
                    process_request(stream, false, isClosed, [&stream](httplib::Request& request) {
                        auto const lengths = valuesOf(request, "Content-Length");
                        bool const isChunked = !valuesOf(request, "Transfer-Encoding").empty();
                        auto const length = lengths.size() == 1 ? lengthOf(lengths[0]) : std::nullopt;
                        stream.beginBody(length.value_or(0), isChunked);
                    });
                if (!isGood || isClosed || t_exchange.closes || !stream.isAtEnd(t_exchange.isServed))
                    break;
            }
            t_exchange = {};
        }
        ::shutdown(socket, SHUT_WR);
        drain(socket);
        ::close(socket);
        --m_connections;
        return true;
    }

    // A socket closed with bytes unread would take the answer with it.
    void drain(int socket) const
    {
        auto const deadline = after(0.5);
        std::size_t drained = 0;
        char bytes[4096];
        while (Time::now() < deadline && drained < 2 * kMaxBody && !m_isStopping) {
            pollfd entry { socket, POLLIN, 0 };
            if (::poll(&entry, 1, 20) <= 0)
                continue;
            ssize_t const got = ::recv(socket, bytes, sizeof bytes, 0);
            if (got <= 0)
                return;
            drained += static_cast<std::size_t>(got);
        }
    }

    HttpOptions const& m_options;
    AccessRules const& m_rules;
    HttpServer::Handler const& m_handler;
    std::atomic<bool> m_isStopping { false };
    std::atomic<std::size_t> m_connections { 0 };
};

struct HttpServer::Parts {
    HttpOptions options;
    Handler handler;
    AccessRules rules;
    std::vector<std::unique_ptr<Listener>> listeners;
    std::vector<std::thread> threads;
};

HttpServer::HttpServer(HttpOptions options, Handler handler)
    : m_parts(std::make_unique<Parts>())
{
    m_parts->options = std::move(options);
    m_parts->handler = std::move(handler);
    m_parts->rules.origins = m_parts->options.allowedOrigins;
}

HttpServer::~HttpServer() { stop(); }

Status HttpServer::start()
{
    Parts& parts = *m_parts;
    std::string const host = parts.options.host.empty() ? "127.0.0.1" : parts.options.host;
    auto const add = [&](std::string const& address, int port) {
        auto listener = std::make_unique<Listener>(parts.options, parts.rules, parts.handler);
        int taken = -1;
        if (port == 0)
            taken = listener->bind_to_any_port(address);
        else if (listener->bind_to_port(address, port))
            taken = port;
        if (taken > 0)
            parts.listeners.push_back(std::move(listener));
        return taken;
    };
    std::error_code failure;
    if (parts.options.inspector && !std::filesystem::is_directory(*parts.options.inspector, failure))
        return Error { parts.options.inspector->string() + " is no folder that could be served" };
    int const port = add(host, parts.options.port);
    if (port <= 0)
        return Error { "the port " + std::to_string(parts.options.port) + " of " + host
            + " can't be had; another program may have it" };
    parts.rules.port = port;
    if (parts.options.host.empty())
        static_cast<void>(add("::1", port));
    else {
        parts.rules.allowsAddresses = true;
        parts.rules.hosts.push_back(host.find(':') == std::string::npos ? host : "[" + host + "]");
    }
    for (auto const& listener : parts.listeners)
        parts.threads.emplace_back([&listener = *listener] { listener.listenAfterBind(); });
    for (auto const& listener : parts.listeners)
        while (!listener->is_running())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return {};
}

int HttpServer::port() const { return m_parts->rules.port; }

void HttpServer::stop()
{
    for (auto const& listener : m_parts->listeners)
        listener->end();
    for (std::thread& each : m_parts->threads)
        each.join();
    m_parts->threads.clear();
    m_parts->listeners.clear();
}

std::size_t HttpServer::connectionCount() const
{
    std::size_t count = 0;
    for (auto const& listener : m_parts->listeners)
        count += listener->connectionCount();
    return count;
}

}
