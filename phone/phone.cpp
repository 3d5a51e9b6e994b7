#include "phone/phone.hpp"

#include "phone/apps/address_book.hpp"
#include "phone/apps/applications.hpp"
#include "phone/apps/availability.hpp"
#include "phone/foundation/associated_objects.hpp"
#include "phone/foundation/foundation.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/graphics/fonts.hpp"
#include "phone/kernel/commands.hpp"
#include "phone/kernel/services.hpp"
#include "phone/springboard/class_changes.hpp"
#include "phone/springboard/home_screen.hpp"
#include "phone/springboard/lock_flow.hpp"
#include "phone/springboard/lock_screen.hpp"
#include "phone/springboard/music.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/starter_set.hpp"
#include "phone/springboard/strip_views.hpp"
#include "phone/springboard/system_classes.hpp"
#include "phone/springboard/view_tree.hpp"
#include "phone/uikit/interaction.hpp"
#include "phone/uikit/touch_delivery.hpp"
#include "phone/uikit/ui_gesture_recognizer.hpp"
#include "phone/uikit/ui_screen.hpp"
#include "phone/uikit/uikit.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

extern "C" {
extern double kCFCoreFoundationVersionNumber;
void* CFNotificationCenterGetDarwinNotifyCenter();
void* CFNotificationCenterGetLocalCenter();
void CFNotificationCenterPostNotification(void* center, void const* name, void const* object,
    void const* userInfo, unsigned char deliverImmediately);
}

namespace phone {

namespace {

constexpr char kPluginFolder[] = "/var/jb/Library/MobileSubstrate/DynamicLibraries";
constexpr char kSettingsNotification[] = "com.orvane.corvelpref.settingschanged";
constexpr char kScreenChanged[] = "com.apple.springboard.screenchanged";
constexpr char kWindowRotated[] = "UIWindowDidRotateNotification";

// Points and pixels a point that a screen may have.
constexpr double kMinSide = 240, kMaxSide = 2000, kMaxScale = 4;

constexpr std::size_t kLongestLanguage = 35;   // letters of a language tag, with room to spare

// The build's library folder, beside the one that this program lies in.
std::filesystem::path buildPluginFolder()
{
    std::error_code failure;
    auto const program = std::filesystem::read_symlink("/proc/self/exe", failure);
    return program.parent_path().parent_path() / "lib";
}

// A pool for what is autoreleased outside of any other: it lives as long as the process.
void openOutermostPool()
{
    static bool isOpen = false;
    if (isOpen)
        return;
    isOpen = true;
    static_cast<void>(objc::cls<"NSAutoreleasePool">().send<"new", objc::handle>());
}

Status applyClassChanges(BootOptions const& options)
{
    for (std::string const& absent : options.absent)
        if (namesMember(absent))
            if (auto const done = removeMember(absent); !done)
                return done;
    for (std::string const& present : options.present)
        if (auto const done = addMethod(present); !done)
            return done;
    return {};
}

// As SpringBoard ends: without undoing what it has built. The order in which C++ destroys what is static is not
// one in which views, observers and plug-ins could go.
void leaveAtOnce(int status, void*)
{
    phone().close();
    std::fflush(nullptr);
    _exit(status);
}

// After anything that was done to the phone: what waits for the next turn happens, and the lock screen makes
// room for what came of it.
void settle()
{
    clock().runLoopTurn();
    if (isSpringBoardInstalled() && springBoard().lockScreen)
        springBoard().lockScreen->followContent();
}

}

Phone& phone()
{
    static Phone& thePhone = *new Phone;
    return thePhone;
}

void Phone::warmUp()
{
    graphics::warmUp();
    openOutermostPool();
}

Status Phone::check(BootOptions const& options)
{
    auto const isSide = [](double side) { return side >= kMinSide && side <= kMaxSide; };
    if (!isSide(options.width) || !isSide(options.height))
        return Error { "a screen is 240 to 2000 points wide and high" };
    if (!(options.scale >= 1 && options.scale <= kMaxScale))
        return Error { "a screen's scale is 1 to 4" };
    if (options.coreFoundation && !std::isfinite(*options.coreFoundation))
        return Error { "the CoreFoundation number is no number" };
    bool const isTag = !options.language.empty() && options.language.size() <= kLongestLanguage
        && std::ranges::all_of(options.language, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
           });
    if (!isTag)
        return Error { "a language is a code as en, he or zh-Hant" };
    if (options.passcode && options.passcode->empty())
        return Error { "a passcode has at least one character" };
    return {};
}

