// Picking contacts, from the empty strip's button to the phone that comes up with the new list.
#include "tests/scenarios/actions.hpp"
#include "tests/scenarios/empty_strip.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/kernel/date.hpp"
#include "phone/springboard/starter_set.hpp"

#include <set>

namespace phone {

namespace {

constexpr char kWrite[] = "write /var/jb/var/mobile/Library/Preferences/com.orvane.corvellist.plist";
constexpr char kSpawn[] = "spawn /var/jb/usr/bin/killall killall backboardd";

Json person(std::string const& first, std::string const& last, Json more = Json::object())
{
    Json entry { { "contactFirstName", first }, { "contactLastName", last },
        { "contactUniqueIdentifier", "id-" + first + last } };
    entry.update(more);
    return entry;
}

Json people()
{
    return Json::array({
        person("Ada", "Lund",
            { { "contactPhoneNumber",
                  { { { "label", "mobile" }, { "value", "+44 20 7946 0321" } }, "+1 555 0100" } },
                { "contactBirthday", { { "day", 9 }, { "month", 3 }, { "year", 1990 } } } }),
        person("Bora", "", { { "contactEmail", { "bora@example.com", "second@example.com" } } }),
        person("", "Taxi",
            { { "contactImage", { { "data", "aW1hZ2U=" } } }, { "thumbnail", { { "data", "dGh1bWI=" } } } }),
        person("Dina", "Kohen", { { "contactBirthday", { { "day", 29 }, { "month", 2 } } } }),
        person("Emre", "Su",
            { { "contactBirthday",
                { { "day", 1 }, { "month", 1 }, { "year", 2000 }, { "calendar", nullptr } } } }),
    });
}

}

class PickerStory : public EmptyStripStory {
protected:
    static void openPicker(Json const& contacts = people()) { EmptyStripStory::openPicker(contacts); }
    // Of the alert that came up last.
    static Json lastActions()
    {
        Json actions;
        for (Json const& event : phone().trace().events())
            if (event["kind"] == "present" && event.contains("actions"))
                actions = event["actions"];
        return actions;
    }
    static void pick(std::vector<char const*> const& names)
    {
        for (char const* const name : names)
            touch(pickerRow(name));
        touch(button("Done"));
        wait();
    }
    // The list file's entries.
    static PropertyListArray written()
    {
        auto const bytes = phone().root().read(kContactListPath);
        if (!bytes)
            return {};
        auto const file = readPropertyList(*bytes);
        auto const* const root = file ? file->root.as<PropertyListDictionary>() : nullptr;
        auto const* const list = root ? root->find("contactsArray") : nullptr;
        return list && list->as<PropertyListArray>() ? *list->as<PropertyListArray>()
                                                     : PropertyListArray { PropertyList("no list") };
    }
    static PropertyList value(std::size_t index, char const* key)
    {
        auto const entries = written();
        auto const* const entry =
            index < entries.size() ? entries[index].as<PropertyListDictionary>() : nullptr;
        auto const* const found = entry ? entry->find(key) : nullptr;
        return found ? *found : PropertyList(false);
    }
    static std::string text(std::size_t index, char const* key)
    {
        auto const found = value(index, key);
        return found.as<std::string>() ? *found.as<std::string>() : "no text";
    }
};

class Picker : public PickerStory, public testing::WithParamInterface<char const*> {
protected:
    static BootOptions emptyStrip() { return options(GetParam(), Json::object(), Json::array()); }
};

TEST_P(Picker, OffersTheAddressBook)
{
    boot(emptyStrip());
    openPicker();

    EXPECT_EQ(
        effects(), (Effects { "passcodeTest no", "hold CVL", "present CNContactPickerViewController" }));
    for (char const* const name : { "Ada Lund", "Bora", "Taxi", "Dina Kohen", "Emre Su" })
        EXPECT_TRUE(pickerRow(name)) << name;
}

TEST_P(Picker, HandsOverInTheOrderTouched)
{
    boot(emptyStrip());
    openPicker();
    forget();

    pick({ "Taxi", "Ada Lund", "Bora", "Ada Lund", "Ada Lund" });   // the second touch takes it back

    EXPECT_EQ(effects(),
        (Effects { "dismiss CNContactPickerViewController", kWrite,
            "alert Corvel: You added 3 Contacts!\nEdit them using Corvel preferences\nDevice will now "
            "respring" }));
    EXPECT_EQ(alertRows(), std::vector<std::string> { "Respring" });
    EXPECT_EQ(lastActions(), Json::parse(R"([{"title":"Respring","style":1,"image":null}])"));
    EXPECT_FALSE(presented("CNContactPickerViewController"));
    EXPECT_TRUE(phone().idleTimer().holds("CVL"));
    ASSERT_EQ(written().size(), 3u);
    EXPECT_EQ(text(0, "contactLastName"), "Taxi");
    EXPECT_EQ(text(1, "contactFirstName"), "Bora");
    EXPECT_EQ(text(2, "contactFirstName"), "Ada");
}

TEST_P(Picker, StoresWhatEachContactHas)
{
    boot(emptyStrip());
    openPicker();

    pick({ "Ada Lund", "Bora", "Taxi", "Dina Kohen", "Emre Su" });

    ASSERT_EQ(written().size(), 5u);
    for (PropertyList const& entry : written())
        EXPECT_EQ(entry.as<PropertyListDictionary>()->size(), 7u);
    EXPECT_EQ(text(0, "contactUniqueIdentifier"), "id-AdaLund");
    EXPECT_EQ(text(0, "contactPhoneNumber"), "+44 20 7946 0321");
    EXPECT_EQ(text(0, "contactEmail"), "");
    EXPECT_EQ(text(0, "contactImage"), "");
    EXPECT_EQ(value(0, "contactBirthday"), PropertyList(*parseIsoDate("1990-03-09T00:00:00Z")));

    EXPECT_EQ(text(1, "contactLastName"), "");
    EXPECT_EQ(text(1, "contactPhoneNumber"), "");
    EXPECT_EQ(text(1, "contactEmail"), "bora@example.com");
    EXPECT_EQ(text(1, "contactBirthday"), "");

    EXPECT_EQ(text(2, "contactFirstName"), "");
    std::string const image = "image";
    EXPECT_EQ(value(2, "contactImage"), PropertyList(Bytes(image.begin(), image.end())));

    // Without a year it is year 1, which is no leap year; without a calendar there is no date.
    ASSERT_TRUE(value(3, "contactBirthday").as<Date>());
    EXPECT_EQ(text(4, "contactBirthday"), "");
}

TEST_P(Picker, ReplacesAListThatCameMeanwhileWithoutReadingIt)
{
    boot(emptyStrip());
    openPicker();
    auto const list = writePropertyListXml(PropertyListDictionary {
        { "contactsArray", PropertyListArray { PropertyListDictionary { { "contactFirstName", "Old" } } } },
        { "more", 1 } });
    ASSERT_TRUE(phone().root().write(kContactListPath, list->data(), list->size()));
    std::size_t const before = phone().trace().count();

    pick({ "Bora" });

    ASSERT_EQ(written().size(), 1u);
    EXPECT_EQ(text(0, "contactFirstName"), "Bora");
    auto const file = readPropertyList(*phone().root().read(kContactListPath));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->root.as<PropertyListDictionary>()->size(), 1u);
    int writes = 0;
    for (Json const& event : phone().trace().events(before)) {
        bool const isOfTheList = event.contains("path") && event["path"] == kContactListPath;
        EXPECT_FALSE(isOfTheList && event["kind"] == "read");
        if (isOfTheList && event["kind"] == "write") {
            ++writes;
            EXPECT_EQ(event["atomically"], true);
        }
    }
    EXPECT_EQ(writes, 1);
}

