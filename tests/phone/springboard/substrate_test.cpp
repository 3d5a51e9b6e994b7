#include "objc/define.hpp"
#include "objc/hook.hpp"
#include "phone/springboard/substrate.hpp"
#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"
#include "tests/phone/springboard/phone_fixture.hpp"

namespace phone {

namespace {

struct HookParent : objc::subclass<HookParent, "HookParent", NSObject> {
    using subclass::subclass;
    NSInteger answer() const { return 1; }
    CGRect area(
        CGRect rect, double more, NSInteger a, NSInteger b, NSInteger c, NSInteger d, NSInteger e) const
    {
        rect.size.width += more + double(a + b + c + d + e);
        return rect;
    }
};
struct HookChild : objc::subclass<HookChild, "HookChild", HookParent> {
    using subclass::subclass;
    NSInteger own() const { return 5; }
};

struct Answer {
    static inline objc::original<NSInteger(HookParent, SEL)> original;
    static NSInteger replacement(HookParent self, SEL cmd) { return original(self, cmd) + 10; }
};
struct SecondAnswer {
    static inline objc::original<NSInteger(HookParent, SEL)> original;
    static NSInteger replacement(HookParent self, SEL cmd) { return original(self, cmd) * 100; }
};
struct ParentAnswer {
    static inline objc::original<NSInteger(HookParent, SEL)> original;
    static NSInteger replacement(HookParent self, SEL cmd) { return original(self, cmd) + 7; }
};
struct Area {
    static inline objc::original<CGRect(
        HookParent, SEL, CGRect, double, NSInteger, NSInteger, NSInteger, NSInteger, NSInteger)>
        original;
    static CGRect replacement(HookParent self, SEL cmd, CGRect rect, double more, NSInteger a, NSInteger b,
        NSInteger c, NSInteger d, NSInteger e)
    {
        rect = original(self, cmd, rect, more, a, b, c, d, e);
        rect.origin.x += 1;
        return rect;
    }
};

template <class Pair, objc::fixed_string Selector>
void install(objc::class_handle cls)
{
    auto const pair = objc::hook<Pair>();
    MSHookMessageEx(cls.get(), objc::selector<Selector>(), pair.replacement, pair.slot);
}

NSInteger answerOf(HookParent object) { return object.send<"answer", NSInteger>(); }

}

class Substrate : public testing::Test {
protected:
    Substrate()
    {
        objc::define<HookParent>()
            .method<"answer", &HookParent::answer>()
            .method<"area:more:a:b:c:d:e:", &HookParent::area>()
            .install();
        objc::define<HookChild>().method<"own", &HookChild::own>().install();
        parent = objc::adopt(HookParent::alloc().init<HookParent>());
        child = objc::adopt(HookChild::alloc().init<HookChild>());
    }

    static Json lastEvent() { return deviceTrace().events().back(); }

    AutoreleasePool pool;
    objc::ref<HookParent> parent;
    objc::ref<HookChild> child;
};

TEST_F(Substrate, ReplacesAMethodAndKeepsTheOneBefore)
{
    install<Answer, "answer">(HookParent::cls());

    EXPECT_EQ(answerOf(parent), 11);
    EXPECT_EQ(answerOf(child), 11);
    EXPECT_TRUE(isHooked(HookParent::cls().get(), objc::selector<"answer">()));
    EXPECT_EQ(lastEvent()["kind"], "hook");
    EXPECT_EQ(lastEvent()["class"], "HookParent");
    EXPECT_EQ(lastEvent()["selector"], "answer");
    EXPECT_EQ(lastEvent()["installed"], true);
}

TEST_F(Substrate, LeavesTheSlotAloneForAMissingClass)
{
    auto const pair = objc::hook<Answer>();
    IMP const before = *pair.slot;

    MSHookMessageEx(nullptr, objc::selector<"answer">(), pair.replacement, pair.slot);

    EXPECT_EQ(*pair.slot, before);
    EXPECT_TRUE(lastEvent()["class"].is_null());
    EXPECT_EQ(lastEvent()["installed"], false);
}

TEST_F(Substrate, LeavesTheSlotAloneForAnUnknownMethod)
{
    auto const pair = objc::hook<Answer>();
    IMP const before = *pair.slot;

    MSHookMessageEx(
        HookParent::cls().get(), sel_registerName("nobodyAnswersThis"), pair.replacement, pair.slot);

    EXPECT_EQ(*pair.slot, before);
    EXPECT_FALSE(objc::is_true(
        class_respondsToSelector(HookParent::cls().get(), sel_registerName("nobodyAnswersThis"))));
    EXPECT_EQ(lastEvent()["installed"], false);
}

TEST_F(Substrate, AddsAnInheritedMethodToTheSubclassAlone)
{
    install<Answer, "answer">(HookChild::cls());

    EXPECT_EQ(answerOf(child), 11);
    EXPECT_EQ(answerOf(parent), 1);
    EXPECT_TRUE(isHooked(HookChild::cls().get(), objc::selector<"answer">()));
    EXPECT_FALSE(isHooked(HookParent::cls().get(), objc::selector<"answer">()));
}

TEST_F(Substrate, HonoursALaterHookOnTheSuperclass)
{
    install<Answer, "answer">(HookChild::cls());

    install<ParentAnswer, "answer">(HookParent::cls());

    EXPECT_EQ(answerOf(parent), 8);
    EXPECT_EQ(answerOf(child), 18);
}

TEST_F(Substrate, StacksSeveralHooks)
{
    install<Answer, "answer">(HookParent::cls());
    install<SecondAnswer, "answer">(HookParent::cls());

    EXPECT_EQ(answerOf(parent), 1100);
}

TEST_F(Substrate, PassesEveryArgumentThroughASuperclassCall)
{
    install<Area, "area:more:a:b:c:d:e:">(HookChild::cls());

    CGRect const area = child->send<"area:more:a:b:c:d:e:", CGRect>(CGRectMake(2, 3, 4, 5), 0.5,
        NSInteger { 10 }, NSInteger { 20 }, NSInteger { 30 }, NSInteger { 40 }, NSInteger { 50 });

    EXPECT_EQ(area, CGRectMake(3, 3, 154.5, 5));
}

TEST_F(Substrate, KeepsManySuperclassCallsApart)
{
    std::vector<IMP> calls;
    for (int i = 0; i < 300; ++i)
        calls.push_back(superclassCall(HookChild::cls().get(), objc::selector<"answer">()));

    for (IMP const call : calls)
        ASSERT_EQ(
            (objc::call_implementation<NSInteger>(call, child.get().object, objc::selector<"answer">())), 1);
    EXPECT_NE(calls.front(), calls.back());
}

}