void Phone::useRoot(DeviceRoot root) { m_root.emplace(std::move(root)); }

void Phone::usePluginFolders(std::vector<std::filesystem::path> folders)
{
    m_pluginFolders = std::move(folders);
}

Status Phone::boot(BootOptions const& options) { return bootWith(options, nullptr); }

Status Phone::boot(BootOptions const& options, RestartState const& state)
{
    return bootWith(options, &state);
}

Status Phone::openRoot(RestartState const* restart)
{
    if (!m_root) {
        auto root = restart ? DeviceRoot::openGiven(restart->root) : DeviceRoot::makeTemporary();
        if (!root)
            return root.error();
        m_root.emplace(std::move(*root));
    }
    deviceRoot() = &*m_root;
    if (restart) {
        for (auto const& [path, fault] : restart->faults)
            if (auto const set = m_root->setFault(path, fault); !set)
                return set.error();
        return {};
    }

    auto files = starterFiles(m_options);
    if (!files)
        return files.error();
    if (auto const filled = m_root->fill(*files); !filled)
        return filled.error();
    // What was asked for by name also goes onto a disk that was there before, unless it is the user's own.
    if (m_root->wasEmpty() || m_root->kind() == DeviceRoot::Kind::given)
        return {};
    for (StarterFile const& file : *files) {
        bool const isAskedFor = (file.devicePath == kContactListPath && m_options.contacts)
            || (file.devicePath == kSettingsPath && m_options.settings);
        if (!isAskedFor)
            continue;
        auto const written =
            m_root->write(file.devicePath, file.contents, { .atomically = true, .makesFolders = true });
        if (!written)
            return written.error();
    }
    return {};
}

void Phone::loadPluginLibraries()
{
    std::vector<std::filesystem::path> folders;
    if (m_pluginFolders) {
        folders = *m_pluginFolders;
    } else {
        if (auto const onDevice = m_root->map(kPluginFolder))
            folders.push_back(*onDevice);
        folders.push_back(buildPluginFolder());
    }
    PluginHost host;
    host.coreFoundationNumber = m_coreFoundationNumber;
    m_plugins = loadPlugins(folders, m_options.plugins, host);
}

Status Phone::bootWith(BootOptions const& options, RestartState const* restart)
{
    if (m_isBooted)
        return Error { "a phone boots once a process" };
    if (auto const checked = check(options); !checked)
        return checked;
    openOutermostPool();
    AutoreleasePool const pool;

    m_options = options;
    if (restart) {
        m_options.locked = true;
        m_options.absent = restart->absent;
    }
    m_coreFoundationNumber = options.coreFoundationNumber();
    bootOptions() = m_options;
    Clock::Start const start =
        restart ? restart->clock : Clock::Start { .date = options.date, .timezone = options.timezone };
    if (auto const started = clock().start(start); !started)
        return started;
    trace().setMainThread();
    if (restart)
        trace().restore(restart->events);
    else
        trace().reset();
    graphics::setTextLanguage(options.language);
    if (auto const opened = openRoot(restart); !opened)
        return opened;
    m_isBooted = true;
    if (auto const set = phone::setAddressBook(restart ? restart->addressBook : Json()); !set)
        return set;

    ClassFamily const family = classFamily(m_coreFoundationNumber);
    {
        TraceOwnScope const own;
        kCFCoreFoundationVersionNumber = m_coreFoundationNumber;
        defineFoundation();
        watchAssociatedObjects();
        defineUIKit();
        defineInteraction();
        defineSpringBoardClasses(family);
        auto state = std::make_unique<SpringBoardState>();
        state->family = family;
        state->application =
            objc::adopt(UIApplication { SpringBoard::alloc().send<"init", objc::handle>().object });
        installSpringBoard(std::move(state));
        if (auto const changed = applyClassChanges(m_options); !changed)
            return changed;
    }
    recordStripFrames();
    loadPluginLibraries();
    startSpringBoard(restart && restart->isMusicPlaying);
    on_exit(leaveAtOnce, nullptr);
    clock().runLoopTurn();
    return {};
}