TEST_P(Picker, StoresAPhotoWithoutBytesAsNone)
{
    boot(emptyStrip());
    openPicker(Json::array({ person("Ada", "Lund", { { "contactImage", { { "data", "" } } } }) }));

    pick({ "Ada Lund" });

    ASSERT_EQ(written().size(), 1u);
    EXPECT_EQ(text(0, "contactImage"), "");
}

TEST_P(Picker, LetsTheScreenGoWhenItIsCancelled)
{
    boot(emptyStrip());
    openPicker();
    touch(pickerRow("Bora"));
    forget();

    touch(button("Cancel"));
    wait();

    EXPECT_EQ(effects(), (Effects { "dismiss CNContactPickerViewController", "release CVL" }));
    EXPECT_TRUE(written().empty());
    EXPECT_FALSE(phone().idleTimer().isDisabled());
    EXPECT_TRUE(addButton());
}

TEST_P(Picker, WritesAnEmptyPickAndSaysNothing)
{
    boot(emptyStrip());
    openPicker();
    forget();

    pick({});

    EXPECT_EQ(effects(), (Effects { "dismiss CNContactPickerViewController", kWrite }));
    EXPECT_TRUE(written().empty());
    EXPECT_TRUE(phone().idleTimer().holds("CVL"));
}

