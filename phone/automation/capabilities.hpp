// Capabilities: what a client wants of a new session, as W3C WebDriver and Appium have it. Any thread.
#pragma once

#include "phone/automation/error.hpp"

#include <string>

namespace phone {

// Of the phone that would serve the session.
struct PhoneFacts {
    std::string systemVersion { "16.1" };
    std::string bundleId { "com.apple.springboard" };
};

// A session that may begin.
struct SessionRequest {
    Json capabilities = Json::object();   // as answered, with prefixes
    Json timeouts = Json::object();       // {"script", "pageLoad", "implicit"}, milliseconds
    double newCommandTimeout { 60 };      // seconds; 0: never
};

// `parameters` is the body of `POST /session`. Malformed: `invalid argument`; nothing that this phone can serve: `session not
// created`.
Answer<SessionRequest> requestedSession(Json const& parameters, PhoneFacts const& facts);

// Checks and merges the body of `POST timeouts` into `timeouts`; all or nothing.
Answer<void> mergeTimeouts(Json const& given, Json& timeouts);

// Without `appium:` in front, as `GET /session/{id}` has them.
Json flatCapabilities(Json const& capabilities);

}
