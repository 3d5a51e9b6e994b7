// What a story came to, kept for comparison with the same story elsewhere: with CORVEL_RECORD=FOLDER in the environment, each test
// that has booted a phone leaves a file FOLDER/SUITE.TEST there, with its trace, an event a line, and the view trees of its windows
// at the end. Linked into test programs whose tests boot a phone; there is nothing to call.
//
// Left out is what differs from process to process: addresses in descriptions, process identifiers, the middle of handles. Numbers
// are rounded to a millionth, since processors differ in the last digits of what the C and text libraries compute.
#include "phone/phone.hpp"
#include "phone/springboard/view_tree.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

namespace phone {
namespace {

void round(Json& number)
{
    constexpr double kPerUnit = 1e6;
    constexpr double kLargest = 1e9;   // beyond it a double has fewer digits than that
    double const value = number.get<double>();
    if (std::abs(value) < kLargest)
        number = std::round(value * kPerUnit) / kPerUnit + 0.0;   // no negative zero
}

// "<CVLView: 0x5561…; frame = …>" without the digits, "object-h5kq2-7" without the process's own part.
void leaveOutTheProcess(Json& text)
{
    static std::regex const address("0x[0-9a-f]{5,}");
    static std::regex const handle("^object-[0-9a-z]+-");
    std::string const& described = text.get_ref<std::string const&>();
    if (described.starts_with("object-"))   // first: a handle may have 0x in it
        text = std::regex_replace(described, handle, "object-");
    else if (described.find("0x") != std::string::npos)
        text = std::regex_replace(described, address, "0x");
}

void makeComparable(Json& value)
{
    if (value.is_number_float())
        round(value);
    else if (value.is_string())
        leaveOutTheProcess(value);
    else if (value.is_structured())
        for (Json& part : value)
            makeComparable(part);
    if (value.is_object() && value.contains("pid"))
        value["pid"] = Json();
}

std::string recordOfThisPhone()
{
    Json events = deviceTrace().events();
    Json views = viewTrees({ .detail = true, .handles = false });
    makeComparable(events);
    makeComparable(views);
    std::string text;
    for (Json const& event : events)
        text += event.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
    return text + views.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

// GoogleTest owns it.
class StoryRecorder : public testing::EmptyTestEventListener {
    void OnTestEnd(testing::TestInfo const& test) override
    {
        char const* const folder = std::getenv("CORVEL_RECORD");
        if (!folder || !*folder || !phone().isBooted())
            return;
        std::string name = std::string(test.test_suite_name()) + "." + test.name();
        std::replace(name.begin(), name.end(), '/', '-');
        AutoreleasePool const pool;
        std::error_code error;
        std::filesystem::create_directories(folder, error);
        std::filesystem::path const path = std::filesystem::path(folder) / name;
        std::ofstream file(path, std::ios::binary);
        if (!(file << recordOfThisPhone() << std::flush)) {
            std::fprintf(stderr, "cannot write %s\n", path.c_str());
            std::abort();
        }
    }
};

bool const g_isListening [[maybe_unused]] = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new StoryRecorder);
    return true;
}();

}
}
