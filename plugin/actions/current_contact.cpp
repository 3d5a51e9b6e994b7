#include "plugin/actions/current_contact.hpp"

#include "objc/define.hpp"
#include "plugin/strip/contact_button.hpp"

CurrentContact& currentContact()
{
    // Never destroyed: it lives as long as SpringBoard does.
    static CurrentContact& contact = *new CurrentContact;
    return contact;
}

void capture(CVLButton button, unsigned which)
{
    CurrentContact& contact = currentContact();
    if (which & captures::number)
        contact.currentPhoneNumber = objc::retain(button.send<"getPhoneNumber", NSString>());
    if (which & captures::name)
        contact.currentContactName = objc::retain(button.send<"getContactName", NSString>());
    if (which & captures::email)
        contact.currentEmailAddr = objc::retain(button.send<"getEmailAddr", NSString>());
}
