// How long the phone and the plug-in take: booting, building strips, cells, scrolling, and what a hook costs.
#include "bench/in_child.hpp"
#include "bench/ratio_reporter.hpp"
#include "bench/stop_watch.hpp"
#include "bench/web_driver_bench.hpp"

#include "objc/define.hpp"
#include "objc/hook.hpp"
#include "phone/phone.hpp"
#include "phone/screen/renderer.hpp"
#include "phone/springboard/starter_pictures.hpp"
#include "phone/springboard/starter_set.hpp"
#include "platform/substrate.hpp"
#include "plugin/host/view_preferences.hpp"

#include <benchmark/benchmark.h>

namespace {

constexpr double kScale = 2;   // pixels a point

phone::BootOptions options()
{
    phone::BootOptions options;
    options.ios = { 15, 4 };
    options.scale = kScale;
    options.plugins = { CORVEL_PLUGIN };
    return options;
}

phone::BootOptions optionsWithContacts(std::size_t count)
{
    phone::BootOptions result = options();
    phone::Json contacts = phone::Json::array();
    for (std::size_t i = 0; i < count; ++i) {
        std::string const number = std::to_string(i);
        contacts.push_back(
            phone::Json::object({ { "contactFirstName", "First " + number }, { "contactLastName", "Last" },
                { "contactUniqueIdentifier", number }, { "contactImage", "" }, { "contactBirthday", "" },
                { "contactPhoneNumber", "+1 555 " + number }, { "contactEmail", "" } }));
    }
    result.contacts = contacts;
    return result;
}

// Each iteration is a child's own measure of what it did after the boot.
void measureInChildren(
    benchmark::State& state, phone::BootOptions const& boot, std::function<double()> const& body)
{
    for ([[maybe_unused]] auto const iteration : state) {
        double const seconds = inChild([&]() -> double {
            if (!phone::phone().boot(boot))
                return -1;
            AutoreleasePool const pool;
            return body();
        });
        if (seconds < 0) {
            state.SkipWithError("the phone did not boot");
            return;
        }
        state.SetIterationTime(seconds);
    }
}

void forkOfWarmParent(benchmark::State& state)
{
    for ([[maybe_unused]] auto const iteration : state) {
        auto const start = Clock::now();
        inChild([] { return 0.0; });
        state.SetIterationTime(secondsSince(start));
    }
}

void bootToFirstFrame(benchmark::State& state)
{
    for ([[maybe_unused]] auto const iteration : state) {
        double const seconds = inChild([]() -> double {
            auto const start = Clock::now();
            if (!phone::phone().boot(options()))
                return -1;
            phone::Renderer renderer;
            renderer.drawScreen(kScale);
            return secondsSince(start);
        });
        if (seconds < 0) {
            state.SkipWithError("the phone did not boot");
            return;
        }
        state.SetIterationTime(seconds);
    }
}

objc::handle readList()
{
    return objc::autorelease(objc::adopt(NSMutableDictionary::alloc().initWithContentsOfFile(
        "/var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist"_ns)));
}

void readingContacts(benchmark::State& state)
{
    measureInChildren(state, optionsWithContacts(static_cast<std::size_t>(state.range(0))), [] {
        auto const start = Clock::now();
        benchmark::DoNotOptimize(readList());
        return secondsSince(start);
    });
}

viewPreferences usualPreferences()
{
    viewPreferences prefs {};
    prefs.styleCustomTitle = "Corvel"_ns;
    prefs.viewAlpha = -1;
    prefs.titlePos = 2;
    prefs.bannerStyle = 1;
    prefs.isRoundCell = prefs.darkMode = prefs.birthdayFrame = prefs.isDynamicSize = prefs.enableTitle = true;
    return prefs;
}

double g_reading = 0;   // seconds that property lists took to read

struct DictionaryFromFile {
    static inline objc::original<objc::handle(NSObject, SEL, NSString)> original;
    static objc::handle replacement(NSObject self, SEL selector, NSString path)
    {
        auto const start = Clock::now();
        objc::handle const dictionary = original(self, selector, path);
        g_reading += secondsSince(start);
        return dictionary;
    }
};

// A strip from nothing to its first layout, the time to read its contacts taken off.
double createStrip()
{
    auto const [replacement, original] = objc::hook<DictionaryFromFile>();
    MSHookMessageEx(objc::cls<"NSDictionary">().get(), objc::selector<"initWithContentsOfFile:">(),
        replacement, original);

    auto const start = Clock::now();
    objc::handle const made = objc::cls<"CVLView">().send<"alloc", objc::handle>();
    phone::UIView const strip { made.send<"initWithFrame:prefs:nonLSView:", objc::handle>(
                                        CGRectMake(0, 27, 335, 80), usualPreferences(), BOOL(false))
                                    .object };
    phone::phone().windows().front().addSubview(strip);
    strip.layoutIfNeeded();
    return g_reading > 0 ? secondsSince(start) - g_reading : -1;   // a strip reads its list itself
}

void stripCreation(benchmark::State& state)
{
    measureInChildren(state, optionsWithContacts(static_cast<std::size_t>(state.range(0))), createStrip);
}

double buildCells(NSUInteger item)
{
    constexpr int kCells = 50;
    phone::UIView const strip = phone::phone().strip();
    objc::handle const row = strip.send<"collectionView", objc::handle>();
    objc::handle const path = objc::cls<"NSIndexPath">().send<"indexPathForItem:inSection:", objc::handle>(
        NSInteger(item), NSInteger(0));
    auto const start = Clock::now();
    for (int i = 0; i < kCells; ++i)
        strip.send<"collectionView:cellForItemAtIndexPath:", objc::handle>(row, path);
    return secondsSince(start) / kCells;
}

void cellWithPhoto(benchmark::State& state)
{
    measureInChildren(
        state, options(), [] { return buildCells(0); });   // the starter set's first contact has one
}
void cellWithoutPhoto(benchmark::State& state)
{
    measureInChildren(state, optionsWithContacts(5), [] { return buildCells(0); });
}

void scrollFrame(benchmark::State& state)
{
    measureInChildren(state, options(), [] {
        constexpr int kFrames = 30;
        phone::Phone& device = phone::phone();
        phone::Renderer renderer;
        renderer.drawScreen(kScale);
        phone::UIView const strip = device.strip();
        CGRect const place = strip.convertRectToView(strip.bounds(), {});
        CGFloat const y = place.origin.y + place.size.height / 2;
        device.touchDown({ place.origin.x + 300, y });
        auto const start = Clock::now();
        for (int i = 1; i <= kFrames; ++i) {
            device.touchMove({ place.origin.x + 300 - 4 * i, y });
            if (!device.advance(1.0 / 60))
                return -1.0;
            renderer.drawScreen(kScale);
        }
        return secondsSince(start) / kFrames;
    });
}

// A class with two methods that do the same, one of them hooked.
struct Measured : objc::subclass<Measured, "CorvelBenchMeasured", NSObject> {
    using subclass::subclass;
    NSInteger plain() const { return 1; }
    NSInteger hooked() const { return 1; }
};
struct HookedMethod {
    static inline objc::original<NSInteger(Measured, SEL)> original;
    static NSInteger replacement(Measured self, SEL cmd) { return original(self, cmd); }
};

Measured measured()
{
    static Measured const object = [] {
        objc::define<Measured>()
            .method<"plain", &Measured::plain>()
            .method<"hooked", &Measured::hooked>()
            .install();
        auto const [replacement, original] = objc::hook<HookedMethod>();
        MSHookMessageEx(Measured::cls().get(), objc::selector<"hooked">(), replacement, original);
        return Measured::alloc().init<Measured>();
    }();
    return object;
}

void plainMessage(benchmark::State& state)
{
    Measured const object = measured();
    for ([[maybe_unused]] auto const iteration : state)
        benchmark::DoNotOptimize(object.send<"plain", NSInteger>());
}
void hookedMessage(benchmark::State& state)
{
    Measured const object = measured();
    for ([[maybe_unused]] auto const iteration : state)
        benchmark::DoNotOptimize(object.send<"hooked", NSInteger>());
}

constexpr int kChildren = 5;      // an iteration is a process
constexpr int kRepetitions = 3;   // for the median

benchmark::internal::Benchmark* inProcesses(benchmark::internal::Benchmark* each)
{
    return each->UseManualTime()
        ->Iterations(kChildren)
        ->Repetitions(kRepetitions)
        ->ReportAggregatesOnly()
        ->Unit(benchmark::kMillisecond);
}

void registerAll()
{
    inProcesses(benchmark::RegisterBenchmark("forkOfWarmParent", forkOfWarmParent));
    inProcesses(benchmark::RegisterBenchmark("bootToFirstFrame", bootToFirstFrame));
    for (int const contacts : { 5, 50, 500, 5000 }) {
        inProcesses(benchmark::RegisterBenchmark("readingContacts", readingContacts))->Arg(contacts);
        inProcesses(benchmark::RegisterBenchmark("stripCreation", stripCreation))->Arg(contacts);
    }
    inProcesses(benchmark::RegisterBenchmark("cellWithPhoto", cellWithPhoto));
    inProcesses(benchmark::RegisterBenchmark("cellWithoutPhoto", cellWithoutPhoto));
    inProcesses(benchmark::RegisterBenchmark("scrollFrame", scrollFrame));
    for (auto* const each : registerWebDriverBenchmarks(options()))
        inProcesses(each);
    benchmark::RegisterBenchmark("plainMessage", plainMessage)
        ->Repetitions(kRepetitions)
        ->ReportAggregatesOnly();
    benchmark::RegisterBenchmark("hookedMessage", hookedMessage)
        ->Repetitions(kRepetitions)
        ->ReportAggregatesOnly();
}

}

int main(int argc, char** argv)
{
    phone::Phone::warmUp();
    registerAll();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    if (benchmark::RunSpecifiedBenchmarks(&reporter) == 0)
        return 1;
    return 0;
}
