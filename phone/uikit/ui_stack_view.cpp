#include "phone/uikit/ui_stack_view.hpp"

#include "objc/define.hpp"
#include "phone/foundation/strings.hpp"
#include "phone/kernel/services.hpp"
#include "phone/uikit/layout_engine.hpp"
#include "phone/uikit/ui_view_state.hpp"

#include <algorithm>

namespace phone {

namespace {

// All stack views there are.
std::vector<id> g_stacks;

struct StackState {
    id stack { nullptr };
    std::vector<objc::ref<UIView>> arranged;
    NSInteger axis { 0 };
    NSInteger alignment { 0 };
    NSInteger distribution { 0 };
    double spacing { 0 };
    std::map<id, double> customSpacing;   // after a view

    StackState() = default;
    StackState(StackState const&) = delete;
    StackState& operator=(StackState const&) = delete;
    ~StackState()
    {
        std::erase(g_stacks, stack);
        for (auto const& view : arranged)
            --view->viewState().constraintUses;
    }
};

StackState& stateOf(UIStackView stack) { return objc::state<StackState>(UIStackView { stack.object }); }

std::size_t indexOf(UIStackView stack, UIView view)
{
    auto const& all = stateOf(stack).arranged;
    std::size_t index = 0;
    while (index < all.size() && !(all[index].get() == view))
        ++index;
    return index;
}

void changed(UIStackView stack)
{
    markConstraintsDirty(stack);
    stack.setNeedsLayout();
}

void record(char const* call, UIView view, Json index)
{
    trace().record(
        "stack", { { "call", call }, { "view", classNameOf(view) }, { "index", std::move(index) } });
}

void forget(UIStackView stack, UIView view)
{
    StackState& state = stateOf(stack);
    std::size_t const index = indexOf(stack, view);
    if (index >= state.arranged.size())
        return;
    auto const kept = state.arranged[index];
    state.arranged.erase(state.arranged.begin() + static_cast<std::ptrdiff_t>(index));
    --view.viewState().constraintUses;
    --stack.viewState().constraintUses;
    changed(stack);
}

}

std::vector<UIStackView> activeStacks()
{
    std::vector<UIStackView> all;
    for (id const each : g_stacks) {
        if (!stateOf(UIStackView { each }).arranged.empty())
            all.push_back(UIStackView { each });
    }
    return all;
}

double stackSpacingAfter(UIStackView stack, UIView view)
{
    auto const& custom = stateOf(stack).customSpacing;
    auto const found = custom.find(view.object);
    return found == custom.end() ? stack.spacing() : found->second;
}

UIStackView UIStackView::initWithFrame(CGRect frame) const
{
    auto const self =
        objc::send_super<UIStackView, "initWithFrame:", UIStackView>(UIStackView { object }, frame);
    if (self) {
        stateOf(self).stack = self.object;
        g_stacks.push_back(self.object);
    }
    return self;
}

UIStackView UIStackView::initWithArrangedSubviews(NSArray views) const
{
    auto const self = send<"initWithFrame:", UIStackView>(CGRect {});
    for (NSUInteger i = 0; self && i < views.count(); ++i)
        self.addArrangedSubview(UIView { views.objectAtIndex(i).object });
    return self;
}

std::vector<UIView> UIStackView::arranged() const
{
    if (!object)
        return {};
    auto const& all = stateOf(*this).arranged;
    return { all.begin(), all.end() };
}

NSArray UIStackView::arrangedSubviews() const
{
    auto const array = NSMutableArray::array();
    for (UIView const view : arranged())
        array.addObject(view);
    return array;
}

void UIStackView::addArrangedSubview(UIView view) const
{
    if (!object || !view)
        return;
    auto const kept = objc::retain(view);
    forget(*this, view);
    insertArrangedSubview(view, stateOf(*this).arranged.size());
}

void UIStackView::insertArrangedSubview(UIView view, NSUInteger index) const
{
    if (!object || !view)
        return;
    auto const kept = objc::retain(view);
    if (index > stateOf(*this).arranged.size()) {
        objc::cls<"NSException">().send<"raise:format:">(
            "NSInternalInconsistencyException"_ns, "index out of bounds for arranged subview"_ns);
        return;
    }
    forget(*this, view);
    if (!(view.superview() == *this))
        addSubview(view);
    view.setTranslatesAutoresizingMaskIntoConstraints(false);
    auto& all = stateOf(*this).arranged;
    all.insert(all.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(index, all.size())), kept);
    ++view.viewState().constraintUses;
    ++viewState().constraintUses;
    changed(*this);
}

