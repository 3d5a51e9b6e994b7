// Two plug-ins on the same methods: whoever comes first, both are called, with the arguments as they were.
#include "tests/plugin/host/message_log.hpp"

#include <dlfcn.h>

namespace phone {

enum class Place { before, after };

void PrintTo(Place place, std::ostream* stream) { *stream << (place == Place::before ? "before" : "after"); }

class Neighbour : public CorvelTest, public testing::WithParamInterface<Place> {
protected:
    // A neighbour that is loaded first is what Corvel's replacements call; one that is loaded later calls them.
    static bool isInside() { return GetParam() == Place::before; }

    static void bootBoth(Json settings = Json::object(), char const* version = "15.4")
    {
        namespace fs = std::filesystem;
        fs::path const corvel = fs::path(CORVEL_PLUGIN).parent_path();
        fs::path const neighbour = fs::path(NEIGHBOUR_PLUGIN).parent_path();
        if (isInside())
            phone().usePluginFolders({ neighbour, corvel });
        else
            phone().usePluginFolders({ corvel, neighbour });
        BootOptions system = options(version, std::move(settings));
        system.passcode = "1234";
        boot(system);
        ASSERT_EQ(phone().plugins().size(), 2u);
    }
    static std::string notes()
    {
        void* const library = dlopen(NEIGHBOUR_PLUGIN, RTLD_LAZY | RTLD_NOLOAD);
        auto* const take = reinterpret_cast<char const* (*)()>(dlsym(library, "takeNeighbourNotes"));
        return take ? take() : "no neighbour";
    }
};

TEST_P(Neighbour, SeesTheListLoad)
{
    bootBoth();

    EXPECT_NE(notes().find("viewDidLoad\n"), std::string::npos);
    EXPECT_TRUE(phone().strip());
}

TEST_P(Neighbour, SeesEveryUpdateOfTheListOnceAndGivesItsAnswer)
{
    bootBoth();
    notes();

    auto const answer = phone().adjunctController().send<"_updatePresentingContent", NSUInteger>();

    EXPECT_EQ(answer, 0x2233445566778899u);
    std::string const seen = notes();
    EXPECT_TRUE(seen.starts_with("_updatePresentingContent\n")) << seen;
    EXPECT_EQ(seen.find("_updatePresentingContent\n", 1), std::string::npos);
}

TEST_P(Neighbour, SeesAnItemComeAndGivesItsAnswer)
{
    bootBoth();
    notes();
    auto const item = make<UIView>(CGRectMake(0, 0, 10, 10));

    auto const answer =
        phone().adjunctController().send<"_insertItem:animated:", NSUInteger>(item.get(), BOOL(true));

    EXPECT_EQ(answer, 0x1122334455667788u);
    EXPECT_TRUE(notes().starts_with("_insertItem:animated: item animated\n"));
    phone().adjunctController().send<"_insertItem:animated:", NSUInteger>(objc::handle {}, BOOL(false));
    EXPECT_TRUE(notes().starts_with("_insertItem:animated: nil still\n"));
}

TEST_P(Neighbour, IsAskedForContentOnlyFromOutsideWhileWeAnswer)
{
    bootBoth();
    notes();

    EXPECT_TRUE((phone().adjunctController().send<"isPresentingContent", BOOL>()));
    EXPECT_EQ(notes(), isInside() ? "" : "isPresentingContent\n");
}

TEST_P(Neighbour, IsAskedForContentWhenSwitchedOff)
{
    bootBoth({ { "isEnabled", false } });
    notes();

    EXPECT_FALSE((phone().adjunctController().send<"isPresentingContent", BOOL>()));
    EXPECT_EQ(notes(), "isPresentingContent\n");
}

TEST_P(Neighbour, SeesTheDismissal)
{
    bootBoth();
    notes();

    auto const answer = phone().lockScreenManager().send<"lockScreenViewControllerWillDismiss", NSUInteger>();

    EXPECT_EQ(answer, 77u);
    EXPECT_EQ(notes(), "lockScreenViewControllerWillDismiss\n");
}

TEST_P(Neighbour, SeesAnUnlockUnlessItIsSwallowed)
{
    bootBoth();
    logStripMessages();
    notes();

    stripAnswers().staysAtLockScreen = true;
    phone().lockScreenManager().send<"_finishUIUnlockFromSource:withOptions:", BOOL>(-5, objc::handle {});
    EXPECT_EQ(notes(), isInside() ? "" : "_finishUIUnlockFromSource:withOptions: -5 nil\n");

    stripAnswers().staysAtLockScreen = false;
    EXPECT_TRUE((phone().lockScreenManager().send<"_finishUIUnlockFromSource:withOptions:", BOOL>(
        9, NSString::stringWithUTF8String("o"))));
    EXPECT_TRUE(notes().starts_with("_finishUIUnlockFromSource:withOptions: 9 options\n"));
}

TEST_P(Neighbour, SeesThePasscodeScreenGo)
{
    bootBoth();
    logStripMessages();
    notes();
    std::size_t const before = phone().trace().count();

    phone().passcodeController().send<"viewDidDisappear:">(BOOL(true));
    EXPECT_EQ(notes(), "viewDidDisappear: animated\n");
    phone().passcodeController().send<"viewDidDisappear:">(BOOL(false));
    EXPECT_EQ(notes(), "viewDidDisappear: still\n");
    EXPECT_EQ(story(before).back(), "strip resetActionState");
}

TEST_P(Neighbour, GetsAlongOnAnOldSystem)
{
    bootBoth(Json::object(), "12.4");

    std::string const seen = notes();
    EXPECT_NE(seen.find("viewDidLoad\n"), std::string::npos);
    EXPECT_TRUE(phone().strip());
}

INSTANTIATE_TEST_SUITE_P(Places, Neighbour, testing::Values(Place::before, Place::after),
    [](auto const& info) { return info.param == Place::before ? "LoadedBefore" : "LoadedAfter"; });

}
