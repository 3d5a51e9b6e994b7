// Actions: what `POST actions` asks for, read and checked as W3C WebDriver has it ("Actions"), before anything is done. Any
// thread.
#pragma once

#include "phone/automation/error.hpp"

#include <string>
#include <vector>

namespace phone {

struct ActionItem {
    enum class Kind { pause, pointerMove, pointerDown, pointerUp, pointerCancel, keyDown, keyUp };
    enum class Origin { viewport, pointer, element };

    Kind kind { Kind::pause };
    double seconds { 0 };   // of pauses and moves
    double x { 0 };         // points, from the origin; an element's is its centre
    double y { 0 };
    Origin origin { Origin::viewport };
    std::string element;   // the origin's id
    std::string key;       // one character
};

struct ActionSource {
    enum class Kind { pause, pointer, key };   // a wheel can only pause here
    std::string id;
    Kind kind { Kind::pause };
    std::vector<ActionItem> items;   // one a tick
};

// `parameters` is the request's body. Errors: `invalid argument`; `unsupported operation` for a wheel that turns. At most ten
// sources and ten minutes.
Answer<std::vector<ActionSource>> parseActions(Json const& parameters);

// The key of an element's id in its object.
inline constexpr char const* kElementKey = "element-6066-11e4-a52e-4f735466cecf";

}
