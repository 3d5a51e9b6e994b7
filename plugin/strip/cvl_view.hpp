// CVLView: the strip of favourite contacts. One class serves the lock screen's strip and the overlay strip, told apart by
// isViewNonLS. Main thread only.
#pragma once

#include "plugin/host/view_preferences.hpp"

#include <cstdint>

struct CVLButton;

struct CVLView : objc::subclass<CVLView, "CVLView", UIView> {
    using subclass::subclass;

    // Properties.
    NSMutableArray list() const
    {
        return send<"list", NSMutableArray>();
    }   // ContactEntry dictionaries, in file order
    UICollectionView collectionView() const { return send<"collectionView", UICollectionView>(); }
    UICollectionViewFlowLayout collectionViewLayout() const
    {
        return send<"collectionViewLayout", UICollectionViewFlowLayout>();
    }
    BOOL isViewNonLS() const { return send<"isViewNonLS", BOOL>(); }

    // Construction (construction.cpp).
    CVLView initWithFrame(CGRect frame, viewPreferences prefs, BOOL nonLSView) const;
    static UIColor colorWithHexString(NSString text);

    // The collection view's data source (contact_cells.cpp).
    NSInteger numberOfItemsInSection(UICollectionView, NSInteger section) const;
    UICollectionViewCell cellForItemAtIndexPath(UICollectionView, NSIndexPath path) const;

    // Layout, rotation, dismissal (layout.cpp).
    CGSize sizeForItem(UICollectionView, objc::handle layout, NSIndexPath) const;
    UIEdgeInsets insetForSection(UICollectionView, objc::handle layout, NSInteger) const;
    CGFloat minimumLineSpacing(UICollectionView, objc::handle layout, NSInteger) const;
    BOOL shouldSelectItem(UICollectionView, NSIndexPath) const;
    void viewDidLayoutSubviews() const;
    void rotateView() const;       // to the front-most application's orientation, in 0.3 s
    void makeBannerGone() const;   // the overlay strip: slides off screen in 0.2 s and leaves its window
    void setBlurrEffectColorNonLS(UIColor color) const;   // overlay only; nil: none
    void setBlurrEffectAlphaNonLS(CGFloat alpha) const;   // overlay only
    void
    noteShowing() const;   // a dismissal that is still running no longer takes the strip out of its window

    // What the host expects of a content view; inert.
    void refresh() const { }
    objc::handle contentHost() const { return nullptr; }
    void setContentHost(objc::handle) const { }
    CGSize sizeToMimic() const { return frame().size; }
    void setSizeToMimic(CGSize) const { }
    void layoutContentHost() const { }
    void updateSizeToMimic() const { }
    NSUInteger optionsForMainOverlay() const { return 0; }

    // Images and birthdays (images.cpp, birthdays.cpp).
    UIImage scaleImage(UIImage image, CGSize size) const;
    UIImage makeImageRound(UIImage image) const;
    UIImage imageScaledToSize(UIImage image, CGSize size) const;
    UIImage croppedImage(UIImage image, CGRect pixels) const;
    BOOL isSameDay(NSDate now, NSDate birthday) const;
    void presentBirthday(NSTimer) const;

    // Touch (interaction/).
    void animateButton(CVLButton sender) const;
    void buttonPressedAction(CVLButton sender) const;
    void addButton(objc::handle sender) const;
    void showMenu(UIGestureRecognizer sender) const;   // nil: reopened after an unlock
    NSInteger actionState() const;                     // reads and clears
    void resetActionState() const;
    BOOL getShouldStayAtLS() const;
    void setShouldStayAtLS(BOOL stays) const;
    BOOL presentMessageIfDeviceLocked() const;

    // Actions on the current contact (actions/).
    void callPhone() const;
    void callFacetime() const;
    void msgWA() const;
    void msgTG() const;
    void callWA() const;
    void callTG() const;
    void callUsingSiri(std::int32_t app) const;
    void msgSMS() const;
    void sndEmail() const;
    void messageComposeDidFinish(UIViewController composer, NSInteger result) const;
    void mailComposeDidFinish(UIViewController composer, NSInteger result, objc::handle error) const;
    void windowForPrompts(UIViewController prompt) const;
    void contactPickerDidSelectContacts(objc::handle picker, NSArray contacts) const;
    void contactPickerDidCancel(objc::handle picker) const;
};
void defineCVLView();   // start-up calls it once