void UIStackView::removeArrangedSubview(UIView view) const
{
    if (object && view)
        forget(*this, view);
}

void UIStackView::addArrangedSubviewMessage(UIView view) const
{
    addArrangedSubview(view);
    record("addArrangedSubview:", view, view ? Json(indexOf(*this, view)) : Json(nullptr));
}
void UIStackView::insertArrangedSubviewMessage(UIView view, NSUInteger index) const
{
    record("insertArrangedSubview:atIndex:", view, index);
    insertArrangedSubview(view, index);
}
void UIStackView::removeArrangedSubviewMessage(UIView view) const
{
    std::size_t const index = indexOf(*this, view);
    bool const isArranged = index < stateOf(*this).arranged.size();
    record("removeArrangedSubview:", view, isArranged ? Json(index) : Json(nullptr));
    removeArrangedSubview(view);
}

// A view that leaves the stack as a subview leaves the arrangement too.
void UIStackView::willRemoveSubview(UIView view) const { forget(*this, view); }

NSInteger UIStackView::axis() const { return stateOf(*this).axis; }
void UIStackView::setAxis(NSInteger axis) const
{
    stateOf(*this).axis = axis;
    changed(*this);
}
NSInteger UIStackView::alignment() const { return stateOf(*this).alignment; }
void UIStackView::setAlignment(NSInteger alignment) const
{
    stateOf(*this).alignment = alignment;
    changed(*this);
}
NSInteger UIStackView::distribution() const { return stateOf(*this).distribution; }
// Deviation: proportional filling fills as the plain one does.
void UIStackView::setDistribution(NSInteger distribution) const
{
    stateOf(*this).distribution = distribution;
    changed(*this);
}
CGFloat UIStackView::spacing() const { return stateOf(*this).spacing; }
void UIStackView::setSpacing(CGFloat spacing) const
{
    stateOf(*this).spacing = spacing;
    changed(*this);
}
void UIStackView::setCustomSpacing(CGFloat spacing, UIView view) const
{
    stateOf(*this).customSpacing[view.object] = spacing;
    changed(*this);
}

void defineUIStackView()
{
    objc::define<UIStackView>()
        .state<StackState>()
        .method<"initWithFrame:", &UIStackView::initWithFrame>()
        .method<"initWithArrangedSubviews:", &UIStackView::initWithArrangedSubviews>()
        .method<"arrangedSubviews", &UIStackView::arrangedSubviews>()
        .method<"addArrangedSubview:", &UIStackView::addArrangedSubviewMessage>()
        .method<"insertArrangedSubview:atIndex:", &UIStackView::insertArrangedSubviewMessage>()
        .method<"removeArrangedSubview:", &UIStackView::removeArrangedSubviewMessage>()
        .method<"willRemoveSubview:", &UIStackView::willRemoveSubview>()
        .method<"axis", &UIStackView::axis>()
        .method<"setAxis:", &UIStackView::setAxis>()
        .method<"alignment", &UIStackView::alignment>()
        .method<"setAlignment:", &UIStackView::setAlignment>()
        .method<"distribution", &UIStackView::distribution>()
        .method<"setDistribution:", &UIStackView::setDistribution>()
        .method<"spacing", &UIStackView::spacing>()
        .method<"setSpacing:", &UIStackView::setSpacing>()
        .method<"setCustomSpacing:afterView:", &UIStackView::setCustomSpacing>()
        .install();
}

}
