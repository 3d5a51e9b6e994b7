// Siri's private presentation classes.
#pragma once

#include "platform/foundation.hpp"

struct SBAssistantController : objc::subclass<SBAssistantController, "SBAssistantController", NSObject> {
    using subclass::subclass;
    static SBAssistantController sharedInstance()
    {
        return cls().ask<"sharedInstance", SBAssistantController>();
    }
};

struct SiriPresentationOptions
    : objc::subclass<SiriPresentationOptions, "SiriPresentationOptions", NSObject> {
    using subclass::subclass;
    void setWakeScreen(BOOL wake) const { ask<"setWakeScreen:">(wake); }
    void setHideOtherWindowsDuringAppearance(BOOL hide) const
    {
        ask<"setHideOtherWindowsDuringAppearance:">(hide);
    }
};

struct SASRequestOptions : objc::subclass<SASRequestOptions, "SASRequestOptions", NSObject> {
    using subclass::subclass;
    // Nil, and the receiver gone, where the class has no such initialiser.
    SASRequestOptions initWithRequestSource(NSInteger source, NSString presentationIdentifier) const
    {
        return ask<"initWithRequestSource:uiPresentationIdentifier:", SASRequestOptions>(
            source, presentationIdentifier);
    }
    double timestamp() const { return ask<"timestamp", double>(); }   // seconds
    void setButtonDownTimestamp(double seconds) const { ask<"setButtonDownTimestamp:">(seconds); }
    void setText(NSString text) const { ask<"setText:">(text); }
    void setContextAppInfosForSiriViewController(NSArray infos) const
    {
        ask<"setContextAppInfosForSiriViewController:">(infos);
    }
};

struct AFApplicationInfo : objc::subclass<AFApplicationInfo, "AFApplicationInfo", NSObject> {
    using subclass::subclass;
    void setPid(int pid) const { ask<"setPid:">(pid); }
    void setIdentifier(NSString bundleIdentifier) const { ask<"setIdentifier:">(bundleIdentifier); }
};

struct SiriPresentation : NSObject {
    using NSObject::NSObject;
    void presentationRequested(SiriPresentationOptions options, SASRequestOptions request) const
    {
        ask<"presentationRequestedWithPresentationOptions:requestOptions:">(options, request);
    }
};
