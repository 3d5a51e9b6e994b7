#include "objc/define.hpp"
#include "objc/hook.hpp"
#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"
#include <gtest/gtest.h>
struct Probe : objc::subclass<Probe, "TestProbe", NSObject> {
    using subclass::subclass;
    Probe init() { return objc::send_super<Probe, "init", Probe>(*this); }
    CGRect rect(CGRect r, bool b)
    {
        r.origin.x += b;
        return r;
    }
    bool flag(bool a, signed char c) { return a && c < 0; }
    static NSInteger answer() { return 42; }
    static objc::class_handle which(objc::class_handle c) { return c; }
};
TEST(Bridge, Smoke)
{
    AutoreleasePool pool;
    objc::define<Probe>()
        .property<"list", NSMutableArray>(objc::strong)
        .property<"isShown", BOOL>()
        .state<std::string>()
        .method<"init", &Probe::init>()
        .method<"rect:flag:", &Probe::rect>()
        .method<"flag:and:", &Probe::flag>()
        .class_method<"answer", &Probe::answer>()
        .class_method<"which", &Probe::which>()
        .install();
    auto p = objc::adopt(Probe::alloc().send<"init", Probe>());
    EXPECT_EQ((p->send<"rect:flag:", CGRect>(CGRect { { 1, 2 }, { 3, 4 } }, true)),
        (CGRect { { 2, 2 }, { 3, 4 } }));
    EXPECT_TRUE((p->send<"flag:and:", bool>(true, (signed char)-1)));
    EXPECT_EQ((Probe::cls().send<"answer", NSInteger>()), 42);
    EXPECT_EQ((Probe::cls().send<"which", objc::class_handle>()), Probe::cls());
    p->send<"setList:">(NSMutableArray::array());
    EXPECT_EQ(p->valueForKey("_list"_ns).object, (p->send<"list", objc::handle>()).object);
    p->setValue(NSNumber::numberWithBool(true), "isShown"_ns);
    EXPECT_TRUE((p->send<"isShown", bool>()));
    EXPECT_TRUE(NSNumber(p->valueForKey("_isShown"_ns).object).boolValue());
    objc::state<std::string>(p.get()) = "x";
    int calls = 0;
    {
        auto b = objc::block([&calls](int x, bool y) { calls += x + y; });
        objc::block_copy<void(int, bool)> c(b);
        c(3, true);
    }
    EXPECT_EQ(calls, 4);
    EXPECT_EQ((objc::handle().send<"frame", CGRect>()), CGRect {});
}
