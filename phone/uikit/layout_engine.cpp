#include "phone/uikit/layout_engine.hpp"

#include "phone/foundation/strings.hpp"
#include "phone/kernel/result.hpp"
#include "phone/uikit/layout_solver.hpp"
#include "phone/uikit/ui_view_state.hpp"

#include <array>
#include <set>

namespace phone {

namespace {

// Counts what made a solution stale; a tree is solved when its number is the present one.
std::uint64_t g_generation = 1;
std::map<id, std::uint64_t> g_solved;
// Conflicts told of, so that each is told once.
std::set<std::string> g_reported;
// The view that a solution moves right now: its own move asks for no new one.
id g_applied = nullptr;

enum Axis { horizontal = 0, vertical = 1 };

struct AxisValues {
    double start, length;
};

AxisValues present(UIView view, Axis axis)
{
    CGRect const bounds = view.bounds();
    CGPoint const center = view.center();
    return axis == horizontal ? AxisValues { center.x - bounds.size.width / 2, bounds.size.width }
                              : AxisValues { center.y - bounds.size.height / 2, bounds.size.height };
}

double boundsOrigin(UIView view, Axis axis)
{
    return axis == horizontal ? view.bounds().origin.x : view.bounds().origin.y;
}

// Writes one tree's constraints down.
class Writer {
public:
    explicit Writer(UIView root)
        : m_root(root)
    {
    }

    bool isEmpty() const { return m_words.empty(); }

    void add(NSLayoutConstraint constraint)
    {
        UIView const first = constraint.firstItem();
        UIView const second = constraint.secondItem();
        if (!first.isDescendantOfView(m_root))
            return;
        UIView const host = hostOf(first, second);
        auto const firstAttribute = static_cast<LayoutAttribute>(constraint.firstAttribute());
        auto const secondAttribute = static_cast<LayoutAttribute>(constraint.secondAttribute());
        bool const isMirrored =
            isReading(firstAttribute) && (host ? host : first).effectiveUserInterfaceLayoutDirection() == 1;
        LinearExpression expression = value(first, firstAttribute, host);
        double const constant = constraint.constant();
        if (second)
            expression.add(value(second, secondAttribute, host), -constraint.multiplier());
        // In a right-to-left layout distances count leftwards.
        expression.constant -= isMirrored ? -constant : constant;
        auto relation = static_cast<LayoutRelation>(constraint.relation());
        if (isMirrored)
            relation = static_cast<LayoutRelation>(-static_cast<NSInteger>(relation));
        put(std::move(expression), relation, constraint.priority(), constraint.words());
    }

    void add(UIStackView stack)
    {
        if (!stack.isDescendantOfView(m_root))
            return;
        std::vector<UIView> shown;
        for (UIView const view : stack.arranged()) {
            if (!view.isHidden())
                shown.push_back(view);
        }
        if (shown.empty())
            return;
        Axis const main = stack.axis() == 1 ? vertical : horizontal;
        // Right to left, the first view stands at the right end.
        if (main == horizontal && stack.effectiveUserInterfaceLayoutDirection() == 1)
            std::reverse(shown.begin(), shown.end());
        addMainAxis(stack, shown, main);
        addCrossAxis(stack, shown, main == vertical ? horizontal : vertical);
    }

    // Views that the constraints place want their content's size.
    void addIntrinsicSizes()
    {
        for (id const object : std::vector(m_views)) {
            UIView const view { object };
            if (!usesLength(view))
                continue;
            CGSize const size = view.send<"intrinsicContentSize", CGSize>();
            for (Axis const axis : { horizontal, vertical }) {
                double const wanted = axis == horizontal ? size.width : size.height;
                if (wanted < 0 || !m_variables[object].length[axis])
                    continue;
                LinearExpression expression = length(view, axis);
                expression.constant -= wanted;
                m_solver.add(expression, LinearRelation::atMostZero, view.contentHuggingPriority(axis));
                m_solver.add(
                    expression, LinearRelation::atLeastZero, view.contentCompressionResistancePriority(axis));
            }
        }
    }

    // Solves, and moves the views. Answers whether any moved.
    bool apply()
    {
        auto const solution = m_solver.solve();
        for (int const tag : solution.broken) {
            std::string const& words = m_words[static_cast<std::size_t>(tag)];
            if (g_reported.insert(words).second)
                reportProblem("a constraint can't hold beside the others and is left out: " + words);
        }
        bool moved = false;
        for (id const object : m_views) {
            UIView const view { object };
            Variables const& variables = m_variables[object];
            std::array<AxisValues, 2> values {};
            for (Axis const axis : { horizontal, vertical }) {
                AxisValues value = present(view, axis);
                if (auto const length = variables.length[axis])
                    value.length = std::max(0.0, solution.values[static_cast<std::size_t>(*length)]);
                if (auto const start = variables.start[axis])
                    value.start = solution.values[static_cast<std::size_t>(*start)];
                // Edges fall on whole pixels, as UIKit's layout has it.
                double const end = roundToPixel(value.start + value.length);
                value.start = roundToPixel(value.start);
                value.length = end - value.start;
                values[axis] = value;
            }
            moved |= place(view, values[0], values[1]);
        }
        return moved;
    }

private:
    struct Variables {
        std::array<std::optional<int>, 2> start, length;
    };

