// A long random walk over everything that can happen to a parked action, held against a model that is written
// from the tables: taps, menus and their entries, passcodes right and wrong, cancelling, swiping up, locking, a
// lock screen that goes by itself. The same seed walks the same way.
#include "tests/scenarios/actions.hpp"

#include "phone/apps/call_card.hpp"
#include "phone/apps/siri_card.hpp"
#include "phone/uikit/ui_alert_controller.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <random>

namespace phone {

namespace {

constexpr int kEventsPerWalk = 5600;   // times 18 walks: more than a hundred thousand
constexpr std::size_t kContacts = 3;

struct Person {
    std::string name, number, email;
};
Person const kPeople[kContacts] { { "Anna", "+44 20 7946-0958", "anna@example.com" }, { "Nobody", "", "" },
    { "Bora", "+1 555 0100", "" } };

std::string without(std::string text, std::string const& characters)
{
    std::erase_if(text, [&](char c) { return characters.find(c) != characters.npos; });
    return text;
}

// Actions by their single-tap codes, 0 to 7, and what they are parked as.
constexpr int kParkedAs[] { 5, 1, 7, 2, 8, 3, 6, 4 };
constexpr int kTapOfParked[] { -1, 1, 3, 5, 7, 0, 6, 2, 4 };
constexpr int kReopenMenu = 9;
bool isCall(int action) { return action == 0 || action == 6; }
bool opensApp(int action) { return action >= 1 && action <= 4; }
bool runsAtDismissal(int code) { return code == 1 || code == 2 || code == 7 || code == 8; }

class Model {
public:
    Model(int tap, bool validates)
        : m_tap(tap)
        , m_validates(validates)
    {
    }

    bool isPasscodeShown() const { return m_isShown; }
    bool hasSheet() const { return !m_sheets.empty(); }
    bool stays() const { return m_stays; }
    bool isLocked() const { return m_isLocked; }

    // Each answers nothing; what came of it is taken with effects().
    void tapped(std::size_t who)
    {
        now("sound 1519");
        if (m_tap > 7)
            return;
        capture(m_tap, who);
        bool const locked = test();
        std::string const target = m_tap == 7 ? kPeople[who].email : kPeople[who].number;
        if (target.empty())
            return;
        if (locked && (!isCall(m_tap) || m_validates)) {
            park(kParkedAs[m_tap]);
            return;
        }
        if (opensApp(m_tap))
            requestUnlock();
        run(m_tap);
    }

    void heldDown(std::size_t who) { showMenu(who); }

    // The action by its tap code; -1: cancel or birthday.
    void chosen(int action)
    {
        auto const who = m_sheets.back();
        m_sheets.pop_back();
        if (action >= 0) {
            capture(action, *who);
            bool const locked = test();
            if (locked && (!isCall(action) || m_validates)) {
                park(kParkedAs[action]);
            } else {
                if (opensApp(action))
                    requestUnlock();
                run(action);
            }
        }
        now("release CVL");
    }

    void rightCode()
    {
        now("passcode accepted");
        m_isGiven = true;
        finish();
    }
    void wrongCode() { now("passcode wrong"); }
    void cancelled()
    {
        now("passcode cancelled");
        disappear();
    }
    void swipedUp() { requestUnlock(); }
    // The lock screen is said to go, though nobody has unlocked it.
    void dismissed()
    {
        int const code = std::exchange(m_code, 0);
        if (runsAtDismissal(code))
            run(kTapOfParked[code]);
    }
    void lockPressed()
    {
        if (m_isShown) {
            cancelled();
        } else if (!m_isLocked || m_isGiven) {
            m_isLocked = true;
            m_isGiven = false;
            now("lock shown");
        }
    }

    // Rows of the sheet in front, as tap codes, cancel last; who it is for.
    std::vector<int> rows() const
    {
        constexpr int kHiddenBy[] { 0, 1, 2, 2, 4, 3, 4, 5 };
        std::vector<int> rows;
        for (int action = 0; action < 8; ++action)
            if (kHiddenBy[action] != m_tap && (action != 7 || !kPeople[*m_sheets.back()].email.empty()))
                rows.push_back(action);
        return rows;
    }

