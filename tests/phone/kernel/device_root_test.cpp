#include "phone/kernel/device_root.hpp"
#include "tests/phone/kernel/bytes.hpp"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace phone {
namespace {

namespace fs = std::filesystem;

class DeviceRootTest : public testing::Test {
protected:
    DeviceRoot root { *DeviceRoot::makeTemporary() };
    WriteOptions const withFolders { .atomically = true, .makesFolders = true };

    std::string read(char const* path)
    {
        auto const bytes = root.read(path);
        return bytes ? textOf(*bytes) : "error: " + bytes.message();
    }
    std::size_t filesIn(fs::path const& folder)
    {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
    }
};

TEST_F(DeviceRootTest, ReadsWhatItWrote)
{
    ASSERT_TRUE(root.write("/var/jb/Library/a.plist", bytesOf("one"), withFolders));
    EXPECT_EQ(read("/var/jb/Library/a.plist"), "one");
    EXPECT_TRUE(fs::exists(root.folder() / "var/jb/Library/a.plist"));

    ASSERT_TRUE(root.write("/var/jb/Library/a.plist", bytesOf("two")));
    EXPECT_EQ(read("/var/jb/Library/./a.plist"), "two");
    ASSERT_TRUE(root.write("/var/jb/Library//a.plist", bytesOf("3"), { .atomically = false }));
    EXPECT_EQ(read("/var/jb/Library/a.plist"), "3");
    EXPECT_EQ(filesIn(root.folder() / "var/jb/Library"), 1U) << "no temporary file stays";
}

TEST_F(DeviceRootTest, AMissingFileOrFolderIsAFailure)
{
    auto const missing = root.read("/var/jb/none");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.kind(), FileErrorKind::notFound);
    EXPECT_EQ(missing.message(), "cannot read '/var/jb/none': No such file or directory");

    for (bool atomically : { true, false }) {
        auto const status = root.write("/var/jb/no/folder", bytesOf("x"), { .atomically = atomically });
        ASSERT_FALSE(status);
        EXPECT_EQ(status.kind(), FileErrorKind::notFound);
    }
}

TEST_F(DeviceRootTest, NeverLeavesTheRoot)
{
    fs::create_directories(root.folder() / "var/jb");
    fs::create_symlink("/etc", root.folder() / "var/jb/etc");
    fs::create_symlink("../../..", root.folder() / "var/jb/up");
    fs::create_symlink("/etc/hostname", root.folder() / "var/jb/name");
    fs::create_symlink("loop", root.folder() / "var/jb/loop");

    for (std::string const path : { "", "relative", "/var/../../etc/passwd", "/..", "/var/jb/etc/passwd",
             "/var/jb/up/x", "/var/jb/name", "/var/jb/loop", "/var/jb/loop/x" }) {
        EXPECT_EQ(root.map(path).hasValue(), false) << path;
        auto const bytes = root.read(path);
        ASSERT_FALSE(bytes) << path;
        EXPECT_EQ(bytes.kind(), FileErrorKind::outside) << path;
        EXPECT_FALSE(root.write(path, bytesOf("x"))) << path;
        EXPECT_FALSE(root.write(path, bytesOf("x"), { .atomically = false })) << path;
        EXPECT_FALSE(root.exists(path)) << path;
    }
    EXPECT_FALSE(root.map(std::string_view("/var/\0x", 7)));
    EXPECT_EQ(root.write("/", bytesOf("x")).kind(), FileErrorKind::notAFile);
}

TEST_F(DeviceRootTest, FollowsLinksThatStayInside)
{
    ASSERT_TRUE(root.write("/private/preboot/jb/file", bytesOf("deep"), withFolders));
    fs::create_directories(root.folder() / "var");
    fs::create_symlink("/private/preboot/jb", root.folder() / "var/jb");   // as on a copied disk
    fs::create_symlink("../private/preboot/jb/file", root.folder() / "var/relative");
    fs::create_symlink(root.folder() / "private/preboot", root.folder() / "var/host");

    EXPECT_EQ(read("/var/jb/file"), "deep");
    EXPECT_EQ(read("/var/relative"), "deep");
    EXPECT_EQ(read("/var/host/jb/file"), "deep");

    ASSERT_TRUE(root.write("/var/relative", bytesOf("new")));
    EXPECT_TRUE(fs::is_symlink(root.folder() / "var/relative")) << "the file behind the link is replaced";
    EXPECT_EQ(read("/private/preboot/jb/file"), "new");
}

