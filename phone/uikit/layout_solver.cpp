#include "phone/uikit/layout_solver.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace phone {

namespace {
// Points; far below a pixel, far above what elimination leaves of rounding errors.
constexpr double kSolverTolerance = 1e-6;
// A factor that small is a rounding error.
constexpr double kNoFactor = 1e-12;
}

LinearExpression LinearExpression::of(int variable)
{
    LinearExpression expression;
    expression.terms[variable] = 1;
    return expression;
}

void LinearExpression::add(LinearExpression const& other, double factor)
{
    constant += other.constant * factor;
    for (auto const& [variable, coefficient] : other.terms) {
        double& sum = terms[variable];
        sum += coefficient * factor;
        if (std::abs(sum) < kNoFactor)
            terms.erase(variable);
    }
}

LinearExpression operator*(LinearExpression a, double factor)
{
    LinearExpression result;
    result.add(a, factor);
    return result;
}

int LayoutSolver::addVariable(double current)
{
    m_current.push_back(std::isfinite(current) ? current : 0);
    return static_cast<int>(m_current.size()) - 1;
}

void LayoutSolver::add(LinearExpression expression, LinearRelation relation, double priority, int tag)
{
    m_constraints.push_back({ std::move(expression), relation, priority, tag });
}

// The constraints that share variables, directly or through others. Each component is solved by itself.
class LayoutSolver::Component {
public:
    Component(std::vector<Constraint const*> constraints, std::vector<int> variables,
        std::vector<double> const& current)
        : m_constraints(std::move(constraints))
        , m_variables(std::move(variables))
        , m_current(current)
    {
        // Of equal priority in the order in which they came: they lie in one array.
        std::ranges::sort(m_constraints, [](auto const* a, auto const* b) {
            return a->priority != b->priority ? a->priority > b->priority : a < b;
        });
        for (auto const* each : m_constraints) {
            if (each->relation != LinearRelation::equal)
                m_bounds.push_back(each);
        }
    }

    void solve(Solution& solution)
    {
        for (auto const* each : m_constraints) {
            if (each->relation == LinearRelation::equal)
                require(*each, solution);
        }
        // What is wanted small first, then what is wanted large: hugging decides where room is left over,
        // resistance where it lacks.
        settle(LinearRelation::atMostZero, false);
        settle(LinearRelation::atLeastZero, false);
        settle(LinearRelation::atMostZero, true);
        settle(LinearRelation::atLeastZero, true);
        for (int const variable : m_variables) {
            LinearExpression keep = LinearExpression::of(variable);
            keep.constant = -m_current[static_cast<std::size_t>(variable)];
            if (!reduced(keep).isConstant())
                hold(keep, -1);
        }
        for (auto const* each : m_bounds) {
            if (each->priority >= kRequired && isViolated(*each))
                solution.broken.push_back(each->tag);
        }
        for (int const variable : m_variables)
            solution.values[static_cast<std::size_t>(variable)] =
                reduced(LinearExpression::of(variable)).constant;
    }

private:
    // variable = expression of variables that are no row's own.
    using Rows = std::map<int, LinearExpression>;

    LinearExpression reduced(LinearExpression const& expression) const
    {
        LinearExpression result(expression.constant);
        for (auto const& [variable, factor] : expression.terms) {
            auto const row = m_rows.find(variable);
            result.add(row == m_rows.end() ? LinearExpression::of(variable) : row->second, factor);
        }
        return result;
    }

    // Makes expression == 0 true. The expression is reduced and has a variable.
    void eliminate(LinearExpression expression)
    {
        auto const pivot = std::max_element(expression.terms.begin(), expression.terms.end(),
            [](auto const& a, auto const& b) { return std::abs(a.second) < std::abs(b.second); });
        int const variable = pivot->first;
        double const factor = pivot->second;
        expression.terms.erase(pivot);
        LinearExpression const value = expression * (-1 / factor);
        for (auto& [other, row] : m_rows) {
            auto const term = row.terms.find(variable);
            if (term == row.terms.end())
                continue;
            double const share = term->second;
            row.terms.erase(term);
            row.add(value, share);
        }
        m_rows.emplace(variable, value);
    }

    bool isViolated(Constraint const& bound) const
    {
        LinearExpression const value = reduced(bound.expression);
        if (!value.isConstant())
            return false;
        return bound.relation == LinearRelation::atLeastZero ? value.constant < -kSolverTolerance
                                                             : value.constant > kSolverTolerance;
    }

