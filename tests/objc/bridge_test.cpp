#include "objc/define.hpp"
#include "objc/hook.hpp"
#include "platform/core_graphics.hpp"
#include "platform/foundation.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

// Counts the C++ values that live: an object's state, a block's captures.
struct Counted {
    static inline int alive = 0;
    Counted() { ++alive; }
    Counted(Counted const&) { ++alive; }
    Counted& operator=(Counted const&) = default;
    ~Counted() { --alive; }
};

// Counts the objects that live.
struct Token : objc::subclass<Token, "TestToken", NSObject> {
    using subclass::subclass;
    static inline int alive = 0;
    Token init()
    {
        ++alive;
        return objc::send_super<Token, "init", Token>(*this);
    }
    static objc::ref<Token> make() { return objc::adopt(alloc().send<"init", Token>()); }
};
// Its dealloc is written by hand, since the table of a class without owned variables has none.
void tokenDealloc(Token self, SEL)
{
    --Token::alive;
    objc::send_super<Token, "dealloc">(self);
}

struct Animal : objc::subclass<Animal, "TestAnimal", NSObject> {
    using subclass::subclass;
    NSInteger legs() const { return 4; }
    CGRect frame(CGRect base, BOOL moved) const
    {
        base.origin.x += moved ? 10 : 0;
        return base;
    }
    BOOL both(BOOL a, signed char negative) const { return a && negative < 0; }
    std::int16_t narrow(std::int16_t value, std::uint8_t other) const
    {
        return static_cast<std::int16_t>(value - other);
    }
    float half(float value) const { return value / 2; }
    static NSInteger population() { return 42; }
    static objc::class_handle asked(objc::class_handle receiver) { return receiver; }
};

struct Bird : objc::subclass<Bird, "TestBird", Animal> {
    using subclass::subclass;
    NSInteger legs() const { return objc::send_super<Bird, "legs", NSInteger>(*this) - 2; }
};
struct Penguin : objc::subclass<Penguin, "TestPenguin", Bird> {
    using subclass::subclass;
    NSInteger legs() const { return objc::send_super<Penguin, "legs", NSInteger>(*this) * 10; }
};

struct Keeper : objc::subclass<Keeper, "TestKeeper", NSObject> {
    using subclass::subclass;
};

struct Orphan : objc::subclass<Orphan, "TestOrphan", objc::subclass<Keeper, "NoSuchClass", NSObject>> {
    using subclass::subclass;
};

class Bridge : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        objc::define<Token>().method<"init", &Token::init>().install();
        class_addMethod(
            Token::cls().get(), objc::selector<"dealloc">(), objc::added_method<&tokenDealloc>(), "v@:");
        objc::define<Animal>()
            .method<"legs", &Animal::legs>()
            .method<"frame:moved:", &Animal::frame>()
            .method<"both:negative:", &Animal::both>()
            .method<"narrow:other:", &Animal::narrow>()
            .method<"half:", &Animal::half>()
            .class_method<"population", &Animal::population>()
            .class_method<"asked", &Animal::asked>()
            .install();
        objc::define<Bird>().method<"legs", &Bird::legs>().install();
        objc::define<Penguin>().method<"legs", &Penguin::legs>().install();
        objc::define<Keeper>()
            .property<"held", Token>(objc::strong)
            .property<"name", NSString>(objc::copy)
            .property<"lent", Token>()
            .property<"isShown", BOOL>()
            .property<"width", std::int32_t>()
            .property<"rect", CGRect>()
            .ivar<"plain", Token>(objc::strong)
            .state<Counted>()
            .install();
    }

    static Animal animal(objc::class_handle cls) { return Animal { cls.send<"new", objc::handle>().object }; }

    AutoreleasePool m_pool;
};

TEST_F(Bridge, PassesAndAnswersStructsAndNarrowIntegers)
{
    auto const one = objc::adopt(animal(Animal::cls()));

    EXPECT_EQ((one->send<"frame:moved:", CGRect>(CGRectMake(1, 2, 3, 4), true)), CGRectMake(11, 2, 3, 4));
    EXPECT_EQ((one->send<"frame:moved:", CGRect>(CGRectMake(1, 2, 3, 4), false)), CGRectMake(1, 2, 3, 4));
    EXPECT_TRUE((one->send<"both:negative:", BOOL>(true, static_cast<signed char>(-1))));
    EXPECT_FALSE((one->send<"both:negative:", BOOL>(true, static_cast<signed char>(1))));
    EXPECT_EQ((one->send<"narrow:other:", std::int16_t>(std::int16_t(-5), std::uint8_t(250))), -255);
    EXPECT_EQ((one->send<"half:", float>(3.0f)), 1.5f);
}

