#include "phone/kernel/device_root.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <pwd.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace phone {

namespace fs = std::filesystem;

namespace {

struct FaultName {
    char const* name;
    FileFault fault;
};

constexpr FaultName kFaultNames[] = {
    { "none", FileFault::none },
    { "absent", FileFault::absent },
    { "directory", FileFault::directory },
    { "link", FileFault::link },
    { "unreadable", FileFault::unreadable },
    { "readonly", FileFault::readonly },
    { "pipe", FileFault::pipe },
    { "full", FileFault::full },
};

FileError outside(std::string_view devicePath, char const* why)
{
    return { { "'" + std::string(devicePath) + "' " + why }, FileErrorKind::outside };
}

// Is `path` the root itself or below it? Both absolute and without `..`.
bool isBelow(fs::path const& path, fs::path const& root)
{
    auto const [end, ignored] = std::mismatch(root.begin(), root.end(), path.begin(), path.end());
    return end == root.end();
}

bool isEmptyFolder(fs::path const& folder)
{
    std::error_code error;
    fs::directory_iterator const entries(folder, error);
    return !error && entries == fs::directory_iterator();
}

}

char const* fileFaultName(FileFault fault)
{
    for (FaultName const& entry : kFaultNames)
        if (entry.fault == fault)
            return entry.name;
    return "none";
}

std::optional<FileFault> fileFaultNamed(std::string_view name)
{
    for (FaultName const& entry : kFaultNames) {
        if (name == entry.name)
            return entry.fault;
    }
    return std::nullopt;
}

Result<DeviceRoot> DeviceRoot::open(Kind kind, fs::path folder)
{
    std::error_code error;
    fs::create_directories(folder, error);
    if (error && !fs::is_directory(folder))
        return Error { "cannot make the device root " + folder.string() + ": " + error.message() };
    folder = fs::canonical(folder, error);
    if (error)
        return Error { "cannot open the device root: " + error.message() };
    if (!fs::is_directory(folder, error))
        return Error { "the device root " + folder.string() + " is not a folder" };
    fs::directory_iterator const entries(folder, error);
    if (error)
        return Error { "cannot open the device root " + folder.string() + ": " + error.message() };
    bool const wasEmpty = isEmptyFolder(folder);
    return DeviceRoot(kind, std::move(folder), wasEmpty);
}

Result<DeviceRoot> DeviceRoot::openGiven(fs::path folder)
{
    if (folder.empty())
        return Error { "the device root has no name" };
    return open(Kind::given, std::move(folder));
}

Result<fs::path> DeviceRoot::userDataFolder()
{
    // A relative XDG_DATA_HOME is to be ignored (freedesktop.org, base directories).
    if (char const* data = std::getenv("XDG_DATA_HOME"); data && data[0] == '/')
        return fs::path(data) / "corvel";
    char const* home = std::getenv("HOME");
    if (!home || home[0] != '/') {
        passwd const* user = getpwuid(getuid());
        home = user ? user->pw_dir : nullptr;
    }
    if (!home || home[0] != '/')
        return Error { "no home folder for the device root; name a folder with --root" };
    return fs::path(home) / ".local/share/corvel";
}

Result<DeviceRoot> DeviceRoot::openUserData()
{
    auto folder = userDataFolder();
    if (!folder)
        return folder.error();
    return open(Kind::userData, *std::move(folder));
}

Result<DeviceRoot> DeviceRoot::makeTemporary()
{
    std::error_code error;
    fs::path const parent = fs::temp_directory_path(error);
    if (error)
        return Error { "no folder for temporary files: " + error.message() };
    std::string name = (parent / "corvel-root-XXXXXX").string();
    if (!mkdtemp(name.data()))
        return Error { "cannot make a temporary device root in " + parent.string() + ": "
            + std::strerror(errno) };
    return open(Kind::temporary, name);
}

DeviceRoot::DeviceRoot(Kind kind, fs::path folder, bool wasEmpty)
    : m_kind(kind)
    , m_folder(std::move(folder))
    , m_wasEmpty(wasEmpty)
    , m_owner(getpid())
{
}

DeviceRoot::DeviceRoot(DeviceRoot&& other) noexcept
    : m_kind(other.m_kind)
    , m_folder(std::exchange(other.m_folder, fs::path()))
    , m_wasEmpty(other.m_wasEmpty)
    , m_owner(other.m_owner)
    , m_faults(std::move(other.m_faults))
{
}

