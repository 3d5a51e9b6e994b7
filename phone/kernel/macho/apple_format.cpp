// The iPhone's plug-ins among those that the phone's loader takes: NAME.dylib, of which it runs the slice that the process is for.
//
// A process is arm64, as on phones up to the A11, or arm64e, as on those since the A12, where code pointers are authenticated. The
// environment says which: CORVEL_SLICE=arm64e. It has to be known before the first block is made, hence before main().
#include "phone/kernel/file.hpp"
#include "phone/kernel/macho/apple_symbols.hpp"
#include "phone/kernel/macho/authentication.hpp"
#include "phone/kernel/plugin_formats.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace phone {
namespace {

MachOArchitecture architecture()
{
    return isAuthenticating() ? MachOArchitecture::arm64e : MachOArchitecture::arm64;
}

Status readLibrary(PluginReport& report)
{
    auto const file = readFile(report.path);
    if (!file)
        return file.error();
    auto const image = parseMachO(*file, architecture());
    if (!image)
        return Error { "'" + report.path.string() + "': " + image.message() };
    report.needed = image->libraries;
    for (MachOImport const& import : image->imports)
        report.imports.push_back(import.name.starts_with('_') ? import.name.substr(1) : import.name);
    std::sort(report.imports.begin(), report.imports.end());
    report.imports.erase(std::unique(report.imports.begin(), report.imports.end()), report.imports.end());
    return {};
}

Status loadLibrary(std::filesystem::path const& path)
{
    auto const loaded = loadAppleLibrary(path, architecture());
    return loaded ? Status() : loaded.error();
}

bool registerFormat()
{
    char const* const slice = std::getenv("CORVEL_SLICE");
    if (slice && std::strcmp(slice, "arm64e") == 0) {
        beginAuthenticating();
    } else if (slice && *slice && std::strcmp(slice, "arm64") != 0) {
        std::fprintf(stderr, "CORVEL_SLICE is \"%s\"; it may be arm64 or arm64e\n", slice);
        std::exit(2);
    }
    addPluginFormat(
        { .extension = ".dylib", .read = readLibrary, .load = loadLibrary, .holds = isAppleLibraryAddress });
    return true;
}

bool const g_isRegistered [[maybe_unused]] = registerFormat();

}
}
