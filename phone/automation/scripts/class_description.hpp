// Classes and libraries as scripts tell them. Main thread.
#pragma once

#include "phone/kernel/trace.hpp"

#include <string>
#include <vector>

namespace phone {

// {"name","superclass","protocols","methods":[{"selector","encoding","class"}],"ivars":[{"name","encoding"}]} of the
// class itself, as the runtime has it now; `class` is true for a class method. Sorted by name, instance variables in
// their order. Null when there is no such class.
Json classDescription(std::string const& name);

// Of every class that the runtime knows now, sorted.
std::vector<std::string> classNames();

// [{"path","name","needed","imports"}] of the plug-ins loaded, in order.
Json libraryDescriptions();

}
