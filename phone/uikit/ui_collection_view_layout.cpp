#include "phone/uikit/ui_collection_view_layout.hpp"

#include "phone/foundation/plugin_call.hpp"
#include "phone/kernel/result.hpp"
#include "phone/uikit/ui_collection_view.hpp"

#include <algorithm>

namespace phone {

UICollectionViewLayoutAttributes UICollectionViewLayoutAttributes::layoutAttributesForCellWithIndexPath(
    objc::class_handle receiver, NSIndexPath path)
{
    auto const made = objc::adopt(UICollectionViewLayoutAttributes {
        receiver.send<"alloc", objc::handle>().send<"init", objc::handle>().object });
    made->setIndexPath(path);
    return objc::autorelease(made);
}

UICollectionViewLayoutAttributes UICollectionViewLayoutAttributes::of(NSIndexPath path, CGRect frame)
{
    auto const made = layoutAttributesForCellWithIndexPath(cls(), path);
    made.setFrame(frame);
    return made;
}

NSIndexPath UICollectionViewLayoutAttributes::indexPath() const { return attributesState().indexPath; }
void UICollectionViewLayoutAttributes::setIndexPath(NSIndexPath path) const
{
    attributesState().indexPath = objc::retain(path);
}

// With a transform the frame is the bounding box, as a view's is.
CGRect UICollectionViewLayoutAttributes::frame() const
{
    AttributesState const& state = attributesState();
    CGRect const around = apply(state.transform, bounds());
    CGSize const size = around.size;
    return { { state.center.x - size.width / 2, state.center.y - size.height / 2 }, size };
}
void UICollectionViewLayoutAttributes::setFrame(CGRect frame) const
{
    AttributesState& state = attributesState();
    state.center = phone::center(frame);
    state.size = apply(inverted(state.transform), CGRect { {}, frame.size }).size;
}
CGPoint UICollectionViewLayoutAttributes::center() const { return attributesState().center; }
void UICollectionViewLayoutAttributes::setCenter(CGPoint center) const { attributesState().center = center; }
CGSize UICollectionViewLayoutAttributes::size() const { return attributesState().size; }
void UICollectionViewLayoutAttributes::setSize(CGSize size) const { attributesState().size = size; }
CGRect UICollectionViewLayoutAttributes::bounds() const { return { {}, attributesState().size }; }
CGAffineTransform UICollectionViewLayoutAttributes::transform() const { return attributesState().transform; }
void UICollectionViewLayoutAttributes::setTransform(CGAffineTransform transform) const
{
    attributesState().transform = transform;
}
CGFloat UICollectionViewLayoutAttributes::alpha() const { return attributesState().alpha; }
void UICollectionViewLayoutAttributes::setAlpha(CGFloat alpha) const { attributesState().alpha = alpha; }
BOOL UICollectionViewLayoutAttributes::isHidden() const { return attributesState().isHidden; }
void UICollectionViewLayoutAttributes::setHidden(BOOL hidden) const { attributesState().isHidden = hidden; }
NSInteger UICollectionViewLayoutAttributes::zIndex() const { return attributesState().zIndex; }
void UICollectionViewLayoutAttributes::setZIndex(NSInteger index) const { attributesState().zIndex = index; }

BOOL UICollectionViewLayoutAttributes::isEqual(objc::handle other) const
{
    auto const same = objc::cast<UICollectionViewLayoutAttributes>(other);
    if (!same)
        return false;
    AttributesState const& a = attributesState();
    AttributesState const& b = same.attributesState();
    return a.center == b.center && a.size == b.size && a.transform == b.transform && a.alpha == b.alpha
        && a.isHidden == b.isHidden && a.zIndex == b.zIndex
        && (a.indexPath == b.indexPath || a.indexPath->isEqual(b.indexPath.get()));
}

NSUInteger UICollectionViewLayoutAttributes::hash() const
{
    return attributesState().indexPath->send<"hash", NSUInteger>();
}

UICollectionView UICollectionViewLayout::collectionView() const { return layoutState().collectionView; }
void UICollectionViewLayout::setCollectionView(UICollectionView view) const
{
    layoutState().collectionView = view;
}

void UICollectionViewLayout::invalidateLayout() const
{
    if (UICollectionView const view = collectionView())
        view.layoutWasInvalidated();
}

void UICollectionViewLayout::prepareLayout() const { }
CGSize UICollectionViewLayout::collectionViewContentSize() const { return {}; }
NSArray UICollectionViewLayout::layoutAttributesForElementsInRect(CGRect) const
{
    return NSMutableArray::array();
}
UICollectionViewLayoutAttributes UICollectionViewLayout::layoutAttributesForItemAtIndexPath(NSIndexPath) const
{
    return {};
}
BOOL UICollectionViewLayout::shouldInvalidateLayoutForBoundsChange(CGRect) const { return false; }

CGSize UICollectionViewFlowLayout::itemSize() const { return flowState().itemSize; }
void UICollectionViewFlowLayout::setItemSize(CGSize size) const
{
    flowState().itemSize = size;
    invalidate();
}
CGFloat UICollectionViewFlowLayout::minimumLineSpacing() const { return flowState().minimumLineSpacing; }
void UICollectionViewFlowLayout::setMinimumLineSpacing(CGFloat spacing) const
{
    flowState().minimumLineSpacing = spacing;
    invalidate();
}
CGFloat UICollectionViewFlowLayout::minimumInteritemSpacing() const
{
    return flowState().minimumInteritemSpacing;
}
void UICollectionViewFlowLayout::setMinimumInteritemSpacing(CGFloat spacing) const
{
    flowState().minimumInteritemSpacing = spacing;
    invalidate();
}
UIEdgeInsets UICollectionViewFlowLayout::sectionInset() const { return flowState().sectionInset; }
void UICollectionViewFlowLayout::setSectionInset(UIEdgeInsets inset) const
{
    flowState().sectionInset = inset;
    invalidate();
}
ScrollDirection UICollectionViewFlowLayout::scrollDirection() const { return flowState().scrollDirection; }
void UICollectionViewFlowLayout::setScrollDirection(ScrollDirection direction) const
{
    flowState().scrollDirection = direction;
    invalidate();
}

void UICollectionViewFlowLayout::invalidateLayout() const
{
    flowState().prepared.reset();
    objc::send_super<UICollectionViewFlowLayout, "invalidateLayout">(*this);
}

// Everything that the delegate says about one section.
FlowSection UICollectionViewFlowLayout::section(UICollectionView view, NSInteger index) const
{
    FlowLayoutState const& state = flowState();
    auto const delegate = objc::retain(view.delegate());
    FlowSection section;
    section.insets = state.sectionInset;
    section.lineSpacing = state.minimumLineSpacing;
    section.interitemSpacing = state.minimumInteritemSpacing;
    if (delegate->responds<"collectionView:layout:insetForSectionAtIndex:">())
        section.insets =
            delegate->send<"collectionView:layout:insetForSectionAtIndex:", UIEdgeInsets>(view, *this, index);
    if (delegate->responds<"collectionView:layout:minimumLineSpacingForSectionAtIndex:">())
        section.lineSpacing =
            delegate->send<"collectionView:layout:minimumLineSpacingForSectionAtIndex:", CGFloat>(
                view, *this, index);
    if (delegate->responds<"collectionView:layout:minimumInteritemSpacingForSectionAtIndex:">())
        section.interitemSpacing =
            delegate->send<"collectionView:layout:minimumInteritemSpacingForSectionAtIndex:", CGFloat>(
                view, *this, index);

    auto const count = static_cast<std::size_t>(view.numberOfItemsInSection(index));
    if (!delegate->responds<"collectionView:layout:sizeForItemAtIndexPath:">()) {
        section.sizes.appendEqual(state.itemSize, count);
        return section;
    }
    for (std::size_t first = 0; first < count; first += 512) {
        AutoreleasePool const pool;   // for the index paths of a long list
        for (std::size_t item = first; item < std::min(first + 512, count); ++item) {
            auto const path = NSIndexPath::of({ static_cast<std::size_t>(index), item });
            section.sizes.append(
                delegate->send<"collectionView:layout:sizeForItemAtIndexPath:", CGSize>(view, *this, path));
        }
    }
    return section;
}

void UICollectionViewFlowLayout::prepareLayout() const
{
    FlowLayoutState& state = flowState();
    UICollectionView const view = collectionView();
    if (!view || state.prepared)
        return;
    CalloutScope const scope(
        view.delegate(), objc::selector<"collectionView:layout:sizeForItemAtIndexPath:">());
    CGSize const size = inset(view.bounds(), view.contentInset()).size;
    std::vector<FlowSection> sections;
    for (NSInteger i = 0; i < view.numberOfSections(); ++i)
        sections.push_back(section(view, i));
    bool const isHorizontal = state.scrollDirection == ScrollDirection::horizontal;
    state.prepared.emplace(
        state.scrollDirection, isHorizontal ? size.height : size.width, std::move(sections));
    state.preparedFor = view.bounds().size;
    if (state.prepared->hasOversizedItem() && size.width > 0 && size.height > 0 && !state.hasWarned) {
        state.hasWarned = true;
        reportProblem(
            std::string("the behavior of the UICollectionViewFlowLayout is not defined because the item ")
            + (isHorizontal ? "height" : "width")
            + " must be less than that of the UICollectionView minus insets");
    }
}

FlowLayout const& UICollectionViewFlowLayout::prepared() const
{
    if (!flowState().prepared)
        prepareLayout();
    static FlowLayout const kNone;
    return flowState().prepared ? *flowState().prepared : kNone;
}

CGSize UICollectionViewFlowLayout::collectionViewContentSize() const { return prepared().contentSize(); }

NSArray UICollectionViewFlowLayout::layoutAttributesForElementsInRect(CGRect rect) const
{
    auto const found = NSMutableArray::array();
    for (FlowIndex const index : prepared().itemsIn(rect))
        found.addObject(
            UICollectionViewLayoutAttributes::of(NSIndexPath::of(index), prepared().itemFrame(index)));
    return found;
}

UICollectionViewLayoutAttributes UICollectionViewFlowLayout::layoutAttributesForItemAtIndexPath(
    NSIndexPath path) const
{
    FlowIndex const index = path.index();
    if (!path || index.item >= prepared().itemCount(index.section))
        return {};
    return UICollectionViewLayoutAttributes::of(path, prepared().itemFrame(index));
}

BOOL UICollectionViewFlowLayout::shouldInvalidateLayoutForBoundsChange(CGRect bounds) const
{
    CGSize const before = flowState().preparedFor;
    if (flowState().scrollDirection == ScrollDirection::horizontal)
        return bounds.size.height != before.height;
    return bounds.size.width != before.width;
}

void defineUICollectionViewLayout()
{
    using Attributes = UICollectionViewLayoutAttributes;
    objc::define<Attributes>()
        .state<AttributesState>()
        .class_method<"layoutAttributesForCellWithIndexPath:",
            &Attributes::layoutAttributesForCellWithIndexPath>()
        .method<"indexPath", &Attributes::indexPath>()
        .method<"setIndexPath:", &Attributes::setIndexPath>()
        .method<"frame", &Attributes::frame>()
        .method<"setFrame:", &Attributes::setFrame>()
        .method<"center", &Attributes::center>()
        .method<"setCenter:", &Attributes::setCenter>()
        .method<"size", &Attributes::size>()
        .method<"setSize:", &Attributes::setSize>()
        .method<"bounds", &Attributes::bounds>()
        .method<"transform", &Attributes::transform>()
        .method<"setTransform:", &Attributes::setTransform>()
        .method<"alpha", &Attributes::alpha>()
        .method<"setAlpha:", &Attributes::setAlpha>()
        .method<"isHidden", &Attributes::isHidden>()
        .method<"setHidden:", &Attributes::setHidden>()
        .method<"zIndex", &Attributes::zIndex>()
        .method<"setZIndex:", &Attributes::setZIndex>()
        .method<"isEqual:", &Attributes::isEqual>()
        .method<"hash", &Attributes::hash>()
        .install();

    using Layout = UICollectionViewLayout;
    objc::define<Layout>()
        .state<LayoutState>()
        .method<"collectionView", &Layout::collectionView>()
        .method<"invalidateLayout", &Layout::invalidateLayout>()
        .method<"prepareLayout", &Layout::prepareLayout>()
        .method<"collectionViewContentSize", &Layout::collectionViewContentSize>()
        .method<"layoutAttributesForElementsInRect:", &Layout::layoutAttributesForElementsInRect>()
        .method<"layoutAttributesForItemAtIndexPath:", &Layout::layoutAttributesForItemAtIndexPath>()
        .method<"shouldInvalidateLayoutForBoundsChange:", &Layout::shouldInvalidateLayoutForBoundsChange>()
        .install();

    using Flow = UICollectionViewFlowLayout;
    objc::define<Flow>()
        .state<FlowLayoutState>()
        .method<"itemSize", &Flow::itemSize>()
        .method<"setItemSize:", &Flow::setItemSize>()
        .method<"minimumLineSpacing", &Flow::minimumLineSpacing>()
        .method<"setMinimumLineSpacing:", &Flow::setMinimumLineSpacing>()
        .method<"minimumInteritemSpacing", &Flow::minimumInteritemSpacing>()
        .method<"setMinimumInteritemSpacing:", &Flow::setMinimumInteritemSpacing>()
        .method<"sectionInset", &Flow::sectionInset>()
        .method<"setSectionInset:", &Flow::setSectionInset>()
        .method<"scrollDirection", &Flow::scrollDirection>()
        .method<"setScrollDirection:", &Flow::setScrollDirection>()
        .method<"invalidateLayout", &Flow::invalidateLayout>()
        .method<"prepareLayout", &Flow::prepareLayout>()
        .method<"collectionViewContentSize", &Flow::collectionViewContentSize>()
        .method<"layoutAttributesForElementsInRect:", &Flow::layoutAttributesForElementsInRect>()
        .method<"layoutAttributesForItemAtIndexPath:", &Flow::layoutAttributesForItemAtIndexPath>()
        .method<"shouldInvalidateLayoutForBoundsChange:", &Flow::shouldInvalidateLayoutForBoundsChange>()
        .install();
}

}
