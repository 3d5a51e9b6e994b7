// Files of this computer: reading one whole, and how a failure is told. Any thread.
#pragma once

#include "phone/kernel/result.hpp"

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace phone {

enum class FileErrorKind {
    outside,    // the path leaves the device root, or is not absolute
    notFound,   // no such file, or no such folder to write into
    notAFile,   // a folder, pipe, socket or device
    refused,    // permission
    full,       // no space left
    other,
};

struct FileError : Error {
    FileErrorKind kind { FileErrorKind::other };
};

// Result<T> with the kind of failure beside its message.
template <class T>
class [[nodiscard]] FileResult : public Result<T> {
public:
    FileResult(T value)
        : Result<T>(std::move(value))
    {
    }
    FileResult(FileError error)
        : Result<T>(Error { std::move(error.message) })
        , m_kind(error.kind)
    {
    }
    // Valid only without a value.
    FileErrorKind kind() const { return m_kind; }
    FileError fileError() const { return { { this->message() }, m_kind }; }

private:
    FileErrorKind m_kind { FileErrorKind::other };
};

template <>
class FileResult<void> : public Result<void> {
public:
    FileResult() = default;
    FileResult(FileError error)
        : Result<void>(Error { std::move(error.message) })
        , m_kind(error.kind)
    {
    }
    FileErrorKind kind() const { return m_kind; }
    FileError fileError() const { return { { message() }, m_kind }; }

private:
    FileErrorKind m_kind { FileErrorKind::other };
};

using FileStatus = FileResult<void>;

// The failure of `doing` (a verb) to the file called `name`, for an errno value.
FileError fileError(char const* doing, std::string_view name, int errorNumber);

// Opens a plain file (flags as for open(2)) without waiting for anybody and without following a link in the
// file's own place. -1 with errno set otherwise: EISDIR for a folder, ENXIO for a pipe, socket or device.
int openPlainFile(std::filesystem::path const& path, int flags);

// A descriptor that closes itself.
class Descriptor {
public:
    explicit Descriptor(int descriptor);   // -1: not open
    ~Descriptor();
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }
    // False when the system reports at this late point that data could not be kept.
    bool close();

private:
    int m_descriptor;
};

// The whole file; links are followed. Never blocks: folders, pipes, sockets and devices are refused. `name`
// stands in the message.
FileResult<Bytes> readFile(std::filesystem::path const& path, std::string_view name);
inline FileResult<Bytes> readFile(std::filesystem::path const& path) { return readFile(path, path.string()); }

}
