// A phone for a test: with the real plug-in in programs made by corvel_phone_test(), with none in those made by
// corvel_unit_test(), whose tests call the plug-in's parts themselves. Each test runs in a process of its own and boots there.
#pragma once

#include "phone/kernel/services.hpp"
#include "phone/phone.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace phone {

class CorvelTest : public testing::Test {
protected:
    ~CorvelTest() override;

    // Fails the test when the phone does not boot, or when a plug-in that it found would not load.
    static void boot(BootOptions const& = {});

    // A version like "13.7", settings by key (none: an empty file) and that many contacts of contactEntries().
    static BootOptions options(
        std::string const& version, Json settings = Json::object(), std::size_t contacts = 3);

    // Entries of a contact list: Anna A, Bora B, … with a number and an address, without photo and birthday.
    static Json contactEntries(std::size_t count);

    // The trace's events of a kind from event number `since` on.
    static std::vector<Json> events(std::string const& kind, std::size_t since = 0);
    // One field of each: texts as they are, anything else as JSON.
    static std::vector<std::string> told(
        std::string const& kind, std::string const& field, std::size_t since = 0);

    // The root itself and what is in it, back to front, of exactly this class. Nil: none.
    static std::vector<UIView> viewsOfClass(UIView root, char const* className);
    static std::string className(objc::handle object);   // nil: "nil"

    AutoreleasePool m_pool;
};

}
