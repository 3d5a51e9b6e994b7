#include "phone/uikit/ui_collection_view_cell.hpp"

namespace phone {

NSString UICollectionReusableView::reuseIdentifier() const { return reusableState().reuseIdentifier; }
void UICollectionReusableView::setReuseIdentifier(NSString identifier) const
{
    reusableState().reuseIdentifier = objc::retain(identifier);
}
void UICollectionReusableView::prepareForReuse() const { }
void UICollectionReusableView::applyLayoutAttributes(UICollectionViewLayoutAttributes) const { }

void UICollectionReusableView::takeAttributes(UICollectionViewLayoutAttributes attributes) const
{
    ReusableState& state = reusableState();
    UICollectionViewLayoutAttributes const before = state.attributes;
    if (before && before.isEqual(attributes))
        return;
    AttributesState const& wanted = attributes.attributesState();
    if (wanted.transform != (before ? before.transform() : kIdentity))
        setTransform(wanted.transform);
    setBounds({ bounds().origin, wanted.size });
    setCenter(wanted.center);
    if (wanted.alpha != (before ? before.alpha() : 1))
        setAlpha(wanted.alpha);
    setHidden(wanted.isHidden);
    state.attributes = objc::retain(attributes);
    send<"applyLayoutAttributes:">(attributes);
}

UICollectionViewCell UICollectionViewCell::initWithFrame(CGRect frame) const
{
    UICollectionViewCell const self {
        objc::send_super<UICollectionViewCell, "initWithFrame:", objc::handle>(*this, frame).object
    };
    if (!self)
        return self;
    auto const content = make<UIView>({ {}, frame.size });
    content->setAutoresizingMask(Autoresizing::width | Autoresizing::height);
    self.UIView::addSubview(content.get());
    self.cellState().contentView = content;
    return self;
}

UIView UICollectionViewCell::contentView() const { return cellState().contentView; }
UIView UICollectionViewCell::backgroundView() const { return cellState().backgroundView; }
UIView UICollectionViewCell::selectedBackgroundView() const { return cellState().selectedBackgroundView; }

void UICollectionViewCell::putBehind(UIView view) const
{
    if (!view)
        return;
    view.setFrame(bounds());
    view.setAutoresizingMask(Autoresizing::width | Autoresizing::height);
    insertSubviewAtIndex(view, 0);
}

void UICollectionViewCell::setBackgroundView(UIView view) const
{
    if (UIView const before = backgroundView())
        before.removeFromSuperview();
    cellState().backgroundView = objc::retain(view);
    putBehind(view);
}

void UICollectionViewCell::setSelectedBackgroundView(UIView view) const
{
    if (UIView const before = selectedBackgroundView())
        before.removeFromSuperview();
    cellState().selectedBackgroundView = objc::retain(view);
    showBackground();
}

void UICollectionViewCell::showBackground() const
{
    CellState const& state = cellState();
    UIView const selected = state.selectedBackgroundView;
    if (!selected)
        return;
    bool const shows = state.isSelected || state.isHighlighted;
    if (shows && selected.superview() != *this)
        putBehind(selected);
    if (shows && state.backgroundView)
        sendSubviewToBack(state.backgroundView);
    if (!shows)
        selected.removeFromSuperview();
}

BOOL UICollectionViewCell::isSelected() const { return cellState().isSelected; }
void UICollectionViewCell::setSelected(BOOL selected) const
{
    cellState().isSelected = selected;
    showBackground();
}
BOOL UICollectionViewCell::isHighlighted() const { return cellState().isHighlighted; }
void UICollectionViewCell::setHighlighted(BOOL highlighted) const
{
    cellState().isHighlighted = highlighted;
    showBackground();
}

void defineUICollectionViewCell()
{
    using Reusable = UICollectionReusableView;
    objc::define<Reusable>()
        .state<ReusableState>()
        .method<"reuseIdentifier", &Reusable::reuseIdentifier>()
        .method<"prepareForReuse", &Reusable::prepareForReuse>()
        .method<"applyLayoutAttributes:", &Reusable::applyLayoutAttributes>()
        .install();

    using Cell = UICollectionViewCell;
    objc::define<Cell>()
        .state<CellState>()
        .method<"initWithFrame:", &Cell::initWithFrame>()
        .method<"contentView", &Cell::contentView>()
        .method<"backgroundView", &Cell::backgroundView>()
        .method<"setBackgroundView:", &Cell::setBackgroundView>()
        .method<"selectedBackgroundView", &Cell::selectedBackgroundView>()
        .method<"setSelectedBackgroundView:", &Cell::setSelectedBackgroundView>()
        .method<"isSelected", &Cell::isSelected>()
        .method<"setSelected:", &Cell::setSelected>()
        .method<"isHighlighted", &Cell::isHighlighted>()
        .method<"setHighlighted:", &Cell::setHighlighted>()
        .install();
}

}
