// UICollectionView: a scroll view that shows the items of a data source where a layout puts them. Only the
// items in sight have cells. Main thread.
#pragma once

#include "phone/uikit/ui_collection_view_cell.hpp"
#include "phone/uikit/ui_scroll_view.hpp"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace phone {

struct CollectionState {
    objc::ref<UICollectionViewLayout> layout;
    Weak<NSObject> dataSource;
    std::map<std::string, objc::class_handle> registered;   // by reuse identifier
    std::map<std::string, std::vector<objc::ref<UICollectionViewCell>>> reusable;
    std::map<FlowIndex, objc::ref<UICollectionViewCell>> visible;
    std::set<FlowIndex> selected;
    std::vector<NSInteger> counts;   // items by section, as the data source said at the last reload
    bool needsReload { true };
    bool isLayoutValid { false };
    bool isUpdating { false };
    bool allowsSelection { true };
    bool allowsMultipleSelection { false };
    bool hasReportedNilCell { false };
    CGRect layoutBounds {};   // for which the layout was last asked
    objc::ref<UICollectionViewCell> touchedCell;
};

// UICollectionViewScrollPosition
namespace ScrollPosition {
inline constexpr NSUInteger none = 0, top = 1, centeredVertically = 2, bottom = 4, left = 8,
                            centeredHorizontally = 16, right = 32;
}

struct UICollectionView : objc::subclass<UICollectionView, "UICollectionView", UIScrollView> {
    using subclass::subclass;

    // A nil layout raises, as on the platform.
    UICollectionView initWithFrame(CGRect frame, UICollectionViewLayout layout) const;
    UICollectionView initWithFrameAlone(CGRect frame) const;   // initWithFrame: raises likewise
    UICollectionViewLayout collectionViewLayout() const;
    void setCollectionViewLayout(UICollectionViewLayout layout) const;
    objc::handle dataSource() const;
    void setDataSource(objc::handle source) const;   // not kept

    void registerClass(objc::class_handle cell, NSString identifier) const;   // nil: no longer registered
    // Of an identifier that is not registered: raises. Lent.
    UICollectionViewCell dequeueReusableCell(NSString identifier, NSIndexPath path) const;

    void reloadData() const;
    NSInteger numberOfSections() const;
    NSInteger numberOfItemsInSection(NSInteger section) const;             // 0 for one that doesn't exist
    UICollectionViewCell cellForItemAtIndexPath(NSIndexPath path) const;   // nil: out of sight
    NSArray visibleCells() const;                                          // in the order of their items
    NSArray indexPathsForVisibleItems() const;                             // the same
    NSIndexPath indexPathForCell(UICollectionViewCell cell) const;
    NSIndexPath indexPathForItemAtPoint(CGPoint point) const;
    UICollectionViewLayoutAttributes layoutAttributesForItemAtIndexPath(NSIndexPath path) const;
    void scrollToItemAtIndexPath(NSIndexPath path, NSUInteger position, BOOL animated) const;

    BOOL allowsSelection() const;
    void setAllowsSelection(BOOL allows) const;
    BOOL allowsMultipleSelection() const;
    void setAllowsMultipleSelection(BOOL allows) const;
    NSArray indexPathsForSelectedItems() const;
    void selectItemAtIndexPath(NSIndexPath path, BOOL animated, NSUInteger position) const;
    void deselectItemAtIndexPath(NSIndexPath path, BOOL animated) const;

    void layoutSubviews() const;
    BOOL touchesShouldCancelInContentView(UIView view) const;   // also from controls
    void touchesBegan(NSSet touches, UIEvent event) const;
    void touchesEnded(NSSet touches, UIEvent event) const;
    void touchesCancelled(NSSet touches, UIEvent event) const;

    void layoutWasInvalidated() const;   // told by the layout
    CollectionState& collectionState() const { return objc::state<CollectionState>(*this); }

private:
    void reloadIfNeeded() const;
    void prepareLayoutIfNeeded() const;
    void showVisibleItems() const;
    void showItem(FlowIndex index, UICollectionViewLayoutAttributes attributes) const;
    void hideItem(FlowIndex index, objc::ref<UICollectionViewCell> cell) const;
    bool hasItem(FlowIndex index) const;
    void setSelected(FlowIndex index, bool selected) const;
};

void defineUICollectionView();

}
