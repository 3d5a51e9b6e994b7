// Foundation on the phone: clock, files, locale, notification centres, look-ups by name.
#include "phone/foundation/foundation.hpp"

#include "objc/define.hpp"
#include "phone/foundation/notification_centers.hpp"
#include "phone/foundation/property_list_objects.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/foundation/weak.hpp"
#include "phone/kernel/device_root.hpp"
#include "phone/kernel/services.hpp"
#include "tests/support/fork_runner.hpp"

#include <gtest/gtest.h>

#include <limits>

extern "C" void AudioServicesPlaySystemSound(std::uint32_t sound);

void warmUpTests() { }

namespace phone::testing {

namespace {

struct TickState {
    int ticks { 0 };
};
struct Ticker : objc::subclass<Ticker, "TestTicker", NSObject> {
    using subclass::subclass;
    int& ticks() const { return objc::state<TickState>(*this).ticks; }
    void tick(objc::handle) const { ++ticks(); }
};

objc::ref<Ticker> makeTicker() { return objc::adopt(Ticker { Ticker::alloc().init().object }); }

int g_deliveries = 0;
void noteDelivery(CFNotificationCenterRef, void*, NSString, void const*, NSDictionary) { ++g_deliveries; }

}

class Foundation : public ::testing::Test {
protected:
    Foundation()
    {
        bootOptions() = {};
        bootOptions().timezone = "Europe/Istanbul";
        EXPECT_TRUE(clock().start({ .date = "2026-06-18T09:41:00", .timezone = "Europe/Istanbul" }));
        defineFoundation();
        objc::define<Ticker>().state<TickState>().method<"tick:", &Ticker::tick>().install();
    }