DeviceRoot& DeviceRoot::operator=(DeviceRoot&& other) noexcept
{
    if (this != &other) {
        removeTemporary();
        m_kind = other.m_kind;
        m_folder = std::exchange(other.m_folder, fs::path());
        m_wasEmpty = other.m_wasEmpty;
        m_owner = other.m_owner;
        m_faults = std::move(other.m_faults);
    }
    return *this;
}

DeviceRoot::~DeviceRoot() { removeTemporary(); }

void DeviceRoot::removeTemporary()
{
    if (m_kind != Kind::temporary || m_folder.empty() || m_owner != getpid())
        return;
    std::error_code ignored;   // whatever cannot be removed stays for the system's own cleaning
    fs::remove_all(m_folder, ignored);
}

FileStatus DeviceRoot::fill(std::vector<StarterFile> const& files)
{
    if (!m_wasEmpty)
        return {};
    for (StarterFile const& file : files) {
        auto const place = mapPlace(file.devicePath);
        if (!place)
            return place.fileError();
        std::error_code ignored;
        if (fs::exists(fs::symlink_status(*place, ignored)))
            continue;
        if (auto status = write(file.devicePath, file.contents, { .atomically = true, .makesFolders = true });
            !status)
            return status;
    }
    return {};
}

FileStatus DeviceRoot::empty()
{
    if (m_kind != Kind::temporary) {
        return FileError { { "the device root " + m_folder.string()
                               + " is not a temporary one and is not emptied" },
            FileErrorKind::refused };
    }
    m_faults.clear();
    std::error_code error;
    std::vector<fs::path> entries;
    for (auto const& entry : fs::directory_iterator(m_folder, error))
        entries.push_back(entry.path());
    for (fs::path const& entry : entries) {
        fs::remove_all(entry, error);
        if (error)
            return FileError { { "cannot remove " + entry.string() + ": " + error.message() },
                FileErrorKind::other };
    }
    m_wasEmpty = true;
    return {};
}

namespace {

// Links followed on the way to one file; the kernel's own limit (path_resolution(7)).
constexpr int kMaximumLinks = 40;

// The parts of a device path, last part first; `.` and doubled slashes are left out. None when one is `..`.
std::optional<std::vector<std::string>> reversedParts(std::string_view path)
{
    std::vector<std::string> parts;
    for (fs::path const& part : fs::path(path).relative_path()) {
        if (part == "..")
            return std::nullopt;
        if (!part.empty() && part != ".")
            parts.push_back(part.string());
    }
    std::reverse(parts.begin(), parts.end());
    return parts;
}

}

// The host path of the place itself: links on the way are followed, one at the end is not.
FileResult<fs::path> DeviceRoot::mapPlace(std::string_view devicePath) const
{
    std::string path(devicePath);
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    auto const slash = path.rfind('/');
    if (path.empty() || path[0] != '/' || slash == std::string::npos)
        return outside(devicePath, "is not an absolute path of the phone");
    std::string const name = path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..")
        return outside(devicePath, "names no place on the phone");
    auto folder = map(slash == 0 ? "/" : path.substr(0, slash));
    if (!folder)
        return folder;
    return *folder / name;
}

FileResult<fs::path> DeviceRoot::map(std::string_view devicePath) const
{
    if (devicePath.empty() || devicePath[0] != '/')
        return outside(devicePath, "is not an absolute path of the phone");
    if (devicePath.find('\0') != std::string_view::npos)
        return outside(devicePath.substr(0, devicePath.find('\0')), "holds a zero byte");
    auto rest = reversedParts(devicePath);
    if (!rest)
        return outside(devicePath, "holds `..`");

    // Walks down part by part. A link's own parts are put in front of what is left; `..` in a link is
    // resolved against the folder reached so far, and may go up to the root but no further.
    fs::path place = m_folder;
    int links = 0;
    while (!rest->empty()) {
        std::string const part = std::move(rest->back());
        rest->pop_back();
        if (part == "..") {
            if (place == m_folder)
                return outside(devicePath, "leads out of the device root by a link");
            place = place.parent_path();
            continue;
        }
        fs::path const next = place / part;
        std::error_code error;
        if (!fs::is_symlink(fs::symlink_status(next, error))) {
            place = next;
            continue;
        }
        if (++links > kMaximumLinks)
            return outside(devicePath, "leads round in a circle of links");
        fs::path target = fs::read_symlink(next, error);
        if (error)
            return FileError { { "'" + std::string(devicePath) + "': " + error.message() },
                FileErrorKind::other };
        if (target.is_absolute()) {
            // A copied disk holds links such as /var/jb -> /private/preboot/…, which mean the phone's root.
            fs::path const plain = target.lexically_normal();
            if (isBelow(plain, m_folder))
                target = plain.lexically_relative(m_folder);
            else if (fs::exists(fs::symlink_status(m_folder / plain.relative_path(), error)))
                target = plain.relative_path();
            else
                return outside(devicePath, "leads out of the device root by a link");
            place = m_folder;
        }
        std::vector<std::string> parts;
        for (fs::path const& linkPart : target) {
            if (!linkPart.empty() && linkPart != ".")
                parts.push_back(linkPart.string());
        }
        rest->insert(rest->end(), parts.rbegin(), parts.rend());
    }
    return place;
}