TEST_P(Picker, IsRefusedBehindAPasscode)
{
    auto options = emptyStrip();
    options.passcode = kStoryPasscode;
    boot(options);

    touch(addButton());
    wait();

    EXPECT_EQ(effects(),
        (Effects {
            "passcodeTest yes", "alert Corvel: You need to unlock your iPhone before you can do that" }));
    EXPECT_EQ(alertRows(), std::vector<std::string> { "OK" });
    EXPECT_EQ(lastActions(), Json::parse(R"([{"title":"OK","style":1,"image":null}])"));
    touch(alertRow("OK"));
    wait();
    EXPECT_EQ(effects(), (Effects { "dismiss UIAlertController" }));
    EXPECT_FALSE(phone().isPasscodeShown());
}

TEST_P(Picker, GoesOnWithoutTheCommandThatRestarts)
{
    boot(emptyStrip());
    ASSERT_TRUE(phone().setAvailable("killall", false));
    openPicker();
    pick({ "Bora" });
    forget();

    testing::internal::CaptureStderr();
    touch(alertRow("Respring"));
    wait();

    // A command with more than a path and arguments is reported.
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("posix_spawn"), std::string::npos);
    EXPECT_EQ(effects(), (Effects { "dismiss UIAlertController", kSpawn }));
    EXPECT_EQ(phone().trace().events().back()["environment"], nullptr);
    EXPECT_NE(phone().trace().events().back()["result"], 0);
}

TEST_P(Picker, BringsUpTheNewStripAfterTheRestart)
{
    std::size_t eventsBefore = bootAfterRespring(emptyStrip(), [] {
        openPicker();
        pick({ "Taxi", "Bora" });
        touch(alertRow("Respring"));
        wait();
    });

    EXPECT_TRUE(phone().isLocked());
    EXPECT_TRUE(shows("Bora"));
    EXPECT_TRUE(contactButton(1));
    EXPECT_FALSE(contactButton(2));
    EXPECT_GT(eventsBefore, 10u);
    Json const events = phone().trace().events();
    EXPECT_EQ(events[eventsBefore - 1]["kind"], "spawn");
    EXPECT_EQ(events.back()["n"], events.size() - 1);
    EXPECT_GE(events.back()["t"], events[eventsBefore - 1]["t"]);
    // The same address book as before.
    ASSERT_EQ(phone().restartState().addressBook, people());
}

INSTANTIATE_TEST_SUITE_P(EverySystemWithThePicker, Picker, testing::Values("13.7", "14.8", "15.4", "16.1"),
    [](auto const& info) { return versionName(info.param); });

namespace {

// What picked contacts don't answer to on some system, or answer with nothing, and what is then not stored.
struct Unanswered {
    char const* member;
    std::set<std::string> lost;   // keys
    bool answersNil { false };
};
std::vector<Unanswered> unanswered()
{
    std::vector<Unanswered> all {
        { "CNContact identifier", { "contactUniqueIdentifier" } },
        { "CNContact imageData", { "contactImage" } },
        { "CNContact birthday", { "contactBirthday" } },
        { "CNContact phoneNumbers", { "contactPhoneNumber" } },
        { "CNContact emailAddresses", { "contactEmail" } },
        { "CNLabeledValue value", { "contactPhoneNumber", "contactEmail" } },
        { "CNPhoneNumber stringValue", { "contactPhoneNumber" } },
    };
    for (std::size_t i = 0, count = all.size(); i < count; ++i)
        all.push_back({ all[i].member, all[i].lost, true });
    // Without the one name there is the other; one that answers nothing is asked no further.
    all.push_back({ "CNContact firstName", {} });
    all.push_back({ "CNContact lastName", {} });
    all.push_back({ "CNContact firstName", { "contactFirstName" }, true });
    all.push_back({ "CNContact lastName", { "contactLastName" }, true });
    return all;
}

void PrintTo(Unanswered const& each, std::ostream* stream) { *stream << each.member; }

}

class PickedContact : public PickerStory, public testing::WithParamInterface<Unanswered> { };

