// NSTimer: rows of the phone's clock. A timer is kept by the clock until it is done or invalid, and keeps its
// target, as the run loop's timers do.
#include "objc/define.hpp"
#include "phone/foundation/dates_and_timers.hpp"
#include "phone/foundation/method_replacement.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "platform/foundation.hpp"

#include <cmath>
#include <memory>
#include <unordered_map>

namespace phone {

namespace {

// Foundation's least interval, in seconds.
constexpr double kLeastInterval = 0.0001;

struct Timer {
    double interval { 0 };   // seconds
    bool repeats { false };
    objc::ref<objc::handle> target;
    SEL selector { nullptr };
    objc::ref<objc::handle> userInfo;
    objc::block_copy<void(NSTimer)> block;
    double fireAt { 0 };   // seconds on the phone's clock
    TimerId id { TimerId::none };
};

// The class of every timer made through NSTimer's methods.
struct PhoneTimer : objc::subclass<PhoneTimer, "PhoneTimer", NSTimer> {
    using subclass::subclass;
    void invalidate() const;
    BOOL isValid() const;
    void fire() const;
    objc::handle userInfo() const;
    double timeInterval() const;
    objc::handle fireDate() const;
};

// Valid timers, by object. Not in the object: GNUstep's -dealloc asks a timer about itself.
std::unordered_map<id, std::shared_ptr<Timer>>& timers()
{
    static auto* const all = new std::unordered_map<id, std::shared_ptr<Timer>>;
    return *all;
}

std::shared_ptr<Timer> timerOf(NSTimer object)
{
    auto const found = timers().find(object.object);
    return found == timers().end() ? nullptr : found->second;
}

objc::ref<PhoneTimer> makeTimer(
    double interval, objc::handle target, SEL selector, objc::handle userInfo, bool repeats)
{
    // Not through init, which NSTimer refuses; nothing of its own storage is used.
    auto made = objc::adopt(PhoneTimer::alloc());
    auto timer = std::make_shared<Timer>();
    timer->interval = std::isfinite(interval) && interval > 0 ? interval : kLeastInterval;
    timer->repeats = repeats;
    timer->target = objc::retain(target);
    timer->selector = selector;
    timer->userInfo = objc::retain(userInfo);
    timers()[made.get().object] = std::move(timer);
    return made;
}

void fireTimer(NSTimer object)
{
    auto const timer = timerOf(object);
    if (!timer)
        return;
    auto const kept = objc::retain(object);
    AutoreleasePool const pool;
    if (!timer->repeats)
        timers().erase(object.object);
    else
        timer->fireAt = clock().now() + timer->interval;
    if (timer->block) {
        CalloutScope const scope(reinterpret_cast<void const*>(timer->block.get().block->invoke));
        timer->block(object);
        return;
    }
    if (!timer->target || !timer->selector)
        return;
    CalloutScope const scope(timer->target.get(), timer->selector);
    IMP const code = objc::boundary::message_implementation(timer->target.get().object, timer->selector);
    objc::call_implementation<void>(code, timer->target.get().object, timer->selector, object);
}

void schedule(NSTimer object)
{
    auto const timer = timerOf(object);
    if (!timer || timer->id != TimerId::none)
        return;
    timer->fireAt = clock().now() + timer->interval;
    timer->id = clock().at(timer->interval, timer->repeats ? timer->interval : 0,
        [kept = objc::retain(object)] { fireTimer(kept); });
}

void record(double interval, SEL selector, bool repeats, objc::handle target)
{
    trace().record("timer",
        { { "interval", interval }, { "selector", selector ? Json(sel_getName(selector)) : Json(nullptr) },
            { "repeats", repeats }, { "target", target ? Json(classNameOf(target)) : Json(nullptr) } });
}

// BOOL travels as a whole register: only the low byte counts.
id timer(id, SEL, double interval, id target, SEL selector, id userInfo, unsigned repeats)
{
    return objc::autorelease(makeTimer(interval, objc::handle { target }, selector, objc::handle { userInfo },
                                 objc::is_true(repeats)))
        .object;
}

id scheduledTimer(id, SEL, double interval, id target, SEL selector, id userInfo, unsigned repeats)
{
    record(interval, selector, objc::is_true(repeats), objc::handle { target });
    auto const made = makeTimer(
        interval, objc::handle { target }, selector, objc::handle { userInfo }, objc::is_true(repeats));
    schedule(made);
    return objc::autorelease(made).object;
}

id scheduledTimerWithBlock(id, SEL, double interval, unsigned repeats, objc::block_header* block)
{
    record(interval, nullptr, objc::is_true(repeats), {});
    auto const made = makeTimer(interval, {}, nullptr, {}, objc::is_true(repeats));
    timerOf(made)->block = objc::block_copy<void(NSTimer)>(objc::block_ref<void(NSTimer)> { block });
    schedule(made);
    return objc::autorelease(made).object;
}

Replaced<void(id, SEL, id, id)> g_addTimer;
void addTimer(id self, SEL cmd, id timer, id mode)
{
    if (objc::cast<PhoneTimer>(objc::handle { timer }))
        schedule(NSTimer { timer });
    else
        g_addTimer(self, cmd, timer, mode);
}

void PhoneTimer::invalidate() const
{
    auto const timer = timerOf(*this);
    if (!timer)
        return;
    // The clock's reference may be the last one.
    auto const kept = timer->id == TimerId::none ? objc::ref<PhoneTimer> {} : objc::retain(*this);
    timers().erase(object);
    clock().cancel(timer->id);
}
BOOL PhoneTimer::isValid() const { return bool(timerOf(*this)); }
void PhoneTimer::fire() const
{
    auto const timer = timerOf(*this);
    if (timer && !timer->repeats)
        clock().cancel(timer->id);
    fireTimer(*this);
}
objc::handle PhoneTimer::userInfo() const
{
    auto const timer = timerOf(*this);
    return timer ? timer->userInfo.get() : objc::handle {};
}
double PhoneTimer::timeInterval() const
{
    auto const timer = timerOf(*this);
    return timer && timer->repeats ? timer->interval : 0;
}
objc::handle PhoneTimer::fireDate() const
{
    auto const timer = timerOf(*this);
    return timer
        ? NSDate::cls().send<"dateWithTimeIntervalSinceNow:", objc::handle>(timer->fireAt - clock().now())
        : objc::handle {};
}

}

void replaceTimers()
{
    static bool isDone = false;
    if (std::exchange(isDone, true))
        return;
    objc::define<PhoneTimer>()
        .method<"invalidate", &PhoneTimer::invalidate>()
        .method<"isValid", &PhoneTimer::isValid>()
        .method<"fire", &PhoneTimer::fire>()
        .method<"userInfo", &PhoneTimer::userInfo>()
        .method<"timeInterval", &PhoneTimer::timeInterval>()
        .method<"fireDate", &PhoneTimer::fireDate>()
        .install();
    replace<"timerWithTimeInterval:target:selector:userInfo:repeats:">(
        "NSTimer", &timer, MethodKind::ofClass);
    replace<"scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:">(
        "NSTimer", &scheduledTimer, MethodKind::ofClass);
    replace<"scheduledTimerWithTimeInterval:repeats:block:">(
        "NSTimer", &scheduledTimerWithBlock, MethodKind::ofClass);
    replace<"addTimer:forMode:">("NSRunLoop", &addTimer, g_addTimer);
}

}
