#include "phone/kernel/file.hpp"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace phone {

namespace {

FileErrorKind kindOf(int errorNumber)
{
    switch (errorNumber) {
    case ENOENT:
    case ENOTDIR: return FileErrorKind::notFound;
    case EISDIR:
    case ENXIO:
    case ELOOP: return FileErrorKind::notAFile;
    case EACCES:
    case EPERM:
    case EROFS: return FileErrorKind::refused;
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return FileErrorKind::full;
    default: return FileErrorKind::other;
    }
}

}

FileError fileError(char const* doing, std::string_view name, int errorNumber)
{
    // The system's own words for these ("no such device or address") would only puzzle.
    char const* const reason = errorNumber == ENXIO ? "it is no plain file" : std::strerror(errorNumber);
    return { { std::string("cannot ") + doing + " '" + std::string(name) + "': " + reason },
        kindOf(errorNumber) };
}

int openPlainFile(std::filesystem::path const& path, int flags)
{
    int const descriptor = ::open(path.c_str(), flags | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY, 0644);
    if (descriptor < 0)
        return -1;
    struct stat status { };
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
        return descriptor;
    ::close(descriptor);
    errno = S_ISDIR(status.st_mode) ? EISDIR : ENXIO;
    return -1;
}

Descriptor::Descriptor(int descriptor)
    : m_descriptor(descriptor)
{
}

Descriptor::~Descriptor()
{
    if (isOpen())
        ::close(m_descriptor);
}

bool Descriptor::close() { return ::close(std::exchange(m_descriptor, -1)) == 0; }

FileResult<Bytes> readFile(std::filesystem::path const& path, std::string_view name)
{
    std::error_code error;
    auto const resolved = std::filesystem::canonical(path, error);
    if (error)
        return fileError("read", name, error.value());
    Descriptor const file(openPlainFile(resolved, O_RDONLY));
    if (!file.isOpen())
        return fileError("read", name, errno);
    // The size is a hint: the file may grow or shrink while it is read.
    struct stat status { };
    Bytes bytes;
    if (fstat(file.get(), &status) == 0)
        bytes.resize(static_cast<std::size_t>(status.st_size) + 1);
    std::size_t count = 0;
    while (true) {
        if (count == bytes.size())
            bytes.resize(bytes.size() * 2 + 4096);
        ssize_t const taken = ::read(file.get(), bytes.data() + count, bytes.size() - count);
        if (taken < 0 && errno == EINTR)
            continue;
        if (taken < 0)
            return fileError("read", name, errno);
        if (taken == 0)
            break;
        count += static_cast<std::size_t>(taken);
    }
    bytes.resize(count);
    return bytes;
}

}
