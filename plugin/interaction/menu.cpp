// The action menu of a long press: every enabled way to reach the contact, with the icons of the applications that serve them.
#include "objc/define.hpp"
#include "plugin/actions/current_contact.hpp"
#include "plugin/actions/idle_timer.hpp"
#include "plugin/actions/text_format.hpp"
#include "plugin/host/settings.hpp"
#include "plugin/interaction/locked_device.hpp"
#include "plugin/interaction/pending_action.hpp"
#include "plugin/strip/contact_button.hpp"
#include "plugin/strip/cvl_view.hpp"
#include "plugin/strip/strip_state.hpp"

#include "platform/audio.hpp"

namespace {

constexpr float kSiriCallsSince = 13.0f;   // system version

// What an entry does on a locked device.
enum class Locked {
    parks,
    parksIfValidating,   // runs at once unless calls are to wait for the passcode
};

struct MenuRow {
    char const* title;
    BOOL viewPreferences::*shownBy;   // null: always
    std::uint64_t hiddenByTap;        // the single-tap setting that hides it; these are numbers of their own
    bool needsSiriCalls;
    char const* icon;   // bundle identifier
    unsigned captures;
    Locked locked;
    PendingAction parkedAs;
    bool opensApp;   // asks for the unlock also where nothing guards the device
    void (*run)(CVLView strip);
};

constexpr MenuRow kMenuRows[] = {
    { "Call Contact", nullptr, 0, false, "com.apple.mobilephone", captures::number | captures::name,
        Locked::parksIfValidating, PendingAction::callPhone, false,
        [](CVLView strip) { strip.send<"callPhone">(); } },
    { "Send WhatsApp Message", &viewPreferences::showWAmsg, 1, false, "net.whatsapp.WhatsApp",
        captures::number, Locked::parks, PendingAction::msgWA, true,
        [](CVLView strip) { strip.send<"msgWA">(); } },
    { "Send Telegram Message", &viewPreferences::showTGmsg, 2, false, "ph.telegra.Telegraph",
        captures::number, Locked::parks, PendingAction::msgTG, true,
        [](CVLView strip) { strip.send<"msgTG">(); } },
    { "Call via WhatsApp", &viewPreferences::showWACall, 2, true, "net.whatsapp.WhatsApp", captures::number,
        Locked::parks, PendingAction::callWA, true, [](CVLView strip) { strip.send<"callWA">(); } },
    { "Call via Telegram", &viewPreferences::showTGCall, 4, true, "ph.telegra.Telegraph",
        captures::number | captures::name, Locked::parks, PendingAction::callTG, true,
        [](CVLView strip) { strip.send<"callTG">(); } },
    { "New SMS Message", &viewPreferences::showSMS, 3, false, "com.apple.MobileSMS", captures::number,
        Locked::parks, PendingAction::msgSMS, false, [](CVLView strip) { strip.send<"msgSMS">(); } },
    { "Facetime Call", &viewPreferences::showFacetime, 4, false, "com.apple.facetime",
        captures::number | captures::name, Locked::parksIfValidating, PendingAction::callFacetime, false,
        [](CVLView strip) { strip.send<"callFacetime">(); } },
    { "Email (%@)", &viewPreferences::showMail, 5, false, "com.apple.mobilemail", captures::email,
        Locked::parks, PendingAction::sndEmail, false, [](CVLView strip) { strip.send<"sndEmail">(); } },
};

// The recogniser of a menu that waits for an unlock.
objc::ref<UIGestureRecognizer>& tempButton()
{
    static auto& held = *new objc::ref<UIGestureRecognizer>;
    return held;
}

void choose(MenuRow const& row, CVLView strip, CVLButton button)
{
    capture(button, row.captures);
    bool const parks = row.locked == Locked::parks || stripState().mainPrefsStruct->validateUnlockBeforeCall;
    if (deviceIsPasscodeLocked() && parks) {
        park(row.parkedAs);
    } else {
        if (row.opensApp)
            requestUnlock();
        row.run(strip);
    }
    releaseIdleTimer();
}

bool isShown(MenuRow const& row, CVLButton button, float systemVersion)
{
    viewPreferences const& prefs = stripState().mainPrefsStruct.get();
    if (row.needsSiriCalls && systemVersion < kSiriCallsSince)
        return false;
    if (row.shownBy && !(prefs.*row.shownBy))
        return false;
    if (row.captures & captures::email && button.send<"getEmailAddr", NSString>().isEqualToString(""_ns))
        return false;
    return prefs.singleTapAction != row.hiddenByTap;
}

// The icon keeps its own colours. The key is private: an action that does not know it goes without.
void setIcon(UIAlertAction action, UIImage icon)
{
    if (action.responds<"setImage:">() || action.responds<"_setImage:">() || objc::has_ivar(action, "_image"))
        action.setValue(icon.imageWithRenderingMode(UIImageRenderingModeAlwaysOriginal), "image"_ns);
}

void addEntry(UIAlertController sheet, MenuRow const& row, CVLView strip, UIGestureRecognizer recognizer)
{
    CVLButton const button { recognizer.view().object };
    NSString const title = filled(row.title, { button.send<"getEmailAddr", NSString>() });
    auto const handler =
        objc::block([&row, strip = objc::retain(strip), recognizer = objc::retain(recognizer)](
                        UIAlertAction) { choose(row, strip, CVLButton { recognizer->view().object }); });
    auto const action = UIAlertAction::actionWithTitle(title, UIAlertActionStyleDefault, lent(handler));
    setIcon(action,
        UIImage::applicationIcon(
            NSString::stringWithUTF8String(row.icon), /* format: */ 0, UIScreen::mainScreen().scale()));
    addActionIfAny(sheet, action);
}

// A line of information: choosing it only closes the sheet.
UIAlertAction inertAction(NSString title, NSInteger style)
{
    auto const handler = objc::block([](UIAlertAction) { releaseIdleTimer(); });
    return UIAlertAction::actionWithTitle(title, style, lent(handler));
}

void addBirthday(UIAlertController sheet, NSDate birthday)
{
    if (!birthday)
        return;
    auto const formatter = objc::adopt(NSDateFormatter::alloc().init<NSDateFormatter>());
    formatter->setDateFormat("MMM dd, yyyy"_ns);
    formatter->setLocale(NSLocale::currentLocale());
    NSString const text = formatter->stringFromDate(birthday);
    if (!text)
        return;
    UIAlertAction const action = inertAction(filled("Birthday: %@", { text }), UIAlertActionStyleDefault);
    setIcon(action, stripState().cakeImage);
    addActionIfAny(sheet, action);
}

}

