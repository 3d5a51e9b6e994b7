#include "phone/phone.hpp"
#include "tests/support/fork_runner.hpp"

void warmUpTests() { phone::Phone::warmUp(); }
