// What the demo leaves beside its pictures: one picture of all, a page, and the transcript.
#pragma once

#include "phone/demo/scene_run.hpp"

namespace phone {

inline constexpr char const* kOverviewName = "overview.png";
inline constexpr char const* kPageName = "index.html";
inline constexpr char const* kTranscriptName = "transcript.txt";

// An error names the file that could not be written.
Status writeOverview(std::vector<SceneResult> const& results, std::filesystem::path const& folder);
Status writePage(std::vector<SceneResult> const& results, std::filesystem::path const& folder);
Status writeTranscript(std::vector<SceneResult> const& results, std::filesystem::path const& folder);

}
