#include "tests/plugin/strip/strip_fixture.hpp"
#include <iostream>
namespace phone {
class Dump : public StripTest {};
TEST_F(Dump, A)
{
    boot(options("15.4", Json::object(), 3));
    phone().advance(1);
    std::cerr << tree(phone().strip()).dump(1) << "\n";
    auto s = makeStrip({{10,-100},{300,88}}, record(), true);
    show(s);
    std::cerr << "OVERLAY" << tree(s).dump() << "\n";
    for (auto& e : phone().trace().events()) std::cerr << e.dump() << "\n";
    FAIL();
}
}
