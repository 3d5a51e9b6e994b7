// Activator and the two listeners: how they come to it, what they do with an event, and the phone without it.
#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "tests/plugin/overlay/overlay_fixture.hpp"

namespace phone {

namespace {

// A listener of somebody else's, which marks its events as handled.
struct GreedyListener : objc::subclass<GreedyListener, "GreedyListener", NSObject> {
    using subclass::subclass;
    void receive(objc::handle, objc::handle event, NSString name) const
    {
        event.send<"setHandled:">(BOOL(true));
        deviceTrace().record("heard", { { "name", toString(name) } });
    }
};

struct DeafListener : objc::subclass<DeafListener, "DeafListener", NSObject> {
    using subclass::subclass;
};

objc::handle activator() { return objc::cls<"LAActivator">().send<"sharedInstance", objc::handle>(); }

template <class T>
void registerNew(char const* name)
{
    auto const listener = objc::adopt(T::alloc().template send<"init", objc::handle>());
    activator().send<"registerListener:forName:">(listener.get(), toNSString(name));
}

}

class Gestures : public OverlayTest { };

TEST_F(Gestures, AreRegisteredBeforeAnythingElseIsDone)
{
    boot(options("15.4"));

    Lines lines;
    for (Json const& event : phone().trace().events()) {
        std::string const kind = event["kind"];
        if (kind == "lookup" && event["class"] == "LAActivator")
            lines.push_back("lookup");
        if (kind == "listener")
            lines.push_back(event["name"].get<std::string>() + ' ' + event["class"].get<std::string>());
        if (kind == "read" || kind == "observe" || kind == "hook")
            break;
    }
    EXPECT_EQ(lines,
        (Lines { "lookup", "com.orvane.corvelLS ActivatorListenerLS",
            "com.orvane.corvelNONLS ActivatorListenerNONLS" }));
    EXPECT_EQ(events("listener").size(), 2u);
}

TEST_F(Gestures, ArePostedUnderTheListenersNameAndNotHandled)
{
    boot(options("15.4"));
    for (char const* name : { kOverlayGesture, kLockScreenGesture }) {
        std::size_t const before = phone().trace().count();
        ActivatorAnswer const answer = phone().activate(name);
        EXPECT_TRUE(answer.delivered);
        EXPECT_FALSE(answer.handled);

        auto const posts = events("post", before);
        ASSERT_EQ(posts.size(), 1u);
        EXPECT_EQ(posts[0]["name"], name);
        EXPECT_EQ(posts[0]["center"], "default");
        EXPECT_EQ(
            posts[0]["object"], name == kOverlayGesture ? "ActivatorListenerNONLS" : "ActivatorListenerLS");
        EXPECT_TRUE(posts[0]["userInfo"].is_null());
        EXPECT_FALSE(posts[0].contains("own"));
    }
}

TEST_F(Gestures, DoNothingUntilTheStripWasMade)
{
    boot(options("15.4", { { "isEnabled", false } }));
    Json const windows = phone().views();

    for (char const* name : { kOverlayGesture, kLockScreenGesture }) {
        gesture(name);
        wait(1);
    }

    EXPECT_FALSE(overlayWindow());
    EXPECT_EQ(phone().views().size(), windows.size());
    EXPECT_EQ(settingsFile(), (PropertyListDictionary { { "isEnabled", false } }));

    // Switched on they are heard from the first load of the list on.
    ASSERT_TRUE(phone().changeSettings({ { "isEnabled", true } }, {}));
    phone().adjunctController().send<"viewDidLoad">();
    summon();
    EXPECT_TRUE(isOverlayOnScreen());
}

TEST_F(Gestures, NeverArriveWithoutActivator)
{
    BootOptions system = options("15.4");
    system.absent = { "activator" };
    boot(system);

    EXPECT_TRUE(phone().strip());
    EXPECT_TRUE(events("listener").empty());
    for (Json const& event : events("lookup"))
        if (event["class"] == "LAActivator") {
            EXPECT_EQ(event["found"], false);
        }
    EXPECT_FALSE(phone().activate(kOverlayGesture).delivered);
    wait(1);
    EXPECT_FALSE(isOverlayOnScreen());
}

TEST_F(Gestures, StopWhileActivatorIsAway)
{
    boot(options("15.4"));
    ASSERT_TRUE(phone().setAvailable("activator", false));
    EXPECT_FALSE(phone().activate(kOverlayGesture).delivered);
    EXPECT_FALSE(isOverlayOnScreen());

    ASSERT_TRUE(phone().setAvailable("activator", true));
    summon();
    EXPECT_TRUE(isOverlayOnScreen());
}

TEST_F(Gestures, GoToTheListenerOfTheirName)
{
    boot(options("15.4"));
    objc::define<GreedyListener>()
        .method<"activator:receiveEvent:forListenerName:", &GreedyListener::receive>()
        .install();
    objc::define<DeafListener>().install();
    registerNew<GreedyListener>("test.greedy");
    registerNew<DeafListener>("test.deaf");

    ActivatorAnswer const greedy = phone().activate("test.greedy");
    EXPECT_TRUE(greedy.delivered);
    EXPECT_TRUE(greedy.handled);
    EXPECT_EQ(told("heard", "name"), Lines { "test.greedy" });
    EXPECT_FALSE(phone().activate("test.deaf").delivered);
    EXPECT_FALSE(phone().activate("test.nobody").delivered);
    EXPECT_FALSE(phone().activate("").delivered);

    activator().send<"unregisterListenerWithName:">("test.greedy"_ns);
    EXPECT_FALSE(phone().activate("test.greedy").delivered);
    activator().send<"registerListener:forName:">(objc::handle {}, "test.nil"_ns);
    EXPECT_FALSE(phone().activate("test.nil").delivered);
}

}