    // Bounds above the priority that the rows break now.
    std::vector<Constraint const*> violatedAbove(double priority) const
    {
        std::vector<Constraint const*> violated;
        for (auto const* each : m_bounds) {
            if (each->priority > priority && isViolated(*each))
                violated.push_back(each);
        }
        return violated;
    }

    // Adds expression == 0, or, where that would break a bound of a higher priority, that bound's own edge.
    void hold(LinearExpression const& expression, double priority)
    {
        Rows const before = m_rows;
        LinearExpression const first = reduced(expression);
        if (first.isConstant())
            return;
        eliminate(first);
        std::vector<Constraint const*> candidates = violatedAbove(priority);
        if (candidates.empty())
            return;
        std::vector<Constraint const*> tried;
        std::optional<Rows> fallback;
        while (!candidates.empty()) {
            Constraint const* const candidate = candidates.front();
            candidates.erase(candidates.begin());
            if (std::find(tried.begin(), tried.end(), candidate) != tried.end())
                continue;
            tried.push_back(candidate);
            m_rows = before;
            LinearExpression const edge = reduced(candidate->expression);
            if (edge.isConstant())
                continue;
            eliminate(edge);
            auto const violated = violatedAbove(priority);
            bool const isAccepted = std::none_of(violated.begin(), violated.end(),
                [candidate](auto const* each) { return each->priority >= candidate->priority; });
            if (isAccepted)
                return;
            if (!fallback)
                fallback = m_rows;
            candidates.insert(candidates.end(), violated.begin(), violated.end());
        }
        m_rows = fallback.value_or(before);
    }

    void require(Constraint const& constraint, Solution& solution)
    {
        LinearExpression const value = reduced(constraint.expression);
        if (!value.isConstant()) {
            hold(constraint.expression, constraint.priority);
            return;
        }
        if (constraint.priority >= kRequired && std::abs(value.constant) > kSolverTolerance)
            solution.broken.push_back(constraint.tag);
    }

    void settle(LinearRelation relation, bool required)
    {
        for (auto const* each : m_bounds) {
            if (each->relation == relation && (each->priority >= kRequired) == required)
                hold(each->expression, each->priority);
        }
    }

    std::vector<Constraint const*> m_constraints;   // by priority
    std::vector<Constraint const*> m_bounds;        // inequalities, by priority
    std::vector<int> m_variables;
    std::vector<double> const& m_current;
    Rows m_rows;
};

LayoutSolver::Solution LayoutSolver::solve() const
{
    Solution solution;
    solution.values = m_current;

    std::vector<int> parent(m_current.size());
    std::iota(parent.begin(), parent.end(), 0);
    auto root = [&parent](int variable) {
        while (parent[static_cast<std::size_t>(variable)] != variable)
            variable = parent[static_cast<std::size_t>(variable)] =
                parent[static_cast<std::size_t>(parent[static_cast<std::size_t>(variable)])];
        return variable;
    };
    for (Constraint const& each : m_constraints) {
        if (each.expression.terms.empty())
            continue;
        int const first = root(each.expression.terms.begin()->first);
        for (auto const& [variable, factor] : each.expression.terms)
            parent[static_cast<std::size_t>(root(variable))] = first;
    }

    std::map<int, std::vector<Constraint const*>> constraints;
    std::map<int, std::vector<int>> variables;
    for (std::size_t i = 0; i < m_current.size(); ++i)
        variables[root(static_cast<int>(i))].push_back(static_cast<int>(i));
    for (Constraint const& each : m_constraints) {
        if (!each.expression.terms.empty()) {
            constraints[root(each.expression.terms.begin()->first)].push_back(&each);
            continue;
        }
        // Between places that do not move: it holds or it doesn't.
        double const value = each.expression.constant;
        bool const holds = each.relation == LinearRelation::equal ? std::abs(value) <= kSolverTolerance
            : each.relation == LinearRelation::atLeastZero        ? value >= -kSolverTolerance
                                                                  : value <= kSolverTolerance;
        if (!holds && each.priority >= kRequired)
            solution.broken.push_back(each.tag);
    }
    for (auto const& [first, members] : constraints)
        Component(members, variables[first], m_current).solve(solution);
    return solution;
}

}