    Effects effects()
    {
        Effects all = m_now + m_posted + m_soon + m_later;
        m_now = m_posted = m_soon = m_later = {};
        return all;
    }

private:
    void now(std::string text) { m_now.push_back(std::move(text)); }

    bool isPasscodeLocked() const { return m_isLocked && !m_isGiven; }
    bool test()
    {
        now(isPasscodeLocked() ? "passcodeTest yes" : "passcodeTest no");
        return isPasscodeLocked();
    }
    void capture(int action, std::size_t who)
    {
        if (action != 7)
            m_number = kPeople[who].number;
        if (action == 0 || action == 4 || action == 6)
            m_name = kPeople[who].name;
        if (action == 7)
            m_email = kPeople[who].email;
    }
    void park(int code)
    {
        m_code = code;
        if ((code >= 3 && code <= 6) || code == kReopenMenu)
            m_stays = true;
        requestUnlock();
    }
    void requestUnlock()
    {
        now("unlockRequest");
        if (!m_isLocked || m_isShown)
            return;
        if (isPasscodeLocked()) {
            m_isShown = true;
            now("passcode shown");
        } else {
            finish();
        }
    }
    void finish()
    {
        if (m_stays) {
            int const code = std::exchange(m_code, 0);
            if (code == kReopenMenu)
                showMenu(std::nullopt);
            else if (code >= 3 && code <= 6)
                run(kTapOfParked[code]);
        } else {
            now("lock unlockFinished");
            now("lock willDismiss");
            int const code = std::exchange(m_code, 0);
            m_isLocked = false;
            m_isGiven = true;
            if (runsAtDismissal(code))
                run(kTapOfParked[code]);
            m_later.push_back("lock dismissed");
        }
        if (m_isShown)
            disappear();
    }
    void disappear()
    {
        m_isShown = false;
        m_stays = false;
        m_code = 0;
        m_soon.push_back("passcode disappeared");
    }
    void showMenu(std::optional<std::size_t> who)
    {
        if (test() && m_validates) {
            if (who)
                m_waiting = who;
            park(kReopenMenu);
            return;
        }
        if (!who)
            who = std::exchange(m_waiting, std::nullopt);
        now("hold CVL");
        now("sound 1519");
        now("sheet " + kPeople[*who].name + " - " + kPeople[*who].number);
        m_sheets.push_back(who);
    }
    void call(std::string const& url)
    {
        now("openURL " + url);
        m_posted.push_back("completion yes");
    }
    // Behind a passcode no application comes up but a call's.
    void open(std::string const& url)
    {
        now("openURL " + url);
        m_posted.push_back(isPasscodeLocked() ? "completion no" : "completion yes");
    }
    void run(int action)
    {
        switch (action) {
        case 0:
            call("tel:" + without(m_number, " "));
            m_number = m_name = "";
            break;
        case 1:
            open("whatsapp://send?phone=" + without(m_number, " "));
            m_number = "";
            break;
        case 2:
            open("tg://msg?&to=" + without(m_number, " -"));
            m_number = "";
            break;
        case 3:
        case 4:
            now("siri call " + m_number + " in " + (action == 3 ? "whatsapp" : "telegram"));
            m_number = m_name = "";
            break;
        case 5:
            now("canSend MFMessageComposeViewController yes");
            now("hold CVL");
            now("to " + m_number);
            now("present MFMessageComposeViewControllerCVL");
            m_number = "";
            break;
        case 6:
            call("facetime:" + without(m_number, " "));
            m_number = m_name = "";
            now("release CVL");
            break;
        case 7:
            now("canSend MFMailComposeViewControllerCVL yes");
            now("hold CVL");
            now("to " + m_email);
            now("present MFMailComposeViewControllerCVL");
            m_email = "";
            break;
        default: break;
        }
    }

