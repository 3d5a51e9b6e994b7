#include "phone/kernel/plugin_loader.hpp"

#include "phone/kernel/clock.hpp"
#include "phone/kernel/commands.hpp"
#include "phone/kernel/elf_library.hpp"
#include "phone/kernel/plugin_formats.hpp"
#include "phone/kernel/trace.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace phone {
namespace {

namespace fs = std::filesystem;

std::string filter(std::string const& body) { return "<plist version=\"1.0\">" + body + "</plist>"; }
std::string bundles(std::string const& names)
{
    return filter(
        "<dict><key>Filter</key><dict><key>Bundles</key><array>" + names + "</array></dict></dict>");
}
std::string const kSpringBoardFilter = bundles("<string>com.apple.springboard</string>");

class PluginLoaderTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = (fs::temp_directory_path() / "corvel-plugins-XXXXXX").string();
        ASSERT_TRUE(mkdtemp(name.data()));
        folder = fs::canonical(name);
        ASSERT_TRUE(deviceClock().start({}));   // and with it, commands that an earlier test left running
        deviceTrace().reset();
        unsetenv("_MSSafeMode");
        unsetenv("_SafeMode");
    }
    void TearDown() override { fs::remove_all(folder); }

    void library(std::string const& name) { fs::copy_file(CORVEL_TEST_PLUGIN, folder / (name + ".so")); }
    void text(std::string const& name, std::string const& contents)
    {
        std::ofstream(folder / name) << contents;
    }
    PluginFilterAnswer answerTo(std::string const& filterText, PluginHost const& host = {})
    {
        text("x.plist", filterText);
        return readPluginFilter(folder / "x.so", host);
    }
    std::string names(std::vector<PluginReport> const& reports)
    {
        std::string all;
        for (PluginReport const& report : reports)
            all += report.name + (report.isLoaded ? "+" : "-");
        return all;
    }

    fs::path folder;
};

TEST_F(PluginLoaderTest, LoadsWhatNamesSpringBoardInNameOrder)
{
    for (char const* name : { "C", "A", "D", "B", "E" })
        library(name);
    text("A.plist", kSpringBoardFilter);
    text("B.plist", bundles("<string>com.apple.mobilesafari</string>"));
    text("C.plist", bundles("<string>com.apple.mobilesafari</string><string>com.apple.springboard</string>"));
    text("D.plist", "broken");
    text("F.plist", kSpringBoardFilter);
    text("notes.txt", "not a library");
    fs::create_directories(folder / "folder.so");

    testing::internal::CaptureStderr();
    auto const reports = loadPlugins({ folder, folder / "missing" }, {}, {});
    std::string const said = testing::internal::GetCapturedStderr();

    EXPECT_EQ(names(reports), "A+B-C+D-E-");
    EXPECT_EQ(reports[3].filter, PluginFilter::malformed);
    EXPECT_EQ(reports[4].filter, PluginFilter::missing);
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 1) << said;
    EXPECT_NE(said.find("D is not loaded: the filter"), std::string::npos) << said;
}

TEST_F(PluginLoaderTest, LoadsNothingInSafeMode)
{
    library("A");
    text("A.plist", kSpringBoardFilter);
    for (char const* name : { "_MSSafeMode", "_SafeMode" }) {
        setenv(name, "1", 1);
        EXPECT_TRUE(isSafeModeRequested());
        EXPECT_EQ(names(loadPlugins({ folder }, { folder / "A.so" }, {})), "A-A-");
        setenv(name, "0", 1);
        EXPECT_FALSE(isSafeModeRequested());
    }
}

TEST_F(PluginLoaderTest, LoadsFurtherLibrariesWithoutAFilter)
{
    library("neighbour");
    auto const reports = loadPlugins({}, { folder / "neighbour.so" }, {});
    EXPECT_EQ(names(reports), "neighbour+");
    EXPECT_EQ(reports[0].path, folder / "neighbour.so");
}

TEST_F(PluginLoaderTest, ABadLibraryDoesNotStopTheNext)
{
    text("A.so", "no library");
    text("A.plist", kSpringBoardFilter);
    library("B");
    text("B.plist", kSpringBoardFilter);
    testing::internal::CaptureStderr();
    auto const reports = loadPlugins({ folder }, { folder / "gone.so" }, {});
    std::string const said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(names(reports), "A-B+gone-");
    EXPECT_FALSE(reports[0].problem.empty());
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2) << said;
}

std::vector<std::string>& loadedCards()
{
    static std::vector<std::string> names;
    return names;
}

