// Classes as a system version lacks or adds things: methods and instance variables taken away or put in before
// plug-ins load, to see how they cope. Main thread, at boot, after the classes are defined.
#pragma once

#include "phone/kernel/result.hpp"

#include <string_view>

namespace phone {

// What a text asks for: `Class selector:` or `Class._ivar`. A class name alone is not for this file (the
// look-up by name hides it).
bool namesMember(std::string_view text);

// Takes the method or instance variable away. An error when there is no such class or member. Storage of a
// variable stays; only its name is gone, so that neither the runtime nor key-value coding finds it.
Status removeMember(std::string_view text);

// Gives back what removeMember has taken. An error when it has taken no such member.
Status restoreMember(std::string_view text);

// Adds a method without effect, answering nil, to a class: `Class selector:`. One that the class has of its
// own stays as it is, and that is no error. After removeMember of the same text it takes the place of what went.
Status addMethod(std::string_view text);

}
