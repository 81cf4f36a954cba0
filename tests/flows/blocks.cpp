// SPDX-License-Identifier: MIT
// Blocks by themselves: every order of sums gives the transform, and what a flow refuses.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "flows/flow.h"
#include "kernelgen/number.h"
#include "plan/table.h"

namespace orvgen {

using Double = kernelgen::Number<kernelgen::Arithmetic::Double>;
extern template class flows::Flow<Double>;

}  // namespace orvgen

namespace orvgen::test {
namespace {

using namespace orvgen::flows;

using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Value;
using plan::block;
using plan::PlanPtr;
using plan::Table;

PlanPtr only(Transform transform, const plan::Term& term) {
    return Table(transform, {{term.length(), term}}).plan(term.length());
}

std::vector<SumOrder> allOrders() {
    std::vector<SumOrder> orders;
    using Pairs = SumOrder::Pairs;
    using Sines = SumOrder::Sines;
    const Pairs pairs[] = {Pairs::PowersOfInverseRoot, Pairs::PowersOfRoot, Pairs::Ascending,
                           Pairs::Descending};
    for (const Pairs cosinePairs : pairs)
        for (const Pairs sinePairs : pairs)
            for (const auto centre :
                 {SumOrder::Centre::LastBehindPositive, SumOrder::Centre::First})
                for (const Sines sines : {Sines::AsTheyCome, Sines::TurnedMinuses,
                                          Sines::PositiveFirst, Sines::NegativeFirst})
                    orders.push_back({cosinePairs, sinePairs, centre, sines});
    return orders;
}

double sampleAt(long t) { return 1.0 / static_cast<double>(t + 1) - 0.3; }

TEST(DirectBlocks, EveryOrderOfSumsIsTheTransform) {
    for (const int n : {5, 7, 11})
        for (const long e : {1L, 3L, static_cast<long>(n) - 1})
            for (const SumOrder& sums : allOrders()) {
                std::vector<Double> x;
                for (long t = 0; t < n; ++t) x.emplace_back(sampleAt(t));
                const Sequence<Double> X = Flow<Double>().run(
                    *only(Transform::Real, block(n, {.sums = sums})), e, realNumbers(x));
                ASSERT_EQ(std::ssize(X), n / 2 + 1);
                for (long k = 0; 2 * k < n; ++k) {
                    double re = 0, im = 0;
                    for (long t = 0; t < n; ++t) {
                        const double angle =
                            2 * std::numbers::pi * static_cast<double>(e * t * k) / n;
                        re += sampleAt(t) * std::cos(angle);
                        im -= sampleAt(t) * std::sin(angle);
                    }
                    EXPECT_NEAR(X[k].re.formed().value(), re, 1e-14) << n << " bin " << k;
                    if (k > 0) {
                        EXPECT_NEAR(X[k].im.formed().value(), im, 1e-14) << n << " bin " << k;
                    }
                }
            }
}

TEST(DirectBlocks, EveryOrderOfSumsIsTheInverseTransform) {
    for (const int n : {5, 7, 11})
        for (const SumOrder& sums : allOrders()) {
            Sequence<Double> Z{{Double(sampleAt(0)), {}}};
            for (long k = 1; 2 * k < n; ++k)
                Z.push_back({Double(sampleAt(k)), Double(-sampleAt(2 * k))});
            const Sequence<Double> y =
                Flow<Double>().run(*only(Transform::InverseReal, block(n, {.sums = sums})), 1, Z);
            for (long t = 0; t < n; ++t) {
                double sum = sampleAt(0);
                for (long k = 1; 2 * k < n; ++k) {
                    const double angle = 2 * std::numbers::pi * static_cast<double>(t * k) / n;
                    sum += sampleAt(k) * std::cos(angle) + sampleAt(2 * k) * std::sin(angle);
                }
                EXPECT_NEAR(y[t].re.formed().value(), sum, 1e-14) << n << " sample " << t;
            }
        }
}

// The order is in the graph: the sums of a block name their first product.
TEST(DirectBlocks, TakeANodesOrderBeforeTheFlows) {
    const auto nodes = [](const SumOrder& ofFlow, const plan::Block& choices) {
        Graph graph(Arithmetic::Double);
        std::vector<Value> x;
        for (int t = 0; t < 7; ++t) x.emplace_back(graph, graph.input(t));
        Flow<Value>(&graph, ofFlow)
            .run(*only(Transform::Real, block(7, choices)), 1, realNumbers(x));
        std::vector<std::array<int, 3>> list;
        for (const kernelgen::Node& n : graph.nodes())
            list.push_back({static_cast<int>(n.op), n.a, n.b});
        return list;
    };
    const SumOrder ascending{.cosinePairs = SumOrder::Pairs::Ascending,
                             .sinePairs = SumOrder::Pairs::Ascending};
    EXPECT_EQ(nodes(ascending, {}), nodes({}, {.sums = ascending}));
    EXPECT_EQ(nodes({}, {}), nodes(ascending, {.sums = SumOrder{}}));
    EXPECT_NE(nodes(ascending, {}), nodes({}, {}));
}

// A carry where there is nothing to round, and a renumbering where there is nothing to renumber,
// are mistakes of a table.
TEST(Flow, RefusesChoicesThatChangeNothing) {
    const auto run = [](Arithmetic arithmetic, const plan::Term& term) {
        Graph graph(arithmetic);
        std::vector<Value> x;
        for (int t = 0; t < term.length(); ++t) x.emplace_back(graph, graph.input(t));
        Flow<Value>(&graph).run(*only(Transform::Real, term), 1, realNumbers(x));
    };
    const auto three = block(3, {.unrounded = Unrounded::Head});
    // a sample is no open expression
    EXPECT_THROW(run(Arithmetic::Single, three), std::logic_error);
    EXPECT_THROW(run(Arithmetic::Single, plan::goodThomas(plan::factor(3).at(1, three), 2)),
                 std::logic_error);
    // the head of a block of three is one, and binary64 rounds nowhere
    EXPECT_NO_THROW(run(Arithmetic::Single,
                        plan::cooleyTukey(3, plan::factor(3).at(1, plan::lanes(three, 3)))));
    EXPECT_NO_THROW(run(Arithmetic::Double, three));

    const auto bins = plan::Renumbered::What::Bins;
    EXPECT_THROW(run(Arithmetic::Double, plan::renumbered(bins, block(5))), std::logic_error);
    EXPECT_NO_THROW(run(Arithmetic::Double, plan::goodThomas(plan::renumbered(bins, block(5)), 3)));
    // the two-point blocks have the exponent 3, which is 1 modulo 2
    EXPECT_THROW(run(Arithmetic::Double, plan::goodThomas(3, plan::renumbered(bins, block(2)))),
                 std::logic_error);
}

TEST(Flow, RunsPlansOfRealCoefficientsOnly) {
    const PlanPtr complex = only(Transform::Complex, block(5));
    Graph graph(Arithmetic::Double);
    const Value x(graph, graph.input(0));
    const Sequence<Value> z(5, {x, x});
    EXPECT_THROW(Flow<Value>(&graph).run(*complex, 1, z), std::logic_error);
}

}  // namespace
}  // namespace orvgen::test
