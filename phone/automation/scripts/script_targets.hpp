// What scripts mean by a target: an element, a handle, a class, or one of the names below. Main thread.
#pragma once

#include "phone/automation/scripts/scripts.hpp"

namespace phone {

// `strip`, `overlay`, `host`, `manager` and `passcode` by name, a handle as {"handle"} or as its text, the name of a
// class, an element object or an element's id. Nothing there now: `no such element`; a value of another kind:
// `invalid argument`. Never nil.
Answer<objc::handle> targetOf(Json const& value, ScriptContext& context);

// The same for what has to be a view.
Answer<objc::handle> viewTargetOf(Json const& value, ScriptContext& context);

// The id in an element object; none for any other value.
std::optional<std::string> elementIdOf(Json const& value);

}
