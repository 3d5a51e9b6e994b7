// The arithmetic of auto layout: linear equations and inequalities over numbers, with priorities. No views
// here; layout_engine.cpp writes their constraints down in these terms. Points.
//
// Equations go in by priority and elimination; what contradicts those before it is left out. Inequalities wait:
// an equation that would break a more important one is replaced by it at its bound.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

namespace phone {

// A sum of variables times factors, plus a constant.
struct LinearExpression {
    std::map<int, double> terms;   // by variable
    double constant { 0 };

    LinearExpression() = default;
    LinearExpression(double constant)
        : constant(constant)
    {
    }
    static LinearExpression of(int variable);

    void add(LinearExpression const& other, double factor = 1);
    bool isConstant() const { return terms.empty(); }
    friend LinearExpression operator+(LinearExpression a, LinearExpression const& b)
    {
        a.add(b);
        return a;
    }
    friend LinearExpression operator-(LinearExpression a, LinearExpression const& b)
    {
        a.add(b, -1);
        return a;
    }
    friend LinearExpression operator*(LinearExpression a, double factor);
};

enum class LinearRelation { equal, atLeastZero, atMostZero };

class LayoutSolver {
public:
    static constexpr double kRequired = 1000;

    // `current`: what it stays at when nothing says otherwise.
    int addVariable(double current);

    // expression (relation) 0. `tag` names it in the answer; those added first win among equals.
    void add(LinearExpression expression, LinearRelation relation, double priority, int tag = -1);

    struct Solution {
        std::vector<double> values;   // by variable
        std::vector<int> broken;      // tags of required constraints that could not hold, in order
    };
    Solution solve() const;

private:
    struct Constraint {
        LinearExpression expression;
        LinearRelation relation;
        double priority;
        int tag;
    };
    class Component;

    std::vector<double> m_current;
    std::vector<Constraint> m_constraints;
};

}