    int m_tap;
    bool m_validates;
    bool m_isLocked { true };
    bool m_isGiven { false };
    bool m_isShown { false };
    bool m_stays { false };
    int m_code { 0 };
    std::string m_number, m_name, m_email;
    std::optional<std::size_t> m_waiting;               // the menu's that waits for an unlock
    std::vector<std::optional<std::size_t>> m_sheets;   // front last
    // In the order in which they come: in the call itself, on the next turn, when the passcode screen has
    // faded, when the lock screen has gone.
    Effects m_now, m_posted, m_soon, m_later;
};

// A long press that has just been recognised on a contact's button.
struct PressState {
    UIView view;
};
struct Press : objc::subclass<Press, "WalkLongPress", NSObject> {
    using subclass::subclass;
    NSInteger state() const { return 1; }
    UIView view() const { return objc::state<PressState>(*this).view; }
    static objc::ref<Press> make(UIView view)
    {
        auto press = objc::adopt(alloc().init<Press>());
        objc::state<PressState>(press.get()).view = view;
        return press;
    }
};

}

class LockWalk : public Story {
protected:
    void bootWalk(int tap, bool validates)
    {
        Json contacts = Json::array();
        for (Person const& each : kPeople)
            contacts.push_back({ { "contactFirstName", each.name }, { "contactLastName", "" },
                { "contactUniqueIdentifier", each.name }, { "contactImage", "" }, { "contactBirthday", "" },
                { "contactPhoneNumber", each.number }, { "contactEmail", each.email } });
        auto options = Story::options("15.4",
            { { "singleTapAction", tap }, { "validateUnlockBeforeCall", validates },
                { "askBeforeCall", false } },
            contacts);
        options.passcode = kStoryPasscode;
        boot(options);
        objc::define<Press>()
            .state<PressState>()
            .method<"state", &Press::state>()
            .method<"view", &Press::view>()
            .install();
        for (std::size_t i = 0; i < kContacts; ++i)
            m_buttons.push_back(objc::retain(contactButton(i)));
        phone().idleTimer().add("walk");
    }

    // The effects as the model tells them.
    static Effects told()
    {
        Effects lines;
        for (std::string& line : effects()) {
            auto const recipients = line.find("ecipients:([");
            if (line.starts_with("MF") && recipients == line.npos)
                continue;
            if (line.starts_with("dismiss"))
                continue;
            if (recipients != line.npos) {
                auto const start = line.find('"') + 1;
                line = "to " + line.substr(start, line.rfind('"') - start);
            }
            lines.push_back(std::move(line));
        }
        return lines;
    }

    // Puts away what stands over the lock screen.
    static void clear()
    {
        hideCall();
        hideSiri();
        for (char const* const name : { "MFMessageComposeViewController", "MFMailComposeViewController" })
            if (auto const composer = anywhere(name)) {
                composer.send<"phone_cancelPressed:">(objc::handle {});
                wait(0.5);
                EXPECT_EQ(told(), Effects { "release CVL" });
            }
    }
    // Also behind a window, or in one that is hidden.
    static UIViewController anywhere(char const* className)
    {
        for (UIWindow const window : phone().windows())
            for (UIViewController const each : presentedControllers(window))
                if (each.send<"isKindOfClass:", BOOL>(objc::class_handle { objc_getClass(className) }))
                    return each;
        return {};
    }

    // One step of the walk, on the phone and in the model. Answers what it was, for messages.
    std::string step(std::mt19937& random, Model& model)
    {
        auto const dice = [&random](std::size_t sides) { return random() % sides; };
        UIView const strip = phone().strip();
        if (model.hasSheet() && dice(3) != 0)
            return choose(dice, model);
        switch (dice(9)) {
        case 0:
        case 1: {
            std::size_t const who = dice(kContacts);
            model.tapped(who);
            strip.send<"buttonPressedAction:">(m_buttons[who].get());
            return "tap on " + kPeople[who].name;
        }
        case 2:
        case 3: {
            std::size_t const who = dice(kContacts);
            model.heldDown(who);
            strip.send<"showMenu:">(Press::make(m_buttons[who]).get());
            return "menu of " + kPeople[who].name;
        }
        case 4:
        case 5:
            if (!model.isPasscodeShown()) {
                model.swipedUp();
                phone().requestUnlock();
                return "swipe up";
            }
            model.rightCode();
            EXPECT_TRUE(*phone().enterPasscode(kStoryPasscode));
            return "right code";
        case 6:
            model.dismissed();
            phone().lockScreenManager().send<"lockScreenViewControllerWillDismiss">();
            return "dismissal";
        case 7:
            if (!model.isPasscodeShown())
                break;
            if (dice(2)) {
                model.wrongCode();
                EXPECT_FALSE(*phone().enterPasscode("0000"));
                return "wrong code";
            }
            model.cancelled();
            EXPECT_TRUE(phone().cancelPasscode());
            return "cancel";
        default: break;
        }
        model.lockPressed();
        phone().lock();
        return "lock";
    }

