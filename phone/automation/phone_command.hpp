// PhoneCommand: one command on its way from a session to the phone's process.
#pragma once

#include "phone/kernel/trace.hpp"

#include <string>

namespace phone {

struct PhoneCommand {
    std::string name;                   // findElement, elementClick, …: PhoneCommands has them
    std::string element;                // the id in the path; empty for none
    std::string argument;               // the last part of the path: an attribute's name
    Json parameters = Json::object();   // the request's body
    Json settings = Json::object();     // the session's
    double implicitSeconds { 0 };       // how long a search may wait
};

}
