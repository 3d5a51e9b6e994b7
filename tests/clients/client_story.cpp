// The story that the clients tell too, touch by touch and in the same steps of time. With CORVEL_STORY_TRACE in the environment
// its trace is written there, one event a line.
#include "tests/scenarios/story.hpp"

#include <cstdlib>
#include <fstream>

namespace phone {

namespace {

// The order of the list is that of the contacts.
Json storyContacts()
{
    Json second = annasEntry();
    second["contactFirstName"] = "Bora";
    second["contactUniqueIdentifier"] = "bora";
    return Json::array({ annasEntry(), second });
}

void leaveTrace()
{
    char const* const path = std::getenv("CORVEL_STORY_TRACE");
    if (!path)
        return;
    std::ofstream file(path);
    for (Json const& event : phone().trace().events())
        file << event.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

}

class ClientStory : public Story { };

TEST_F(ClientStory, ComesOutAsItIsTold)
{
    BootOptions options = Story::options("15.4",
        Json::object({ { "singleTapAction", 7 }, { "validateUnlockBeforeCall", true } }), storyContacts());
    options.passcode = kStoryPasscode;
    boot(options);

    // A tap, the passcode, a composer, and its Cancel.
    touch(contactButton(0));
    wait();
    typePasscode();
    wait();
    EXPECT_TRUE(presented("MFMailComposeViewController"));
    touch(button("Cancel"));
    wait();

    // A long press, the sheet, a choice.
    hold(contactButton(1));
    wait();
    EXPECT_TRUE(alert());
    touch(alertRow("New SMS Message"));
    wait();
    EXPECT_TRUE(presented("MFMessageComposeViewController"));
    touch(button("Cancel"));
    wait();

    // The overlay by its gesture, and away with a swipe.
    ActivatorAnswer const answer = phone().activate("com.orvane.corvelNONLS");
    EXPECT_TRUE(answer.delivered);
    wait();
    ASSERT_TRUE(phone().overlay());
    CGRect const bounds = phone().overlay().bounds();
    CGPoint const middle =
        phone().overlay().convertPointToView({ bounds.size.width / 2, bounds.size.height / 2 }, {});
    CGPoint const from { std::floor(middle.x), std::floor(middle.y) };
    phone().drag(from, { from.x, 2 }, 0.2);
    wait();
    EXPECT_FALSE(phone().overlay());

    // Locked again.
    phone().lock();
    wait();
    EXPECT_TRUE(phone().isPasscodeLocked());
    leaveTrace();
}

}
