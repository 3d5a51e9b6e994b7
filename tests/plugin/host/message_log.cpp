#include "tests/plugin/host/message_log.hpp"

#include "objc/boundary.hpp"
#include "phone/springboard/substrate.hpp"

namespace phone {

namespace {

void record(id self, SEL cmd, Json argument = nullptr)
{
    std::string const receiver = UIView { self }.send<"isViewNonLS", BOOL>() ? "overlay" : "strip";
    deviceTrace().record(
        "sent", { { "target", receiver }, { "selector", sel_getName(cmd) }, { "argument", argument } });
}

void noteMessage(id self, SEL cmd) { record(self, cmd); }
void noteObject(id self, SEL cmd, id argument) { record(self, cmd, argument ? "object" : "nil"); }
void noteFlag(id self, SEL cmd, int flag) { record(self, cmd, (flag & 0xff) != 0); }
NSInteger answerActionState(id self, SEL cmd)
{
    record(self, cmd);
    return stripAnswers().actionState;
}
int answerStays(id self, SEL cmd)
{
    record(self, cmd);
    return stripAnswers().staysAtLockScreen;
}

void replace(char const* selector, IMP implementation)
{
    MSHookMessageEx(objc_getClass("CVLView"), sel_registerName(selector), implementation, nullptr);
}

}

StripAnswers& stripAnswers()
{
    static StripAnswers answers;
    return answers;
}

void logStripMessages()
{
    for (char const* const selector : { "msgWA", "callWA", "msgSMS", "sndEmail", "callPhone", "callFacetime",
             "msgTG", "callTG", "makeBannerGone", "rotateView", "resetActionState" })
        replace(selector, objc::boundary::any_function(&noteMessage));
    replace("showMenu:", objc::boundary::any_function(&noteObject));
    replace("setShouldStayAtLS:", objc::boundary::any_function(&noteFlag));
    replace("actionState", objc::boundary::any_function(&answerActionState));
    replace("getShouldStayAtLS", objc::boundary::any_function(&answerStays));
}

std::vector<std::string> story(std::size_t since)
{
    std::vector<std::string> lines;
    for (Json const& event : phone().trace().events(since)) {
        if (event["kind"] == "previous")
            lines.push_back("previous " + event["selector"].get<std::string>());
        if (event["kind"] != "sent")
            continue;
        lines.push_back(event["target"].get<std::string>() + ' ' + event["selector"].get<std::string>());
        if (!event["argument"].is_null())
            lines.back() += ' '
                + (event["argument"].is_string() ? event["argument"].get<std::string>()
                                                 : event["argument"].dump());
    }
    return lines;
}

}
