#include "phone/kernel/result.hpp"

#include <cstdio>

namespace phone {

void reportProblem(std::string const& message)
{
    std::fprintf(stderr, "corvel-phone: %s\n", message.c_str());
}

}