FileFault DeviceRoot::faultAt(fs::path const& hostPath) const
{
    if (auto const own = m_faults.find(hostPath); own != m_faults.end())
        return own->second;
    // Those that the map holds are a folder's too: what lies in one that can't be written to can't be replaced.
    auto const folders = m_faults.find(hostPath.parent_path());
    return folders == m_faults.end() ? FileFault::none : folders->second;
}

bool DeviceRoot::exists(std::string_view devicePath) const
{
    auto const path = map(devicePath);
    std::error_code error;
    return path && fs::exists(fs::symlink_status(*path, error));
}

FileStatus DeviceRoot::remove(std::string_view devicePath)
{
    auto const place = mapPlace(devicePath);
    if (!place)
        return place.fileError();
    m_faults.erase(*place);
    std::error_code error;
    fs::remove_all(*place, error);
    if (error)
        return FileError { { "cannot remove '" + std::string(devicePath) + "': " + error.message() },
            FileErrorKind::other };
    return {};
}

FileStatus DeviceRoot::setFault(std::string_view devicePath, FileFault fault, std::string_view linkTarget)
{
    auto const place = mapPlace(devicePath);
    if (!place)
        return place.fileError();
    std::string const name = "'" + std::string(devicePath) + "'";
    fs::path target;
    if (fault == FileFault::link) {
        // Stored relative to the link's folder, so that it holds on the host as well.
        if (linkTarget.empty() || linkTarget.find('\0') != std::string_view::npos)
            return outside(devicePath, "needs a target to be a link");
        fs::path const folder = place->parent_path();
        fs::path const wanted(linkTarget);
        fs::path const absolute =
            (wanted.is_absolute() ? m_folder / wanted.relative_path() : folder / wanted).lexically_normal();
        if (!isBelow(absolute, m_folder) || (wanted.is_absolute() && wanted.lexically_normal() != wanted))
            return outside(linkTarget, "leaves the device root");
        target = absolute.lexically_relative(folder);
    }

    std::error_code error;
    bool const replaces = fault == FileFault::absent || fault == FileFault::directory
        || fault == FileFault::link || fault == FileFault::pipe;
    if (fault != FileFault::absent && fault != FileFault::none)
        fs::create_directories(place->parent_path(), error);
    if (replaces && !error)
        fs::remove_all(*place, error);
    m_faults.erase(*place);
    switch (fault) {
    case FileFault::none:
    case FileFault::absent: break;
    case FileFault::directory:
        if (!error)
            fs::create_directory(*place, error);
        break;
    case FileFault::link:
        if (!error)
            fs::create_symlink(target, *place, error);
        break;
    case FileFault::pipe:
        if (!error && mkfifo(place->c_str(), 0644) != 0)
            error = { errno, std::generic_category() };
        break;
    case FileFault::unreadable:
    case FileFault::readonly:
        if (!exists(devicePath)) {
            if (auto made = write(devicePath, Bytes {}); !made)
                return made;
        }
        m_faults[*place] = fault;
        break;
    case FileFault::full: m_faults[*place] = fault; break;
    }
    if (error)
        return FileError { { "cannot set up " + name + ": " + error.message() }, FileErrorKind::other };
    return {};
}

std::vector<std::pair<std::string, FileFault>> DeviceRoot::faults() const
{
    std::vector<std::pair<std::string, FileFault>> all;
    for (auto const& [place, fault] : m_faults)
        all.emplace_back("/" + place.lexically_relative(m_folder).string(), fault);
    return all;
}

}
