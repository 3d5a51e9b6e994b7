#include "phone/uikit/layout_solver.hpp"

#include <gtest/gtest.h>

namespace phone {

namespace {

LinearExpression var(int variable, double constant = 0)
{
    LinearExpression expression = LinearExpression::of(variable);
    expression.constant = constant;
    return expression;
}

// Two pieces of 30 and 30 side by side in `room`, with the given priorities.
std::vector<double> shared(double room, double hugA, double hugB, double resistA, double resistB)
{
    LayoutSolver solver;
    int const a = solver.addVariable(0), b = solver.addVariable(0);
    solver.add(var(a) + var(b, -room), LinearRelation::equal, 1000);
    solver.add(var(a, -30), LinearRelation::atMostZero, hugA);
    solver.add(var(a, -30), LinearRelation::atLeastZero, resistA);
    solver.add(var(b, -30), LinearRelation::atMostZero, hugB);
    solver.add(var(b, -30), LinearRelation::atLeastZero, resistB);
    return solver.solve().values;
}

}

TEST(LayoutSolver, SolvesEquations)
{
    LayoutSolver solver;
    int const x = solver.addVariable(0), y = solver.addVariable(0);
    solver.add(var(x) + var(y, -10), LinearRelation::equal, 1000);
    solver.add(var(x) - var(y) - LinearExpression(4), LinearRelation::equal, 1000);

    auto const solution = solver.solve();

    EXPECT_NEAR(solution.values[0], 7, 1e-9);
    EXPECT_NEAR(solution.values[1], 3, 1e-9);
    EXPECT_TRUE(solution.broken.empty());
}

TEST(LayoutSolver, KeepsWhatNothingMoves)
{
    LayoutSolver solver;
    solver.addVariable(42);

    EXPECT_EQ(solver.solve().values, (std::vector<double> { 42 }));
}

TEST(LayoutSolver, LeavesOutTheLaterOfTwoThatContradict)
{
    LayoutSolver solver;
    int const x = solver.addVariable(0);
    solver.add(var(x, -10), LinearRelation::equal, 1000, 0);
    solver.add(var(x, -20), LinearRelation::equal, 1000, 1);
    solver.add(var(x, -10), LinearRelation::equal, 1000, 2);

    auto const solution = solver.solve();

    EXPECT_EQ(solution.values[0], 10);
    EXPECT_EQ(solution.broken, (std::vector<int> { 1 }));
}

TEST(LayoutSolver, PrefersTheHigherPriority)
{
    LayoutSolver solver;
    int const x = solver.addVariable(0);
    solver.add(var(x, -10), LinearRelation::equal, 500, 0);
    solver.add(var(x, -20), LinearRelation::equal, 750, 1);

    EXPECT_EQ(solver.solve().values[0], 20);
}

TEST(LayoutSolver, StopsAtABound)
{
    for (double const wanted : { 33.0, 80.0 }) {
        LayoutSolver solver;
        int const width = solver.addVariable(0);
        solver.add(var(width, -60), LinearRelation::atMostZero, 1000);
        solver.add(var(width, -wanted), LinearRelation::atMostZero, 250);
        solver.add(var(width, -wanted), LinearRelation::atLeastZero, 750);

        EXPECT_EQ(solver.solve().values[0], std::min(wanted, 60.0));
    }
}

TEST(LayoutSolver, GivesRoomThatIsLeftToWhoHugsLess)
{
    EXPECT_EQ(shared(100, 251, 250, 750, 750), (std::vector<double> { 30, 70 }));
    EXPECT_EQ(shared(100, 250, 251, 750, 750), (std::vector<double> { 70, 30 }));
}

TEST(LayoutSolver, TakesRoomThatLacksFromWhoResistsLess)
{
    EXPECT_EQ(shared(40, 250, 250, 751, 750), (std::vector<double> { 30, 10 }));
    EXPECT_EQ(shared(40, 250, 250, 750, 751), (std::vector<double> { 10, 30 }));
}

TEST(LayoutSolver, GrowsToTheLargestOfMany)
{
    LayoutSolver solver;
    int const length = solver.addVariable(0);
    for (double const each : { 20.0, 50.0, 30.0 })
        solver.add(var(length, -each), LinearRelation::atLeastZero, 1000);
    solver.add(var(length), LinearRelation::atMostZero, 49);

    EXPECT_EQ(solver.solve().values[0], 50);
}

TEST(LayoutSolver, NamesBoundsThatCannotHold)
{
    LayoutSolver solver;
    int const x = solver.addVariable(0);
    solver.add(var(x, -10), LinearRelation::equal, 1000, 0);
    solver.add(var(x, -20), LinearRelation::atLeastZero, 1000, 1);
    solver.add(LinearExpression(5), LinearRelation::atMostZero, 1000, 2);

    EXPECT_EQ(solver.solve().broken, (std::vector<int> { 2, 1 }));
}

}