TEST_F(DeviceRootTest, NeverBlocksOrCrashesOnWhatIsNoFile)
{
    ASSERT_TRUE(root.setFault("/var/jb/pipe", FileFault::pipe));
    ASSERT_TRUE(root.setFault("/var/jb/folder", FileFault::directory));
    for (char const* path : { "/var/jb/pipe", "/var/jb/folder" }) {
        auto const bytes = root.read(path);
        ASSERT_FALSE(bytes);
        EXPECT_EQ(bytes.kind(), FileErrorKind::notAFile) << bytes.message();
        EXPECT_FALSE(root.write(path, bytesOf("x"), { .atomically = false }));
    }
    EXPECT_FALSE(root.write("/var/jb/folder", bytesOf("x")));
    EXPECT_TRUE(fs::is_directory(root.folder() / "var/jb/folder"));
    // A rename takes the pipe's place, as it does on the platform.
    ASSERT_TRUE(root.write("/var/jb/pipe", bytesOf("x")));
    EXPECT_EQ(read("/var/jb/pipe"), "x");
}

TEST_F(DeviceRootTest, FaultsHoldForRootToo)
{
    ASSERT_TRUE(root.write("/var/jb/a", bytesOf("old"), withFolders));

    ASSERT_TRUE(root.setFault("/var/jb/a", FileFault::unreadable));
    EXPECT_EQ(root.read("/var/jb/a").kind(), FileErrorKind::refused);
    EXPECT_TRUE(root.exists("/var/jb/a"));

    ASSERT_TRUE(root.setFault("/var/jb/a", FileFault::readonly));
    EXPECT_EQ(read("/var/jb/a"), "old");
    EXPECT_EQ(root.write("/var/jb/a", bytesOf("new")).kind(), FileErrorKind::refused);

    ASSERT_TRUE(root.setFault("/var/jb/a", FileFault::full));
    auto const full = root.write("/var/jb/a", bytesOf("new"));
    ASSERT_FALSE(full);
    EXPECT_EQ(full.kind(), FileErrorKind::full);
    EXPECT_EQ(full.message(), "cannot write '/var/jb/a': No space left on device");
    EXPECT_EQ(read("/var/jb/a"), "old");

    ASSERT_TRUE(root.setFault("/var/jb/a", FileFault::none));
    ASSERT_TRUE(root.write("/var/jb/a", bytesOf("new")));
    EXPECT_EQ(read("/var/jb/a"), "new");

    ASSERT_TRUE(root.setFault("/var/jb/a", FileFault::absent));
    EXPECT_FALSE(root.exists("/var/jb/a"));
    ASSERT_TRUE(root.setFault("/var/jb/new", FileFault::readonly));
    EXPECT_EQ(read("/var/jb/new"), "");
}

TEST_F(DeviceRootTest, FaultsOfAFolderHoldForItsFiles)
{
    ASSERT_TRUE(root.write("/var/jb/folder/a", bytesOf("old"), withFolders));

    ASSERT_TRUE(root.setFault("/var/jb/folder", FileFault::readonly));
    EXPECT_EQ(read("/var/jb/folder/a"), "old");
    for (bool const atomically : { true, false })
        EXPECT_EQ(root.write("/var/jb/folder/a", bytesOf("new"), { .atomically = atomically }).kind(),
            FileErrorKind::refused);
    EXPECT_FALSE(root.write("/var/jb/folder/b", bytesOf("new")));
    EXPECT_FALSE(root.exists("/var/jb/folder/b"));

    ASSERT_TRUE(root.setFault("/var/jb/folder", FileFault::unreadable));
    EXPECT_FALSE(root.read("/var/jb/folder/a"));

    ASSERT_TRUE(root.setFault("/var/jb/folder", FileFault::none));
    ASSERT_TRUE(root.write("/var/jb/folder/a", bytesOf("new")));
    EXPECT_EQ(read("/var/jb/folder/a"), "new");
}

TEST_F(DeviceRootTest, FaultsAreMetThroughLinks)
{
    ASSERT_TRUE(root.write("/var/jb/a", bytesOf("old"), withFolders));
    ASSERT_TRUE(root.setFault("/var/jb/link", FileFault::link, "/var/jb/a"));
    ASSERT_TRUE(root.setFault("/var/jb/a", FileFault::unreadable));
    EXPECT_EQ(root.read("/var/jb/link").kind(), FileErrorKind::refused);
}

