#include "phone/foundation/device_paths.hpp"

#include "phone/kernel/device_root.hpp"
#include "phone/kernel/services.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace phone {

namespace {

constexpr std::string_view kDeviceFolders[] { "/var", "/private/var", "/Library", "/System" };

// /var is a link to /private/var on a phone; one of the two is enough.
std::string withoutPrivate(std::string const& path)
{
    return path.starts_with("/private/var") ? path.substr(8) : path;
}

}

bool isDevicePath(std::string_view path)
{
    for (std::string_view const folder : kDeviceFolders) {
        if (path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/'))
            return true;
    }
    return false;
}

std::optional<Bytes> readFile(std::string const& path)
{
    if (isDevicePath(path)) {
        std::optional<Bytes> contents;
        if (DeviceRoot const* const root = deviceRoot()) {
            if (auto read = root->read(withoutPrivate(path)))
                contents = std::move(read).value();
        }
        trace().record("read", { { "path", path }, { "found", contents.has_value() } });
        return contents;
    }
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored))
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return std::nullopt;
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

bool writeFile(std::string const& path, void const* bytes, std::size_t count, bool atomically)
{
    if (!isDevicePath(path)) {
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        file.write(static_cast<char const*>(bytes), static_cast<std::streamsize>(count));
        return bool(file.flush());
    }
    bool written = false;
    if (DeviceRoot* const root = deviceRoot())
        written = bool(root->write(
            withoutPrivate(path), bytes, count, { .atomically = atomically, .makesFolders = false }));
    trace().record("write", { { "path", path }, { "written", written }, { "atomically", atomically } });
    return written;
}

bool fileExists(std::string const& path)
{
    if (!isDevicePath(path)) {
        std::error_code ignored;
        return std::filesystem::exists(path, ignored);
    }
    DeviceRoot const* const root = deviceRoot();
    return root && root->exists(withoutPrivate(path));
}

}
