// A phone for a test. Each test runs in a process of its own and boots there; without plug-ins unless it asks
// for some.
#pragma once

#include "phone/kernel/services.hpp"
#include "phone/phone.hpp"
#include "phone/springboard/springboard_state.hpp"

#include <gtest/gtest.h>

namespace phone {

class PhoneTest : public testing::Test {
protected:
    ~PhoneTest() override { phone().close(); }

    static void boot(BootOptions const& options = {})
    {
        phone().usePluginFolders({});
        Status const booted = phone().boot(options);
        ASSERT_TRUE(booted) << booted.message();
    }

    static BootOptions version(std::string const& text)
    {
        BootOptions options;
        options.ios = *SystemVersion::parse(text);
        return options;
    }

    // The events of a kind, each by one of its fields.
    static std::vector<std::string> told(std::string const& kind, std::string const& field)
    {
        std::vector<std::string> texts;
        for (Json const& event : phone().trace().events())
            if (event["kind"] == kind)
                texts.push_back(
                    event[field].is_string() ? event[field].get<std::string>() : event[field].dump());
        return texts;
    }

    // `lock` and `passcode` events in one line: `passcode accepted, lock unlockFinished`.
    static std::string story(std::size_t since = 0)
    {
        std::string text;
        for (Json const& event : phone().trace().events(since)) {
            std::string const kind = event["kind"];
            if (kind != "lock" && kind != "passcode")
                continue;
            text += (text.empty() ? "" : ", ") + kind + " " + event["event"].get<std::string>();
        }
        return text;
    }
};

}