    AutoreleasePool m_pool;
};

TEST_F(Foundation, DatesComeFromThePhonesClock)
{
    double const start = NSDate::date().send<"timeIntervalSinceReferenceDate", double>();
    EXPECT_EQ(start, clock().date().sinceReference);
    auto const made = NSDate::cls().send<"dateWithTimeIntervalSinceNow:", NSDate>(60.0);

    ASSERT_TRUE(clock().advance(100));

    EXPECT_EQ((NSDate::date().send<"timeIntervalSinceReferenceDate", double>()), start + 100);
    EXPECT_EQ((made.send<"timeIntervalSinceNow", double>()), -40);
    auto const other = objc::adopt(NSDate { NSDate::alloc().send<"init", objc::handle>().object });
    EXPECT_EQ((other->send<"timeIntervalSinceReferenceDate", double>()), start + 100);
}

TEST_F(Foundation, FormattersAndCalendarsFollowTheBootOptions)
{
    bootOptions().language = "tr";
    auto const formatter =
        objc::adopt(NSDateFormatter { NSDateFormatter::alloc().send<"init", objc::handle>().object });
    formatter->setLocale(NSLocale::currentLocale());
    formatter->setDateFormat("MMMM dd, yyyy HH:mm"_ns);

    EXPECT_EQ(toString(formatter->stringFromDate(NSDate::date())), "Haziran 18, 2026 09:41");

    auto const parts =
        NSCalendar::currentCalendar().components(NSCalendarUnitMonth | NSCalendarUnitDay, NSDate::date());
    EXPECT_EQ(parts.day(), 18);
    EXPECT_EQ(parts.month(), 6);
}

TEST_F(Foundation, TimersRunOnThePhonesClock)
{
    auto const ticker = makeTicker();
    auto const repeating =
        objc::retain(NSTimer::scheduledTimer(3600, ticker.get(), sel_registerName("tick:"), {}, true));
    auto const once =
        objc::retain(NSTimer::scheduledTimer(10, ticker.get(), sel_registerName("tick:"), {}, false));
    EXPECT_TRUE((repeating->send<"isValid", BOOL>()));

    ASSERT_TRUE(clock().advance(7200));

    EXPECT_EQ(ticker->ticks(), 3);
    EXPECT_FALSE((once->send<"isValid", BOOL>()));
    repeating->send<"invalidate">();
    ASSERT_TRUE(clock().advance(7200));
    EXPECT_EQ(ticker->ticks(), 3);
    EXPECT_FALSE((repeating->send<"isValid", BOOL>()));
    auto const event = trace().events()[0];
    EXPECT_EQ(event["kind"], "timer");
    EXPECT_EQ(event["interval"], 3600);
    EXPECT_EQ(event["selector"], "tick:");
    EXPECT_EQ(event["target"], "TestTicker");
}

TEST_F(Foundation, ATimerKeepsItsTargetUntilItIsDone)
{
    Weak<Ticker> target;
    {
        AutoreleasePool const pool;
        auto const ticker = makeTicker();
        target = ticker.get();
        NSTimer::scheduledTimer(1, ticker.get(), sel_registerName("tick:"), {}, false);
    }
    EXPECT_TRUE(bool(target));

    {
        AutoreleasePool const pool;
        ASSERT_TRUE(clock().advance(2));
    }

    EXPECT_FALSE(bool(target));
}

TEST_F(Foundation, PropertyListsGoThroughTheDeviceRoot)
{
    auto root = DeviceRoot::makeTemporary();
    ASSERT_TRUE(root);
    deviceRoot() = &*root;
    ASSERT_TRUE(root->write(
        "/var/jb/x.plist", "<plist><dict><key>a</key><true/></dict></plist>", 47, { .makesFolders = true }));

    auto const read = objc::adopt(NSMutableDictionary::alloc().initWithContentsOfFile("/var/jb/x.plist"_ns));
    ASSERT_TRUE(bool(read));
    EXPECT_TRUE(NSNumber { read->objectForKey("a"_ns).object }.boolValue());

    read->setObject("ü"_ns, "b"_ns);
    EXPECT_TRUE(read->writeToFile("/var/jb/x.plist"_ns, true));
    auto const again =
        NSDictionary::cls().send<"dictionaryWithContentsOfFile:", NSDictionary>("/var/jb/x.plist"_ns);
    EXPECT_EQ(toString(again.objectForKey("b"_ns)), "ü");
    EXPECT_FALSE(objc::adopt(NSMutableDictionary::alloc().initWithContentsOfFile("/var/jb/none.plist"_ns)));
    EXPECT_FALSE(read->writeToFile("/var/none/x.plist"_ns, true));
    read->setObject(makeTicker().get(), "bad"_ns);
    EXPECT_FALSE(read->writeToFile("/var/jb/x.plist"_ns, true));

    Json const events = trace().events();
    EXPECT_EQ(events[0]["kind"], "read");
    EXPECT_EQ(events[0]["found"], true);
    EXPECT_EQ(events[1]["kind"], "write");
    EXPECT_EQ(events[1]["written"], true);
    EXPECT_EQ(events[1]["atomically"], true);
    deviceRoot() = nullptr;
}

TEST_F(Foundation, ADamagedPropertyListIsNone)
{
    auto root = DeviceRoot::makeTemporary();
    ASSERT_TRUE(root);
    deviceRoot() = &*root;
    ASSERT_TRUE(root->write("/var/x.plist", "bplist00garbage", 15, { .makesFolders = true }));
    ASSERT_TRUE(root->write("/var/array.plist", "<plist><array/></plist>", 23));

    EXPECT_FALSE(objc::adopt(NSMutableDictionary::alloc().initWithContentsOfFile("/var/x.plist"_ns)));
    EXPECT_FALSE(objc::adopt(NSMutableDictionary::alloc().initWithContentsOfFile("/var/array.plist"_ns)));
    EXPECT_FALSE(objc::adopt(NSMutableDictionary::alloc().initWithContentsOfFile({})));
    deviceRoot() = nullptr;
}

TEST_F(Foundation, PropertyListKindsSurviveTheWayThere)
{
    PropertyList const list(PropertyListDictionary { { "bool", true }, { "integer", 7 }, { "real", 1.5 },
        { "text", "שלום" }, { "date", Date { 42 } }, { "data", Bytes { 1, 2 } },
        { "array", PropertyListArray { PropertyList("x") } },
        { "large", std::uint64_t { 18'000'000'000'000'000'000u } } });

    auto const back = toPropertyList(toObject(list));

    ASSERT_TRUE(back);
    for (auto const& entry : *list.as<PropertyListDictionary>()) {
        auto const* const value = back->as<PropertyListDictionary>()->find(entry.key);
        ASSERT_TRUE(value) << entry.key;
        EXPECT_EQ(*value, entry.value) << entry.key;
    }
}

TEST_F(Foundation, ADateThatIsNoNumberIsText)
{
    PropertyList const list(
        PropertyListArray { Date { std::numeric_limits<double>::quiet_NaN() }, Date { 42 } });

    auto const back = toPropertyList(toObject(list));

    ASSERT_TRUE(back);
    EXPECT_EQ(*back, PropertyList(PropertyListArray { "nan", Date { 42 } }));
}

TEST_F(Foundation, DarwinNotificationsCoalesceUntilTheNextTurn)
{
    g_deliveries = 0;
    auto const center = CFNotificationCenterGetDarwinNotifyCenter();
    CFNotificationCenterAddObserver(center, nullptr, &noteDelivery, "test"_ns, nullptr, 2);

    CFNotificationCenterPostNotification(center, "test"_ns, nullptr, {}, true);
    postDarwinNotification("test");
    postDarwinNotification("other");
    EXPECT_EQ(g_deliveries, 0);
    clock().runLoopTurn();
    EXPECT_EQ(g_deliveries, 1);

    CFNotificationCenterRemoveObserver(center, nullptr, "test"_ns, nullptr);
    postDarwinNotification("test");
    clock().runLoopTurn();
    EXPECT_EQ(g_deliveries, 1);
}

TEST_F(Foundation, LocalNotificationsAreDeliveredAtOnce)
{
    g_deliveries = 0;
    CFNotificationCenterAddObserver(
        CFNotificationCenterGetLocalCenter(), nullptr, &noteDelivery, "test"_ns, nullptr, 2);

    postLocalNotification("test");

    EXPECT_EQ(g_deliveries, 1);
    forgetNotificationObservers();
    postLocalNotification("test");
    EXPECT_EQ(g_deliveries, 1);
}

TEST_F(Foundation, UIKitsProtocolsExist)
{
    Protocol* const known = objc_getProtocol("UICollectionViewDataSource");

    ASSERT_TRUE(known);
    EXPECT_EQ(objc_getProtocol("UICollectionViewDataSource"), known);
    EXPECT_FALSE(objc_getProtocol("NoSuchProtocol"));
    EXPECT_FALSE(objc_getProtocol(nullptr));
    EXPECT_TRUE(objc_getProtocol("NSCopying"));
}

TEST_F(Foundation, IndexPathsHaveSectionAndItem)
{
    objc::class_handle const cls = objc::cls<"NSIndexPath">();
    auto const path = cls.send<"indexPathForItem:inSection:", objc::handle>(NSInteger { 4 }, NSInteger { 1 });

    EXPECT_EQ((path.send<"item", NSInteger>()), 4);
    EXPECT_EQ((path.send<"row", NSInteger>()), 4);
    EXPECT_EQ((path.send<"section", NSInteger>()), 1);
}

TEST_F(Foundation, SoundsAreTraced)
{
    AudioServicesPlaySystemSound(1519);

    EXPECT_EQ(trace().events()[0]["kind"], "sound");
    EXPECT_EQ(trace().events()[0]["id"], 1519);
}

TEST_F(Foundation, TextSurvivesBothWays)
{
    EXPECT_EQ(toString(toNSString("héllo 王 👩‍👩‍👧")), "héllo 王 👩‍👩‍👧");
    EXPECT_EQ(toString(toNSString("bad \xff byte")), "bad \xef\xbf\xbd byte");
    EXPECT_EQ(toString({}), "");
    EXPECT_EQ(toString(NSNumber::numberWithBool(true)), "");
}

TEST_F(Foundation, WeakReferencesClear)
{
    Weak<Ticker> weak;
    {
        auto const ticker = makeTicker();
        weak = ticker.get();
        EXPECT_EQ(weak.get(), ticker.get());
    }
    EXPECT_FALSE(bool(weak));
}

}
