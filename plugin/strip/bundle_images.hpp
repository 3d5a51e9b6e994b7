// Pictures of the preference bundle.
#pragma once

#include "platform/uikit.hpp"

inline UIImage bundleImage(NSString path) { return UIImage::imageWithContentsOfFile(path); }

// Nil where the bundle lacks them.
inline UIImage cakeBadge()
{
    return bundleImage("/var/jb/Library/PreferenceBundles/CorvelPREF.bundle/happybd.png"_ns);
}
inline UIImage contactsBanner()
{
    return bundleImage("/var/jb/Library/PreferenceBundles/CorvelPREF.bundle/contactsbar3.png"_ns);
}
