#include "plugin/strip/cvl_view.hpp"

#include "objc/define.hpp"
#include "plugin/strip/colors.hpp"
#include "plugin/strip/contact_button.hpp"

UIColor CVLView::colorWithHexString(NSString text) { return ::colorWithHexString(text); }

void defineCVLView()
{
    objc::define<CVLView>()
        .protocol<"UICollectionViewDataSource">()
        .protocol<"UICollectionViewDelegateFlowLayout">()
        .protocol<"UICollectionViewDelegate">()
        .property<"list", NSMutableArray>(objc::strong)
        .property<"collectionView", UICollectionView>(objc::strong)
        .property<"collectionViewLayout", UICollectionViewFlowLayout>(objc::strong)
        .property<"contactButton", CVLButton>(objc::strong)
        .property<"contactFirstName", UILabel>(objc::strong)
        .property<"isViewNonLS", BOOL>()
        .property<"isShown", BOOL>()
        .property<"bannerDynamicSize", std::int32_t>()
        .property<"bannerDynamicWidth", std::int32_t>()
        .ivar<"_showings", NSUInteger>()
        .method<"initWithFrame:prefs:nonLSView:", &CVLView::initWithFrame>()
        .class_method<"colorWithHexString:", &CVLView::colorWithHexString>()

        .method<"collectionView:numberOfItemsInSection:", &CVLView::numberOfItemsInSection>()
        .method<"collectionView:cellForItemAtIndexPath:", &CVLView::cellForItemAtIndexPath>()
        .method<"collectionView:layout:sizeForItemAtIndexPath:", &CVLView::sizeForItem>()
        .method<"collectionView:layout:insetForSectionAtIndex:", &CVLView::insetForSection>()
        .method<"collectionView:layout:minimumLineSpacingForSectionAtIndex:", &CVLView::minimumLineSpacing>()
        .method<"collectionView:shouldSelectItemAtIndexPath:", &CVLView::shouldSelectItem>()

        .method<"viewDidLayoutSubviews", &CVLView::viewDidLayoutSubviews>()
        .method<"rotateView", &CVLView::rotateView>()
        .method<"makeBannerGone", &CVLView::makeBannerGone>()
        .method<"setBlurrEffectColorNonLS:", &CVLView::setBlurrEffectColorNonLS>()
        .method<"setBlurrEffectAlphaNonLS:", &CVLView::setBlurrEffectAlphaNonLS>()
        .method<"refresh", &CVLView::refresh>()
        .method<"contentHost", &CVLView::contentHost>()
        .method<"setContentHost:", &CVLView::setContentHost>()
        .method<"sizeToMimic", &CVLView::sizeToMimic>()
        .method<"setSizeToMimic:", &CVLView::setSizeToMimic>()
        .method<"_layoutContentHost", &CVLView::layoutContentHost>()
        .method<"_updateSizeToMimic", &CVLView::updateSizeToMimic>()
        .method<"_optionsForMainOverlay", &CVLView::optionsForMainOverlay>()

        .method<"scaleImage:toSize:", &CVLView::scaleImage>()
        .method<"makeImageRound:", &CVLView::makeImageRound>()
        .method<"imageWithImage:scaledToSize:", &CVLView::imageScaledToSize>()
        .method<"croppIngimageByImageName:toRect:", &CVLView::croppedImage>()
        .method<"isSameDay:otherDay:", &CVLView::isSameDay>()
        .method<"presentBirthday:", &CVLView::presentBirthday>()

        .method<"animateButton:", &CVLView::animateButton>()
        .method<"buttonPressedAction:", &CVLView::buttonPressedAction>()
        .method<"addButton:", &CVLView::addButton>()
        .method<"showMenu:", &CVLView::showMenu>()
        .method<"actionState", &CVLView::actionState>()
        .method<"resetActionState", &CVLView::resetActionState>()
        .method<"getShouldStayAtLS", &CVLView::getShouldStayAtLS>()
        .method<"setShouldStayAtLS:", &CVLView::setShouldStayAtLS>()
        .method<"presentMessageIfDeviceLocked", &CVLView::presentMessageIfDeviceLocked>()

        .method<"callPhone", &CVLView::callPhone>()
        .method<"callFacetime", &CVLView::callFacetime>()
        .method<"msgWA", &CVLView::msgWA>()
        .method<"msgTG", &CVLView::msgTG>()
        .method<"callWA", &CVLView::callWA>()
        .method<"callTG", &CVLView::callTG>()
        .method<"callUsingSiri:", &CVLView::callUsingSiri>()
        .method<"msgSMS", &CVLView::msgSMS>()
        .method<"sndEmail", &CVLView::sndEmail>()
        .method<"messageComposeViewController:didFinishWithResult:", &CVLView::messageComposeDidFinish>()
        .method<"mailComposeController:didFinishWithResult:error:", &CVLView::mailComposeDidFinish>()
        .method<"windowForPrompts:", &CVLView::windowForPrompts>()
        .method<"contactPicker:didSelectContacts:", &CVLView::contactPickerDidSelectContacts>()
        .method<"contactPickerDidCancel:", &CVLView::contactPickerDidCancel>()
        .install();
}
