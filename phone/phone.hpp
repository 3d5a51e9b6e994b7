// Phone: the whole desktop phone, as tests, the window and automation see it. One a process, since the
// plug-in's state and the classes of a system version are process-wide: a second phone is a second process,
// forked from one that has not booted (see warmUp). Main thread only.
//
// Points are the screen's, as it stands in the present orientation. Objects that are handed out are lent.
#pragma once

#include "phone/apps/activator.hpp"
#include "phone/kernel/boot_options.hpp"
#include "phone/kernel/clock.hpp"
#include "phone/kernel/device_root.hpp"
#include "phone/kernel/plugin_loader.hpp"
#include "phone/kernel/property_list.hpp"
#include "phone/kernel/system_version.hpp"
#include "phone/kernel/trace.hpp"
#include "phone/springboard/idle_timer.hpp"
#include "phone/uikit/ui_view.hpp"
#include "phone/uikit/ui_view_controller.hpp"
#include "phone/uikit/ui_window.hpp"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace phone {

enum class NotificationCenterKind { darwin, local, standard };

// What a restarted phone takes over from the one before: `killall backboardd` ends the process and another
// one boots. The trace counts on, the clock goes on, files stay.
struct RestartState {
    Clock::Start clock;
    Json events = Json::array();
    std::filesystem::path root;   // the device root's folder on this computer
    bool isMusicPlaying { false };
    Json addressBook;   // entries; null for the starter set
    std::vector<std::string>
        absent;   // as in BootOptions, which it supersedes: it may have changed meanwhile
    std::vector<std::pair<std::string, FileFault>> faults;   // of the device root
};

struct OrientationNotifications {
    bool screenChanged { true };   // Darwin: com.apple.springboard.screenchanged
    bool windowRotated { true };   // local centre: UIWindowDidRotateNotification
};

class Phone {
public:
    Phone() = default;
    Phone(Phone const&) = delete;
    Phone& operator=(Phone const&) = delete;

    // Loads fonts and the runtime's classes, so that processes forked from here boot quickly. Changes
    // nothing that boot() decides. Calling it again costs nothing.
    static void warmUp();

    // What the next boot is given instead of the usual: a device root (otherwise a temporary one, which is
    // removed by close()), and the folders in which it looks for plug-ins (otherwise DynamicLibraries on the
    // device root, then the build's own next to this program).
    void useRoot(DeviceRoot root);
    void usePluginFolders(std::vector<std::filesystem::path> folders);

    // Boots, in this order: clock and trace, device root, version, the version's classes, plug-ins, lock
    // screen (whose controllers load with the plug-ins' hooks active). An error names what is wrong with the
    // options, before anything is defined; a second boot in one process is an error too. A plug-in that
    // would not load is told on standard error and in plugins(), and the phone boots without it.
    Status boot(BootOptions const&);
    Status boot(BootOptions const&, RestartState const&);
    bool isBooted() const { return m_isBooted; }

    // What boot() says of the options before it does anything.
    static Status check(BootOptions const&);

    // Lets go of the device root: a temporary one is removed from this computer. Called at exit; whoever ends
    // the process otherwise calls it before.
    void close();

    BootOptions const& options() const { return m_options; }
    SystemVersion version() const { return m_options.ios; }
    double coreFoundationNumber() const { return m_coreFoundationNumber; }
    std::vector<PluginReport> const& plugins() const { return m_plugins; }
    Clock& clock() const { return deviceClock(); }
    Trace& trace() const { return deviceTrace(); }
    DeviceRoot& root();

    // `killall backboardd` calls it on a later turn of the main loop; whoever owns the process ends it and
    // boots another with restartState(). None: the request is recorded as any command is, and that is all.
    void setRestartHandler(std::function<void()>);
    RestartState restartState() const;

    // Time and touch. A touch is one finger; a second down before an up is an error in the caller.
    Status advance(double seconds);
    void touchDown(CGPoint);
    void touchMove(CGPoint);
    void touchUp(CGPoint);
    void touchCancel();
    void tap(CGPoint, double seconds = 0.05);
    // From one point to the other in a straight line at display rate, then lifted.
    void drag(CGPoint from, CGPoint to, double seconds);
    // A mouse wheel; points of content, positive to see what lies right or below.
    void scrollWheel(CGPoint at, CGSize delta);

    // Buttons and locking.
    bool isLocked() const;           // the lock screen is up
    bool isPasscodeLocked() const;   // and its passcode has not been given yet
    bool isPasscodeShown() const;
    void lock();            // the side button: from the home screen, an application or the lock screen
    void requestUnlock();   // home button or swipe up: unlocks, or asks for the passcode
    // Types the code on the passcode screen. Accepted or not; an error when there is no passcode screen.
    Result<bool> enterPasscode(std::string const& code);
    Status cancelPasscode();

    // The gesture that Activator has assigned to the listener of this name.
    ActivatorAnswer activate(std::string const& listenerName);

    // 1 portrait, 2 upside down, 3 and 4 landscape: the front-most application's, the lock screen's too.
    Status setOrientation(int orientation, OrientationNotifications = {});
    int orientation() const;

    void setMusicPlaying(bool);
    bool isMusicPlaying() const;
    Status launch(std::string const& bundleIdentifier);   // com.apple.springboard: the home screen
    std::string frontMostApplication() const;             // com.apple.springboard on the home screen

    // What the contact picker offers: entries as in apps/address_book.hpp; null is the starter set.
    Status setAddressBook(Json const& entries);
    // A service, class, method or instance variable goes missing or comes back, as BootOptions' `absent`.
    Status setAvailable(std::string const& name, bool isAvailable);

    // Changes keys of the settings file (made if absent), then posts the settings notification and lets it
    // arrive. A file that can't be read counts as empty.
    Status changeSettings(
        PropertyListDictionary const& set, std::vector<std::string> const& remove, bool notify = true);
    // Posts, and runs the main loop until the notification has arrived.
    void postNotification(NotificationCenterKind, std::string const& name);

    // The objects that scripts name. Nil while there is none.
    UIView strip() const;     // the lock screen's (CVLView whose isViewNonLS is NO)
    UIView overlay() const;   // the one outside it
    UIViewController adjunctController() const;
    objc::handle lockScreenManager() const;
    UIViewController passcodeController() const;   // exists from boot, on screen only while it asks
    std::vector<UIWindow> windows() const;         // back to front, hidden ones too

    // View trees of all windows, back to front; springboard/view_tree.hpp has single views and options.
    Json views(bool detail = false, bool presentation = false) const;

    IdleTimer& idleTimer();

private:
    Status bootWith(BootOptions const&, RestartState const*);
    Status openRoot(RestartState const*);
    void loadPluginLibraries();

    BootOptions m_options;
    double m_coreFoundationNumber { 0 };
    std::optional<DeviceRoot> m_root;
    std::optional<std::vector<std::filesystem::path>> m_pluginFolders;
    std::vector<PluginReport> m_plugins;
    bool m_isBooted { false };
};

// The phone of this process.
Phone& phone();

}
