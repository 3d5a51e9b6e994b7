// Stands in for methods of the strip: each message is recorded in the trace, as `sent`, between what SpringBoard and the plug-in
// do around it. Install after the boot.
#pragma once

#include "tests/support/phone_fixture.hpp"

namespace phone {

// What the strip's -actionState and -getShouldStayAtLS answer once they are stood in for.
struct StripAnswers {
    NSInteger actionState = 0;
    BOOL staysAtLockScreen = false;
};
StripAnswers& stripAnswers();

// Every method by which the lock screen's hooks talk to a strip.
void logStripMessages();

// What happened from event number `since` on: "previous SELECTOR" for SpringBoard's own implementations and "strip SELECTOR" or
// "overlay SELECTOR" for messages, with ":" arguments behind a space.
std::vector<std::string> story(std::size_t since);

}