TEST_F(PluginLoaderTest, TakesLibrariesOfAFurtherFormat)
{
    static int const address = 0;
    addPluginFormat({ .extension = ".card",
        .read =
            [](PluginReport& report) {
                report.needed = { "punch" };
                return Status();
            },
        .load =
            [](fs::path const& path) {
                if (path.stem() == "B")
                    return Status(Error { "'" + path.string() + "' is torn" });
                loadedCards().push_back(path.stem().string());
                return Status();
            },
        .holds = [](void const* asked) { return asked == &address && !loadedCards().empty(); } });
    EXPECT_FALSE(isPluginAddress(&address));
    library("A");
    text("A.plist", kSpringBoardFilter);
    for (std::string const name : { "B", "C", "D" }) {
        text(name + ".card", "");
        text(name + ".plist",
            name == "D" ? bundles("<string>com.apple.mobilesafari</string>") : kSpringBoardFilter);
    }

    testing::internal::CaptureStderr();
    auto const reports = loadPlugins({ folder }, {}, {});
    std::string const said = testing::internal::GetCapturedStderr();

    EXPECT_EQ(names(reports), "A+B-C+D-");
    EXPECT_EQ(loadedCards(), std::vector<std::string> { "C" });
    EXPECT_EQ(reports[1].problem, "'" + reports[1].path.string() + "' is torn");
    EXPECT_EQ(reports[2].needed, std::vector<std::string> { "punch" });
    EXPECT_NE(said.find("is torn"), std::string::npos) << said;
    EXPECT_TRUE(isPluginAddress(&address));
}

TEST_F(PluginLoaderTest, ReadsTheFilter)
{
    EXPECT_EQ(answerTo(kSpringBoardFilter).filter, PluginFilter::matches);
    EXPECT_EQ(answerTo(bundles("")).filter, PluginFilter::otherProcess);
    EXPECT_EQ(answerTo(bundles("<string>com.apple.SpringBoard</string>")).filter, PluginFilter::otherProcess);
    EXPECT_EQ(answerTo(filter("<dict><key>Filter</key><dict/></dict>")).filter, PluginFilter::otherProcess);
    EXPECT_EQ(readPluginFilter(folder / "none.so", {}).filter, PluginFilter::missing);
}

TEST_F(PluginLoaderTest, AMalformedFilterHasAReason)
{
    for (std::string const& bad :
        {
            std::string("broken"),
            filter("<array/>"),
            filter("<dict/>"),
            filter("<dict><key>Filter</key><string>com.apple.springboard</string></dict>"),
            filter(
                "<dict><key>Filter</key><dict><key>Bundles</key><string>com.apple.springboard</string></dict></dict>"),
            bundles("<string>com.apple.springboard</string><integer>1</integer>"),
            filter("<dict><key>Filter</key><dict><key>CoreFoundationVersion</key><true/></dict></dict>"),
        }) {
        auto const answer = answerTo(bad);
        EXPECT_EQ(answer.filter, PluginFilter::malformed) << bad;
        EXPECT_NE(answer.reason.find("x.plist"), std::string::npos) << answer.reason;
    }
    // Reading must not wait for a writer.
    fs::remove(folder / "x.plist");
    mkfifo((folder / "x.plist").c_str(), 0644);
    EXPECT_EQ(readPluginFilter(folder / "x.so", {}).filter, PluginFilter::malformed);
}

TEST_F(PluginLoaderTest, TheFilterMayNameARangeOfSystems)
{
    auto const answer = [&](std::string const& range, double number) {
        return answerTo(
            filter("<dict><key>Filter</key><dict><key>CoreFoundationVersion</key><array>" + range
                + "</array><key>Bundles</key><array><string>com.apple.springboard</string></array></dict></dict>"),
            { .coreFoundationNumber = number })
            .filter;
    };
    EXPECT_EQ(answer("<real>1600</real>", 1665.15), PluginFilter::matches);
    EXPECT_EQ(answer("<integer>1600</integer>", 1575.17), PluginFilter::otherProcess);
    EXPECT_EQ(answer("<real>1600</real><real>1700</real>", 1700), PluginFilter::otherProcess);
    EXPECT_EQ(answer("<real>1600</real><real>1700</real>", 1600), PluginFilter::matches);
    EXPECT_EQ(answer("<real>1600</real>", 0), PluginFilter::matches);
    EXPECT_EQ(answer("", 1600), PluginFilter::malformed);
}

