#include "phone/apps/cn_contact.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"

#include <limits>

namespace phone {

namespace {

constexpr NSInteger kUndefined = std::numeric_limits<NSInteger>::max();   // NSDateComponentUndefined

// Components without a year make a date in year 1, as on the platform; GNUstep Base makes one in 1970.
struct BirthdayComponents : objc::subclass<BirthdayComponents, "PhoneBirthdayComponents", NSDateComponents> {
    using subclass::subclass;

    objc::handle dateOfComponents() const
    {
        if (!send<"calendar", objc::handle>())
            return {};
        bool const hasYear = send<"year", NSInteger>() != kUndefined;
        if (!hasYear)
            send<"setYear:">(NSInteger(1));
        auto const date = objc::send_super<BirthdayComponents, "date", objc::handle>(*this);
        if (!hasYear)
            send<"setYear:">(kUndefined);
        return date;
    }
};

AddressBookContact& contactOf(CNContact object) { return objc::state<AddressBookContact>(object); }

NSData dataOf(std::optional<Bytes> const& bytes)
{
    if (!bytes)
        return {};
    return NSData::cls().send<"dataWithBytes:length:", NSData>(
        static_cast<void const*>(bytes->data()), NSUInteger(bytes->size()));
}

}

objc::ref<CNContact> CNContact::make(AddressBookContact const& contact)
{
    auto object = objc::adopt(alloc().init<CNContact>());
    contactOf(object) = contact;
    return object;
}

NSString CNContact::firstName() const { return toNSString(contactOf(*this).firstName); }
NSString CNContact::lastName() const { return toNSString(contactOf(*this).lastName); }
NSString CNContact::identifier() const { return toNSString(contactOf(*this).identifier); }
NSData CNContact::imageData() const { return dataOf(contactOf(*this).image); }
NSData CNContact::thumbnailImageData() const
{
    AddressBookContact const& contact = contactOf(*this);
    return dataOf(contact.thumbnail ? contact.thumbnail : contact.image);
}
BOOL CNContact::imageDataAvailable() const { return contactOf(*this).image.has_value(); }

NSDateComponents CNContact::birthday() const
{
    auto const& birthday = contactOf(*this).birthday;
    if (!birthday)
        return {};
    auto const components = objc::adopt(BirthdayComponents::alloc().init<BirthdayComponents>());
    components->send<"setDay:">(NSInteger(birthday->day));
    components->send<"setMonth:">(NSInteger(birthday->month));
    if (birthday->year)
        components->send<"setYear:">(NSInteger(*birthday->year));
    if (birthday->hasCalendar)
        components->send<"setCalendar:">(NSCalendar::currentCalendar());
    return objc::autorelease(components);
}

NSArray CNContact::phoneNumbers() const
{
    NSMutableArray const all = NSMutableArray::array();
    for (LabeledValue const& each : contactOf(*this).phones)
        all.addObject(CNLabeledValue::make(each.label, CNPhoneNumber::make(each.value).get()).get());
    return all;
}

NSArray CNContact::emailAddresses() const
{
    NSMutableArray const all = NSMutableArray::array();
    for (LabeledValue const& each : contactOf(*this).emails)
        all.addObject(CNLabeledValue::make(each.label, toNSString(each.value)).get());
    return all;
}

objc::ref<CNLabeledValue> CNLabeledValue::make(std::string const& label, objc::handle value)
{
    auto object = objc::adopt(alloc().init<CNLabeledValue>());
    object->send<"setLabel:">(toNSString(label));
    object->send<"setValue:">(value);
    return object;
}

objc::ref<CNPhoneNumber> CNPhoneNumber::make(std::string const& text)
{
    auto object = objc::adopt(alloc().init<CNPhoneNumber>());
    object->send<"setStringValue:">(toNSString(text));
    return object;
}

void defineCNContact()
{
    objc::define<BirthdayComponents>().method<"date", &BirthdayComponents::dateOfComponents>().install();
    objc::define<CNContact>()
        .state<AddressBookContact>()
        .method<"firstName", &CNContact::firstName>()
        .method<"givenName", &CNContact::firstName>()
        .method<"lastName", &CNContact::lastName>()
        .method<"familyName", &CNContact::lastName>()
        .method<"identifier", &CNContact::identifier>()
        .method<"imageData", &CNContact::imageData>()
        .method<"thumbnailImageData", &CNContact::thumbnailImageData>()
        .method<"imageDataAvailable", &CNContact::imageDataAvailable>()
        .method<"birthday", &CNContact::birthday>()
        .method<"phoneNumbers", &CNContact::phoneNumbers>()
        .method<"emailAddresses", &CNContact::emailAddresses>()
        .install();
    objc::define<CNLabeledValue>()
        .property<"label", NSString>(objc::copy)
        .property<"value", objc::handle>(objc::strong)
        .install();
    objc::define<CNPhoneNumber>().property<"stringValue", NSString>(objc::copy).install();
}

}