    template <class Dice>
    static std::string choose(Dice const& dice, Model& model)
    {
        UIAlertController const sheet { alert().object };
        EXPECT_TRUE(sheet) << "there is no sheet to choose from";
        if (!sheet)
            return "no sheet";
        auto const actions = sheet.actionsOnScreen();
        auto const rows = model.rows();
        EXPECT_EQ(actions.size(), rows.size() + 1);
        std::size_t const row = dice(actions.size());
        std::string const title = "row " + std::to_string(row);
        model.chosen(row < rows.size() ? rows[row] : -1);
        sheet.choose(actions[row]);
        return title;
    }

    // Each step is an event. Stops where phone and model part. Answers what happened, a line a step.
    std::string walk(int tap, bool validates, int events)
    {
        std::mt19937 random(static_cast<unsigned>(1000 + tap * 2 + validates));
        Model model(tap, validates);
        std::string told;
        for (int i = 0; i < events && !HasFailure(); ++i) {
            AutoreleasePool const pool;
            std::string const what = step(random, model);
            wait(0.9);
            Effects const came = LockWalk::told();
            EXPECT_EQ(came, model.effects()) << "step " << i << ": " << what;
            EXPECT_EQ((phone().strip().send<"getShouldStayAtLS", BOOL>()), model.stays()) << what;
            EXPECT_EQ(phone().isLocked(), model.isLocked()) << what;
            EXPECT_EQ(phone().isPasscodeShown(), model.isPasscodeShown()) << what;
            told += what + ": " + testing::PrintToString(came) + '\n';
            clear();
            if (i % 100 == 99) {
                phone().trace().reset();
                forget();
            }
        }
        return told;
    }

    // The beginning of a walk in a process of its own.
    std::string beginningOfAWalk()
    {
        int ends[2];
        if (pipe(ends) != 0)
            return {};
        std::fflush(nullptr);
        pid_t const child = fork();
        if (child == 0) {
            bootWalk(1, true);
            std::string const told = walk(1, true, 300);
            bool const isTold = write(ends[1], told.data(), told.size()) == ssize_t(told.size());
            phone().close();
            std::fflush(nullptr);
            _exit(HasFailure() || !isTold ? 1 : 0);
        }
        close(ends[1]);
        std::string told;
        char letter;
        while (read(ends[0], &letter, 1) == 1)
            told += letter;
        close(ends[0]);
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
        return told;
    }

private:
    std::vector<objc::ref<UIView>> m_buttons;
};

TEST_F(LockWalk, GoesTheSameWayAgain)
{
    std::string const first = beginningOfAWalk();
    EXPECT_EQ(std::ranges::count(first, '\n'), 300);
    EXPECT_EQ(first, beginningOfAWalk());
}

class EveryLockWalk : public LockWalk, public testing::WithParamInterface<std::tuple<int, bool>> { };

TEST_P(EveryLockWalk, AgreesWithTheModel)
{
    auto const [tap, validates] = GetParam();
    bootWalk(tap, validates);
    walk(tap, validates, kEventsPerWalk);
}

INSTANTIATE_TEST_SUITE_P(EverySetting, EveryLockWalk, testing::Combine(testing::Range(0, 9), testing::Bool()),
    [](auto const& info) {
        return "Tap" + std::to_string(std::get<0>(info.param))
            + (std::get<1>(info.param) ? "Validating" : "");
    });

}
