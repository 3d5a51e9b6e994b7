#include "tests/plugin/host/device_files.hpp"

namespace phone {

void putDeviceFiles(std::optional<Bytes> const& settings, std::optional<Bytes> const& contacts)
{
    auto root = DeviceRoot::makeTemporary();
    ASSERT_TRUE(root) << root.message();
    auto const put = [&root](char const* path, std::optional<Bytes> const& contents) {
        return !contents
            || root->write(path, *contents, { .atomically = false, .makesFolders = true }).hasValue();
    };
    ASSERT_TRUE(put(kSettingsFile, settings));
    ASSERT_TRUE(put(kContactListFile, contacts));
    phone().useRoot(std::move(*root));
}

Bytes bytesOf(std::string_view text) { return { text.begin(), text.end() }; }

NSArray stripList()
{
    UIView const strip = phone().strip();
    return strip ? NSArray { strip.valueForKey(NSString::stringWithUTF8String("_list")).object } : NSArray {};
}

}
