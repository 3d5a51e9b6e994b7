#include "phone/kernel/plugin_loader.hpp"

#include "phone/kernel/elf_library.hpp"
#include "phone/kernel/file.hpp"
#include "phone/kernel/plugin_formats.hpp"
#include "phone/kernel/property_list.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <optional>
#include <utility>

namespace phone {

namespace fs = std::filesystem;

namespace {

struct Range {
    std::uintptr_t begin;
    std::uintptr_t end;
};

// What loadPlugin has loaded. Written there alone.
struct LoadedPlugins {
    std::vector<Range> ranges;   // its segments in memory
    std::string loading;         // path of the one whose constructors are running; empty otherwise
};

LoadedPlugins g_plugins;

PluginFilterAnswer malformed(std::string reason) { return { PluginFilter::malformed, std::move(reason) }; }

std::optional<double> numberOf(PropertyList const& value)
{
    if (auto const* integer = value.as<std::int64_t>())
        return static_cast<double>(*integer);
    if (auto const* real = value.as<double>())
        return *real;
    return std::nullopt;
}

// None: the filter's range is malformed.
std::optional<bool> isInRange(PropertyList const& range, double number)
{
    auto const* bounds = range.as<PropertyListArray>();
    if (!bounds || bounds->empty() || bounds->size() > 2)
        return std::nullopt;
    auto const lowest = numberOf((*bounds)[0]);
    auto const end = bounds->size() == 2 ? numberOf((*bounds)[1]) : std::optional<double>(HUGE_VAL);
    if (!lowest || !end)
        return std::nullopt;
    return number == 0 || (number >= *lowest && number < *end);
}

std::vector<PluginFormat>& formats()
{
    static std::vector<PluginFormat> known;
    return known;
}

// Nil: the desktop's own, or none at all.
PluginFormat const* formatOf(fs::path const& library)
{
    for (PluginFormat const& format : formats()) {
        if (library.extension() == format.extension)
            return &format;
    }
    return nullptr;
}

// The libraries of one folder, in order of their names.
std::vector<fs::path> librariesIn(fs::path const& folder)
{
    std::vector<fs::path> libraries;
    std::error_code error;
    for (auto const& entry : fs::directory_iterator(folder, error)) {
        bool const isLibrary = entry.path().extension() == ".so" || formatOf(entry.path());
        if (isLibrary && !entry.is_directory(error))
            libraries.push_back(entry.path());
    }
    std::sort(libraries.begin(), libraries.end());
    return libraries;
}

PluginReport reportOn(fs::path const& library)
{
    PluginReport report;
    std::error_code error;
    report.path = fs::canonical(library, error);
    if (error)
        report.path = fs::absolute(library, error);
    report.name = library.stem().string();
    if (PluginFormat const* const format = formatOf(library)) {
        if (Status const read = format->read(report); !read)
            report.problem = read.message();
    } else if (auto elf = readElfLibrary(library)) {
        report.needed = std::move(elf->needed);
        report.imports = std::move(elf->imports);
    } else {
        report.problem = elf.message();
    }
    return report;
}

// Notes the segments of the library at `path`.
int noteSegments(dl_phdr_info* library, std::size_t, void* path)
{
    if (*static_cast<std::string const*>(path) != library->dlpi_name)
        return 0;
    for (int i = 0; i < library->dlpi_phnum; ++i) {
        ElfW(Phdr) const& segment = library->dlpi_phdr[i];
        if (segment.p_type == PT_LOAD) {
            std::uintptr_t const begin = library->dlpi_addr + segment.p_vaddr;
            g_plugins.ranges.push_back({ begin, begin + segment.p_memsz });
        }
    }
    return 1;
}

}

void addPluginFormat(PluginFormat format) { formats().push_back(std::move(format)); }

bool isSafeModeRequested()
{
    for (char const* name : { "_MSSafeMode", "_SafeMode" }) {
        char const* value = std::getenv(name);
        if (value && std::strcmp(value, "1") == 0)
            return true;
    }
    return false;
}

PluginFilterAnswer readPluginFilter(fs::path const& library, PluginHost const& host)
{
    fs::path path = library;
    path.replace_extension(".plist");
    auto const file = readFile(path);
    if (!file) {
        if (file.kind() == FileErrorKind::notFound)
            return { PluginFilter::missing, {} };
        return malformed(file.message());
    }
    auto const list = readPropertyList(*file);
    std::string const name = "the filter '" + path.string() + "' ";
    if (!list)
        return malformed(name + "is " + list.message());
    auto const* root = list->root.as<PropertyListDictionary>();
    PropertyList const* filter = root ? root->find("Filter") : nullptr;
    if (!filter)
        return malformed(name + "has no entry Filter");
    auto const* entries = filter->as<PropertyListDictionary>();
    if (!entries)
        return malformed(name + "has an entry Filter that is no dictionary");
    if (PropertyList const* range = entries->find("CoreFoundationVersion")) {
        auto const fits = isInRange(*range, host.coreFoundationNumber);
        if (!fits)
            return malformed(
                name + "has an entry CoreFoundationVersion that is no array of one or two numbers");
        if (!*fits)
            return { PluginFilter::otherProcess, {} };
    }
    PropertyList const* bundles = entries->find("Bundles");
    if (!bundles)
        return { PluginFilter::otherProcess, {} };
    auto const* names = bundles->as<PropertyListArray>();
    bool hasMatch = false;
    for (PropertyList const& bundle : names ? *names : PropertyListArray { 0 }) {
        auto const* text = bundle.as<std::string>();
        if (!text)
            return malformed(name + "has an entry Bundles that is no array of texts");
        hasMatch = hasMatch || *text == host.bundleIdentifier;
    }
    return { hasMatch ? PluginFilter::matches : PluginFilter::otherProcess, {} };
}

std::vector<PluginReport> findPlugins(
    std::vector<fs::path> const& folders, std::vector<fs::path> const& more, PluginHost const& host)
{
    std::vector<PluginReport> reports;
    for (fs::path const& folder : folders) {
        for (fs::path const& library : librariesIn(folder)) {
            PluginReport report = reportOn(library);
            PluginFilterAnswer answer = readPluginFilter(library, host);
            report.filter = answer.filter;
            if (answer.filter == PluginFilter::malformed)
                report.problem = std::move(answer.reason);
            reports.push_back(std::move(report));
        }
    }
    for (fs::path const& library : more) {
        PluginReport report = reportOn(library);
        report.filter = PluginFilter::matches;
        reports.push_back(std::move(report));
    }
    return reports;
}

bool loadPlugin(PluginReport& report)
{
    if (PluginFormat const* const format = formatOf(report.path)) {
        Status const loaded = format->load(report.path);
        report.isLoaded = static_cast<bool>(loaded);
        report.problem = loaded ? "" : loaded.message();
        return report.isLoaded;
    }
    // Loaded by a constructor of another one: that one's name stands again afterwards.
    std::string const outer = std::exchange(g_plugins.loading, report.path.string());
    void* const library = dlopen(report.path.c_str(), RTLD_LAZY | RTLD_LOCAL);
    g_plugins.loading = outer;
    if (!library) {
        char const* reason = dlerror();
        report.problem = reason ? reason : "the dynamic linker gave no reason";
        return false;
    }
    std::string path = report.path.string();
    dl_iterate_phdr(noteSegments, &path);
    report.isLoaded = true;
    report.problem.clear();
    return true;
}

std::vector<PluginReport> loadPlugins(
    std::vector<fs::path> const& folders, std::vector<fs::path> const& more, PluginHost const& host)
{
    std::vector<PluginReport> reports = findPlugins(folders, more, host);
    bool const isSafeMode = isSafeModeRequested();
    for (PluginReport& report : reports) {
        if (report.filter == PluginFilter::malformed)
            reportProblem(report.name + " is not loaded: " + report.problem);
        if (report.filter != PluginFilter::matches || isSafeMode)
            continue;
        if (!loadPlugin(report))
            reportProblem(report.name + " cannot be loaded: " + report.problem);
    }
    return reports;
}

bool isPluginAddress(void const* address)
{
    auto const place = reinterpret_cast<std::uintptr_t>(address);
    for (Range const& range : g_plugins.ranges) {
        if (place >= range.begin && place < range.end)
            return true;
    }
    for (PluginFormat const& format : formats()) {
        if (format.holds(address))
            return true;
    }
    // A constructor calls: the segments are noted only once the dynamic linker is done.
    Dl_info info;
    return !g_plugins.loading.empty() && dladdr(address, &info) != 0 && info.dli_fname
        && g_plugins.loading == info.dli_fname;
}

}
