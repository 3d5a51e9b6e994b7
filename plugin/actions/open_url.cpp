#include "plugin/actions/open_url.hpp"

void openURL(NSString text, objc::block_ref<void(BOOL)> completion)
{
    UIApplication::sharedApplication().openURL(
        NSURL::URLWithString(text), NSDictionary::dictionary(), completion);
}
