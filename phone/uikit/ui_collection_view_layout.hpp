// UICollectionViewLayout and UICollectionViewFlowLayout: where a collection view's items stand. The collection
// view asks them by message, so that a subclass may answer. Main thread.
#pragma once

#include "objc/define.hpp"
#include "phone/foundation/weak.hpp"
#include "phone/uikit/flow_layout.hpp"
#include "phone/uikit/geometry.hpp"
#include "phone/uikit/index_path.hpp"

#include <optional>

namespace phone {

struct UICollectionView;

struct AttributesState {
    objc::ref<NSIndexPath> indexPath;
    CGPoint center {};
    CGSize size {};
    CGAffineTransform transform { kIdentity };
    CGFloat alpha { 1 };
    BOOL isHidden { false };
    NSInteger zIndex { 0 };
};

// Where one item stands and how it looks.
struct UICollectionViewLayoutAttributes
    : objc::subclass<UICollectionViewLayoutAttributes, "UICollectionViewLayoutAttributes", NSObject> {
    using subclass::subclass;

    static UICollectionViewLayoutAttributes layoutAttributesForCellWithIndexPath(
        objc::class_handle receiver, NSIndexPath path);
    static UICollectionViewLayoutAttributes of(NSIndexPath path, CGRect frame);   // lent

    NSIndexPath indexPath() const;
    void setIndexPath(NSIndexPath path) const;
    CGRect frame() const;
    void setFrame(CGRect frame) const;
    CGPoint center() const;
    void setCenter(CGPoint center) const;
    CGSize size() const;
    void setSize(CGSize size) const;
    CGRect bounds() const;
    CGAffineTransform transform() const;
    void setTransform(CGAffineTransform transform) const;
    CGFloat alpha() const;
    void setAlpha(CGFloat alpha) const;
    BOOL isHidden() const;
    void setHidden(BOOL hidden) const;
    NSInteger zIndex() const;
    void setZIndex(NSInteger index) const;
    BOOL isEqual(objc::handle other) const;
    NSUInteger hash() const;

    AttributesState& attributesState() const { return objc::state<AttributesState>(*this); }
};

struct LayoutState {
    Weak<UICollectionView> collectionView;
};

struct UICollectionViewLayout : objc::subclass<UICollectionViewLayout, "UICollectionViewLayout", NSObject> {
    using subclass::subclass;

    UICollectionView collectionView() const;
    void setCollectionView(UICollectionView view) const;   // by the collection view alone
    void invalidateLayout() const;                         // prepared anew at the next layout

    // For subclasses; the base knows of no items.
    void prepareLayout() const;
    CGSize collectionViewContentSize() const;
    NSArray layoutAttributesForElementsInRect(CGRect rect) const;
    UICollectionViewLayoutAttributes layoutAttributesForItemAtIndexPath(NSIndexPath path) const;
    BOOL shouldInvalidateLayoutForBoundsChange(CGRect bounds) const;

    LayoutState& layoutState() const { return objc::state<LayoutState>(UICollectionViewLayout { object }); }
};

struct FlowLayoutState {
    CGSize itemSize { 50, 50 };
    CGFloat minimumLineSpacing { 10 };
    CGFloat minimumInteritemSpacing { 10 };
    UIEdgeInsets sectionInset {};
    ScrollDirection scrollDirection { ScrollDirection::vertical };
    std::optional<FlowLayout> prepared;
    CGSize preparedFor {};   // size of the collection view then
    bool hasWarned { false };
};

// The delegate may answer size, insets and spacings (UICollectionViewDelegateFlowLayout); it is asked for
// every item's size when the layout is prepared.
// The layout is the same in both directions of the user interface, as UIKit's is unless it is subclassed.
struct UICollectionViewFlowLayout
    : objc::subclass<UICollectionViewFlowLayout, "UICollectionViewFlowLayout", UICollectionViewLayout> {
    using subclass::subclass;

    CGSize itemSize() const;
    void setItemSize(CGSize size) const;
    CGFloat minimumLineSpacing() const;
    void setMinimumLineSpacing(CGFloat spacing) const;
    CGFloat minimumInteritemSpacing() const;
    void setMinimumInteritemSpacing(CGFloat spacing) const;
    UIEdgeInsets sectionInset() const;
    void setSectionInset(UIEdgeInsets inset) const;
    ScrollDirection scrollDirection() const;
    void setScrollDirection(ScrollDirection direction) const;

    void invalidateLayout() const;
    void prepareLayout() const;
    CGSize collectionViewContentSize() const;
    NSArray layoutAttributesForElementsInRect(CGRect rect) const;
    UICollectionViewLayoutAttributes layoutAttributesForItemAtIndexPath(NSIndexPath path) const;
    BOOL shouldInvalidateLayoutForBoundsChange(CGRect bounds) const;

private:
    FlowSection section(UICollectionView view, NSInteger index) const;
    FlowLayout const& prepared() const;
    void invalidate() const { send<"invalidateLayout">(); }
    FlowLayoutState& flowState() const { return objc::state<FlowLayoutState>(*this); }
};

void defineUICollectionViewLayout();

}
