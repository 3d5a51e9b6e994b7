#include "plugin/host/contact_list.hpp"

NSMutableArray readContactList()
{
    auto const file = objc::adopt(NSMutableDictionary::alloc().initWithContentsOfFile(
        NSString::stringWithUTF8String(kContactListPath)));
    if (NSArray const entries = objc::cast<NSArray>(file->objectForKey("contactsArray"_ns)))
        return NSMutableArray::arrayWithArray(entries);
    return NSMutableArray::array();
}

NSDictionary contactEntry(NSArray list, NSUInteger index)
{
    if (index >= list.count())
        return nullptr;
    return objc::cast<NSDictionary>(list.objectAtIndex(index));
}

void writeContactList(NSArray entries)
{
    if (!entries)   // a dictionary raises for nil
        return;
    NSMutableDictionary const file = NSMutableDictionary::dictionary();
    file.setObject(entries, "contactsArray"_ns);
    file.writeToFile(NSString::stringWithUTF8String(kContactListPath), /* atomically: */ true);
}
