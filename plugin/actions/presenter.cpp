#include "plugin/actions/presenter.hpp"

UIResponder responderChainPresenter(UIView view)
{
    UIResponder responder = view;
    while (objc::cast<UIView>(responder))
        responder = responder.nextResponder();
    return responder;
}

UIResponder keyWindowPresenter()
{
    NSArray const windows = UIApplication::sharedApplication().windows().filteredArrayUsingPredicate(
        NSPredicate::predicateWithFormat("isKeyWindow == YES"_ns));
    return UIWindow { windows.firstObject().object }.rootViewController();
}

bool systemVersionIsAtLeast(NSString version)
{
    return UIDevice::currentDevice().systemVersion().compareOptions(version, NSNumericSearch)
        != NSOrderedAscending;
}
