#include "bench/ratio_reporter.hpp"

#include <ostream>

namespace {

struct Ratio {
    char const* numerator;
    char const* denominator;
    char const* meaning;
};

constexpr Ratio kRatios[] = {
    { "bootToFirstFrame", "forkOfWarmParent", "a boot with its first frame, in forks" },
    { "stripCreation/5000", "stripCreation/5",
        "creating a strip of 5,000 contacts, without reading them, against 5" },
    { "readingContacts/5000", "readingContacts/500", "reading ten times the contacts" },
    { "cellWithPhoto", "cellWithoutPhoto", "a cell with a photo against one with an initial" },
    { "hookedMessage", "plainMessage", "a hooked message that calls its original, against a plain one" },
};

}

void RatioReporter::ReportRuns(std::vector<Run> const& runs)
{
    for (Run const& run : runs)
        if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "median")
            m_medians[run.run_name.function_name
                + (run.run_name.args.empty() ? "" : "/" + run.run_name.args)] =
                run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
    ConsoleReporter::ReportRuns(runs);
}

void RatioReporter::Finalize()
{
    ConsoleReporter::Finalize();
    GetOutputStream() << "\nRatios of medians\n";
    for (Ratio const& row : kRatios) {
        auto const top = m_medians.find(row.numerator);
        auto const bottom = m_medians.find(row.denominator);
        if (top != m_medians.end() && bottom != m_medians.end())
            GetOutputStream() << "  " << top->second / bottom->second << "  " << row.meaning << '\n';
    }
}
