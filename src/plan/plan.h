// SPDX-License-Identifier: MIT
// Plans: how a transform is made of shorter ones, as a tree.
//
// A node says which algorithm makes the transform, holds the plans of the parts, and owns every
// choice that the algorithm leaves open. Nothing is left to be looked up: a plan can be run and
// printed by itself. terms.h is what plans are written with, table.h how the lengths of a family
// name each other, notation.h how a plan is printed.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

namespace orvgen::plan {

// The kinds of transform that plans make. With w(n) = exp(2 pi i/n):
enum class Transform : std::uint8_t {
    Real,         // X[k] = sum of x[t] w(n)^(-e t k), bins 0..n/2
    InverseReal,  // y[t] = Z[0] + sum over 0<k<n/2 of Re(Z[k] w(n)^(e t k)) + (-1)^t Z[n/2]
    Odd,          // X[j] = sum of x[t] w(2n)^(-(2j+1) t), bins 0..ceil(n/2)-1
    InverseOdd,   // y[t] = sum over j of Re(Z[j] w(2n)^((2j+1) t)) (+ (-1)^t Z[(n-1)/2], odd n)
    Complex,      // Y[k] = sum of z[t] w(n)^(-e t k)
};

struct Plan;
using PlanPtr = std::shared_ptr<const Plan>;
// The blocks of one stage of a join, by number: those of R points by column c, those of M points
// by row k (see index_maps.h).
using Stage = std::vector<PlanPtr>;

// Which operand of a block is rounded for the sum that takes it and goes on unrounded into the
// double expression that takes it too.
enum class Unrounded : std::uint8_t {
    None,
    Head,      // x[0], or bin 0 of an inverse transform
    Both,      // the two operands of a two-point block: its sums are double expressions
    RealPart,  // that of bin 1 of an inverse three-point block
};

// The order of the terms of a direct block's sums, over the pairs u and n - u.
struct SumOrder {
    enum class Pairs : std::uint8_t {
        PowersOfInverseRoot,  // of the inverse of the smallest primitive root
        PowersOfRoot,
        Ascending,
        Descending,
    };
    enum class Centre : std::uint8_t {  // where a cosine sum takes x[0]
        LastBehindPositive,             // last if the first product is positive, else first
        First,
    };
    enum class Sines : std::uint8_t {
        AsTheyCome,
        TurnedMinuses,  // as they come, with all signs turned if three minuses come before a plus
        PositiveFirst,  // the first positive one, then the others as they come
        NegativeFirst,
    };

    Pairs cosinePairs = Pairs::PowersOfInverseRoot;
    Pairs sinePairs = Pairs::PowersOfInverseRoot;
    Centre centre = Centre::LastBehindPositive;
    Sines sines = Sines::TurnedMinuses;

    bool operator==(const SumOrder&) const = default;
};

// A butterfly or a direct form. Without an order of its own it takes that of its flow.
struct Block {
    Unrounded unrounded = Unrounded::None;
    std::optional<SumOrder> sums = {};
};

// N = R M, R and M coprime, no twiddles. The columns are the first stage and the rows the second;
// inverse transforms of half spectra begin with the rows.
struct GoodThomas {
    Stage first, second;
};

enum class TwiddleLanes : std::uint8_t { Rows, Columns };

// The same with twiddles between the stages, for any R and M.
struct CooleyTukey {
    Stage first, second;
    // For complex data: representatives c of the residues modulo M and k of those modulo R, 0, 1,
    // 2 .. unless others are named. The blocks across take them as they stand here.
    std::vector<int> columns = {}, rows = {};
    // What stands in the lanes of a vector of twiddles.
    TwiddleLanes twiddleLanes = TwiddleLanes::Rows;
    // Inverse transforms of half spectra: a complex row by its conjugate, row R - k.
    bool conjugateRows = false;
};

// Rader's algorithm for real data of prime length: the cycle's transform, then the inverse
// transforms of the even and of the odd frequencies.
struct RealRader {
    PlanPtr cycle, even, odd;
};
// Its mirror: transforms of the even and of the odd part of the cycle, then the cycle's inverse
// transform, in one piece (cycle) or split by parity (cycleEven, cycleOdd).
struct InverseRealRader {
    PlanPtr even, odd;
    PlanPtr cycle = {}, cycleEven = {}, cycleOdd = {};
    Unrounded unrounded = Unrounded::None;
};
// Rader's algorithm on complex numbers: the cycle's transform and the way back.
struct ComplexRader {
    // How the numbers of the cycle stand in vectors, and so where x[0] meets them.
    enum class Form : std::uint8_t {
        Split,          // real and imaginary parts apart; x[0] + A[0] is a sum of its own
        SplitWithLone,  // the lone two-point transform of the way back takes that sum along
        Packed,         // two numbers in one vector; the lone one of the cycle brings x[0] along
    };

    PlanPtr cycle, back;
    Form form = Form::Split;
};
// The same with the cycle in real lanes: it has real coefficients and runs on the real parts and on
// the imaginary parts alike.
struct LaneRader {
    int offset = 0;  // u: results stand at the powers g^(r + u)
    // The bins of the product whose imaginary parts come times sin(pi/3), for three-point blocks
    // that then need no product.
    std::vector<int> sineFolds = {};
};

// Bluestein's algorithm: the transform of the padded sequence and the way back.
struct Bluestein {
    PlanPtr forward, back;
};

// A complex transform as two real ones, of the real parts and of the imaginary parts.
struct Lanes {
    PlanPtr re, im;
};

// A transform of odd length at the odd frequencies: the ordinary one of samples with alternating
// signs.
struct Alternating {
    PlanPtr plan;
};

// A real block that a Good-Thomas join gives the root exponent e, run with exponent 1: x[t] as
// sample e t, or bin e k as bin k.
struct Renumbered {
    enum class What : std::uint8_t { Samples, Bins };
    What what;
    PlanPtr plan;
};

using Node = std::variant<Block, GoodThomas, CooleyTukey, RealRader, InverseRealRader, ComplexRader,
                          LaneRader, Bluestein, Lanes, Alternating, Renumbered>;

struct Plan {
    Transform transform;
    int length;
    Node node;

    template <class Kind>
    const Kind* as() const {
        return std::get_if<Kind>(&node);
    }
};

// The complex transform that runs the same stages backwards: outputs become inputs.
PlanPtr mirrored(const PlanPtr& plan);

}  // namespace orvgen::plan