TEST_F(DeviceRootTest, MakesLinksInsideTheRootOnly)
{
    ASSERT_TRUE(root.write("/var/jb/dir/target", bytesOf("t"), withFolders));
    ASSERT_TRUE(root.setFault("/var/jb/one", FileFault::link, "/var/jb/dir/target"));
    ASSERT_TRUE(root.setFault("/var/jb/two", FileFault::link, "dir/target"));
    ASSERT_TRUE(root.setFault("/var/jb/dir/three", FileFault::link, "../dir/target"));
    EXPECT_EQ(read("/var/jb/one") + read("/var/jb/two") + read("/var/jb/dir/three"), "ttt");

    for (char const* target :
        { "", "../../..", "/../etc/passwd", "../../../../etc/passwd", "/var/../../etc" })
        EXPECT_FALSE(root.setFault("/var/jb/bad", FileFault::link, target)) << target;
    EXPECT_FALSE(root.exists("/var/jb/bad"));
}

TEST_F(DeviceRootTest, AWriteThatFailsHalfwayKeepsTheOldFile)
{
    ASSERT_TRUE(root.write("/var/jb/a", bytesOf("old"), withFolders));
    // In a process of its own: the limit on the size of files stands for a disk that fills up.
    pid_t const child = fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit const limit { 100'000, 100'000 };
        setrlimit(RLIMIT_FSIZE, &limit);
        auto const status = root.write("/var/jb/a", Bytes(1'000'000));
        _exit(!status && status.kind() == FileErrorKind::full ? 0 : 1);
    }
    int result = 0;
    waitpid(child, &result, 0);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(read("/var/jb/a"), "old");
    EXPECT_EQ(filesIn(root.folder() / "var/jb"), 1U);
}

TEST_F(DeviceRootTest, KeepsTheRightsOfWhatItReplaces)
{
    ASSERT_TRUE(root.write("/var/jb/a", bytesOf("x"), withFolders));
    EXPECT_EQ(fs::status(root.folder() / "var/jb/a").permissions(), fs::perms(0644));
    fs::permissions(root.folder() / "var/jb/a", fs::perms(0600));
    ASSERT_TRUE(root.write("/var/jb/a", bytesOf("y")));
    EXPECT_EQ(fs::status(root.folder() / "var/jb/a").permissions(), fs::perms(0600));
}

TEST_F(DeviceRootTest, HoldsLargeAndEmptyFiles)
{
    Bytes large(9'000'000);
    for (std::size_t i = 0; i < large.size(); ++i)
        large[i] = static_cast<std::uint8_t>(i * 31 >> 3);
    ASSERT_TRUE(root.write("/large", large));
    ASSERT_TRUE(root.write("/empty", Bytes {}));
    EXPECT_TRUE(*root.read("/large") == large);
    EXPECT_EQ(read("/empty"), "");
}

TEST_F(DeviceRootTest, RemovesFilesFoldersAndLinksButNotWhatALinkLeadsTo)
{
    fs::path const elsewhere = fs::temp_directory_path() / "corvel-root-elsewhere";
    std::ofstream(elsewhere) << "keep";
    ASSERT_TRUE(root.write("/dir/a/b", bytesOf("x"), withFolders));
    fs::create_symlink(elsewhere, root.folder() / "dir/link");

    ASSERT_TRUE(root.remove("/dir/link"));
    EXPECT_TRUE(fs::exists(elsewhere));
    ASSERT_TRUE(root.remove("/dir"));
    ASSERT_TRUE(root.remove("/dir")) << "already gone";
    EXPECT_FALSE(root.exists("/dir"));
    EXPECT_FALSE(root.remove("/"));
    EXPECT_FALSE(root.remove("/dir/.."));
    fs::remove(elsewhere);
}

TEST_F(DeviceRootTest, EmptiesATemporaryRoot)
{
    ASSERT_TRUE(root.write("/var/jb/a", bytesOf("x"), withFolders));
    ASSERT_TRUE(root.setFault("/var/jb/a", FileFault::unreadable));
    ASSERT_TRUE(root.empty());
    EXPECT_EQ(filesIn(root.folder()), 0U);
    ASSERT_TRUE(root.fill({ { "/var/jb/a", bytesOf("starter") } }));
    EXPECT_EQ(read("/var/jb/a"), "starter") << "the fault went with the file";
}

