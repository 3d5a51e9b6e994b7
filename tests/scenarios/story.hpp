// What whole stories are told with: a phone with Corvel on its lock screen, a finger that touches what it can
// see, and what came of it in short lines. Each test runs in a process of its own and boots there.
#pragma once

#include "phone/kernel/services.hpp"
#include "phone/phone.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace phone {

using Effects = std::vector<std::string>;

inline constexpr char const* kStoryPasscode = "1234";

// Anna, with everything that a contact can have; and the same with nothing to reach her by.
Json annasEntry();
Json emptyEntry();

class Story : public testing::Test {
protected:
    ~Story() override;

    // Options of a phone of that version whose list holds these entries, with these settings.
    static BootOptions options(std::string const& version, Json settings = Json::object(),
        Json contacts = Json::array({ annasEntry() }));
    static void boot(BootOptions const& options);
    // Boots a phone in a process of its own and tells the story there, which has to end in a respring; then
    // boots the phone that comes up. Answers how many events the trace had before.
    static std::size_t bootAfterRespring(BootOptions const& options, std::function<void()> const& story);

    // The finger. A view that is not there fails the test.
    static void touch(UIView view);
    static void hold(UIView view, double seconds = 0.4);   // a long press
    static void typePasscode(std::string const& code = kStoryPasscode);
    static void cancelPasscode();
    static void wait(double seconds = 1) { static_cast<void>(phone().advance(seconds)); }

    // What is on the screen. Nil when it is not there, or can't be touched where it is.
    static UIView contactButton(std::size_t index = 0);
    static UIView button(
        std::string const& title);   // of a composer, a picker, a call or the passcode screen
    static UIView alertRow(std::string const& title);
    static UIView pickerRow(std::string const& name);
    static bool shows(std::string const& text);    // a label of a visible window has it
    static std::vector<std::string> alertRows();   // titles of the alert in front, from the top down
    static UIViewController alert();               // the one in front
    static UIViewController presented(char const* className);

    // What was done since the last call, one line an effect, by whomever. In order:
    //   sound 1519 · passcodeTest yes|no · unlockRequest · passcode EVENT · lock EVENT · openURL URL ·
    //   completion yes|no · canSend CLASS yes|no · CLASS call(value) · present CLASS · sheet TITLE ·
    //   alert TITLE: MESSAGE · dismiss CLASS · hold REASON · release REASON · siri TEXT · spawn PATH … ·
    //   write PATH · what a test records as `heard`: its line
    static Effects effects();
    // Those of some kinds alone, by the line's first word.
    static Effects only(Effects const& effects, std::vector<std::string> const& words);
    static void forget();   // starts the next effects() here

    // Every view of the visible windows that is visible itself.
    static std::vector<UIView> visibleViews();
};

}