TEST_F(PluginLoaderTest, TellsWhatALibraryAsksFor)
{
    library("A");
    auto const reports = findPlugins({ folder }, {}, {});
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_FALSE(reports[0].isLoaded);
    auto const& imports = reports[0].imports;
    EXPECT_TRUE(std::binary_search(imports.begin(), imports.end(), "posix_spawn"));
    EXPECT_FALSE(std::binary_search(imports.begin(), imports.end(), "testPluginPid")) << "it has that itself";
    auto const& needed = reports[0].needed;
    EXPECT_TRUE(std::any_of(
        needed.begin(), needed.end(), [](std::string const& name) { return name.starts_with("libc.so"); }));
}

TEST_F(PluginLoaderTest, DamagedLibrariesAreNamedNotFollowed)
{
    library("A");
    std::ifstream in(folder / "A.so", std::ios::binary);
    std::string const good((std::istreambuf_iterator<char>(in)), {});
    for (std::size_t size :
        { std::size_t { 0 }, std::size_t { 3 }, std::size_t { 63 }, good.size() / 2, good.size() - 1 }) {
        text("cut.so", good.substr(0, size));
        auto const library = readElfLibrary(folder / "cut.so");
        ASSERT_FALSE(library) << size;
        EXPECT_NE(library.message().find("cut.so"), std::string::npos);
    }
    for (std::size_t place = 0; place < 64; ++place) {   // the header, where all places come from
        for (int value : { 0x00, 0x7F, 0xFF }) {
            std::string damaged = good;
            damaged[place] = static_cast<char>(value);
            text("flipped.so", damaged);
            auto const library = readElfLibrary(folder / "flipped.so");
            EXPECT_TRUE(library || !library.message().empty());
        }
    }
    EXPECT_FALSE(readElfLibrary(folder));
    EXPECT_FALSE(readElfLibrary(folder / "none.so"));
}

TEST_F(PluginLoaderTest, APluginsCommandsGoToThePhone)
{
    library("Spawner");
    text("Spawner.plist", kSpringBoardFilter);
    int restarts = 0;
    deviceCommands().setRestartHandler([&] { ++restarts; });

    auto const reports = loadPlugins({ folder }, {}, {});
    ASSERT_EQ(names(reports), "Spawner+");

    // The library's constructor started one, while the dynamic linker was still at work.
    EXPECT_EQ(deviceTrace().events().dump(),
        R"([{"n":0,"t":0.0,"kind":"spawn","path":"/var/jb/usr/bin/killall","arguments":["killall","backboardd"],)"
        R"("environment":null,"result":0}])");
    EXPECT_EQ(restarts, 0) << "not before the call has returned";
    deviceClock().runLoopTurn();
    EXPECT_EQ(restarts, 1);

    void* const handle = dlopen(reports[0].path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
    ASSERT_TRUE(handle);
    auto const pid = reinterpret_cast<int (*)()>(dlsym(handle, "testPluginPid"));
    auto const spawn =
        reinterpret_cast<int (*)(char const*, char* const*, char* const*)>(dlsym(handle, "testPluginSpawn"));
    ASSERT_TRUE(pid && spawn);
    EXPECT_GT(pid(), 1000);
    EXPECT_TRUE(isPluginAddress(reinterpret_cast<void*>(spawn)));

    char name[] = "true";
    char variable[] = "A=B";
    char* arguments[] = { name, nullptr };
    char* environment[] = { variable, nullptr };
    EXPECT_EQ(spawn("/bin/true", arguments, environment), ENOENT)
        << "the desktop's programs are not the phone's";
    EXPECT_EQ(deviceTrace().events(1)[0]["environment"].dump(), R"(["A=B"])");

    auto const spawnWithAttributes =
        reinterpret_cast<int (*)(char const*, char* const*)>(dlsym(handle, "testPluginSpawnWithAttributes"));
    ASSERT_TRUE(spawnWithAttributes);
    testing::internal::CaptureStderr();
    spawn(kKillallPath, arguments, nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(spawnWithAttributes(kKillallPath, arguments), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
        "corvel-phone: posix_spawn: file actions and attributes are not carried out\n");
    deviceCommands().setRestartHandler(nullptr);
}

TEST_F(PluginLoaderTest, TheDesktopsOwnCommandsGoToTheSystem)
{
    EXPECT_FALSE(isPluginAddress(reinterpret_cast<void*>(&isSafeModeRequested)));
    char name[] = "true";
    char* arguments[] = { name, nullptr };
    pid_t child = 0;
    ASSERT_EQ(posix_spawn(&child, "/bin/true", nullptr, nullptr, arguments, nullptr), 0);
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(deviceTrace().count(), 0U);
}

}
}