TEST_F(Bridge, NilAnswersZeroOfEveryKind)
{
    objc::handle const nil;

    EXPECT_EQ((nil.send<"frame:moved:", CGRect>(CGRectMake(1, 2, 3, 4), true)), CGRect {});
    EXPECT_EQ((nil.send<"doubleValue", double>()), 0.0);
    EXPECT_EQ((nil.send<"floatValue", float>()), 0.0f);
    EXPECT_EQ((nil.send<"longLongValue", long long>()), 0);
    EXPECT_FALSE((nil.send<"boolValue", BOOL>()));
    EXPECT_FALSE((nil.send<"description", NSString>()));
    EXPECT_EQ((nil.send<"transform", CGAffineTransform>()), CGAffineTransform {});
    EXPECT_EQ((objc::send_super<Bird, "legs", NSInteger>(Bird())), 0);
    nil.send<"release">();
}

TEST_F(Bridge, AskAnswersZeroWhereTheObjectDoesNot)
{
    auto const one = objc::adopt(animal(Bird::cls()));

    EXPECT_EQ((one->ask<"legs", NSInteger>()), 2);
    EXPECT_EQ((one->ask<"wings", NSInteger>()), 0);
    EXPECT_TRUE(one->responds<"legs">());
    EXPECT_FALSE(one->responds<"wings">());
    EXPECT_FALSE(objc::handle().responds<"legs">());
}

TEST_F(Bridge, AMissingClassIsNilAndIsFoundOnceItExists)
{
    EXPECT_FALSE(objc::cls<"TestLatecomer">());
    Class const latecomer = objc_allocateClassPair(NSObject::cls().get(), "TestLatecomer", 0);
    objc_registerClassPair(latecomer);
    EXPECT_EQ(objc::cls<"TestLatecomer">().get(), latecomer);
}

TEST_F(Bridge, ClassMethodsMayAskWhichClassWasMeant)
{
    EXPECT_EQ((Animal::cls().send<"population", NSInteger>()), 42);
    EXPECT_EQ((Bird::cls().send<"population", NSInteger>()), 42);
    EXPECT_EQ((Bird::cls().send<"asked", objc::class_handle>()), Bird::cls());
}

TEST_F(Bridge, SuperIsTheSuperclassOfTheClassThatDefines)
{
    // A penguin's bird part must not call itself again.
    EXPECT_EQ((objc::adopt(animal(Penguin::cls()))->send<"legs", NSInteger>()), 20);
    EXPECT_EQ((objc::adopt(animal(Bird::cls()))->send<"legs", NSInteger>()), 2);
}

TEST_F(Bridge, CastTestsTheClass)
{
    auto const penguin = objc::adopt(animal(Penguin::cls()));

    EXPECT_TRUE(objc::cast<Bird>(penguin));
    EXPECT_FALSE(objc::cast<NSString>(penguin));
    EXPECT_FALSE(objc::cast<Bird>(objc::handle()));
    EXPECT_FALSE(objc::cast<Orphan>(penguin));
}

TEST_F(Bridge, ReferencesRetainAndRelease)
{
    {
        auto const first = Token::make();
        EXPECT_EQ(Token::alive, 1);
        auto second = objc::retain(first.get());
        auto third = second;
        second = nullptr;
        EXPECT_TRUE(third == first);
        auto const moved = std::move(third);
        EXPECT_EQ(Token::alive, 1);
        EXPECT_EQ((moved->send<"retainCount", NSUInteger>()), 2u);
    }
    EXPECT_EQ(Token::alive, 0);

    Token const leaked = objc::leak(Token::make());
    EXPECT_EQ(Token::alive, 1);
    leaked.send<"release">();
    EXPECT_EQ(Token::alive, 0);
    {
        AutoreleasePool const pool;
        objc::autorelease(Token::make());
        EXPECT_EQ(Token::alive, 1);
    }
    EXPECT_EQ(Token::alive, 0);
}

TEST_F(Bridge, PropertiesOwnWhatTheySay)
{
    auto keeper = objc::adopt(Keeper::alloc().init<Keeper>());
    auto lent = Token::make();
    {
        AutoreleasePool const pool;
        keeper->send<"setHeld:">(Token::make());
        keeper->send<"setLent:">(lent);
        objc::ivar<Token, "plain">(keeper.get()) = objc::leak(Token::make());
    }
    EXPECT_EQ(Token::alive, 3);
    keeper->send<"setHeld:">(keeper->send<"held", Token>());   // to itself: stays
    EXPECT_EQ(Token::alive, 3);
    keeper->send<"setHeld:">(Token::make());   // replaced: the first one goes
    EXPECT_EQ(Token::alive, 3);

    auto const name = objc::adopt(NSString { "abc"_ns.send<"mutableCopy", objc::handle>().object });
    keeper->send<"setName:">(name);
    name->send<"appendString:">("def"_ns);
    EXPECT_STREQ((keeper->send<"name", NSString>().UTF8String()), "abc");

    objc::state<Counted>(keeper.get());
    EXPECT_EQ(Counted::alive, 1);
    keeper = nullptr;
    EXPECT_EQ(Token::alive, 1);   // the lent one is ours
    EXPECT_EQ(Counted::alive, 0);
    lent = nullptr;
    EXPECT_EQ(Token::alive, 0);
}

