// The trace's `log`: whatever way a plug-in takes to write, and nothing that others write.
#include "tests/phone/automation/scripts/scripts_fixture.hpp"

#include <cstdio>
#include <iostream>

namespace phone {

class PluginOutput : public ScriptsTest { };

TEST_F(PluginOutput, EveryWayOfWritingIsTold)
{
    BootOptions options = usual();
    options.plugins = { TALKATIVE_PLUGIN };
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    boot(options);
    std::fflush(nullptr);
    std::string const out = testing::internal::GetCapturedStdout();
    std::string const errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(told("log", "text"),
        (std::vector<std::string> { "printf 1\n", "fprintf stderr\n", "puts\n", "fputs\n", "fwrite\n",
            "write\n", "cout", "cerr", "clog", "syslog 2", "NSLog 3" }));
    // It still goes where it was sent.
    EXPECT_EQ(out, "printf 1\nputs\nfputs\ncout");
    EXPECT_NE(errors.find("fprintf stderr\n"), errors.npos);
    EXPECT_NE(errors.find("fwrite\nwrite\n"), errors.npos);
    EXPECT_NE(errors.find("NSLog 3"), errors.npos);
}

TEST_F(PluginOutput, CorvelIsSilentAndOthersAreNotTold)
{
    boot(usual());
    std::printf("the test\n");
    std::cout << "the test" << std::endl;
    phone().advance(1);
    EXPECT_TRUE(events("log").empty());
}

}
