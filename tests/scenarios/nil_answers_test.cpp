// Every message to the platform from which the plug-in gets an object, answered with nil, one at a time; and every selector
// that it asks an object for, answered with no: nothing crashes.
#include "tests/scenarios/everyday_use.hpp"

#include "objc/boundary.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/springboard/message_lookup.hpp"

#include <cstring>
#include <dlfcn.h>
#include <set>
#include <string_view>
#include <unordered_map>

extern "C" {
char const* method_getTypeEncoding(Method method);
objc::raw_bool class_isMetaClass(Class cls);
}

namespace phone {

namespace {

enum class Watch { nothing, messages, questions };
Watch g_watch = Watch::nothing;

std::set<std::string> g_heard;   // messages as messageOf() has them
std::string g_unanswered;        // the one that is answered with nil or no; none: all are heard

bool g_hasRaised = false;   // an exception, since the phone has booted

bool isFromPlugin(void const* caller)
{
    static std::unordered_map<void const*, bool> known;
    auto const [row, isNew] = known.try_emplace(caller, false);
    if (isNew)
        row->second = isPluginCode(caller);
    return row->second;
}

// `+[UIColor clearColor]`
std::string messageOf(Class cls, SEL selector)
{
    std::string const sign = objc::is_true(class_isMetaClass(cls)) ? "+[" : "-[";
    return sign + class_getName(cls) + ' ' + sel_getName(selector) + ']';
}

// Hears of the message. Whether it is the one that is not answered.
bool isUnanswered(Class cls, SEL selector)
{
    std::string message = messageOf(cls, selector);
    if (g_unanswered.empty())
        g_heard.insert(std::move(message));
    else
        return message == g_unanswered;
    return false;
}

bool answersObject(Class cls, SEL selector)
{
    for (std::string_view const memory : { "retain", "autorelease" })
        if (memory == sel_getName(selector))
            return false;
    Method const method = class_getInstanceMethod(cls, selector);
    char const* const encoding = method ? method_getTypeEncoding(method) : nullptr;
    return encoding && (*encoding == '@' || *encoding == '#');
}

id answerNil(id, SEL) { return nullptr; }

IMP intercept(id receiver, SEL selector, IMP found, void const* caller)
{
    // Also where somebody on the way catches it, as a notification centre does.
    if (std::strcmp(sel_getName(selector), "raise") == 0)
        g_hasRaised = true;
    if (g_watch != Watch::messages || !isFromPlugin(caller)
        || isPluginCode(reinterpret_cast<void const*>(found)))
        return found;
    Class const cls = objc::boundary::class_of(receiver);
    return answersObject(cls, selector) && isUnanswered(cls, selector) ? reinterpret_cast<IMP>(&answerNil)
                                                                       : found;
}

}

// In place of the runtime's, for the plug-in and all libraries: the plug-in's own questions are heard.
extern "C" objc::raw_bool class_respondsToSelector(Class cls, SEL selector)
{
    static auto* const ofRuntime =
        reinterpret_cast<decltype(&class_respondsToSelector)>(dlsym(RTLD_NEXT, "class_respondsToSelector"));
    objc::raw_bool const answer = ofRuntime(cls, selector);
    if (g_watch != Watch::questions || !objc::is_true(answer) || !isFromPlugin(__builtin_return_address(0)))
        return answer;
    return isUnanswered(cls, selector) ? 0 : answer;
}

class NilAnswers : public EverydayUse, public testing::WithParamInterface<char const*> {
protected:
    // Uses the phone with each answer missing in turn, in a process of its own. How many there were.
    std::size_t missEach(Watch watch)
    {
        auto options = usual(GetParam());
        (*options.settings)["isEnabled"] = false;
        boot(options);
        std::string heard;
        auto const hear = [watch](std::FILE* stream) {
            useFromTheFirstLoad(watch);
            for (std::string const& message : g_heard)
                std::fprintf(stream, "%s\n", message.c_str());
        };
        EXPECT_EQ(inChild(hear, &heard), "");

        std::size_t count = 0;
        for (std::size_t at = 0; at < heard.size(); ++count) {
            std::size_t const end = heard.find('\n', at);
            g_unanswered = heard.substr(at, end - at);
            at = end + 1;
            std::string raised;
            auto const use = [watch](std::FILE* stream) {
                useFromTheFirstLoad(watch);
                if (g_hasRaised)
                    std::fprintf(stream, "an exception was raised");
            };
            EXPECT_EQ(inChild(use, &raised), "") << g_unanswered;
            EXPECT_EQ(raised, "") << g_unanswered;
        }
        return count;
    }

private:
    // Switched off until then, so that the strip is made while the messages are heard.
    static void useFromTheFirstLoad(Watch watch)
    {
        setMessageInterceptor(&intercept);
        g_watch = watch;
        static_cast<void>(phone().changeSettings({ { "isEnabled", true } }, {}));
        phone().adjunctController().send<"viewDidLoad">();
        wait();
        useEverything();
        g_watch = Watch::nothing;
        setMessageInterceptor(nullptr);
    }
};

TEST_P(NilAnswers, CrashNothing) { EXPECT_GT(missEach(Watch::messages), 100u); }

TEST_P(NilAnswers, ToWhatIsAskedForCrashNothing) { EXPECT_GT(missEach(Watch::questions), 20u); }

INSTANTIATE_TEST_SUITE_P(Systems, NilAnswers, testing::Values("12.4", "15.4"),
    [](auto const& info) { return info.param[1] == '2' ? "DashBoard" : "CoverSheet"; });

}
