#include "phone/uikit/ui_collection_view.hpp"

#include "phone/foundation/plugin_call.hpp"
#include "phone/kernel/result.hpp"
#include "phone/uikit/raise.hpp"

#include <algorithm>
#include <utility>

namespace phone {

namespace {

// Asks the delegate a yes-or-no question about an item; one that has no opinion agrees.
template <objc::fixed_string Selector>
bool delegateAgrees(UICollectionView view, NSIndexPath path)
{
    auto const delegate = objc::retain(view.delegate());
    if (!delegate->responds<Selector>())
        return true;
    CalloutScope const scope(delegate.get(), objc::selector<Selector>());
    return delegate->send<Selector, BOOL>(view, path);
}

template <objc::fixed_string Selector>
void tellDelegate(UICollectionView view, NSIndexPath path)
{
    auto const delegate = objc::retain(view.delegate());
    if (!delegate->responds<Selector>())
        return;
    CalloutScope const scope(delegate.get(), objc::selector<Selector>());
    delegate->send<Selector>(view, path);
}

template <objc::fixed_string Selector>
void tellDelegate(UICollectionView view, UICollectionViewCell cell, NSIndexPath path)
{
    auto const delegate = objc::retain(view.delegate());
    if (!delegate->responds<Selector>())
        return;
    CalloutScope const scope(delegate.get(), objc::selector<Selector>());
    delegate->send<Selector>(view, cell, path);
}

std::string describe(FlowIndex index)
{
    return "{" + std::to_string(index.section) + ", " + std::to_string(index.item) + "}";
}

// Set while it lives, also when an exception passes.
class Flag {
public:
    explicit Flag(bool& flag)
        : m_flag(flag)
    {
        m_flag = true;
    }
    Flag(Flag const&) = delete;
    Flag& operator=(Flag const&) = delete;
    ~Flag() { m_flag = false; }

private:
    bool& m_flag;
};

}

UICollectionView UICollectionView::initWithFrameAlone(CGRect) const
{
    raise("NSInvalidArgumentException"_ns,
        "UICollectionView must be initialized with a non-nil layout parameter");
}

UICollectionView UICollectionView::initWithFrame(CGRect frame, UICollectionViewLayout layout) const
{
    if (!layout)
        return initWithFrameAlone(frame);
    UICollectionView const self {
        objc::send_super<UICollectionView, "initWithFrame:", objc::handle>(*this, frame).object
    };
    if (self)
        self.setCollectionViewLayout(layout);
    return self;
}

UICollectionViewLayout UICollectionView::collectionViewLayout() const { return collectionState().layout; }

void UICollectionView::setCollectionViewLayout(UICollectionViewLayout layout) const
{
    CollectionState& state = collectionState();
    if (state.layout.get() == layout || !layout)
        return;
    if (state.layout)
        state.layout->setCollectionView({});
    state.layout = objc::retain(layout);
    layout.setCollectionView(*this);
    layout.send<"invalidateLayout">();
}

objc::handle UICollectionView::dataSource() const { return collectionState().dataSource.get(); }
void UICollectionView::setDataSource(objc::handle source) const
{
    CollectionState& state = collectionState();
    if (state.dataSource.get() == source)
        return;
    state.dataSource = NSObject { source.object };
    reloadData();
}

void UICollectionView::registerClass(objc::class_handle cell, NSString identifier) const
{
    if (!identifier)
        raise("NSInvalidArgumentException"_ns,
            "-[UICollectionView registerClass:forCellWithReuseIdentifier:]: the identifier is nil");
    CollectionState& state = collectionState();
    if (cell)
        state.registered[toString(identifier)] = cell;
    else
        state.registered.erase(toString(identifier));
    state.reusable.erase(toString(identifier));
}

UICollectionViewCell UICollectionView::dequeueReusableCell(NSString identifier, NSIndexPath path) const
{
    CollectionState& state = collectionState();
    std::string const key = toString(identifier);
    auto const registered = state.registered.find(key);
    if (registered == state.registered.end())
        raise("NSInternalInconsistencyException"_ns,
            "could not dequeue a view of kind: UICollectionElementKindCell with identifier " + key
                + " - must register a nib or a class for the identifier");

    UICollectionViewLayoutAttributes const attributes = layoutAttributesForItemAtIndexPath(path);
    objc::ref<UICollectionViewCell> cell;
    if (auto& waiting = state.reusable[key]; !waiting.empty()) {
        cell = std::move(waiting.back());
        waiting.pop_back();
        cell->send<"prepareForReuse">();
    } else {
        CGRect const frame = attributes ? attributes.frame() : CGRect {};
        objc::class_handle const cls = registered->second;
        cell = objc::adopt(UICollectionViewCell {
            cls.send<"alloc", objc::handle>().send<"initWithFrame:", objc::handle>(frame).object });
        if (!objc::cast<UICollectionReusableView>(cell.get()))
            raise("NSInternalInconsistencyException"_ns,
                "the class registered for " + key + " makes no UICollectionReusableView");
        cell->setReuseIdentifier(identifier);
    }
    if (attributes)
        cell->takeAttributes(attributes);
    return objc::autorelease(std::move(cell));
}

void UICollectionView::reloadData() const
{
    CollectionState& state = collectionState();
    state.needsReload = true;
    state.selected.clear();
    if (state.layout)
        state.layout->send<"invalidateLayout">();
    setNeedsLayout();
}

// The data source's numbers, once a reload. Its cells are built anew at the next layout.
void UICollectionView::reloadIfNeeded() const
{
    CollectionState& state = collectionState();
    if (!state.needsReload)
        return;
    auto const source = objc::retain(dataSource());
    std::vector<NSInteger> counts;
    if (source) {
        CalloutScope const scope(source.get(), objc::selector<"collectionView:numberOfItemsInSection:">());
        NSInteger const sections = source->responds<"numberOfSectionsInCollectionView:">()
            ? source->send<"numberOfSectionsInCollectionView:", NSInteger>(*this)
            : 1;
        for (NSInteger i = 0; i < sections; ++i) {
            auto const count = source->send<"collectionView:numberOfItemsInSection:", NSInteger>(*this, i);
            counts.push_back(std::max(count, NSInteger { 0 }));
        }
    }
    state.needsReload = false;
    state.counts = std::move(counts);
    auto const before = std::exchange(state.visible, {});
    for (auto const& [index, cell] : before)
        hideItem(index, cell);
}

NSInteger UICollectionView::numberOfSections() const
{
    reloadIfNeeded();
    return static_cast<NSInteger>(collectionState().counts.size());
}

NSInteger UICollectionView::numberOfItemsInSection(NSInteger section) const
{
    reloadIfNeeded();
    auto const& counts = collectionState().counts;
    return section >= 0 && section < static_cast<NSInteger>(counts.size())
        ? counts[static_cast<std::size_t>(section)]
        : 0;
}

bool UICollectionView::hasItem(FlowIndex index) const
{
    auto const& counts = collectionState().counts;
    return index.section < counts.size() && index.item < static_cast<std::size_t>(counts[index.section]);
}

void UICollectionView::layoutWasInvalidated() const
{
    collectionState().isLayoutValid = false;
    setNeedsLayout();
}

void UICollectionView::prepareLayoutIfNeeded() const
{
    CollectionState& state = collectionState();
    reloadIfNeeded();
    if (!state.layout)
        return;
    CGRect const now = bounds();
    if (state.isLayoutValid && state.layoutBounds != now
        && state.layout->send<"shouldInvalidateLayoutForBoundsChange:", BOOL>(now))
        state.layout->send<"invalidateLayout">();
    state.layoutBounds = now;
    if (state.isLayoutValid)
        return;
    state.isLayoutValid = true;
    state.layout->send<"prepareLayout">();
    setContentSize(state.layout->send<"collectionViewContentSize", CGSize>());
}

void UICollectionView::layoutSubviews() const
{
    objc::send_super<UICollectionView, "layoutSubviews">(*this);
    CollectionState& state = collectionState();
    if (state.isUpdating)
        return;
    Flag const updating(state.isUpdating);
    AutoreleasePool const pool;
    prepareLayoutIfNeeded();
    showVisibleItems();
}

void UICollectionView::showVisibleItems() const
{
    CollectionState& state = collectionState();
    if (!state.layout)
        return;
    auto const all = objc::retain(
        state.layout->send<"layoutAttributesForElementsInRect:", NSArray>(standardized(bounds())));
    std::map<FlowIndex, UICollectionViewLayoutAttributes> wanted;
    for (NSUInteger i = 0; i < all->count(); ++i) {
        UICollectionViewLayoutAttributes const attributes { all->objectAtIndex(i).object };
        FlowIndex const index = attributes.indexPath().index();
        if (hasItem(index))
            wanted[index] = attributes;
    }
    std::vector<FlowIndex> gone;
    for (auto const& [index, cell] : state.visible) {
        if (!wanted.contains(index))
            gone.push_back(index);
    }
    for (FlowIndex const index : gone) {
        auto const cell = std::move(state.visible.extract(index).mapped());
        hideItem(index, cell);
    }
    for (auto const& [index, attributes] : wanted) {
        auto const shown = state.visible.find(index);
        if (shown != state.visible.end())
            shown->second->takeAttributes(attributes);
        else
            showItem(index, attributes);
        if (state.needsReload)
            return;   // the data source has reloaded meanwhile; another layout follows
    }
}

void UICollectionView::showItem(FlowIndex index, UICollectionViewLayoutAttributes attributes) const
{
    CollectionState& state = collectionState();
    NSIndexPath const path = attributes.indexPath();
    auto const source = objc::retain(dataSource());
    objc::ref<UICollectionViewCell> cell;
    {
        CalloutScope const scope(source.get(), objc::selector<"collectionView:cellForItemAtIndexPath:">());
        cell = objc::retain(objc::cast<UICollectionViewCell>(
            source->send<"collectionView:cellForItemAtIndexPath:", objc::handle>(*this, path)));
    }
    if (!cell) {
        // Deviation: UIKit raises. Here the slot stays empty, so that the rest can be seen.
        if (!std::exchange(state.hasReportedNilCell, true))
            reportProblem(
                "the collection view's data source returned no cell for the item " + describe(index));
        return;
    }
    cell->takeAttributes(attributes);
    cell->setSelected(state.selected.contains(index));
    tellDelegate<"collectionView:willDisplayCell:forItemAtIndexPath:">(*this, cell.get(), path);
    addSubview(cell.get());
    if (!state.needsReload)
        state.visible[index] = cell;
}

void UICollectionView::hideItem(FlowIndex index, objc::ref<UICollectionViewCell> cell) const
{
    CollectionState& state = collectionState();
    cell->removeFromSuperview();
    if (NSString const identifier = cell->reuseIdentifier()) {
        if (state.registered.contains(toString(identifier)))
            state.reusable[toString(identifier)].push_back(cell);
    }
    tellDelegate<"collectionView:didEndDisplayingCell:forItemAtIndexPath:">(
        *this, cell.get(), NSIndexPath::of(index));
}

UICollectionViewCell UICollectionView::cellForItemAtIndexPath(NSIndexPath path) const
{
    auto const& visible = collectionState().visible;
    auto const found = path ? visible.find(path.index()) : visible.end();
    return found == visible.end() ? UICollectionViewCell {} : found->second.get();
}

NSArray UICollectionView::visibleCells() const
{
    auto const cells = NSMutableArray::array();
    for (auto const& [index, cell] : collectionState().visible)
        cells.addObject(cell.get());
    return cells;
}

NSArray UICollectionView::indexPathsForVisibleItems() const
{
    auto const paths = NSMutableArray::array();
    for (auto const& [index, cell] : collectionState().visible)
        paths.addObject(NSIndexPath::of(index));
    return paths;
}

NSIndexPath UICollectionView::indexPathForCell(UICollectionViewCell wanted) const
{
    for (auto const& [index, cell] : collectionState().visible) {
        if (cell.get() == wanted)
            return NSIndexPath::of(index);
    }
    return {};
}

NSIndexPath UICollectionView::indexPathForItemAtPoint(CGPoint point) const
{
    prepareLayoutIfNeeded();
    if (!collectionViewLayout())
        return {};
    auto const found = collectionViewLayout().send<"layoutAttributesForElementsInRect:", NSArray>(
        CGRectMake(point.x - 0.5, point.y - 0.5, 1, 1));
    for (NSUInteger i = 0; i < found.count(); ++i) {
        UICollectionViewLayoutAttributes const attributes { found.objectAtIndex(i).object };
        if (contains(attributes.frame(), point))
            return attributes.indexPath();
    }
    return {};
}

UICollectionViewLayoutAttributes UICollectionView::layoutAttributesForItemAtIndexPath(NSIndexPath path) const
{
    prepareLayoutIfNeeded();
    return collectionViewLayout()
        .send<"layoutAttributesForItemAtIndexPath:", UICollectionViewLayoutAttributes>(path);
}

void UICollectionView::scrollToItemAtIndexPath(NSIndexPath path, NSUInteger position, BOOL animated) const
{
    UICollectionViewLayoutAttributes const attributes = layoutAttributesForItemAtIndexPath(path);
    if (!attributes)
        raise("NSInvalidArgumentException"_ns,
            "attempt to scroll to invalid index path: " + toString(path.description()));
    CGRect const item = attributes.frame();
    CGRect const visible = bounds();
    if (position == ScrollPosition::none) {
        scrollRectToVisible(item, animated);
        return;
    }
    UIEdgeInsets const edge = contentInset();
    CGPoint offset = visible.origin;
    if (position & ScrollPosition::left)
        offset.x = item.origin.x - edge.left;
    else if (position & ScrollPosition::centeredHorizontally)
        offset.x = midX(item) - visible.size.width / 2;
    else if (position & ScrollPosition::right)
        offset.x = maxX(item) - visible.size.width + edge.right;
    if (position & ScrollPosition::top)
        offset.y = item.origin.y - edge.top;
    else if (position & ScrollPosition::centeredVertically)
        offset.y = midY(item) - visible.size.height / 2;
    else if (position & ScrollPosition::bottom)
        offset.y = maxY(item) - visible.size.height + edge.bottom;
    setContentOffsetAnimated(
        { horizontalRange().clamp(offset.x), verticalRange().clamp(offset.y) }, animated);
}

BOOL UICollectionView::allowsSelection() const { return collectionState().allowsSelection; }
void UICollectionView::setAllowsSelection(BOOL allows) const { collectionState().allowsSelection = allows; }
BOOL UICollectionView::allowsMultipleSelection() const { return collectionState().allowsMultipleSelection; }
void UICollectionView::setAllowsMultipleSelection(BOOL allows) const
{
    collectionState().allowsMultipleSelection = allows;
}

NSArray UICollectionView::indexPathsForSelectedItems() const
{
    auto const paths = NSMutableArray::array();
    for (FlowIndex const index : collectionState().selected)
        paths.addObject(NSIndexPath::of(index));
    return paths;
}

void UICollectionView::setSelected(FlowIndex index, bool selected) const
{
    CollectionState& state = collectionState();
    if (selected)
        state.selected.insert(index);
    else
        state.selected.erase(index);
    if (auto const shown = state.visible.find(index); shown != state.visible.end())
        shown->second->send<"setSelected:">(BOOL { selected });
}

void UICollectionView::selectItemAtIndexPath(NSIndexPath path, BOOL animated, NSUInteger position) const
{
    reloadIfNeeded();
    CollectionState& state = collectionState();
    if (!state.allowsSelection)
        return;
    auto const before = state.selected;
    for (FlowIndex const index : before) {
        if (!state.allowsMultipleSelection || !path)
            setSelected(index, false);
    }
    if (!path || !hasItem(path.index()))
        return;
    setSelected(path.index(), true);
    if (position != ScrollPosition::none)
        scrollToItemAtIndexPath(path, position, animated);
}

void UICollectionView::deselectItemAtIndexPath(NSIndexPath path, BOOL) const
{
    if (path && collectionState().selected.contains(path.index()))
        setSelected(path.index(), false);
}

BOOL UICollectionView::touchesShouldCancelInContentView(UIView) const { return true; }

// Touches arrive here along the responder chain from the parts of a cell that don't handle them.
void UICollectionView::touchesBegan(NSSet touches, UIEvent event) const
{
    CollectionState& state = collectionState();
    UIView touched = UITouch { touches.anyObject().object }.view();
    while (touched && touched.superview() != *this)
        touched = touched.superview();
    UICollectionViewCell const cell = objc::cast<UICollectionViewCell>(touched);
    NSIndexPath const path = cell ? indexPathForCell(cell) : NSIndexPath {};
    if (path && state.allowsSelection && !state.touchedCell
        && delegateAgrees<"collectionView:shouldHighlightItemAtIndexPath:">(*this, path)) {
        state.touchedCell = objc::retain(cell);
        cell.send<"setHighlighted:">(BOOL { true });
        tellDelegate<"collectionView:didHighlightItemAtIndexPath:">(*this, path);
    }
    objc::send_super<UICollectionView, "touchesBegan:withEvent:">(*this, touches, event);
}

void UICollectionView::touchesEnded(NSSet touches, UIEvent event) const
{
    CollectionState& state = collectionState();
    if (auto const cell = std::exchange(state.touchedCell, {})) {
        cell->send<"setHighlighted:">(BOOL { false });
        NSIndexPath const path = indexPathForCell(cell.get());
        bool const isInside = UITouch { touches.anyObject().object }.view()
            && contains(cell->bounds(), UITouch { touches.anyObject().object }.locationInView(cell.get()));
        if (path)
            tellDelegate<"collectionView:didUnhighlightItemAtIndexPath:">(*this, path);
        FlowIndex const index = path ? path.index() : FlowIndex {};
        if (path && isInside && state.selected.contains(index) && state.allowsMultipleSelection) {
            if (delegateAgrees<"collectionView:shouldDeselectItemAtIndexPath:">(*this, path)) {
                setSelected(index, false);
                tellDelegate<"collectionView:didDeselectItemAtIndexPath:">(*this, path);
            }
        } else if (path && isInside
            && delegateAgrees<"collectionView:shouldSelectItemAtIndexPath:">(*this, path)) {
            auto const before = state.selected;
            for (FlowIndex const other : before) {
                if (other == index || state.allowsMultipleSelection)
                    continue;
                setSelected(other, false);
                tellDelegate<"collectionView:didDeselectItemAtIndexPath:">(*this, NSIndexPath::of(other));
            }
            setSelected(index, true);
            tellDelegate<"collectionView:didSelectItemAtIndexPath:">(*this, path);
        }
    }
    objc::send_super<UICollectionView, "touchesEnded:withEvent:">(*this, touches, event);
}

void UICollectionView::touchesCancelled(NSSet touches, UIEvent event) const
{
    if (auto const cell = std::exchange(collectionState().touchedCell, {})) {
        cell->send<"setHighlighted:">(BOOL { false });
        if (NSIndexPath const path = indexPathForCell(cell.get()))
            tellDelegate<"collectionView:didUnhighlightItemAtIndexPath:">(*this, path);
    }
    objc::send_super<UICollectionView, "touchesCancelled:withEvent:">(*this, touches, event);
}

void defineUICollectionView()
{
    using Self = UICollectionView;
    objc::define<Self>()
        .state<CollectionState>()
        .method<"initWithFrame:", &Self::initWithFrameAlone>()
        .method<"initWithFrame:collectionViewLayout:", &Self::initWithFrame>()
        .method<"collectionViewLayout", &Self::collectionViewLayout>()
        .method<"setCollectionViewLayout:", &Self::setCollectionViewLayout>()
        .method<"dataSource", &Self::dataSource>()
        .method<"setDataSource:", &Self::setDataSource>()
        .method<"registerClass:forCellWithReuseIdentifier:", &Self::registerClass>()
        .method<"dequeueReusableCellWithReuseIdentifier:forIndexPath:", &Self::dequeueReusableCell>()
        .method<"reloadData", &Self::reloadData>()
        .method<"numberOfSections", &Self::numberOfSections>()
        .method<"numberOfItemsInSection:", &Self::numberOfItemsInSection>()
        .method<"cellForItemAtIndexPath:", &Self::cellForItemAtIndexPath>()
        .method<"visibleCells", &Self::visibleCells>()
        .method<"indexPathsForVisibleItems", &Self::indexPathsForVisibleItems>()
        .method<"indexPathForCell:", &Self::indexPathForCell>()
        .method<"indexPathForItemAtPoint:", &Self::indexPathForItemAtPoint>()
        .method<"layoutAttributesForItemAtIndexPath:", &Self::layoutAttributesForItemAtIndexPath>()
        .method<"scrollToItemAtIndexPath:atScrollPosition:animated:", &Self::scrollToItemAtIndexPath>()
        .method<"allowsSelection", &Self::allowsSelection>()
        .method<"setAllowsSelection:", &Self::setAllowsSelection>()
        .method<"allowsMultipleSelection", &Self::allowsMultipleSelection>()
        .method<"setAllowsMultipleSelection:", &Self::setAllowsMultipleSelection>()
        .method<"indexPathsForSelectedItems", &Self::indexPathsForSelectedItems>()
        .method<"selectItemAtIndexPath:animated:scrollPosition:", &Self::selectItemAtIndexPath>()
        .method<"deselectItemAtIndexPath:animated:", &Self::deselectItemAtIndexPath>()
        .method<"layoutSubviews", &Self::layoutSubviews>()
        .method<"touchesShouldCancelInContentView:", &Self::touchesShouldCancelInContentView>()
        .method<"touchesBegan:withEvent:", &Self::touchesBegan>()
        .method<"touchesEnded:withEvent:", &Self::touchesEnded>()
        .method<"touchesCancelled:withEvent:", &Self::touchesCancelled>()
        .install();
}

}
