// UICollectionReusableView and UICollectionViewCell: what a collection view shows for an item. Main thread.
#pragma once

#include "phone/uikit/ui_collection_view_layout.hpp"
#include "phone/uikit/ui_view.hpp"

namespace phone {

struct ReusableState {
    objc::ref<NSString> reuseIdentifier;
    objc::ref<UICollectionViewLayoutAttributes> attributes;   // those that were applied last
};

struct UICollectionReusableView
    : objc::subclass<UICollectionReusableView, "UICollectionReusableView", UIView> {
    using subclass::subclass;

    NSString reuseIdentifier() const;
    void setReuseIdentifier(NSString identifier) const;                              // by the collection view
    void prepareForReuse() const;                                                    // the base: nothing
    void applyLayoutAttributes(UICollectionViewLayoutAttributes attributes) const;   // the base: nothing

    // Moves and sizes the view as told, if that differs from the last time. A transform that the view's
    // owner has set stays, unless the attributes' own transform changes.
    void takeAttributes(UICollectionViewLayoutAttributes attributes) const;
    ReusableState& reusableState() const
    {
        return objc::state<ReusableState>(UICollectionReusableView { object });
    }
};

struct CellState {
    objc::ref<UIView> contentView;
    objc::ref<UIView> backgroundView;
    objc::ref<UIView> selectedBackgroundView;
    bool isSelected { false };
    bool isHighlighted { false };
};

struct UICollectionViewCell
    : objc::subclass<UICollectionViewCell, "UICollectionViewCell", UICollectionReusableView> {
    using subclass::subclass;

    UICollectionViewCell initWithFrame(CGRect frame) const;
    UIView contentView() const;   // fills the cell
    UIView backgroundView() const;
    void setBackgroundView(UIView view) const;   // behind the content
    UIView selectedBackgroundView() const;
    void setSelectedBackgroundView(UIView view) const;   // shown while selected or highlighted
    BOOL isSelected() const;
    void setSelected(BOOL selected) const;
    BOOL isHighlighted() const;
    void setHighlighted(BOOL highlighted) const;

private:
    CellState& cellState() const { return objc::state<CellState>(UICollectionViewCell { object }); }
    void showBackground() const;
    void putBehind(UIView view) const;
};

void defineUICollectionViewCell();

}
