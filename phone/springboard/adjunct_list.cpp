#include "phone/springboard/adjunct_list.hpp"

#include "objc/define.hpp"
#include "phone/springboard/lock_screen.hpp"
#include "phone/springboard/object_values.hpp"
#include "phone/springboard/previous.hpp"
#include "phone/springboard/springboard_state.hpp"
#include "phone/uikit/animation.hpp"

#include <algorithm>

namespace phone {

namespace {

constexpr double kItemSpacing = 8;   // points
constexpr double kFadeSeconds = 0.25;
constexpr char kStackVariable[] = "_stackView";

using DashBoardList = NotificationAdjunctListViewController<kDashBoardAdjunctList>;
using CoverSheetList = NotificationAdjunctListViewController<kCoverSheetAdjunctList>;

// For key-value coding and the runtime. Found by name at each store, since a version may lack it.
void storeStackVariable(UIViewController controller, UIStackView stack)
{
    Class const cls = objc::boundary::class_of(controller.object);
    if (Ivar const variable = class_getInstanceVariable(cls, kStackVariable))
        *reinterpret_cast<id*>(reinterpret_cast<char*>(controller.object) + ivar_getOffset(variable)) =
            stack.object;
}

objc::ref<UIStackView> makeStack(CGRect frame)
{
    auto stack = make<UIStackView>(frame);
    stack->setAxis(NSInteger(UILayoutConstraintAxis::vertical));
    // Items are centred and say themselves how wide they are.
    stack->setAlignment(NSInteger(UIStackViewAlignment::center));
    stack->setSpacing(kItemSpacing);
    stack->setTranslatesAutoresizingMaskIntoConstraints(false);
    return stack;
}

// Across the view and from its top on; as high as what is arranged in it.
void pinToTop(UIStackView stack, UIView view)
{
    TraceOwnScope const own;
    view.addSubview(stack);
    for (auto const attribute : { LayoutAttribute::top, LayoutAttribute::leading, LayoutAttribute::trailing })
        NSLayoutConstraint::between(stack, attribute, LayoutRelation::equal, view, attribute, 1, 0)
            .setActive(true);
}

// What a constraint of its own says, or else its content's.
double heightOf(UIView view)
{
    for (NSLayoutConstraint const each : constraintsInvolving(view))
        if (each.firstItem() == view && !each.secondItem()
            && each.firstAttribute() == NSInteger(LayoutAttribute::height)
            && each.relation() == NSInteger(LayoutRelation::equal))
            return each.constant();
    return std::max(0.0, view.send<"intrinsicContentSize", CGSize>().height);
}

UIView contentOf(objc::handle item)
{
    if (auto const view = objc::cast<UIView>(item))
        return view;
    return item.ask<"contentView", UIView>();
}

AdjunctListState* listOf(UIViewController controller)
{
    if (auto const list = objc::cast<CoverSheetList>(controller))
        return &list.list();
    if (auto const list = objc::cast<DashBoardList>(controller))
        return &list.list();
    return nullptr;
}

template <class T>
void defineList()
{
    objc::define<T>()
        .template ivar<kStackVariable, UIStackView>()   // the state owns it
        .template state<AdjunctListState>()
        .template method<"viewDidLoad", &T::viewDidLoad>()
        .template method<"_insertItem:animated:", &T::insertItem>()
        .template method<"_removeItem:animated:", &T::removeItem>()
        .template method<"_updatePresentingContent", &T::updatePresentingContent>()
        .template method<"isPresentingContent", &T::isPresentingContent>()
        .install();
}

struct ItemState {
    objc::ref<NSString> identifier;
    objc::ref<UIView> content;
};

}

objc::ref<CSAdjunctListItem> CSAdjunctListItem::make(NSString identifier, UIView content)
{
    auto item = objc::adopt(alloc().init<CSAdjunctListItem>());
    objc::state<ItemState>(item.get()) = { objc::retain(identifier), objc::retain(content) };
    return item;
}

UIView CSAdjunctListItem::contentView() const { return objc::state<ItemState>(*this).content; }

NSString CSAdjunctListItem::identifier() const { return objc::state<ItemState>(*this).identifier; }

template <objc::fixed_string Name>
AdjunctListState& NotificationAdjunctListViewController<Name>::list() const
{
    return objc::state<AdjunctListState>(*this);
}

template <objc::fixed_string Name>
void NotificationAdjunctListViewController<Name>::viewDidLoad() const
{
    using Self = NotificationAdjunctListViewController;
    notePrevious<Self, "viewDidLoad">();
    objc::send_super<Self, "viewDidLoad">(*this);
    if (list().stack)   // sent by hand once more
        return;
    UIView const view = this->view();
    list().stack = makeStack(view.bounds());
    storeStackVariable(*this, list().stack);
    pinToTop(list().stack, view);
}

template <objc::fixed_string Name>
void NotificationAdjunctListViewController<Name>::insertItem(objc::handle item, BOOL animated) const
{
    notePrevious<NotificationAdjunctListViewController, "_insertItem:animated:">(
        Json::array({ objectValue(item), animated }));
    UIStackView const stack = list().stack;
    UIView const content = contentOf(item);
    bool const isThere = std::any_of(list().items.begin(), list().items.end(),
        [&](AdjunctItem const& each) { return each.item.get() == item; });
    if (!stack || !content || isThere)
        return;
    list().items.push_back({ objc::retain(item), objc::retain(content) });
    {
        TraceOwnScope const own;
        stack.addArrangedSubview(content);
        auto const width = content.widthAnchor().constraintEqualToAnchorMultiplier(
            NSLayoutAnchor { stack.widthAnchor().object }, 1);
        width.setActive(true);
        if (animated) {
            content.setAlpha(0);
            animate(kFadeSeconds, [content] { content.setAlpha(1); });
        }
    }
    sendHookable<"_updatePresentingContent">(*this);
}

template <objc::fixed_string Name>
void NotificationAdjunctListViewController<Name>::removeItem(objc::handle item, BOOL animated) const
{
    notePrevious<NotificationAdjunctListViewController, "_removeItem:animated:">(
        Json::array({ objectValue(item), animated }));
    auto const row = std::find_if(list().items.begin(), list().items.end(),
        [&](AdjunctItem const& each) { return each.item.get() == item; });
    if (row == list().items.end())
        return;
    AdjunctItem const removed = *row;
    list().items.erase(row);
    {
        TraceOwnScope const own;
        list().stack->removeArrangedSubview(removed.view);
        removed.view->removeFromSuperview();
    }
    sendHookable<"_updatePresentingContent">(*this);
}

template <objc::fixed_string Name>
void NotificationAdjunctListViewController<Name>::updatePresentingContent() const
{
    notePrevious<NotificationAdjunctListViewController, "_updatePresentingContent">();
    adjunctContentDidChange(*this);
}

template <objc::fixed_string Name>
BOOL NotificationAdjunctListViewController<Name>::isPresentingContent() const
{
    bool const isPresenting = !list().items.empty();
    notePrevious<NotificationAdjunctListViewController, "isPresentingContent">(Json::array(), isPresenting);
    return isPresenting;
}

void defineAdjunctList(ClassFamily family)
{
    objc::define<CSAdjunctListItem>()
        .state<ItemState>()
        .method<"contentView", &CSAdjunctListItem::contentView>()
        .method<"identifier", &CSAdjunctListItem::identifier>()
        .install();
    if (family == ClassFamily::dashBoard)
        defineList<DashBoardList>();
    else
        defineList<CoverSheetList>();
}

objc::ref<UIViewController> makeAdjunctListController(ClassFamily family)
{
    objc::class_handle const cls =
        family == ClassFamily::dashBoard ? DashBoardList::cls() : CoverSheetList::cls();
    return objc::adopt(cls.send<"alloc", UIViewController>().send<"init", UIViewController>());
}

UIStackView adjunctStack(UIViewController controller)
{
    AdjunctListState* const list = listOf(controller);
    return list ? list->stack.get() : UIStackView {};
}

double adjunctListHeight(UIViewController controller)
{
    UIStackView const stack = adjunctStack(controller);
    double height = 0;
    bool isFirst = true;
    for (UIView const view : stack.arranged()) {
        if (view.isHidden())
            continue;
        height += heightOf(view) + (isFirst ? 0 : stack.spacing());
        isFirst = false;
    }
    return height;
}

}
