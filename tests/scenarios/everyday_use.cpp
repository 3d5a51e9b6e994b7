#include "tests/scenarios/everyday_use.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

namespace phone {

namespace {

constexpr int kRaised = 3;   // exit status

}

BootOptions EverydayUse::usual(std::string const& version)
{
    return options(version, { { "singleTapAction", 0 }, { "askBeforeCall", true } },
        Json::array({ annasEntry(), emptyEntry(), "no entry" }));
}

UIView EverydayUse::firstPickerRow()
{
    for (UIView const view : visibleViews())
        if (view.send<"isKindOfClass:", BOOL>(objc::class_handle { objc_getClass("CNContactPickerRow") }))
            return view;
    return {};
}

void EverydayUse::useEverything()
{
    if (UIView const contact = contactButton()) {
        touch(contact);
        wait();
        if (UIView const row = alertRow("No"))
            touch(row);
        wait();
        for (char const* const title :
            { "New SMS Message", "Email (anna@example.com)", "Call via WhatsApp" }) {
            if (UIView const shown = contactButton())
                hold(shown);
            wait();
            if (UIView const row = alertRow(title))
                touch(row);
            wait();
            for (char const* const end : { "Cancel", "Siri" })
                if (UIView const shown = button(end))
                    touch(shown);
            wait();
        }
    }
    phone().strip().send<"addButton:">(objc::handle {});
    wait();
    for (UIView const each : { firstPickerRow(), button("Done") })
        if (each)
            touch(each);
    wait();
    for (int i = 0; i < 2; ++i) {
        phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelNONLS");
        wait();
        static_cast<void>(phone().setOrientation(i == 0 ? 3 : 1));
        wait();
    }
    phone().postNotification(NotificationCenterKind::standard, "com.orvane.corvelLS");
    phone().requestUnlock();
    wait();
    phone().lock();
    phone().setMusicPlaying(true);
    wait();
    for (char const* const title : { "Facetime Call", "Send Telegram Message" }) {
        if (UIView const shown = contactButton())
            hold(shown);
        wait();
        for (char const* const row : { title, "Yes" })
            if (UIView const shown = alertRow(row))
                touch(shown);
        wait();
        if (UIView const shown = button("End"))
            touch(shown);
        wait();
    }
}

std::string EverydayUse::inChild(std::function<void(std::FILE*)> const& work, std::string* said)
{
    int ends[2];
    if (pipe(ends) != 0)
        return "there is no pipe";
    std::fflush(nullptr);
    pid_t const child = fork();
    if (child == 0) {
        std::FILE* const stream = fdopen(ends[1], "w");
        int status = 0;
        try {
            work(stream);
        } catch (...) {
            status = kRaised;
        }
        std::fclose(stream);
        phone().close();
        std::fflush(nullptr);
        _exit(status);
    }
    close(ends[1]);
    char letter;
    while (read(ends[0], &letter, 1) == 1)
        if (said)
            *said += letter;
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status))
        return strsignal(WTERMSIG(status));
    return WEXITSTATUS(status) == kRaised ? "raised an exception" : "";
}

}
