// Foundation's objects as the trace writes them. Main thread.
#pragma once

#include "objc/handle.hpp"

#include <nlohmann/json.hpp>

namespace phone {

// Property-list kinds as JSON has them; dates and data as {"date"} and {"data"}, nil as null, anything else
// by class and description.
nlohmann::ordered_json toJson(objc::handle object);

}
