#include "tests/support/phone_fixture.hpp"

#include "tests/support/fork_runner.hpp"

namespace phone {

namespace {

// Names that differ in their first letter, so that initials tell contacts apart.
constexpr char const* kFirstNames[] = { "Anna", "Bora", "Carl", "Dina", "Emre", "Fay", "Gil", "Hanna" };

void collect(UIView view, objc::class_handle cls, std::vector<UIView>& found)
{
    if (objc::boundary::class_of(view.object) == cls.get())
        found.push_back(view);
    for (UIView const child : view.children())
        collect(child, cls, found);
}

}

CorvelTest::~CorvelTest() { phone().close(); }

void CorvelTest::boot(BootOptions const& options)
{
    Status const booted = phone().boot(options);
    ASSERT_TRUE(booted) << booted.message();
    for (PluginReport const& each : phone().plugins())
        ASSERT_TRUE(each.isLoaded) << each.name << ": " << each.problem;
}

BootOptions CorvelTest::options(std::string const& version, Json settings, std::size_t contacts)
{
    BootOptions options;
    options.ios = *SystemVersion::parse(version);
    options.settings = std::move(settings);
    options.contacts = contactEntries(contacts);
    return options;
}

Json CorvelTest::contactEntries(std::size_t count)
{
    Json entries = Json::array();
    for (std::size_t i = 0; i < count; ++i) {
        std::string const first = kFirstNames[i % std::size(kFirstNames)];
        std::string const number = std::to_string(i);
        entries.push_back(
            { { "contactFirstName", first }, { "contactLastName", std::string(1, first[0]) + number },
                { "contactUniqueIdentifier", "contact-" + number }, { "contactImage", "" },
                { "contactBirthday", "" }, { "contactPhoneNumber", "+44 20 7946-0" + number },
                { "contactEmail", "contact" + number + "@example.com" } });
    }
    return entries;
}

std::vector<Json> CorvelTest::events(std::string const& kind, std::size_t since)
{
    std::vector<Json> chosen;
    for (Json const& event : phone().trace().events(since))
        if (event["kind"] == kind)
            chosen.push_back(event);
    return chosen;
}

std::vector<std::string> CorvelTest::told(
    std::string const& kind, std::string const& field, std::size_t since)
{
    std::vector<std::string> texts;
    for (Json const& event : events(kind, since)) {
        Json const value = event.value(field, Json());
        texts.push_back(value.is_string() ? value.get<std::string>() : value.dump());
    }
    return texts;
}

std::vector<UIView> CorvelTest::viewsOfClass(UIView root, char const* className)
{
    std::vector<UIView> found;
    objc::class_handle const cls { objc_getClass(className) };
    if (root && cls)
        collect(root, cls, found);
    return found;
}

std::string CorvelTest::className(objc::handle object)
{
    return object ? class_getName(objc::boundary::class_of(object.object)) : "nil";
}

}

void warmUpTests()
{
    phone::Phone::warmUp();
#ifdef CORVEL_PLUGIN
    phone::phone().usePluginFolders({ std::filesystem::path(CORVEL_PLUGIN).parent_path() });
#else
    phone::phone().usePluginFolders({});
#endif
}
