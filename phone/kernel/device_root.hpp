// DeviceRoot: the folder that stands for the phone's disk. `/var/jb/x` on the phone is ROOT/var/jb/x here,
// and nothing outside ROOT is read or written, whatever `..` or links say. Main thread; reading and writing
// also from others as long as no fault is set meanwhile.
#pragma once

#include "phone/kernel/file.hpp"
#include "phone/kernel/result.hpp"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace phone {

enum class FileFault {
    none,
    absent,       // nothing there
    directory,    // a folder in its place
    link,         // a symbolic link in its place
    unreadable,   // there, but reading is refused
    readonly,     // there, but writing and replacing are refused
    pipe,         // a named pipe in its place, with nobody at the other end
    full,         // writing fails as on a full disk; what was there stays
};

// The name used in scripts: `absent`, `directory`, … None for another text.
std::optional<FileFault> fileFaultNamed(std::string_view name);

// The other way round.
char const* fileFaultName(FileFault fault);

// How a file is written.
struct WriteOptions {
    bool atomically { true };      // a new file takes the old one's place, or the old one stays as it was
    bool makesFolders { false };   // the platform's writers don't: a missing folder is a failure
};

// One file of a starter set.
struct StarterFile {
    std::string devicePath;   // absolute, as on the phone
    Bytes contents;
};

class DeviceRoot {
public:
    // What the folder is, which decides what may be done with it.
    enum class Kind {
        userData,    // the default one, in the user's data directory
        given,       // named by the user: never emptied, existing files never replaced by fill()
        temporary,   // ours, under the system's temporary folder; removed with this object
    };

    // The folder that the user named. Made if missing (with its parents).
    static Result<DeviceRoot> openGiven(std::filesystem::path folder);

    // $XDG_DATA_HOME/corvel (when that is an absolute path), otherwise ~/.local/share/corvel.
    static Result<std::filesystem::path> userDataFolder();
    static Result<DeviceRoot> openUserData();

    // A new, empty folder. It is removed by the process that made it only, so a forked child leaves its
    // parent's root alone.
    static Result<DeviceRoot> makeTemporary();

    DeviceRoot(DeviceRoot&&) noexcept;
    DeviceRoot& operator=(DeviceRoot&&) noexcept;
    ~DeviceRoot();

    Kind kind() const { return m_kind; }
    std::filesystem::path const& folder() const { return m_folder; }   // absolute host path, links resolved

    // Did the folder hold nothing when it was opened? Only then is it filled with the starter set.
    bool wasEmpty() const { return m_wasEmpty; }

    // Writes the files that are not there yet, with their folders; a root that was not empty is left alone
    // and that is no error. Anything already there stays, in every kind of root.
    FileStatus fill(std::vector<StarterFile> const&);

    // Removes everything in a temporary root, and every fault. Any other kind: refused, nothing removed.
    FileStatus empty();

    // The host path of a device path, with the links on the way resolved. The file itself need not exist.
    // Refused: relative paths, `..`, a zero byte, a link that leads out of the root or round in a circle.
    // A link's absolute target may be a host path inside the root or a device path that exists.
    FileResult<std::filesystem::path> map(std::string_view devicePath) const;

    // The whole file. Never blocks: pipes, sockets and devices are refused, as are folders.
    FileResult<Bytes> read(std::string_view devicePath) const;

    // Atomically: a temporary file beside it, flushed to disk, then renamed over it; on any failure the old
    // file is as it was and the temporary one is gone. Otherwise in place, and a failure leaves what it left.
    FileStatus write(std::string_view devicePath, void const* bytes, std::size_t count, WriteOptions = {});
    FileStatus write(std::string_view devicePath, Bytes const& bytes, WriteOptions options = {})
    {
        return write(devicePath, bytes.data(), bytes.size(), options);
    }

    // A folder counts too. False for what map() refuses.
    bool exists(std::string_view devicePath) const;
    // A file, or a folder with all it holds (links are removed, never followed). Absent: done already.
    FileStatus remove(std::string_view devicePath);

    // Puts the thing named into the place of devicePath, so that reading and writing meet it. `unreadable`,
    // `readonly` and `full` keep the file that is there (`unreadable` and `readonly` make an empty one when
    // there is none) and hold for root too, whom no permission stops; of a folder they hold for the files in it.
    // `none` lifts those three. `link` needs
    // a target: a device path, or one relative to the link's folder; one that leaves the root is refused.
    FileStatus setFault(std::string_view devicePath, FileFault, std::string_view linkTarget = {});

    // What setFault() has set and no disk keeps (`unreadable`, `readonly`, `full`), by device path: a phone that
    // restarts sets it again.
    std::vector<std::pair<std::string, FileFault>> faults() const;

private:
    DeviceRoot(Kind, std::filesystem::path folder, bool wasEmpty);
    static Result<DeviceRoot> open(Kind, std::filesystem::path folder);
    FileFault faultAt(std::filesystem::path const& hostPath) const;
    FileResult<std::filesystem::path> mapPlace(std::string_view devicePath) const;
    void removeTemporary();

    Kind m_kind;
    std::filesystem::path m_folder;   // empty after a move
    bool m_wasEmpty;
    int m_owner;                                           // process that made a temporary root
    std::map<std::filesystem::path, FileFault> m_faults;   // by host path
};

}
