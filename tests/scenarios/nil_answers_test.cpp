// Every message to the platform from which the plug-in gets an object, answered with nil, one at a time: nothing crashes.
#include "tests/scenarios/everyday_use.hpp"

#include "objc/boundary.hpp"
#include "phone/foundation/plugin_call.hpp"
#include "phone/springboard/message_lookup.hpp"

#include <cstring>
#include <set>
#include <string_view>
#include <unordered_map>

extern "C" {
char const* method_getTypeEncoding(Method method);
objc::raw_bool class_isMetaClass(Class cls);
}

namespace phone {

namespace {

std::set<std::string> g_heard;   // messages as messageOf() has them
std::string g_unanswered;        // the one that is answered with nil; none: all are heard

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
std::string messageOf(id receiver, SEL selector)
{
    Class const cls = objc::boundary::class_of(receiver);
    std::string const sign = objc::is_true(class_isMetaClass(cls)) ? "+[" : "-[";
    return sign + class_getName(cls) + ' ' + sel_getName(selector) + ']';
}

bool answersObject(id receiver, SEL selector)
{
    for (std::string_view const memory : { "retain", "autorelease" })
        if (memory == sel_getName(selector))
            return false;
    Method const method = class_getInstanceMethod(objc::boundary::class_of(receiver), selector);
    char const* const encoding = method ? method_getTypeEncoding(method) : nullptr;
    return encoding && (*encoding == '@' || *encoding == '#');
}

id answerNil(id, SEL) { return nullptr; }

IMP intercept(id receiver, SEL selector, IMP found, void const* caller)
{
    // Also where somebody on the way catches it, as a notification centre does.
    if (std::strcmp(sel_getName(selector), "raise") == 0)
        g_hasRaised = true;
    if (!isFromPlugin(caller) || isPluginCode(reinterpret_cast<void const*>(found)))
        return found;
    if (g_unanswered.empty()) {
        if (answersObject(receiver, selector))
            g_heard.insert(messageOf(receiver, selector));
        return found;
    }
    return messageOf(receiver, selector) == g_unanswered ? reinterpret_cast<IMP>(&answerNil) : found;
}

}

class NilAnswers : public EverydayUse, public testing::WithParamInterface<char const*> {
protected:
    // Switched off until then, so that the strip is made while the messages are heard.
    static void useFromTheFirstLoad()
    {
        setMessageInterceptor(&intercept);
        static_cast<void>(phone().changeSettings({ { "isEnabled", true } }, {}));
        phone().adjunctController().send<"viewDidLoad">();
        wait();
        useEverything();
        setMessageInterceptor(nullptr);
    }
};

TEST_P(NilAnswers, CrashNothing)
{
    auto options = usual(GetParam());
    (*options.settings)["isEnabled"] = false;
    boot(options);
    std::string heard;
    ASSERT_EQ(inChild(
                  [](std::FILE* stream) {
                      useFromTheFirstLoad();
                      for (std::string const& message : g_heard)
                          std::fprintf(stream, "%s\n", message.c_str());
                  },
                  &heard),
        "");

    std::size_t count = 0;
    for (std::size_t at = 0; at < heard.size(); ++count) {
        std::size_t const end = heard.find('\n', at);
        g_unanswered = heard.substr(at, end - at);
        at = end + 1;
        std::string raised;
        auto const use = [](std::FILE* stream) {
            useFromTheFirstLoad();
            if (g_hasRaised)
                std::fprintf(stream, "an exception was raised");
        };
        EXPECT_EQ(inChild(use, &raised), "") << g_unanswered;
        EXPECT_EQ(raised, "") << g_unanswered;
    }
    EXPECT_GT(count, 100u);
}

INSTANTIATE_TEST_SUITE_P(Systems, NilAnswers, testing::Values("12.4", "15.4"),
    [](auto const& info) { return info.param[1] == '2' ? "DashBoard" : "CoverSheet"; });

}
