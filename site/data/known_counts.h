// SPDX-License-Identifier: MIT
// What the literature knows of the least number of operations that a transform takes.
//
// Three kinds of numbers, never to be mixed up: a proof that no algorithm takes fewer, under the
// conditions of its theorem; the fewest that we know an algorithm to take at this length, which
// somebody may undercut; and the count of a well-known algorithm. With growing N fewer are known to
// be enough, 15/4 N log2 N + O(N) and 23/24 N log2 N + O(N) in a Walsh-Hadamard transform (Alman
// and Rao, Faster Walsh-Hadamard and discrete Fourier transforms from matrix non-rigidity, STOC
// 2023); what that takes at short lengths is not told.
#pragma once

#include <string>
#include <vector>

namespace orvgen::site {

// Of what the transforms are: complex or real data, or the Walsh-Hadamard matrix.
enum class Kind { Complex, Real, InverseReal, Hartley, WalshHadamard };

enum class Claim {
    LowerBound,   // no algorithm takes fewer
    FewestKnown,  // we know of no algorithm that takes fewer
    KnownMethod,  // what a well-known algorithm takes
};

enum class Counted {
    Additions,        // sums, differences and doublings
    Multiplications,  // by constants that are not rational
    Both,             // additions and multiplications together
};

struct KnownCount {
    Claim claim;
    Counted counted;
    double count;
    std::string condition;  // what the claim takes for granted; empty: nothing
    std::string source;
};

// In real operations, the scale left out. N >= 2; for Walsh-Hadamard a power of two.
std::vector<KnownCount> knownCounts(Kind kind, int N);

}  // namespace orvgen::site
