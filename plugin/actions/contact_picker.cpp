// The contacts that the user picked become the strip's list.
#include "plugin/actions/idle_timer.hpp"
#include "plugin/actions/text_format.hpp"
#include "plugin/host/contact_list.hpp"
#include "plugin/strip/cvl_view.hpp"

#include "platform/contacts.hpp"

#include <spawn.h>

#include <string>

namespace {

constexpr char kMessage[] =
    "You added %@ Contacts!\nEdit them using Corvel preferences\nDevice will now respring";

template <class T>
objc::handle orEmpty(T value)
{
    return value ? objc::handle(value) : objc::handle(""_ns);
}

objc::handle firstValue(NSArray labelledValues)
{
    return CNLabeledValue { labelledValues.firstObject().object }.value();
}

NSDictionary entryFor(CNContact contact)
{
    NSMutableDictionary const entry = NSMutableDictionary::dictionary();
    entry.setObject(orEmpty(contact.firstName()), entry_key::firstName());
    entry.setObject(orEmpty(contact.lastName()), entry_key::lastName());
    entry.setObject(orEmpty(contact.identifier()), entry_key::uniqueIdentifier());
    NSData const photo = contact.imageData();
    entry.setObject(orEmpty(photo.length() > 0 ? photo : nullptr), entry_key::image());
    entry.setObject(orEmpty(contact.birthday().date()), entry_key::birthday());
    objc::handle const number = firstValue(contact.phoneNumbers());
    entry.setObject(orEmpty(number.ask<"stringValue", NSString>()), entry_key::phoneNumber());
    entry.setObject(orEmpty(objc::cast<NSString>(firstValue(contact.emailAddresses()))), entry_key::email());
    return entry;
}

// Ends backboardd, and SpringBoard with it: the next one reads the new list. Nothing waits for the child or looks at it.
void respring()
{
    char command[] = "killall";
    char target[] = "backboardd";
    char* const arguments[] = { command, target, nullptr };
    pid_t child = 0;
    posix_spawn(&child, "/var/jb/usr/bin/killall", nullptr, nullptr, arguments, nullptr);
}

}

void CVLView::contactPickerDidSelectContacts(objc::handle, NSArray contacts) const
{
    NSMutableArray const entries = NSMutableArray::array();
    for (NSUInteger i = 0; i < contacts.count(); ++i)
        if (NSDictionary const entry = entryFor(CNContact { contacts.objectAtIndex(i).object }))
            entries.addObject(entry);
    writeContactList(entries);
    NSUInteger const count = entries.count();
    if (count == 0)
        return;

    NSString const message =
        filled(kMessage, { NSString::stringWithUTF8String(std::to_string(count).c_str()) });
    auto const alert = UIAlertController::alertController("Corvel"_ns, message, UIAlertControllerStyleAlert);
    auto const handler = objc::block([](UIAlertAction) { respring(); });
    addActionIfAny(
        alert, UIAlertAction::actionWithTitle("Respring"_ns, UIAlertActionStyleCancel, lent(handler)));
    send<"windowForPrompts:">(alert);
}

void CVLView::contactPickerDidCancel(objc::handle) const { releaseIdleTimer(); }