TEST_F(Bridge, KeyValueCodingReachesPropertiesAndTheirVariables)
{
    auto const keeper = objc::adopt(Keeper::alloc().init<Keeper>());
    auto const token = Token::make();

    keeper->setValue(token, "held"_ns);
    EXPECT_EQ(keeper->valueForKey("held"_ns), token.get());
    EXPECT_EQ(keeper->valueForKey("_held"_ns), token.get());
    keeper->setValue(NSNumber::numberWithBool(true), "isShown"_ns);
    EXPECT_TRUE((keeper->send<"isShown", BOOL>()));
    EXPECT_TRUE(NSNumber(keeper->valueForKey("_isShown"_ns).object).boolValue());
    keeper->send<"setWidth:">(std::int32_t(-7));
    EXPECT_EQ(NSNumber(keeper->valueForKey("width"_ns).object).intValue(), -7);
    keeper->send<"setRect:">(CGRectMake(1, 2, 3, 4));
    EXPECT_EQ((keeper->send<"rect", CGRect>()), CGRectMake(1, 2, 3, 4));
    EXPECT_EQ(objc::object_ivar(keeper.get(), "_held"), token.get());
    EXPECT_FALSE(objc::object_ivar(keeper.get(), "_missing"));
    EXPECT_TRUE(objc::has_ivar(keeper.get(), "_width"));
    EXPECT_FALSE(objc::has_ivar(keeper.get(), "width"));
}

TEST_F(Bridge, AClassWithoutSuperclassOrWithATakenNameIsNotDefined)
{
    objc::define<Orphan>().property<"held", Token>(objc::strong).install();
    EXPECT_FALSE(Orphan::cls());
    Class const before = Animal::cls().get();
    objc::define<Animal>().method<"legs", &Animal::legs>().install();
    EXPECT_EQ(objc_getClass("TestAnimal"), before);
}

TEST(Encoding, IsWhatCompilersWrite)
{
    EXPECT_STREQ((objc::method_encoding<void>.c_str()), "v@:");
    EXPECT_STREQ((objc::method_encoding<CGRect, CGRect, BOOL>.c_str()),
        "{CGRect={CGPoint=dd}{CGSize=dd}}@:{CGRect={CGPoint=dd}{CGSize=dd}}B");
    EXPECT_STREQ(
        (objc::method_encoding<NSInteger, NSUInteger, int, unsigned, short, signed char, unsigned char>.c_str()),
        "q@:QiIscC");
    EXPECT_STREQ((objc::method_encoding<float, double, char const*, SEL, Class>.c_str()), "f@:dr*:#");
    EXPECT_STREQ((objc::method_encoding<NSString, objc::class_handle, objc::block_ref<void()>, int*>.c_str()),
        "@@:#@?^v");
    EXPECT_EQ(objc::setter_name(objc::fixed_string { "isShown" }).view(), "setIsShown:");
    EXPECT_EQ(objc::ivar_name(objc::fixed_string { "list" }).view(), "_list");
}

TEST(Block, CopiesItsCapturesAndReleasesThem)
{
    int calls = 0;
    {
        objc::block_copy<NSInteger(int, BOOL)> kept;
        {
            auto const literal =
                objc::block([&calls, counted = Counted()](int number, BOOL yes) -> NSInteger {
                    ++calls;
                    return number + (yes ? 100 : 0);
                });
            kept = objc::block_copy<NSInteger(int, BOOL)>(lent(literal));
            EXPECT_EQ(Counted::alive, 2);
        }
        EXPECT_EQ(Counted::alive, 1);
        auto const again = kept;   // a block on the heap is shared
        EXPECT_EQ(Counted::alive, 1);
        EXPECT_EQ(again(5, true), 105);
        EXPECT_EQ(kept(5, false), 5);
    }
    EXPECT_EQ(Counted::alive, 0);
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(objc::block_ref<int()>()(), 0);
    EXPECT_FALSE(bool(objc::block_copy<void()>()));
}

// Stands in for the hooking engine: enough to see what a pair stores and calls.
void exchange(Class cls, SEL selector, objc::hook_pair pair, char const* encoding)
{
    *pair.slot = class_getMethodImplementation(cls, selector);
    class_addMethod(cls, selector, pair.replacement, encoding);
}

struct FrameMoved {
    static inline objc::original<CGRect(Animal, SEL, CGRect, BOOL)> original;
    static CGRect replacement(Animal self, SEL cmd, CGRect base, BOOL moved)
    {
        CGRect result = original(self, cmd, base, moved);
        result.size.height += 88;
        return result;
    }
};

TEST_F(Bridge, AHookSharesOneSignatureWithItsOriginal)
{
    auto const bird = objc::adopt(animal(Bird::cls()));
    EXPECT_EQ(FrameMoved::original(Animal(), nullptr, CGRectMake(1, 2, 3, 4), true),
        CGRect {});   // nothing hooked yet

    exchange(Bird::cls().get(), objc::selector<"frame:moved:">(), objc::hook<FrameMoved>(),
        objc::method_encoding<CGRect, CGRect, BOOL>.c_str());

    EXPECT_EQ((bird->send<"frame:moved:", CGRect>(CGRectMake(1, 2, 3, 4), true)), CGRectMake(11, 2, 3, 92));
}

}
