#include "phone/automation/access_check.hpp"

#include "phone/kernel/ascii.hpp"

#include <arpa/inet.h>

#include <algorithm>

namespace phone {

namespace {

constexpr int kHttpPort = 80;
constexpr std::string_view kHttpSpaces = " \t";

bool isAddress(std::string const& name)
{
    unsigned char bytes[sizeof(in6_addr)];
    if (name.size() > 2 && name.front() == '[' && name.back() == ']')
        return inet_pton(AF_INET6, name.substr(1, name.size() - 2).c_str(), bytes) == 1;
    return inet_pton(AF_INET, name.c_str(), bytes) == 1;
}

bool isOurHost(std::string const& host, AccessRules const& rules)
{
    std::string const port = ":" + std::to_string(rules.port);
    std::string const given = lowercase(host);
    if (rules.allowsAddresses && given.ends_with(port)
        && isAddress(given.substr(0, given.size() - port.size())))
        return true;
    return std::ranges::any_of(rules.hosts, [&](std::string const& name) {
        return given == lowercase(name) + port || (rules.port == kHttpPort && given == lowercase(name));
    });
}

bool isJson(std::string const& contentType)
{
    std::string_view rest(contentType);
    std::size_t const end = std::min(rest.find(';'), rest.size());
    if (lowercase(trimmed(rest.substr(0, end), kHttpSpaces)) != "application/json")
        return false;
    rest.remove_prefix(end);
    while (!rest.empty()) {
        rest.remove_prefix(1);
        std::size_t const next = std::min(rest.find(';'), rest.size());
        std::string parameter = lowercase(trimmed(rest.substr(0, next), kHttpSpaces));
        std::erase_if(parameter, [](char c) { return c == '"' || c == ' '; });
        if (parameter.starts_with("charset=") && parameter != "charset=utf-8" && parameter != "charset=utf8")
            return false;
        rest.remove_prefix(next);
    }
    return true;
}

}

Answer<void> checkAccess(RequestHead const& request, AccessRules const& rules)
{
    if (request.hosts.size() != 1 || !isOurHost(request.hosts[0], rules))
        return CommandError { ErrorCode::forbidden, "the Host header does not name this server" };
    if (request.origins.size() > 1)
        return CommandError { ErrorCode::forbidden, "a request has one Origin" };
    if (request.origins.size() == 1) {
        std::string const origin = lowercase(request.origins[0]);
        std::string own = "http://" + lowercase(request.hosts[0]);
        bool isOurs = origin == own;
        // A browser leaves HTTP's own port out; others may spell it.
        if (rules.port == kHttpPort)
            isOurs = isOurs || origin == own + ":80" || origin + ":80" == own;
        // No page of the web can claim to come from a file.
        bool const isAllowed = origin == "file://"
            || std::ranges::any_of(
                rules.origins, [&](std::string const& each) { return lowercase(each) == origin; });
        if (!isOurs && !isAllowed)
            return CommandError { ErrorCode::forbidden,
                "requests from " + request.origins[0].substr(0, 200)
                    + " are refused; --allow-origin allows them" };
    }
    if (request.hasBody && (request.contentTypes.size() != 1 || !isJson(request.contentTypes[0])))
        return CommandError { ErrorCode::unsupportedMediaType, "a body is application/json in UTF-8" };
    return {};
}

}
