// Routes: which command a verb and a path mean. Any thread.
#pragma once

#include "phone/automation/error.hpp"

#include <string>
#include <string_view>

namespace phone {

struct Route {
    std::string command;   // as in the table; `newSession`, `findElement`, …
    std::string session;   // ids in the path; empty where there is none
    std::string element;
    std::string argument;        // an attribute's name
    bool isForPhone { false };   // answered in the phone's process, otherwise where sessions are
};

// `target` as it stands in the request line; a query is passed over, as are a slash at the end and the prefix /wd/hub. `unknown
// command` for a path that is no one's, `unknown method` for another verb on one that is.
Answer<Route> routeOf(std::string_view verb, std::string_view target);

// {"/session/:sessionId/…": {"VERB": {"command"}}}, for `GET appium/commands`.
Json routeTable();

}
