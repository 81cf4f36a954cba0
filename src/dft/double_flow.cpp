#include "double_flow.h"

#include "flows/blocks.h"
#include "realdft/forward.h"

namespace orvgen::dft {

using flows::Direction;
using flows::PlanRow;
using flows::Transform;
using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Value;

namespace {

// Where all lengths depart from the real kernels: the radix of the cycle's first stage.
constexpr PlanRow kCommon[] = {
    {Transform::Real, 19, "rader(2x9; 9; 9)"},
    {Transform::Real, 29, "rader(4x7; 14; 14)"},
};

struct LengthRow {
    int length;
    PlanRow row;
};

constexpr const char* kRaderFive = "rader(4; 2; 2)";
constexpr const char* kRaderSeven = "rader(2x3; 3; 3)";

// Where single lengths do. Real rows of 5 and 7 points are Rader blocks at some lengths: as many
// additions for 5, four more for 7, and two products fewer. Complex rows stay direct there.
constexpr LengthRow kSingle[] = {
    {10, {Transform::Real, 5, kRaderFive}},

    {17, {Transform::InverseOdd, 8, "2.4"}},
    {34, {Transform::InverseOdd, 8, "2.4"}},
    {51, {Transform::InverseOdd, 8, "2.4"}},

    {35, {Transform::Real, 35, "5x7"}},
    {35, {Transform::Real, 5, kRaderFive}},
    {35, {Transform::Real, 7, kRaderSeven}},
    {35, {Transform::Complex, 7, "lanes(7d)"}},

    {37, {Transform::Real, 37, "rader(4x9; 9x2; 9.2)"}},

    {41, {Transform::Real, 41, "rader(5x8; 4x5; 10.2)"}},
    {41, {Transform::Real, 5, kRaderFive}},
    {41, {Transform::InverseReal, 5, "inverse-rader(2; 2; 4)"}},
    {41, {Transform::Complex, 10, "lanes(5d x 2)"}},

    {43, {Transform::Real, 43, "rader((2x7)x3; 7x3; 3.7)"}},

    {47, {Transform::InverseReal, 23, "inverse-rader(11; 11; 11x2)"}},

    {50, {Transform::Real, 5, kRaderFive}},
    {50, {Transform::Complex, 5, "lanes(5d)"}},

    {53, {Transform::Real, 53, "rader(13x4; inverse-rader(3x2; 2.3; 4x3) x 2; 13.2)"}},

    {59, {Transform::Odd, 14, "2.7"}},

    {60, {Transform::Real, 5, kRaderFive}},
    {60, {Transform::Complex, 5, "lanes(5d)"}},

    {61, {Transform::Real, 61, "rader(3x(5x4); 5x(3x2); 2.15)"}},
};

// The lengths at which both directions take the order of the forward sums, so that the inverse is
// the forward transform with real and imaginary parts exchanged, to the last bit.
constexpr bool sharesForwardSums(int n) { return n == 23 || n == 29; }

}  // namespace

flows::Plans doublePlans(int n) {
    flows::Plans plans = realdft::forwardPlans();
    plans.add(kCommon);
    for (const LengthRow& entry : kSingle)
        if (entry.length == n) plans.add(entry.row);
    return plans;
}

std::string doubleMethod(int n) {
    std::string method = realdft::forwardMethod(n);
    const auto replace = [&](const PlanRow& row) {
        if (row.transform == Transform::Real && row.length == n) method = row.plan;
    };
    for (const PlanRow& row : kCommon) replace(row);
    for (const LengthRow& entry : kSingle)
        if (entry.length == n) replace(entry.row);
    return method;
}

Graph doubleFlow(Direction direction, int n) {
    Graph graph(Arithmetic::DoublePair);
    std::vector<Value> x;
    for (int t = 0; t < n; ++t) x.emplace_back(graph, graph.input(t));
    const flows::Plans plans = doublePlans(n);
    flows::Flow<Value> flow(plans, &graph);
    const bool isForward = direction == Direction::Forward || sharesForwardSums(n);
    flow.setPositiveFirst(isForward ? 1 : -1);
    const flows::Bins<Value> bins = flow.real(flows::parsePlan(std::to_string(n)), 1, x);

    graph.stage("finish: y[k], y[N-k] = P +- i Q; scale and store");
    for (int k = 0; 2 * k <= n; ++k) {
        const auto& bin = bins[static_cast<std::size_t>(k)];
        const Value p = bin.re.formed();
        if (bin.im.isEmpty()) {
            graph.output(k, scaled(p).id());
            continue;
        }
        const Value q = bin.im.formed();
        const Value t = direction == Direction::Forward ? timesI(q) : timesMinusI(q);
        graph.output(k, scaled(p + t).id());
        graph.output(n - k, scaled(p - t).id());
    }
    return graph;
}

}  // namespace orvgen::dft