void Phone::close()
{
    deviceRoot() = nullptr;
    m_root.reset();
}

DeviceRoot& Phone::root() { return *m_root; }

void Phone::setRestartHandler(std::function<void()> restart)
{
    deviceCommands().setRestartHandler(std::move(restart));
}

RestartState Phone::restartState() const
{
    return { clock().state(), trace().state(), m_root->folder(), springBoard().isMusicPlaying,
        addressBookEntries(), bootOptions().absent, m_root->faults() };
}

Status Phone::advance(double seconds)
{
    AutoreleasePool const pool;
    Status const advanced = clock().advance(seconds);
    settle();
    return advanced;
}

void Phone::touchDown(CGPoint point)
{
    AutoreleasePool const pool;
    touchDelivery().touchDown(point);
}

void Phone::touchMove(CGPoint point)
{
    AutoreleasePool const pool;
    touchDelivery().touchMoved(point);
}

void Phone::touchUp(CGPoint point)
{
    AutoreleasePool const pool;
    touchDelivery().touchUp(point);
}

void Phone::touchCancel()
{
    AutoreleasePool const pool;
    touchDelivery().touchCancelled();
}

void Phone::tap(CGPoint point, double seconds)
{
    touchDown(point);
    advance(seconds);
    touchUp(point);
    settle();
}

void Phone::drag(CGPoint from, CGPoint to, double seconds)
{
    touchDown(from);
    int const frames = std::max(1, static_cast<int>(std::lround(seconds * kFramesPerSecond)));
    for (int frame = 1; frame <= frames; ++frame) {
        advance(kFrameSeconds);
        double const part = double(frame) / frames;
        touchMove({ from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part });
    }
    touchUp(to);
    settle();
}

void Phone::scrollWheel(CGPoint at, CGSize delta)
{
    AutoreleasePool const pool;
    touchDelivery().wheel(at, delta.width, delta.height);
}

bool Phone::isLocked() const { return springBoard().isLocked; }

bool Phone::isPasscodeLocked() const { return phone::isPasscodeLocked(); }

bool Phone::isPasscodeShown() const { return springBoard().isPasscodeShown; }

void Phone::lock()
{
    AutoreleasePool const pool;
    lockPhone();
    settle();
}

void Phone::requestUnlock()
{
    AutoreleasePool const pool;
    {
        TraceOwnScope const own;
        phone::requestUnlock();
    }
    settle();
}

Result<bool> Phone::enterPasscode(std::string const& code)
{
    AutoreleasePool const pool;
    auto const accepted = phone::enterPasscode(code);
    settle();
    return accepted;
}

Status Phone::cancelPasscode()
{
    AutoreleasePool const pool;
    auto const cancelled = phone::cancelPasscode();
    settle();
    return cancelled;
}

ActivatorAnswer Phone::activate(std::string const& listenerName)
{
    AutoreleasePool const pool;
    ActivatorAnswer const answer = sendActivatorEvent(listenerName);
    settle();
    return answer;
}

