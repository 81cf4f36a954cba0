#include "inverse.h"

namespace orvgen::realdft {

using flows::Carry;
using flows::PlanPtr;
using flows::PlanRow;
using flows::Plans;
using flows::Transform;

namespace {

// How each length is made; what is not named is a direct block. The first factor runs first, on the
// half spectrum; the last one gives the samples. It is a decomposition of its own, not the forward
// one run backwards: the order of the factors is often another.
constexpr PlanRow kInverse[] = {
    {Transform::InverseReal, 6, "2x3"},
    {Transform::InverseReal, 8, "4.2"},
    {Transform::InverseReal, 9, "3.3"},
    {Transform::InverseReal, 10, "2x5"},
    {Transform::InverseReal, 11, "inverse-rader(5; 5; 2x5)"},
    {Transform::InverseReal, 12, "3x4"},
    {Transform::InverseReal, 13, "inverse-rader(3x2; 2.3; 3x4)"},
    {Transform::InverseReal, 14, "2x7"},
    {Transform::InverseReal, 15, "3x5"},
    {Transform::InverseReal, 16, "8.2"},
    {Transform::InverseReal, 17, "inverse-rader(8; 8; 16)"},
    {Transform::InverseReal, 18, "2x9"},
    {Transform::InverseReal, 19, "inverse-rader(9; 9; 18)"},
    {Transform::InverseReal, 20, "5x4"},
    {Transform::InverseReal, 21, "3x7"},
    {Transform::InverseReal, 22, "inverse-rader(5; 5; 5x2)x2"},
    {Transform::InverseReal, 23, "inverse-rader(11d; 11d; 11d x 2)"},
    {Transform::InverseReal, 24, "8x3"},
    {Transform::InverseReal, 25, "5.5"},
    {Transform::InverseReal, 26, "2x13"},
    {Transform::InverseReal, 27, "9.3"},
    {Transform::InverseReal, 28, "4x7"},
    {Transform::InverseReal, 29, "inverse-rader(14; 14; 7x4)"},
    {Transform::InverseReal, 30, "15x2"},
    {Transform::InverseReal, 31, "inverse-rader(15; 15; 2x15)"},
    {Transform::InverseReal, 32, "16.2"},
    {Transform::InverseReal, 33, "3x11"},
    {Transform::InverseReal, 34, "17x2"},
    {Transform::InverseReal, 35, "5x7"},
    {Transform::InverseReal, 36, "4x9"},
    {Transform::InverseReal, 37, "inverse-rader(18; 3.6; 9x4)"},
    {Transform::InverseReal, 38, "2x19"},
    {Transform::InverseReal, 39, "13x3"},
    {Transform::InverseReal, 40, "5x8"},
    {Transform::InverseReal, 41, "inverse-rader(4x5; 5.4; 5x8)"},
    {Transform::InverseReal, 42, "2x21"},
    {Transform::InverseReal, 43, "inverse-rader(7x3; 7x3; (3x2)x7)"},
    {Transform::InverseReal, 44, "4x11"},
    {Transform::InverseReal, 45, "5x9"},
    {Transform::InverseReal, 46, "23x2"},
    {Transform::InverseReal, 47, "inverse-rader(23; 23; 23x2)"},
    {Transform::InverseReal, 48, "16x3"},
    {Transform::InverseReal, 49, "7.7"},
    {Transform::InverseReal, 50, "25x2"},
    {Transform::InverseReal, 51, "3x17"},
    {Transform::InverseReal, 52, "13x4"},
    {Transform::InverseReal, 53, "inverse-rader(13x2; 13.2; 13x4)"},
    {Transform::InverseReal, 54, "27x2"},
    {Transform::InverseReal, 55, "5x11"},
    {Transform::InverseReal, 56, "8x7"},
    {Transform::InverseReal, 57, "3x19"},
    {Transform::InverseReal, 58, "29x2"},
    {Transform::InverseReal, 59, "inverse-rader(29; 29; 2x29)"},
    {Transform::InverseReal, 60, "(4x3)|(4x3)x5"},
    {Transform::InverseReal, 61, "inverse-rader(3x(2x5); 15.2; (4x3)x5)"},
    {Transform::InverseReal, 62, "31x2"},
    {Transform::InverseReal, 63, "9x7"},
    {Transform::InverseReal, 64, "32.2"},

    // Odd frequencies: the bins k + M/2 of binary lengths, the imaginary parts of Rader lengths.
    {Transform::InverseOdd, 4, "2.2"},
    {Transform::InverseOdd, 8, "4.2"},
    {Transform::InverseOdd, 16, "8.2"},
    {Transform::InverseOdd, 32, "2.16"},
    {Transform::Odd, 4, "2.2"},
    {Transform::Odd, 6, "2.3"},
    {Transform::Odd, 8, "2.4"},
    {Transform::Odd, 14, "7.2"},

    // Complex rows. What is not named runs its real form in lanes.
    {Transform::Complex, 9, "3.3"},
    {Transform::Complex, 13, "lanes(rader(3x4; 3x2; 2x3))"},
    {Transform::Complex, 16, "2.8"},

    // Forward transforms inside Rader lengths, on the real parts of the bins.
    {Transform::Real, 6, "3x2"},
    {Transform::Real, 8, "2.4"},
    {Transform::Real, 9, "3.3"},
    {Transform::Real, 13, "rader(3x4; 2x3; 2.3)"},
    {Transform::Real, 14, "2x7"},
    {Transform::Real, 15, "3x5"},
    {Transform::Real, 18, "2x9"},
    {Transform::Real, 22, "2x11"},
    {Transform::Real, 23, "rader(22; 11; 11)"},
    {Transform::Real, 28, "4x7"},
    {Transform::Real, 29, "rader(28; 14; 14)"},
    {Transform::InverseOdd, 14, "2.7"},
};

// From CCS the real terms of these two are summed in another order.
struct FormatRow {
    int length;
    const char* plan;
};
constexpr FormatRow kFromCcs[] = {
    {7, "7g"},
    {49, "7g|7.7g"},
};

constexpr Carry kCarries[] = {
    // the centre of the first 3-block of a 9-block
    {19, "/even/second1/re"},
    {19, "/odd/second1/re"},
    {37, "/even/second0/second1/re"},
    {37, "/even/second1/second1/re"},
    {38, "/second0/even/second1/re"},
    {38, "/second0/odd/second1/re"},
    {38, "/second1/even/second1/re"},
    {38, "/second1/odd/second1/re"},
    {38, "/second0/even/second1/im"},
    {57, "/second0/even/second1/re"},
    {57, "/second0/odd/second1/re"},
    {57, "/second1/even/second1/re"},
    {57, "/second1/odd/second1/re"},
    {57, "/second2/even/second1/re"},
    {57, "/second2/odd/second1/re"},
    {57, "/second0/even/second1/im"},
    {57, "/second1/even/second1/im"},
    // a rotated output of the complex 9-block of 27, real part
    {27, "/second1:re"},
    {54, "/first0/second1:re"},
    {54, "/first1/second1:re"},
    {54, "/first0/second2:re"},
    // x[0] - S/L of a Rader block, and the product at half its cycle
    {22, "/first0/cycle/first0"},
    {39, "/first0/cycle/first0"},
    {39, "/first1/re/even/first0"},
    {39, "/first1/im/even/first0"},
    {46, "/first0/cycle/first0"},
    {47, "/cycle/first0"},
    {47, "/cycle/first1"},
    {47, "/even/even"},
    {47, "/even/odd"},
    {47, "/odd/even"},
    {52, "/first1/re/even/first0"},
    {52, "/first1/im/even/first0"},
    {53, "/cycle/first1/re/even/first0"},
    {53, "/cycle/first1/im/even/first0"},
    {58, "/first0/cycle/first0"},
    {59, "/cycle/second0/cycle/first0"},
    {59, "/cycle/second1/cycle/first0"},
    // the centre of the first 3-block of the 15-point transform of a cycle
    {62, "/first0/even/second1/re"},
};

}  // namespace

const Plans& inversePlans() {
    static const Plans plans = [] {
        Plans p;
        p.add(kInverse);
        return p;
    }();
    return plans;
}

Arrangement inverseArrangement(int n, PackedFormat format) {
    Arrangement a{flows::parsePlan(std::to_string(n)), {}};
    if (format == PackedFormat::Ccs)
        for (const FormatRow& row : kFromCcs)
            if (row.length == n) a.plan = flows::parsePlan(row.plan);
    for (const Carry& c : kCarries)
        if (c.length == n) a.carries.push_back(c.place);
    return a;
}

std::string inverseMethod(int n, PackedFormat format) {
    if (format == PackedFormat::Ccs)
        for (const FormatRow& row : kFromCcs)
            if (row.length == n) return row.plan;
    for (const PlanRow& row : kInverse)
        if (row.transform == Transform::InverseReal && row.length == n) return row.plan;
    return "direct";
}

}  // namespace orvgen::realdft
