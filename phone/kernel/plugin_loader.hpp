// The plug-in loader: Substrate's part. It looks through DynamicLibraries folders, reads the filter property
// list beside each library and loads those that name SpringBoard. Main thread, once a boot.
//
// On a phone a plug-in is NAME.dylib with NAME.plist; here the libraries end in `.so`, since they are the
// desktop's. All else is as there: no filter, no load; name order; a bad one does not stop the next.
#pragma once

#include "phone/kernel/result.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace phone {

inline constexpr char const* kSpringBoardBundle = "com.apple.springboard";

// What the loader needs to know of the process it loads into.
struct PluginHost {
    std::string bundleIdentifier { kSpringBoardBundle };
    double coreFoundationNumber { 0 };   // for filters with a CoreFoundationVersion range; 0: any will do
};

enum class PluginFilter {
    matches,
    otherProcess,   // names other bundles, or another range of systems
    missing,        // no property list beside the library
    malformed,      // there, but it is not what a filter is
};

struct PluginFilterAnswer {
    PluginFilter filter { PluginFilter::missing };
    std::string reason;   // one line, when malformed
};

// A library found, and what became of it.
struct PluginReport {
    std::filesystem::path path;   // absolute
    std::string name;             // file name without `.so`
    PluginFilter filter { PluginFilter::missing };
    bool isLoaded { false };
    std::string problem;                // one line; empty when there is none
    std::vector<std::string> needed;    // libraries it names (DT_NEEDED), in order
    std::vector<std::string> imports;   // symbols it takes from elsewhere, sorted
};

// Does the environment ask for safe mode (`_MSSafeMode` or `_SafeMode` is `1`)? Then nothing is loaded.
bool isSafeModeRequested();

// The filter beside a library: `Filter` → `Bundles`, an array of texts; `CoreFoundationVersion` beside it
// may hold one number (the lowest) or two (from the first up to, and without, the second).
PluginFilterAnswer readPluginFilter(std::filesystem::path const& library, PluginHost const&);

// The libraries in the folders, in name order folder by folder, with filters read; nothing is loaded. A
// folder that is missing is empty. `more` are loaded whatever their filter says, after the others.
std::vector<PluginReport> findPlugins(std::vector<std::filesystem::path> const& folders,
    std::vector<std::filesystem::path> const& more, PluginHost const&);

// Loads the one library (lazily bound, its symbols its own) and marks the report; constructors run inside.
// False, and `problem` set, when the dynamic linker refuses it. Loaded libraries stay for good, as on a phone.
bool loadPlugin(PluginReport&);

// findPlugins, then loadPlugin for each that matches, in order; in safe mode nothing is loaded. A line on
// standard error for each filter that is malformed and each library that would not load.
std::vector<PluginReport> loadPlugins(std::vector<std::filesystem::path> const& folders,
    std::vector<std::filesystem::path> const& more, PluginHost const&);

// Is this address (of code or data) inside a library that loadPlugin has loaded or is loading? The frameworks' C
// functions ask it of their return address. Any thread, once loading is over.
bool isPluginAddress(void const*);

}