    static bool isReading(LayoutAttribute attribute)
    {
        return attribute == LayoutAttribute::leading || attribute == LayoutAttribute::trailing;
    }

    static UIView hostOf(UIView first, UIView second)
    {
        if (!second)
            return first.superview();
        for (UIView each = first; each; each = each.superview()) {
            if (second.isDescendantOfView(each))
                return each;
        }
        return {};
    }

    // The window and what its own mask places stay where they are.
    bool isFree(UIView view) const
    {
        return !view.translatesAutoresizingMaskIntoConstraints() && !(view == m_root);
    }
    static bool usesLength(UIView view) { return view.viewState().constraintUses > 0; }

    LinearExpression start(UIView view, Axis axis)
    {
        if (!isFree(view))
            return present(view, axis).start;
        auto& variable = variablesOf(view).start[axis];
        if (!variable)
            variable = m_solver.addVariable(present(view, axis).start);
        return LinearExpression::of(*variable);
    }
    LinearExpression length(UIView view, Axis axis)
    {
        if (!isFree(view))
            return present(view, axis).length;
        auto& variable = variablesOf(view).length[axis];
        if (!variable)
            variable = m_solver.addVariable(present(view, axis).length);
        return LinearExpression::of(*variable);
    }

    // Where the view's edge lies in the host's bounds space.
    LinearExpression startIn(UIView view, Axis axis, UIView host)
    {
        if (view == host)
            return boundsOrigin(view, axis);
        LinearExpression position = start(view, axis);
        for (UIView each = view.superview(); each && !(each == host); each = each.superview()) {
            position.add(start(each, axis));
            position.constant -= boundsOrigin(each, axis);
        }
        return position;
    }

    // Where a place inside the view lies: 0 is its start, 1 its end. Which variable comes up first decides what stays where the
    // constraints leave a choice, so a sum is made step by step: compilers take operands in orders of their own.
    LinearExpression placeIn(UIView view, Axis axis, UIView host, double part)
    {
        LinearExpression position = length(view, axis) * part;
        position.add(startIn(view, axis, host));
        return position;
    }

    LinearExpression value(UIView view, LayoutAttribute attribute, UIView host)
    {
        bool const rightToLeft = (host ? host : view).effectiveUserInterfaceLayoutDirection() == 1;
        if (attribute == LayoutAttribute::leading)
            attribute = rightToLeft ? LayoutAttribute::right : LayoutAttribute::left;
        else if (attribute == LayoutAttribute::trailing)
            attribute = rightToLeft ? LayoutAttribute::left : LayoutAttribute::right;
        switch (attribute) {
        case LayoutAttribute::left: return startIn(view, horizontal, host);
        case LayoutAttribute::right: return placeIn(view, horizontal, host, 1);
        case LayoutAttribute::centerX: return placeIn(view, horizontal, host, 0.5);
        case LayoutAttribute::width: return length(view, horizontal);
        case LayoutAttribute::top: return startIn(view, vertical, host);
        // Deviation: baselines stand at the bottom edge.
        case LayoutAttribute::lastBaseline:
        case LayoutAttribute::firstBaseline:
        case LayoutAttribute::bottom: return placeIn(view, vertical, host, 1);
        case LayoutAttribute::centerY: return placeIn(view, vertical, host, 0.5);
        case LayoutAttribute::height: return length(view, vertical);
        case LayoutAttribute::leading:
        case LayoutAttribute::trailing:
        case LayoutAttribute::none: break;
        }
        return 0;
    }

    void put(LinearExpression expression, LayoutRelation relation, double priority, std::string words)
    {
        LinearRelation const linear = relation == LayoutRelation::equal ? LinearRelation::equal
            : relation == LayoutRelation::lessThanOrEqual               ? LinearRelation::atMostZero
                                                                        : LinearRelation::atLeastZero;
        m_solver.add(std::move(expression), linear, priority, static_cast<int>(m_words.size()));
        m_words.push_back(std::move(words));
    }
    void putEqual(LinearExpression expression, std::string words)
    {
        put(std::move(expression), LayoutRelation::equal, LayoutSolver::kRequired, std::move(words));
    }

    // A stack's inner edge.
    LinearExpression innerEnd(UIStackView stack, Axis axis)
    {
        return length(stack, axis) + LinearExpression(boundsOrigin(stack, axis));
    }
    LinearExpression end(UIView view, Axis axis)
    {
        LinearExpression position = length(view, axis);
        position.add(start(view, axis));
        return position;
    }
    // From the stack's inner end to the view's.
    LinearExpression beyondEnd(UIStackView stack, UIView view, Axis axis)
    {
        LinearExpression distance = innerEnd(stack, axis) * -1;
        distance.add(end(view, axis));
        return distance;
    }

