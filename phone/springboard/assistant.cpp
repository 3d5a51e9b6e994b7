// Siri, as far as it takes a request that somebody else has worded: the request is recorded and shown.
#include "objc/define.hpp"
#include "phone/apps/siri_card.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/springboard/system_classes.hpp"

namespace phone {

namespace {

struct PresentationOptions : objc::subclass<PresentationOptions, "SiriPresentationOptions", NSObject> {
    using subclass::subclass;
};

struct ApplicationInfo : objc::subclass<ApplicationInfo, "AFApplicationInfo", NSObject> {
    using subclass::subclass;
};

struct RequestOptions : objc::subclass<RequestOptions, "SASRequestOptions", NSObject> {
    using subclass::subclass;
    // Consumes the receiver, answers +1. Stamped with the phone's time (seconds).
    RequestOptions initWithSource(NSInteger source, NSString presentation) const
    {
        auto const self = objc::send_super<RequestOptions, "init", RequestOptions>(*this);
        if (!self)
            return self;
        objc::ivar<NSInteger, "_requestSource">(self) = source;
        objc::ivar<NSString, "_uiPresentationIdentifier">(self) =
            NSString { presentation.send<"copy", objc::handle>().object };
        objc::ivar<double, "_timestamp">(self) = clock().now();
        return self;
    }
};

Json textOrNull(NSString text) { return text ? Json(toString(text)) : Json(); }

Json appInfos(NSArray infos)
{
    Json rows = Json::array();
    for (NSUInteger i = 0; i < infos.count(); ++i) {
        objc::handle const info = infos.objectAtIndex(i);
        rows.push_back({ { "pid", info.ask<"pid", int>() },
            { "identifier", textOrNull(info.ask<"identifier", NSString>()) } });
    }
    return rows;
}

struct SiriPresentation : objc::subclass<SiriPresentation, "SBSiriPresentation", NSObject> {
    using subclass::subclass;
    void requested(objc::handle options, objc::handle request) const
    {
        trace().record("siri",
            { { "text", textOrNull(request.ask<"text", NSString>()) },
                { "presentation", textOrNull(request.ask<"uiPresentationIdentifier", NSString>()) },
                { "source", request.ask<"requestSource", NSInteger>() },
                { "wakeScreen", options.ask<"wakeScreen", BOOL>() },
                { "hideOtherWindows", options.ask<"hideOtherWindowsDuringAppearance", BOOL>() },
                { "timestamp", request.ask<"timestamp", double>() },
                { "buttonDownTimestamp", request.ask<"buttonDownTimestamp", double>() },
                { "appInfos", appInfos(request.ask<"contextAppInfosForSiriViewController", NSArray>()) } });
        showSiri(toString(request.ask<"text", NSString>()));
    }
};

struct Assistant : objc::subclass<Assistant, "SBAssistantController", NSObject> {
    using subclass::subclass;
    static objc::handle sharedInstance() { return springBoard().assistant; }
};

}

void defineAssistant()
{
    objc::define<PresentationOptions>()
        .property<"wakeScreen", BOOL>()
        .property<"hideOtherWindowsDuringAppearance", BOOL>()
        .install();
    objc::define<ApplicationInfo>()
        .property<"pid", int>()
        .property<"identifier", NSString>(objc::copy)
        .install();
    objc::define<RequestOptions>()
        .property<"requestSource", NSInteger>()
        .property<"uiPresentationIdentifier", NSString>(objc::copy)
        .property<"timestamp", double>()
        .property<"buttonDownTimestamp", double>()
        .property<"text", NSString>(objc::copy)
        .property<"contextAppInfosForSiriViewController", NSArray>(objc::copy)
        .method<"initWithRequestSource:uiPresentationIdentifier:", &RequestOptions::initWithSource>()
        .install();
    objc::define<SiriPresentation>()
        .method<"presentationRequestedWithPresentationOptions:requestOptions:",
            &SiriPresentation::requested>()
        .install();
    objc::define<Assistant>()
        .ivar<"_mainScreenSiriPresentation", SiriPresentation>(objc::strong)
        .class_method<"sharedInstance", &Assistant::sharedInstance>()
        .install();
}

objc::ref<objc::handle> makeAssistant()
{
    auto const assistant = objc::adopt(Assistant::alloc().init<Assistant>());
    Class const cls = Assistant::cls().get();
    if (Ivar const variable = class_getInstanceVariable(cls, "_mainScreenSiriPresentation"))
        *reinterpret_cast<id*>(reinterpret_cast<char*>(assistant.get().object) + ivar_getOffset(variable)) =
            SiriPresentation::alloc().init<SiriPresentation>().object;
    return objc::retain(objc::handle(assistant.get()));
}

}