TEST_P(PickedContact, IsStoredWithoutWhatItDoesNotAnswer)
{
    auto options = Story::options("15.4", Json::object(), Json::array());
    options.absent = { GetParam().member };
    if (GetParam().answersNil)
        options.present = { GetParam().member };
    boot(options);
    openPicker(Json::array({ person("Ada", "Lund",
        { { "contactPhoneNumber", { "+1 555 0100" } }, { "contactEmail", { "ada@example.com" } },
            { "contactImage", { { "data", "aW1hZ2U=" } } },
            { "contactBirthday", { { "day", 9 }, { "month", 3 }, { "year", 1990 } } } }) }));

    pick({ "Ada Lund" });

    EXPECT_TRUE(alertRow("Respring"));
    ASSERT_EQ(written().size(), 1u);
    for (char const* const key : { "contactFirstName", "contactLastName", "contactUniqueIdentifier",
             "contactImage", "contactBirthday", "contactPhoneNumber", "contactEmail" })
        EXPECT_EQ(value(0, key) == PropertyList(""), GetParam().lost.contains(key)) << key;
}

INSTANTIATE_TEST_SUITE_P(Every, PickedContact, testing::ValuesIn(unanswered()), [](auto const& info) {
    std::string name = info.param.member;
    std::erase(name, ' ');
    return name + (info.param.answersNil ? "Nil" : "");
});

// What comes of a pick, on one system.
class Picked : public PickerStory {
protected:
    static std::string message(std::size_t count)
    {
        return "alert Corvel: You added " + std::to_string(count)
            + " Contacts!\nEdit them using Corvel preferences\nDevice will now respring";
    }
    static Effects alerts() { return only(effects(), { "alert", "spawn" }); }
};

TEST_F(Picked, CountsOneContactInThePlural)
{
    boot(options("15.4", Json::object(), Json::array()));
    openPicker();
    pick({ "Bora" });
    EXPECT_EQ(alerts(), Effects { message(1) });
}

TEST_F(Picked, SaysSoAlsoWhereTheListCannotBeWritten)
{
    boot(options("15.4", Json::object(), Json::array()));
    openPicker();
    ASSERT_TRUE(phone().root().setFault(kContactListPath, FileFault::full));
    pick({ "Ada Lund", "Bora" });

    EXPECT_EQ(alerts(), Effects { message(2) });
    EXPECT_TRUE(written().empty());
}

// Nothing is merged, and the strip is as it was until the phone has restarted.
TEST_F(Picked, ThreeTakeThePlaceOfFiveAtTheNextStart)
{
    Json five = Json::array();
    for (char const* const name : { "One", "Two", "Three", "Four", "Five" })
        five.push_back(person(name, ""));
    boot(options("15.4", Json::object(), five));
    ASSERT_TRUE(phone().setAddressBook(people()));
    phone().strip().send<"addButton:">(objc::handle {});
    wait();
    forget();

    pick({ "Dina Kohen", "Ada Lund", "Taxi" });

    EXPECT_EQ(alerts(), Effects { message(3) });
    ASSERT_EQ(written().size(), 3u);
    EXPECT_EQ(text(0, "contactFirstName"), "Dina");
    EXPECT_EQ(text(1, "contactFirstName"), "Ada");
    EXPECT_EQ(text(2, "contactLastName"), "Taxi");
    EXPECT_EQ((phone().strip().send<"list", objc::handle>().send<"count", NSUInteger>()), 5u);
    EXPECT_TRUE(contactButton(4));
}

class PickerList : public PickerStory {
protected:
    static Json many(int count)
    {
        Json contacts = Json::array();
        for (int i = 0; i < count; ++i)
            contacts.push_back(person("Number", std::to_string(i)));
        return contacts;
    }
};

TEST_F(PickerList, HoldsThousands)
{
    boot(options("15.4", Json::object(), Json::array()));
    openPicker(many(3000));

    EXPECT_TRUE(pickerRow("Number 3"));
    EXPECT_FALSE(pickerRow("Number 2999"));
    phone().drag({ 195, 700 }, { 195, 200 }, 0.1);
    wait(3);
    EXPECT_FALSE(pickerRow("Number 0"));
}

// A finger that had rested on a name picked it, and the list stood still.
TEST_F(PickerList, ScrollsUnderAFingerThatHasRestedOnAName)
{
    boot(options("15.4", Json::object(), Json::array()));
    openPicker(many(40));

    phone().touchDown({ 195, 700 });
    wait(0.5);
    for (double y = 700; y >= 200; y -= 25) {
        phone().touchMove({ 195, y });
        wait(1.0 / 60);
    }
    phone().touchUp({ 195, 200 });
    wait(3);
    EXPECT_FALSE(pickerRow("Number 0"));

    pick({});
    EXPECT_TRUE(written().empty());
}

}