    void addMainAxis(UIStackView stack, std::vector<UIView> const& shown, Axis axis)
    {
        std::string const of = " of UIStackView." + std::string(axis == vertical ? "vertical" : "horizontal");
        putEqual(start(shown.front(), axis) - LinearExpression(boundsOrigin(stack, axis)), "first" + of);
        auto const distribution = static_cast<UIStackViewDistribution>(stack.distribution());
        bool const isSpaced = distribution == UIStackViewDistribution::equalSpacing
            || distribution == UIStackViewDistribution::equalCentering;
        std::optional<int> gap;
        if (isSpaced && shown.size() > 1) {
            gap = m_solver.addVariable(stack.spacing());
            LinearExpression atLeast = LinearExpression::of(*gap);
            atLeast.constant -= stack.spacing();
            put(std::move(atLeast), LayoutRelation::greaterThanOrEqual, LayoutSolver::kRequired, "gap" + of);
        }
        for (std::size_t i = 1; i < shown.size(); ++i) {
            LinearExpression next = end(shown[i - 1], axis) * -1;
            next.add(start(shown[i], axis));
            next.add(
                gap ? LinearExpression::of(*gap) : LinearExpression(stackSpacingAfter(stack, shown[i - 1])),
                -1);
            putEqual(std::move(next), "spacing" + of);
            if (distribution == UIStackViewDistribution::fillEqually) {
                LinearExpression longer = length(shown.front(), axis) * -1;
                longer.add(length(shown[i], axis));
                putEqual(std::move(longer), "equal size" + of);
            }
        }
        putEqual(beyondEnd(stack, shown.back(), axis), "last" + of);
    }

    void addCrossAxis(UIStackView stack, std::vector<UIView> const& shown, Axis axis)
    {
        std::string const of = " of UIStackView.alignment";
        bool const rightToLeft = axis == horizontal && stack.effectiveUserInterfaceLayoutDirection() == 1;
        LinearExpression const first(boundsOrigin(stack, axis));
        for (UIView const view : shown) {
            LinearExpression const atStart = start(view, axis) - first;
            LinearExpression const atEnd = beyondEnd(stack, view, axis);
            auto alignment = static_cast<UIStackViewAlignment>(stack.alignment());
            if (rightToLeft && alignment == UIStackViewAlignment::leading)
                alignment = UIStackViewAlignment::trailing;
            else if (rightToLeft && alignment == UIStackViewAlignment::trailing)
                alignment = UIStackViewAlignment::leading;
            switch (alignment) {
            case UIStackViewAlignment::fill:
                putEqual(atStart, "start" + of);
                putEqual(atEnd, "end" + of);
                break;
            // Deviation: the first baseline stands at the top edge.
            case UIStackViewAlignment::firstBaseline:
            case UIStackViewAlignment::leading:
                putEqual(atStart, "start" + of);
                put(atEnd, LayoutRelation::lessThanOrEqual, LayoutSolver::kRequired, "end" + of);
                break;
            case UIStackViewAlignment::trailing:
                putEqual(atEnd, "end" + of);
                put(atStart, LayoutRelation::greaterThanOrEqual, LayoutSolver::kRequired, "start" + of);
                break;
            case UIStackViewAlignment::center:
                putEqual(atStart + atEnd, "centre" + of);
                put(atStart, LayoutRelation::greaterThanOrEqual, LayoutSolver::kRequired, "start" + of);
                break;
            }
        }
        // As narrow as its views allow, if nothing else says how wide.
        if (isFree(stack))
            m_solver.add(length(stack, axis), LinearRelation::atMostZero, kStackHugging);
    }

    Variables& variablesOf(UIView view)
    {
        auto const [place, isNew] = m_variables.try_emplace(view.object);
        if (isNew)
            m_views.push_back(view.object);
        return place->second;
    }

    static bool place(UIView view, AxisValues x, AxisValues y)
    {
        CGRect const bounds { view.bounds().origin, { x.length, y.length } };
        CGPoint const center { x.start + x.length / 2, y.start + y.length / 2 };
        if (view.center() == center && view.bounds() == bounds)
            return false;
        g_applied = view.object;
        applyGeometry(view, center, bounds);
        g_applied = nullptr;
        return true;
    }

    static constexpr double kStackHugging = 49;   // below every priority that UIKit names

    UIView m_root;
    LayoutSolver m_solver;
    std::map<id, Variables> m_variables;
    // In the order in which they come up: where they lie in memory must decide nothing.
    std::vector<id> m_views;
    std::vector<std::string> m_words;   // by tag
};

}

void markConstraintsDirty(UIView view)
{
    if (!view || view.object == g_applied)
        return;
    ++g_generation;
    scheduleLayout();
}

bool solveConstraints(UIView root)
{
    if (!root)
        return false;
    std::uint64_t& solved = g_solved[root.object];
    if (solved == g_generation)
        return false;
    solved = g_generation;
    Writer writer(root);
    for (NSLayoutConstraint const each : activeConstraints())
        writer.add(each);
    for (UIStackView const each : activeStacks())
        writer.add(each);
    if (writer.isEmpty())
        return false;
    writer.addIntrinsicSizes();
    return writer.apply();
}

}
