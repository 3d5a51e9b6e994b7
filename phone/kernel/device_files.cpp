// Reading and writing one file under the device root: DeviceRoot::read and DeviceRoot::write.
#include "phone/kernel/device_root.hpp"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace phone {

namespace fs = std::filesystem;

namespace {

// 0, or the error number.
int writeAll(int descriptor, void const* bytes, std::size_t count)
{
    auto const* next = static_cast<std::uint8_t const*>(bytes);
    while (count > 0) {
        ssize_t const written = ::write(descriptor, next, count);
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return errno;
        }
        next += written;
        count -= static_cast<std::size_t>(written);
    }
    return 0;
}

// 0, or the error number. The temporary file is gone either way.
int replaceFile(fs::path const& path, void const* bytes, std::size_t count)
{
    std::string temporary =
        (path.parent_path() / ("." + path.filename().string().substr(0, 200) + ".XXXXXX")).string();
    Descriptor file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file.isOpen())
        return errno;
    int error = writeAll(file.get(), bytes, count);
    // mkostemp makes it the owner's alone; a file of the phone has the usual rights, or those it had.
    struct stat old { };
    mode_t const mode = stat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode) ? old.st_mode & 07777 : 0644;
    if (error == 0 && (fchmod(file.get(), mode) != 0 || fsync(file.get()) != 0))
        error = errno;
    if (!file.close() && error == 0)
        error = errno;
    if (error == 0 && rename(temporary.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0)
        unlink(temporary.c_str());
    return error;
}

}

FileResult<Bytes> DeviceRoot::read(std::string_view devicePath) const
{
    auto const path = map(devicePath);
    if (!path)
        return path.fileError();
    if (faultAt(*path) == FileFault::unreadable)
        return fileError("read", devicePath, EACCES);
    return readFile(*path, devicePath);
}

FileStatus DeviceRoot::write(
    std::string_view devicePath, void const* bytes, std::size_t count, WriteOptions options)
{
    auto const path = map(devicePath);
    if (!path)
        return path.fileError();
    switch (faultAt(*path)) {
    case FileFault::readonly: return fileError("write", devicePath, EACCES);
    case FileFault::full: return fileError("write", devicePath, ENOSPC);
    default: break;
    }
    std::error_code error;
    if (*path == m_folder || fs::is_directory(*path, error))
        return fileError("write", devicePath, EISDIR);
    if (options.makesFolders) {
        fs::create_directories(path->parent_path(), error);
        if (error)
            return fileError("write", devicePath, error.value());
    }
    if (options.atomically) {
        if (int const errorNumber = replaceFile(*path, bytes, count))
            return fileError("write", devicePath, errorNumber);
        return {};
    }
    Descriptor file(openPlainFile(*path, O_WRONLY | O_CREAT | O_TRUNC));
    if (!file.isOpen())
        return fileError("write", devicePath, errno);
    int errorNumber = writeAll(file.get(), bytes, count);
    if (!file.close() && errorNumber == 0)
        errorNumber = errno;
    if (errorNumber != 0)
        return fileError("write", devicePath, errorNumber);
    return {};
}

}
