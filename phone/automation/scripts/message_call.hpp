// Messages and keys chosen at run time: what the scripts `send` and `value` do. Main thread.
#pragma once

#include "objc/handle.hpp"
#include "phone/kernel/result.hpp"
#include "phone/kernel/trace.hpp"

#include <string>
#include <vector>

namespace phone {

// Why there is no result.
struct CallProblem {
    enum class Kind {
        request,   // no such selector or key, arguments that don't fit: nothing was done
        raised,    // the method ran, and raised an exception
    };
    Kind kind { Kind::request };
    std::string message;
};

// A result as scripts write it, or the problem.
struct CallResult {
    Json value;
    bool isGood { true };
    CallProblem problem {};

    static CallResult refused(std::string message)
    {
        return { {}, false, { CallProblem::Kind::request, std::move(message) } };
    }
};

// Sends the message with arguments given as scripts' values (see value_types.hpp). The target is an object or a
// class, never nil. A plug-in's method acts for the plug-in in the trace. What `new`, `alloc` and `copy` own is
// handed over to the result's handle.
CallResult sendMessage(objc::handle target, std::string const& selector, Json const& arguments);

// Key-value coding: a method or an instance variable of that name, of any type; a path with dots goes from object to
// object. Collections answer as Foundation has it.
CallResult valueForKey(objc::handle target, std::string const& key);

// Selectors that the object answers to, sorted, and of those the few that a wrong one may have been meant for.
std::vector<std::string> selectorsOf(objc::handle target);
std::vector<std::string> nearestNames(
    std::string const& wrong, std::vector<std::string> const& names, std::size_t most = 3);

}