TEST(DeviceRootKinds, AUsersFolderIsNeitherEmptiedNorOverwritten)
{
    fs::path const folder = fs::temp_directory_path() / "corvel-root-given";
    fs::remove_all(folder);
    fs::create_directories(folder / "var");
    std::ofstream(folder / "var/a") << "mine";
    {
        auto root = DeviceRoot::openGiven(folder);
        ASSERT_TRUE(root);
        EXPECT_FALSE(root->wasEmpty());
        EXPECT_FALSE(root->empty());
        ASSERT_TRUE(root->fill({ { "/var/a", bytesOf("starter") }, { "/var/b", bytesOf("starter") } }));
        EXPECT_EQ(textOf(*root->read("/var/a")), "mine");
        EXPECT_FALSE(root->exists("/var/b"));
    }
    EXPECT_TRUE(fs::exists(folder / "var/a")) << "it outlives the object";
    fs::remove_all(folder);
}

TEST(DeviceRootKinds, AnEmptyOrMissingFolderIsFilledOnce)
{
    fs::path const folder = fs::temp_directory_path() / "corvel-root-new" / "inner";
    fs::remove_all(folder.parent_path());
    {
        auto root = DeviceRoot::openGiven(folder);
        ASSERT_TRUE(root);
        EXPECT_TRUE(root->wasEmpty());
        ASSERT_TRUE(root->fill({ { "/var/jb/a", bytesOf("starter") } }));
        ASSERT_TRUE(root->write("/var/jb/a", bytesOf("changed")));
    }
    auto again = DeviceRoot::openGiven(folder);
    ASSERT_TRUE(again);
    ASSERT_TRUE(again->fill({ { "/var/jb/a", bytesOf("starter") } }));
    EXPECT_EQ(textOf(*again->read("/var/jb/a")), "changed");
    fs::remove_all(folder.parent_path());
}

TEST(DeviceRootKinds, TheUsersDataFolderFollowsTheEnvironment)
{
    std::string const home = std::getenv("HOME") ? std::getenv("HOME") : "";
    setenv("XDG_DATA_HOME", "/tmp/corvel data", 1);
    EXPECT_EQ(*DeviceRoot::userDataFolder(), fs::path("/tmp/corvel data/corvel"));
    setenv("XDG_DATA_HOME", "relative", 1);
    setenv("HOME", "/home/someone", 1);
    EXPECT_EQ(*DeviceRoot::userDataFolder(), fs::path("/home/someone/.local/share/corvel"));
    unsetenv("XDG_DATA_HOME");
    unsetenv("HOME");
    EXPECT_TRUE(DeviceRoot::userDataFolder()) << "from the user database";
    setenv("HOME", home.c_str(), 1);
}

TEST(DeviceRootKinds, ATemporaryRootIsRemovedByItsMakerOnly)
{
    fs::path folder;
    {
        DeviceRoot root = *DeviceRoot::makeTemporary();
        folder = root.folder();
        pid_t const child = fork();
        if (child == 0) {
            {
                DeviceRoot const inChild = std::move(root);
            }
            _exit(0);
        }
        waitpid(child, nullptr, 0);
        EXPECT_TRUE(fs::exists(folder));
        // The child moved its own copy.
        // cppcheck-suppress accessMoved
        DeviceRoot moved = std::move(root);
        moved = *DeviceRoot::makeTemporary();
        EXPECT_FALSE(fs::exists(folder));
        folder = moved.folder();
    }
    EXPECT_FALSE(fs::exists(folder));
}

TEST(DeviceRootKinds, AFileIsNoRoot)
{
    fs::path const file = fs::temp_directory_path() / "corvel-root-file";
    std::ofstream(file) << "x";
    auto const root = DeviceRoot::openGiven(file);
    ASSERT_FALSE(root);
    EXPECT_NE(root.message().find(file.string()), std::string::npos);
    EXPECT_FALSE(DeviceRoot::openGiven(file / "below"));
    EXPECT_FALSE(DeviceRoot::openGiven(""));
    fs::remove(file);
}

TEST(FileFaults, HaveNames)
{
    EXPECT_EQ(fileFaultNamed("pipe"), FileFault::pipe);
    EXPECT_EQ(fileFaultNamed("full"), FileFault::full);
    EXPECT_FALSE(fileFaultNamed("broken"));
}

}
}
