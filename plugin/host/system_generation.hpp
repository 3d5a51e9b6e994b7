// Which of the two generations of SpringBoard's lock screen is running.
#pragma once

// True on systems whose CoreFoundation number is above 1600.0 (iOS 13 and later): the lock screen's classes are called CS…;
// false up to and including it: SBDashBoard….
bool isCoverSheetSystem();
