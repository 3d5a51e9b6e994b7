#include "plugin/actions/siri_call.hpp"

#include "objc/define.hpp"
#include "platform/siri.hpp"
#include "plugin/actions/current_contact.hpp"
#include "plugin/actions/text_format.hpp"
#include "plugin/strip/cvl_view.hpp"
#include "plugin/strip/strip_state.hpp"

namespace {

struct Phrases {
    SiriApp app;
    char const* turkish;
    char const* hebrew;
    char const* english;
    objc::ref<NSString> CurrentContact::*hebrewSubject;   // the others take the number
};

constexpr Phrases kPhrases[] = {
    { SiriApp::whatsapp, "whatsapp'ta %@'i ara",
        "\u05EA\u05EA\u05E7\u05E9\u05E8\u05D9 \u05DC%@ \u05D1whatsapp", "call %@ in whatsapp",
        &CurrentContact::currentPhoneNumber },
    { SiriApp::telegram, "telegram'ta %@'i ara",
        "\u05EA\u05EA\u05E7\u05E9\u05E8\u05D9 \u05DC%@ \u05D1telegram", "call %@ in telegram",
        &CurrentContact::currentContactName },
};

NSString phraseFor(Phrases const& row)
{
    viewPreferences const& prefs = stripState().mainPrefsStruct.get();
    CurrentContact const& contact = currentContact();
    if (prefs.siriTurkish)
        return filled(row.turkish, { contact.currentPhoneNumber });
    if (prefs.siriHebrew)
        return filled(row.hebrew, { contact.*row.hebrewSubject });
    return filled(row.english, { contact.currentPhoneNumber });
}

// SpringBoard, as the application that asks.
void setContext(SASRequestOptions request)
{
    auto const info = objc::adopt(AFApplicationInfo::alloc().init<AFApplicationInfo>());
    info->setPid(NSProcessInfo::processInfo().processIdentifier());
    info->setIdentifier(NSBundle::mainBundle().bundleIdentifier());
    NSMutableArray const infos = NSMutableArray::array();
    if (info)
        infos.addObject(info);
    request.setContextAppInfosForSiriViewController(infos);
}

}

void CVLView::callUsingSiri(std::int32_t app) const
{
    SiriPresentation const presentation {
        objc::object_ivar(SBAssistantController::sharedInstance(), "_mainScreenSiriPresentation").object
    };
    if (!presentation)
        return;
    auto const options = objc::adopt(SiriPresentationOptions::alloc().init<SiriPresentationOptions>());
    options->setWakeScreen(false);
    options->setHideOtherWindowsDuringAppearance(false);

    auto const request = objc::adopt(
        SASRequestOptions::alloc().initWithRequestSource(/* source: */ 0, "com.apple.siri.Siriland"_ns));
    request->setButtonDownTimestamp(
        request->timestamp());   // as if the Siri button had been pressed just now
    for (Phrases const& row : kPhrases)
        if (static_cast<std::int32_t>(row.app) == app)
            request->setText(phraseFor(row));
    setContext(request);
    presentation.presentationRequested(options, request);

    currentContact().currentPhoneNumber = objc::retain(""_ns);
    currentContact().currentContactName = objc::retain(""_ns);
    send<"makeBannerGone">();
}
