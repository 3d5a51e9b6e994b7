// What SpringBoard writes on the screen, by language. English where a language has no row. Any thread.
#pragma once

#include <string_view>

namespace phone {

struct NotificationText {
    char const* application;
    char const* title;
    char const* body;
    char const* age;
};

struct Texts {
    char const* language;   // BCP 47, or its first part
    char const* swipeToUnlock;
    char const* pressToUnlock;
    char const* enterPasscode;
    char const* cancel;
    char const* deleteDigit;
    char const* song;
    char const* artist;
    NotificationText notifications[2];   // newest first; people and places are invented
};

// By the longest part of the tag that has a row (`zh-Hant-TW`, `zh-Hant`, `zh`).
Texts const& textsFor(std::string_view language);

}
