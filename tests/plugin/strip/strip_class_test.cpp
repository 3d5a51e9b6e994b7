// The strip as the runtime knows it: its properties, what its class answers, and the messages that it sends to itself, which
// another plug-in may stand in for.
#include "tests/plugin/strip/strip_fixture.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/springboard/substrate.hpp"
#include "phone/uikit/ui_image.hpp"

#include <limits>

namespace phone {

namespace {

// Arguments travel as whole registers: only a flag's low byte counts.
int alwaysTheSameDay(id, SEL, id today, id birthday)
{
    objc::handle const born { birthday };
    deviceTrace().record("heard",
        { { "now", objc::handle { today }.send<"timeIntervalSinceReferenceDate", double>() },
            { "born", born ? Json(born.send<"timeIntervalSinceReferenceDate", double>()) : Json(nullptr) } });
    return 1;
}

void noteCake(id self, SEL, int isHidden)
{
    deviceTrace().record("heard",
        { { "number", toString(objc::handle { self }.send<"getPhoneNumber", NSString>()) },
            { "hidden", (isHidden & 0xff) != 0 } });
}

id noRounding(id, SEL, id image)
{
    CGSize const size = UIImage { image }.size();
    deviceTrace().record("heard", { { "size", { size.width, size.height } } });
    return nullptr;
}

void replace(char const* className, char const* selector, IMP implementation)
{
    MSHookMessageEx(objc_getClass(className), sel_registerName(selector), implementation, nullptr);
}

}

class StripClass : public StripTest {
protected:
    static void bootBare(Json const& contacts)
    {
        BootOptions booted = options("15.4", { { "isEnabled", false } });
        booted.contacts = contacts;
        boot(booted);
    }
    static UIView shown()
    {
        UIView const strip = makeStrip(lockScreenFrame(), record());
        show(strip);
        return strip;
    }
    static std::vector<bool> cakesHidden(UIView strip)
    {
        std::vector<bool> hidden;
        for (UIView const cell : cells(strip))
            for (UIView const cake : viewsOfClass(cell, "UIImageView"))
                if (cake.superview() == cell)
                    hidden.push_back(cake.isHidden());
        return hidden;
    }
};

TEST_F(StripClass, KeepsEachPropertyInAVariableOfItsName)
{
    bootBare(contactEntries(3));
    UIView const strip = makeStrip(lockScreenFrame(), record());
    Class const cls = objc_getClass("CVLView");
    EXPECT_STREQ(class_getName(class_getSuperclass(cls)), "UIView");
    for (char const* name : { "_list", "_collectionView", "_collectionViewLayout", "_contactButton",
             "_contactFirstName", "_isViewNonLS", "_isShown", "_bannerDynamicSize", "_bannerDynamicWidth" })
        EXPECT_TRUE(class_getInstanceVariable(cls, name)) << name;

    // What it was made with.
    EXPECT_TRUE((strip.send<"list", objc::handle>().send<"isKindOfClass:", BOOL>(
        objc::class_handle { objc_getClass("NSMutableArray") })));
    EXPECT_EQ((strip.send<"list", NSArray>().count()), 3u);
    EXPECT_EQ((strip.send<"collectionViewLayout", objc::handle>()),
        (collectionView(strip).send<"collectionViewLayout", objc::handle>()));

    // And what it is given. Objects are kept, not copied.
    objc::handle const value = objc::leak(make<UIView>());
    strip.send<"setCollectionView:">(value);
    EXPECT_EQ((strip.send<"collectionView", objc::handle>()), value);
    strip.send<"setCollectionViewLayout:">(value);
    EXPECT_EQ((strip.send<"collectionViewLayout", objc::handle>()), value);
    strip.send<"setContactButton:">(value);
    EXPECT_EQ((strip.send<"contactButton", objc::handle>()), value);
    strip.send<"setContactFirstName:">(value);
    EXPECT_EQ((strip.send<"contactFirstName", objc::handle>()), value);
    strip.send<"setIsViewNonLS:">(BOOL { true });
    EXPECT_TRUE((strip.send<"isViewNonLS", BOOL>()));
    constexpr std::int32_t kLeast = std::numeric_limits<std::int32_t>::min();
    strip.send<"setBannerDynamicSize:">(std::int32_t { -7 });
    strip.send<"setBannerDynamicWidth:">(kLeast);
    EXPECT_EQ((strip.send<"bannerDynamicSize", std::int32_t>()), -7);
    EXPECT_EQ((strip.send<"bannerDynamicWidth", std::int32_t>()), kLeast);
}

TEST_F(StripClass, HasAsManyItemsAsItsList)
{
    bootBare(contactEntries(3));
    UIView const strip = makeStrip(lockScreenFrame(), record());
    objc::handle const fewer = strip.send<"list", objc::handle>().send<"mutableCopy", objc::handle>();
    fewer.send<"removeObjectAtIndex:">(NSUInteger { 0 });
    strip.send<"setList:">(fewer);

    EXPECT_EQ((strip.send<"list", objc::handle>()), fewer);
    EXPECT_EQ((strip.send<"collectionView:numberOfItemsInSection:", NSInteger>(
                  collectionView(strip), NSInteger { 0 })),
        2);
}

TEST_F(StripClass, ReadsColours)
{
    bootBare(contactEntries(1));
    objc::class_handle const cls { objc_getClass("CVLView") };
    auto const colour = [&](char const* text) {
        return UIColor { cls.send<"colorWithHexString:", objc::handle>(toNSString(text)).object }.rgba();
    };
    EXPECT_EQ(colour("#fff"), (graphics::Color { 1, 1, 1, 1 }));
    EXPECT_EQ(colour("ff0000"), (graphics::Color { 1, 0, 0, 1 }));
    EXPECT_EQ(colour("#0000ff00"), (graphics::Color { 0, 0, 1, 0 }));
    EXPECT_EQ(colour(""), (graphics::Color { 0, 0, 0, 0 }));
}

TEST_F(StripClass, AsksItselfWhetherABirthdayIsToday)
{
    Json entries = contactEntries(2);
    entries[0]["contactBirthday"] = Json::object({ { "date", "2001-01-01T00:00:00Z" } });
    bootBare(entries);
    replace("CVLView", "isSameDay:otherDay:", objc::boundary::any_function(&alwaysTheSameDay));
    std::size_t since = phone().trace().count();
    UIView const strip = shown();

    EXPECT_EQ(cakesHidden(strip), (std::vector<bool> { false, false }));
    auto heard = events("heard", since);
    ASSERT_EQ(heard.size(), 2u);
    EXPECT_EQ(heard[0]["born"], 0.0);
    EXPECT_TRUE(heard[1]["born"].is_null());
    EXPECT_GT(heard[0]["now"].get<double>(), 0.0);

    for (UIView const cell : cells(strip))
        for (UIView const cake : viewsOfClass(cell, "UIImageView"))
            cake.setHidden(true);
    since = phone().trace().count();
    strip.send<"presentBirthday:">(objc::handle {});
    EXPECT_EQ(cakesHidden(strip), (std::vector<bool> { false, false }));
    heard = events("heard", since);
    ASSERT_EQ(heard.size(), 2u);
    EXPECT_EQ(heard[0]["now"], heard[1]["now"]);   // one moment for all
}

TEST_F(StripClass, TellsTheButtonsOfBirthdaysInTheirOrder)
{
    Json entries = contactEntries(3);
    entries[1]["contactBirthday"] = Json::object({ { "date", "1990-06-18T12:00:00Z" } });
    bootBare(entries);
    UIView const strip = shown();
    replace("CVLButton", "setCakeHidden:", objc::boundary::any_function(&noteCake));
    std::size_t const since = phone().trace().count();

    strip.send<"presentBirthday:">(objc::handle {});

    EXPECT_EQ(told("heard", "number", since),
        (std::vector<std::string> { "+44 20 7946-00", "+44 20 7946-01", "+44 20 7946-02" }));
    EXPECT_EQ(told("heard", "hidden", since), (std::vector<std::string> { "true", "false", "true" }));
}

TEST_F(StripClass, RoundsWhatItScales)
{
    bootBare(contactEntries(1));
    replace("CVLView", "makeImageRound:", objc::boundary::any_function(&noRounding));
    std::size_t const since = phone().trace().count();
    UIView const strip = shown();

    // The badge was filled to its size before, and is what the rounding has made of it: nothing.
    auto const heard = events("heard", since);
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0]["size"], Json({ 29.0, 29.0 }));
    EXPECT_TRUE(tree(viewsOfClass(cells(strip).at(0), "UIImageView").at(0))["image"].is_null());
}

}