void CVLView::showMenu(UIGestureRecognizer sender) const
{
    if (sender && sender.state() != UIGestureRecognizerStateBegan)
        return;
    viewPreferences const& prefs = stripState().mainPrefsStruct.get();
    if (deviceIsPasscodeLocked() && prefs.validateUnlockBeforeCall) {
        park(PendingAction::showMenu);
        // Reopened while still locked: the recogniser that waits goes on waiting.
        if (sender)
            tempButton() = objc::retain(sender);
        return;
    }
    auto const recognizer = sender ? objc::retain(sender) : std::exchange(tempButton(), {});
    holdIdleTimer();
    float const systemVersion = UIDevice::currentDevice().systemVersion().floatValue();
    if (settings().isHapticFB)
        AudioServicesPlaySystemSound(kHapticTapSound);

    CVLButton const button { recognizer->view().object };
    auto const sheet = UIAlertController::alertController(
        filled("%@ - %@",
            { button.send<"getContactName", NSString>(), button.send<"getPhoneNumber", NSString>() }),
        nullptr, UIAlertControllerStyleActionSheet);
    if (!sheet) {
        releaseIdleTimer();   // there is no sheet whose entries could
        return;
    }
    for (MenuRow const& row : kMenuRows)
        if (isShown(row, button, systemVersion))
            addEntry(sheet, row, *this, recognizer);
    if (prefs.showBirthday)
        addBirthday(sheet, button.send<"getBirthday", NSDate>());
    addActionIfAny(sheet, inertAction("Cancel"_ns, UIAlertActionStyleCancel));
    send<"windowForPrompts:">(sheet);
}
