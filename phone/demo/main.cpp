// corvel-demo: draws the lock screen in many situations and writes down what the phones recorded.
#include "phone/demo/report.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace phone;

constexpr int kUsageStatus = 2;   // the command line is wrong, as usual for that

int fail(std::string const& message, int status = EXIT_FAILURE)
{
    std::fprintf(stderr, "corvel-demo: %s\n", message.c_str());
    return status;
}

}

int main(int count, char** words)
{
    std::filesystem::path folder = "out/demo";
    for (int i = 1; i < count; ++i) {
        std::string const word = words[i];
        if (word == "--help" || word == "-h") {
            std::printf("usage: corvel-demo [--out DIR]\n\nWrites pictures, a page and a transcript to DIR "
                        "(out/demo).\n");
            return EXIT_SUCCESS;
        }
        if (word != "--out")
            return fail("unknown option " + word + "; --help tells those there are", kUsageStatus);
        if (++i == count || !*words[i])
            return fail("--out needs a folder", kUsageStatus);
        folder = words[i];
    }
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (failure)
        return fail("cannot make the folder " + folder.string() + ": " + failure.message());

    Phone::warmUp();
    auto const scenes = demoScenes();
    auto const results = runScenes(scenes, folder);
    int status = EXIT_SUCCESS;
    for (SceneResult const& result : results) {
        if (result.problem.empty())
            std::printf("%s: %s\n", result.picture.c_str(), result.scene->title);
        else
            status = fail(std::string(result.scene->name) + ": " + result.problem);
    }
    for (auto const write : { writeOverview, writePage, writeTranscript }) {
        if (auto const written = write(results, folder); !written)
            return fail(written.message());
    }
    auto const whole = std::filesystem::absolute(folder, failure).lexically_normal();
    std::printf("All of them: %s, %s; what was recorded: %s\n", (whole / kOverviewName).c_str(),
        (whole / kPageName).c_str(), (whole / kTranscriptName).c_str());
    return status;
}
