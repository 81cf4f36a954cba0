#include "forward.h"

#include <array>

namespace orvgen::realdft {

using flows::Carry;
using flows::PlanRow;
using flows::Plans;
using flows::Transform;
using kernelgen::Arithmetic;
using kernelgen::Graph;
using kernelgen::Value;

namespace {

// How each length is made; what is not named is a direct block. The first factor runs first.
constexpr PlanRow kPlans[] = {
    {Transform::Real, 6, "3x2"},
    {Transform::Real, 8, "4.2"},
    {Transform::Real, 9, "3.3"},
    {Transform::Real, 10, "5x2"},
    {Transform::Real, 12, "4x3"},
    {Transform::Real, 13, "rader(3x4; 6; 6)"},
    {Transform::Real, 14, "2x7"},
    {Transform::Real, 15, "3x5"},
    {Transform::Real, 16, "4.4"},
    {Transform::Real, 17, "rader(16; 8; 8)"},
    {Transform::Real, 18, "2x9"},
    {Transform::Real, 19, "rader(9x2; 9; 9)"},
    {Transform::Real, 20, "5x4"},
    {Transform::Real, 21, "7x3"},
    {Transform::Real, 22, "2x11"},
    {Transform::Real, 23, "rader(22; 11; 11)"},
    {Transform::Real, 24, "3x8"},
    {Transform::Real, 25, "5.5"},
    {Transform::Real, 26, "13x2"},
    {Transform::Real, 27, "9.3"},
    {Transform::Real, 28, "4x7"},
    {Transform::Real, 29, "rader(7x4; 14; 14)"},
    {Transform::Real, 30, "5x6"},
    {Transform::Real, 31, "rader(3x(2x5); 15; 15)"},
    {Transform::Real, 32, "8.4"},
    {Transform::Real, 33, "11x3"},
    {Transform::Real, 34, "2x17"},
    {Transform::Real, 35, "7x5"},
    {Transform::Real, 36, "9x4"},
    {Transform::Real, 37, "rader(4x9; 2x9; 6:3)"},
    {Transform::Real, 38, "19x2"},
    {Transform::Real, 39, "13x3"},
    {Transform::Real, 40, "8x5"},
    {Transform::Real, 41, "rader(5x8; 5x4; 4.5)"},
    {Transform::Real, 42, "7x6"},
    {Transform::Real, 43, "rader((2x7)x3; 3x7; 3x7)"},
    {Transform::Real, 44, "11x4"},
    {Transform::Real, 45, "5x9"},
    {Transform::Real, 46, "2x23"},
    {Transform::Real, 47, "rader(23x2; 23; 23)"},
    {Transform::Real, 48, "16\"x3"},
    {Transform::Real, 49, "7.7"},
    {Transform::Real, 50, "25x2"},
    {Transform::Real, 51, "17'x3"},
    {Transform::Real, 52, "13x4"},
    {Transform::Real, 53,
     "rader(4x13; 2x inverse-rader(3x2; 2.3; 3x4);"
     " 2.inverse-rader(3x2; 2x3; 3x2; 6))"},
    {Transform::Real, 54, "2x27"},
    {Transform::Real, 55, "11x5"},
    {Transform::Real, 56, "7x8"},
    {Transform::Real, 57, "19x3"},
    {Transform::Real, 58, "2x29"},
    {Transform::Real, 59, "rader(29x2; 29; 29)"},
    {Transform::Real, 60, "(3x5)x4"},
    {Transform::Real, 61, "rader(3x(5x4); 3x(5x2); 2.15)"},
    {Transform::Real, 62, "31x2"},
    {Transform::Real, 63, "7x9"},
    {Transform::Real, 64, "16.4"},

    {Transform::Odd, 4, "2.2"},
    {Transform::Odd, 14, "7.2"},

    {Transform::InverseReal, 6, "2x3"},
    {Transform::InverseReal, 8, "2.4"},
    {Transform::InverseReal, 9, "3.3"},
    {Transform::InverseReal, 10, "2x5"},
    {Transform::InverseReal, 11, "inverse-rader(5; 5; 2x5)"},
    {Transform::InverseReal, 14, "2x7"},
    {Transform::InverseReal, 15, "3x5"},
    {Transform::InverseReal, 23, "inverse-rader(11; 11; 11d x 2)"},
    {Transform::InverseReal, 29, "inverse-rader(2x7; 14; 4x7)"},

    {Transform::InverseOdd, 4, "2:2"},
    {Transform::InverseOdd, 6, "2:3"},
    {Transform::InverseOdd, 8, "4:2"},
    {Transform::InverseOdd, 14, "2.7"},
};

}  // namespace

const Plans& forwardPlans() {
    static const Plans plans = [] {
        Plans p;
        p.add(kPlans);
        return p;
    }();
    return plans;
}

// Which values go on unrounded where the plan leaves it open. "head" below is the real bin of a
// 3-point or Rader block, which is added to a sum and also begins the block's double expression.
const std::vector<Carry>& forwardCarries() {
    static const std::vector<Carry> carries = {
        // heads of the first 3-point blocks behind the products of each 19-block
        {19, "even/first0"},
        {19, "odd/first0"},
        {38, "even/first0"},
        {38, "odd/first0"},
        {57, "even/first0"},
        {57, "odd/first0"},
        // frequencies 0 and 18, joined in one expression, and the head behind their sum; both parts
        // of frequency 9 at the two 3-point blocks
        {37, "/even/first0"},
        {37, "/even/second0/first0"},
        {37, "/odd/first1/second0"},
        {37, "/odd/first1/second1"},
        // heads of the inner 11-blocks
        {46, "/second0/even"},
        {46, "/second0/odd"},
        {46, "/second1/even"},
        {47, "/cycle/first0/even"},
        {47, "/cycle/first0/odd"},
        {47, "/cycle/first1/even"},
        // heads of the 23-blocks
        {47, "/even"},
        {47, "/odd"},
        // both parts of frequency 13 at the two 13-blocks
        {53, "/odd/second0"},
        {53, "/odd/second1"},
        // heads of the 29-blocks
        {59, "/even"},
        {59, "/odd"},
        // head of the first 3-point block behind the products of the first 31-block
        {62, "/first0/even/first0"},
    };
    return carries;
}

std::string forwardMethod(int n) {
    for (const PlanRow& row : kPlans)
        if (row.transform == Transform::Real && row.length == n) return row.plan;
    return "direct";
}

Graph forwardGraph(int n, PackedFormat format, Arithmetic arithmetic) {
    Graph graph(arithmetic);
    std::vector<Value> x;
    for (int t = 0; t < n; ++t) x.emplace_back(graph, graph.input(t));
    const flows::Bins<Value> bins = forwardBins(n, x, &graph);
    graph.stage("scale and store");
    const auto scale = [](const Value& v) { return scaled(v); };
    for (const auto& term : forwardTerms(bins, scale)) {
        const int place = term.isImaginary ? imaginaryPosition(format, n, term.bin)
                                           : realPosition(format, n, term.bin);
        graph.output(place, term.value.id());
    }
    for (const int place : zeroPositions(format, n))
        graph.output(place, graph.zero(graph.elementType()));
    return graph;
}

}  // namespace orvgen::realdft
