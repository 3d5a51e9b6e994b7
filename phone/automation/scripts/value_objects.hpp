// Objects from the values of scripts: the way back of springboard/object_values.hpp. Main thread.
#pragma once

#include "objc/handle.hpp"
#include "phone/kernel/result.hpp"
#include "phone/kernel/trace.hpp"

#include <functional>
#include <optional>
#include <string>

namespace phone {

// Nil for null; text, number, truth value, array, dictionary, {"date"}, {"data"}, {"color"}, {"image"},
// {"rect"} and its like (an NSValue), {"handle"}, and what the resolver below knows. Inside arrays and
// dictionaries null is NSNull. Lent until the autorelease pool drains. The error begins with `where`.
Result<objc::handle> objectOfValue(Json const& value, std::string const& where);

// Knows objects that are written in a form of somebody else's (a client's elements). None: the value is of no such
// form. Handed over once, by whoever defines the form.
using ObjectResolver = std::function<std::optional<Result<objc::handle>>(Json const& value)>;
void setObjectResolver(ObjectResolver resolver);

}
