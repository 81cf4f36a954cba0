// Plans in one line.
//
//   5                a block of 5 points
//   4, 3             Good-Thomas join, four-point blocks first
//   9 T 3            Cooley-Tukey join: nine-point blocks first, twiddles between
//   (5, 3) T 3       a factor in parentheses is a join itself
//   Rader 13(c; e; o)            the cycle's transform c, the inverse ones of its even and odd
//                                frequencies e and o
//   inverse Rader 13(e; o; c)    the mirror; (e; o; ce; co) where the cycle's inverse transform is
//                                split by parity
//   Rader 13(c)      on complex numbers: the cycle's transform, and back by its mirror
//   lane Rader 13    the same with the cycle in real lanes
//   Bluestein 47(f; b)           the transform of the padded sequence, and the way back
//   lanes(p)         a complex transform as real ones, of real and of imaginary parts; (p | q)
//   where
//                    they differ
//   [9; complex 3 T 3; odd 2 T 2; 4: 9]   a factor whose blocks differ: real rows, complex rows,
//   the
//                    row at odd frequencies, block number 4. Complex rows that are not named run
//                    the plan of the real ones in lanes; an odd length at odd frequencies runs the
//                    same plan with alternating signs
//   3{..}, T{..}     what else a block or a join chooses
#pragma once

#include <string>

#include "plan.h"

namespace orvgen::plan {

std::string notation(const Plan& plan);

}  // namespace orvgen::plan
