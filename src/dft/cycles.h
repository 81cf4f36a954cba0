// SPDX-License-Identifier: MIT
// The transforms of Rader's cycle of length L in the real-lane form, for L = 12 to 30.
//
// forward: bins A[0..L/2] of the real sequence a.
// inverse: z[r] = sum over k = 0 .. L/2 of Re(D[k] exp(2 pi i k r / L)); the inner D[k] are doubled
// for their conjugates.
#pragma once

#include <algorithm>
#include <variant>

#include "lanes.h"
#include "real_blocks.h"

namespace orvgen::dft {

using Reals = std::vector<Value>;
using Spectrum = HalfSpectrum<Value>;

// The even and the odd frequencies' part of the first half of a sequence; the second half is
// even - odd.
struct SplitCycle {
    Reals even, odd;
};

// The bins whose imaginary part comes times sin(pi/3), so that the three-point block that takes
// them needs no product for it.
using SineFolds = std::vector<int>;
inline bool isFolded(const SineFolds& folds, std::size_t k) {
    return std::ranges::count(folds, static_cast<int>(k)) != 0;
}

// The sign with which the odd frequencies enter decides the order of terms of the five-point blocks
// of 30 points.
enum class OddPart { Added, Subtracted };

// How a cycle comes back. A split inverse never adds its two parts: whoever wants P + i Q of them
// joins P with i Q. It is there where four-point blocks bring even and odd frequencies apart to
// their end. A whole one takes the spectrum of the joined sequence.
struct Cycle {
    using SplitInverse = SplitCycle (*)(const Spectrum& D, const SineFolds& folds);
    using WholeInverse = Reals (*)(const Spectrum& D, OddPart oddPart);

    Spectrum (*forward)(const Reals& a);
    std::variant<SplitInverse, WholeInverse> inverse;
};

const Cycle& cycleOf(std::size_t length);

Spectrum forwardCycle12(const Reals& a);
SplitCycle inverseCycle12(const Spectrum& D, const SineFolds& folds);

Spectrum forwardCycle16(const Reals& a);
SplitCycle inverseCycle16(const Spectrum& D, const SineFolds& folds);

// D[3] and D[6] are folded.
Spectrum forwardCycle18(const Reals& a);
Reals inverseCycle18(const Spectrum& D, OddPart oddPart);

Spectrum forwardCycle22(const Reals& a);
Reals inverseCycle22(const Spectrum& D, OddPart oddPart);

Spectrum forwardCycle28(const Reals& a);
Reals inverseCycle28(const Spectrum& D, OddPart oddPart);

Spectrum forwardCycle30(const Reals& a);
Reals inverseCycle30(const Spectrum& D, OddPart oddPart);

}  // namespace orvgen::dft
