// AccessCheck: may this request be served? Web pages that a browser on this computer shows can send requests here too; the answer
// is given before anything else of a request is looked at. Any thread.
#pragma once

#include "phone/automation/error.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace phone {

struct AccessRules {
    std::vector<std::string> hosts { "localhost", "127.0.0.1",
        "[::1]" };                      // names by which this computer is called
    std::vector<std::string> origins;   // allowed further, as `http://localhost:3000`
    // Any address by its numbers, for a server that others may ask: what a page of the web can't make a browser say is a number.
    bool allowsAddresses { false };
    int port { 0 };
};

// What a request says of itself: each value of these headers, and whether a body follows.
struct RequestHead {
    std::vector<std::string> hosts;
    std::vector<std::string> origins;
    std::vector<std::string> contentTypes;
    bool hasBody { false };
};

// Errors: `forbidden` for a Host that is not ours or not there once, and for an Origin that is neither ours nor allowed;
// `unsupportedMediaType` for a body that does not say that it is JSON in UTF-8.
Answer<void> checkAccess(RequestHead const& request, AccessRules const& rules);

}
