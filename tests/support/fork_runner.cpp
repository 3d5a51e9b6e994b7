// main() of test programs whose tests boot a phone. The plug-in's state and the system's classes belong to the process, so each
// test runs in a process of its own, forked from this one, which has loaded what every phone needs (warmUpTests). Two or more run
// at a time; what they print comes out whole, in the order in which they end, with GoogleTest's own marks.
//
// Options are GoogleTest's: --gtest_filter, --gtest_list_tests. CORVEL_TEST_JOBS sets how many run at a time; CORVEL_TEST_EVERY=N leaves
// one of N tests, the first of each N; CORVEL_TEST_IN_PROCESS=1 runs the tests of a filter in this process, for a debugger.
#include "tests/support/fork_runner.hpp"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace {

using Seconds = std::chrono::duration<double>;

constexpr Seconds kTimeLimit { 300 };   // a test that hangs; a busy machine under the sanitizers needs much

struct RunningTest {
    std::string name;
    std::FILE* output;
    std::chrono::steady_clock::time_point start;
};

[[noreturn]] void leave(int status)
{
    std::fflush(nullptr);
    _exit(status);
}

std::string contentsOf(std::FILE* file)
{
    std::string text;
    std::rewind(file);
    char buffer[4096];
    while (std::size_t const count = std::fread(buffer, 1, sizeof buffer, file))
        text.append(buffer, count);
    return text;
}

// A number above 0 of the environment.
std::size_t setting(char const* name, std::size_t otherwise)
{
    char const* const text = std::getenv(name);
    int const number = text ? std::atoi(text) : 0;
    return number > 0 ? static_cast<std::size_t>(number) : otherwise;
}

// GoogleTest knows which tests a filter means; a child lists them for us.
std::vector<std::string> chosenTests()
{
    std::FILE* const output = std::tmpfile();
    std::fflush(nullptr);
    pid_t const child = fork();
    if (child == 0) {
        dup2(fileno(output), STDOUT_FILENO);
        GTEST_FLAG_SET(list_tests, true);
        leave(RUN_ALL_TESTS());
    }
    waitpid(child, nullptr, 0);
    std::string const text = contentsOf(output);
    std::fclose(output);

    std::vector<std::string> names;
    std::size_t const every = setting("CORVEL_TEST_EVERY", 1);
    std::size_t count = 0;
    std::string suite;
    for (std::size_t at = 0; at < text.size();) {
        std::size_t const end = text.find('\n', at);
        std::string line = text.substr(at, end - at);
        at = end + 1;
        line.erase(std::min(line.find("  #"), line.size()));   // the parameter's value
        if (!line.starts_with("  "))
            suite = line;
        else if (count++ % every == 0)
            names.push_back(suite + line.substr(2));
    }
    return names;
}

pid_t start(std::string const& name, std::FILE* output)
{
    std::fflush(nullptr);
    pid_t const child = fork();
    if (child == 0) {
        setpgid(0, 0);
        dup2(fileno(output), STDOUT_FILENO);
        dup2(fileno(output), STDERR_FILENO);
        // Tests that count or draw print their own marks; ours come from the parent.
        delete testing::UnitTest::GetInstance()->listeners().Release(
            testing::UnitTest::GetInstance()->listeners().default_result_printer());
        class FailurePrinter : public testing::EmptyTestEventListener {
            void OnTestPartResult(testing::TestPartResult const& result) override
            {
                if (result.skipped())
                    std::printf("skipped: %s\n", result.message());
                else if (result.failed())
                    std::printf("%s:%d: Failure\n%s\n", result.file_name() ? result.file_name() : "?",
                        result.line_number(), result.message());
                std::fflush(stdout);
            }
        };
        testing::UnitTest::GetInstance()->listeners().Append(new FailurePrinter);
        GTEST_FLAG_SET(filter, name);
        int const status = RUN_ALL_TESTS();
        bool const skipped = testing::UnitTest::GetInstance()->skipped_test_count() > 0;
        bool const none = testing::UnitTest::GetInstance()->test_to_run_count() != 1;
        leave(none ? 3 : status ? 1 : skipped ? 2 : 0);
    }
    return child;
}

class Runner {
public:
    int run(std::vector<std::string> const& names)
    {
        std::printf("[==========] Running %zu tests, each in a process of its own.\n", names.size());
        std::size_t const jobs =
            setting("CORVEL_TEST_JOBS", std::max(1u, std::thread::hardware_concurrency()));
        for (std::size_t next = 0; next < names.size() || !m_running.empty();) {
            if (next < names.size() && m_running.size() < jobs) {
                std::FILE* const output = std::tmpfile();
                if (!output) {
                    std::fprintf(stderr, "no temporary file: %s\n", std::strerror(errno));
                    return 1;
                }
                m_running[start(names[next], output)] = { names[next], output,
                    std::chrono::steady_clock::now() };
                ++next;
            } else {
                waitForOne();
            }
        }
        std::printf("[==========] %zu tests ran.\n[  PASSED  ] %zu tests.\n", names.size(), m_passed);
        if (m_skipped)
            std::printf("[  SKIPPED ] %zu tests.\n", m_skipped);
        for (std::string const& name : m_failed)
            std::printf("[  FAILED  ] %s\n", name.c_str());
        return m_failed.empty() && !names.empty() ? 0 : 1;
    }

private:
    void waitForOne()
    {
        int status = 0;
        pid_t const child = waitpid(-1, &status, WNOHANG);
        if (child > 0) {
            finish(child, status);
            return;
        }
        for (auto const& [pid, test] : m_running)
            if (std::chrono::steady_clock::now() - test.start > kTimeLimit)
                kill(-pid, SIGKILL);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    void finish(pid_t child, int status)
    {
        auto const found = m_running.find(child);
        if (found == m_running.end())
            return;
        RunningTest const test = found->second;
        m_running.erase(found);
        auto const elapsed = std::chrono::steady_clock::now() - test.start;
        long const milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
        int const code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        std::string const output = contentsOf(test.output);
        std::fclose(test.output);

        std::printf("[ RUN      ] %s\n", test.name.c_str());
        if (code != 0)
            std::printf("%s", output.c_str());
        if (elapsed > kTimeLimit)
            std::printf("took more than %g seconds\n", kTimeLimit.count());
        else if (WIFSIGNALED(status))
            std::printf("ended by signal %d, %s\n", WTERMSIG(status), strsignal(WTERMSIG(status)));
        else if (code > 2)
            std::printf("left with status %d\n", code);
        char const* const mark = code == 0 ? "[       OK ]" : code == 2 ? "[  SKIPPED ]" : "[  FAILED  ]";
        std::printf("%s %s (%ld ms)\n", mark, test.name.c_str(), milliseconds);
        std::fflush(stdout);
        if (code == 0)
            ++m_passed;
        else if (code == 2)
            ++m_skipped;
        else
            m_failed.push_back(test.name);
    }

    std::map<pid_t, RunningTest> m_running;
    std::size_t m_passed = 0;
    std::size_t m_skipped = 0;
    std::vector<std::string> m_failed;
};

}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests))
        return RUN_ALL_TESTS();
    std::vector<std::string> const names = chosenTests();
    if (names.empty() && GTEST_FLAG_GET(filter) != "*") {
        std::printf("[==========] Running 0 tests: the filter means none of this program's.\n");
        return 0;   // as GoogleTest has it
    }
    warmUpTests();
    if (std::getenv("CORVEL_TEST_IN_PROCESS"))
        return RUN_ALL_TESTS();
    return Runner().run(names);
}