Status Phone::setOrientation(int orientation, OrientationNotifications notifications)
{
    if (orientation < 1 || orientation > 4)
        return Error { "an orientation is 1 to 4" };
    AutoreleasePool const pool;
    int const from = screenOrientation();
    setScreenOrientation(orientation);
    layOutSpringBoard();
    turnSpringBoard(from);
    if (notifications.screenChanged)
        postNotification(NotificationCenterKind::darwin, kScreenChanged);
    if (notifications.windowRotated)
        postNotification(NotificationCenterKind::local, kWindowRotated);
    settle();
    return {};
}

int Phone::orientation() const { return screenOrientation(); }

void Phone::setMusicPlaying(bool isPlaying)
{
    AutoreleasePool const pool;
    phone::setMusicPlaying(isPlaying, true);
    settle();
}

bool Phone::isMusicPlaying() const { return springBoard().isMusicPlaying; }

Status Phone::launch(std::string const& bundleIdentifier)
{
    if (bundleIdentifier.empty())
        return Error { "an application has an identifier" };
    AutoreleasePool const pool;
    launchApplication(bundleIdentifier);
    return {};
}

Status Phone::setAddressBook(Json const& entries) { return phone::setAddressBook(entries); }

Status Phone::setAvailable(std::string const& name, bool isAvailable)
{
    return phone::setAvailable(name, isAvailable);
}

std::string Phone::frontMostApplication() const { return springBoard().frontMost; }

Status Phone::changeSettings(
    PropertyListDictionary const& set, std::vector<std::string> const& remove, bool notify)
{
    AutoreleasePool const pool;
    PropertyListDictionary settings;
    if (auto const bytes = m_root->read(kSettingsPath)) {
        auto file = readPropertyList(*bytes);
        if (file && file->root.as<PropertyListDictionary>())
            settings = *file->root.as<PropertyListDictionary>();
    }
    for (auto const& [key, value] : set)
        settings.set(key, value);
    for (std::string const& key : remove)
        settings.remove(key);
    auto const xml = writePropertyListXml(std::move(settings));
    if (!xml)
        return xml.error();
    auto const written =
        m_root->write(kSettingsPath, xml->data(), xml->size(), { .atomically = true, .makesFolders = true });
    if (!written)
        return written.error();
    if (notify) {
        postNotification(NotificationCenterKind::darwin, kSettingsNotification);
        springBoard().lockScreen->updatePresentingContent();
    }
    return {};
}

void Phone::postNotification(NotificationCenterKind kind, std::string const& name)
{
    AutoreleasePool const pool;
    {
        TraceOwnScope const own;
        NSString const text = toNSString(name);
        switch (kind) {
        case NotificationCenterKind::darwin:
            CFNotificationCenterPostNotification(
                CFNotificationCenterGetDarwinNotifyCenter(), text.object, nullptr, nullptr, 0);
            break;
        case NotificationCenterKind::local:
            CFNotificationCenterPostNotification(
                CFNotificationCenterGetLocalCenter(), text.object, nullptr, nullptr, 0);
            break;
        case NotificationCenterKind::standard:
            NSNotificationCenter::defaultCenter().postNotificationName(text, {}, {});
            break;
        }
    }
    settle();
}

UIView Phone::strip() const { return findStrip(StripKind::strip); }

UIView Phone::overlay() const { return findStrip(StripKind::overlay); }

UIViewController Phone::adjunctController() const { return springBoard().adjunctController; }

objc::handle Phone::lockScreenManager() const { return springBoard().lockScreenManager; }

UIViewController Phone::passcodeController() const { return springBoard().passcodeController; }

std::vector<UIWindow> Phone::windows() const { return allWindows(); }

Json Phone::views(bool detail, bool presentation) const
{
    AutoreleasePool const pool;
    return viewTrees({ .detail = detail, .presentation = presentation, .handles = true });
}

IdleTimer& Phone::idleTimer() { return springBoard().idleTimer; }

}
