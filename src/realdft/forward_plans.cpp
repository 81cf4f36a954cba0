// SPDX-License-Identifier: MIT
#include "plans.h"

namespace orvgen::realdft {

using namespace plan;

namespace {

// Where the plan leaves it open, a block's head is rounded: the real bin that is added to a sum and
// also begins a double expression.
constexpr Unrounded kRounded = Unrounded::None;
constexpr Unrounded kHead = Unrounded::Head;

// Parts of several lengths. "Back" are the ways back from the frequencies of a cycle.

const Term threeWithHead = block(3, {.unrounded = kHead});
const Term twoWithBoth = block(2, {.unrounded = Unrounded::Both});

Term elevenBack(Unrounded head) {
    return inverseRader({.even = 5, .odd = 5, .cycle = goodThomas(2, 5), .unrounded = head});
}

Term twentyThree(Unrounded evenHead, Unrounded oddHead) {
    return rader({.cycle = 22, .even = elevenBack(evenHead), .odd = elevenBack(oddHead)});
}

Term thirtyOne(const Term& threeOfTheFirstRow) {
    return rader({.cycle = goodThomas(3, goodThomas(2, 5)),
                  .even = goodThomas(factor(3).at(0, threeOfTheFirstRow), 5),
                  .odd = goodThomas(3, 5)});
}

// What is not named is a block.
Table table() {
    const Factor four = factor(4).oddRow(cooleyTukey(2, 2));
    const Term nineBack = cooleyTukey(3, 3);
    const Term nineBackWithHead = cooleyTukey(factor(3).at(0, threeWithHead), 3);
    const Term twentyThreeBack = inverseRader(
        {.even = 11, .odd = 11, .cycle = goodThomas(block(11), 2), .unrounded = kHead});
    const Term twentyNineBack = inverseRader({.even = goodThomas(2, 7),
                                              .odd = cooleyTukey(7, 2),
                                              .cycle = goodThomas(4, 7),
                                              .unrounded = kHead});
    const TwiddledJoin conjugateRows{.conjugateRows = true};

    return {
        plan::Transform::Real,
        {
            {6, goodThomas(3, 2)},
            {8, cooleyTukey(4, 2)},
            {9, cooleyTukey(3, 3)},
            {10, goodThomas(5, 2)},
            {12, goodThomas(4, 3)},
            {13, rader({.cycle = goodThomas(3, 4),
                        .even = goodThomas(2, 3),
                        .odd = cooleyTukey(2, 3, conjugateRows)})},
            {14, goodThomas(2, 7)},
            {15, goodThomas(3, 5)},
            {16, cooleyTukey(4, four)},
            {17, rader({.cycle = 16,
                        .even = cooleyTukey(2, 4),
                        .odd = cooleyTukey(4, 2, conjugateRows)})},
            {18, goodThomas(2, 9)},
            {19,
             rader({.cycle = goodThomas(9, 2), .even = nineBackWithHead, .odd = nineBackWithHead})},
            {20, goodThomas(5, 4)},
            {21, goodThomas(7, 3)},
            {22, goodThomas(2, 11)},
            {23, twentyThree(kRounded, kRounded)},
            {24, goodThomas(3, 8)},
            {25, cooleyTukey(5, 5)},
            {26, goodThomas(13, 2)},
            {27, cooleyTukey(9, 3)},
            {28, goodThomas(4, 7)},
            {29,
             rader(
                 {.cycle = goodThomas(7, 4), .even = goodThomas(2, 7), .odd = cooleyTukey(2, 7)})},
            {30, goodThomas(5, 6)},
            {31, thirtyOne(3)},
            {32, cooleyTukey(8, four)},
            {33, goodThomas(11, 3)},
            {34, goodThomas(2, 17)},
            {35, goodThomas(7, 5)},
            {36, goodThomas(9, 4)},
            // Frequencies 0 and 18 are joined in one expression, with the head behind their
            // sum; both parts of frequency 9 at the two blocks of three.
            {37, rader({.cycle = goodThomas(4, 9),
                        .even = goodThomas(factor(2).at(0, twoWithBoth),
                                           factor(nineBack).at(0, nineBackWithHead)),
                        .odd = cooleyTukey(
                            factor(6).oddRow(cooleyTukey(2, threeWithHead, conjugateRows)), 3,
                            conjugateRows)})},
            {38, goodThomas(19, 2)},
            {39, goodThomas(13, 3)},
            {40, goodThomas(8, 5)},
            {41,
             rader({.cycle = goodThomas(5, 8),
                    .even = goodThomas(5, 4),
                    .odd = cooleyTukey(factor(4).oddRow(cooleyTukey(2, 2, conjugateRows)), 5)})},
            {42, goodThomas(7, 6)},
            {43, rader({.cycle = goodThomas(goodThomas(2, 7), 3),
                        .even = goodThomas(3, 7),
                        .odd = goodThomas(3, 7)})},
            {44, goodThomas(11, 4)},
            {45, goodThomas(5, 9)},
            {46,
             goodThomas(2, factor(twentyThree(kHead, kHead)).at(1, twentyThree(kHead, kRounded)))},
            {47,
             rader({.cycle = goodThomas(
                        factor(twentyThree(kHead, kHead)).at(1, twentyThree(kHead, kRounded)), 2),
                    .even = twentyThreeBack,
                    .odd = twentyThreeBack})},
            {48, goodThomas(renumbered(Renumbered::What::Bins, 16), 3)},
            {49, cooleyTukey(7, 7)},
            {50, goodThomas(25, 2)},
            {51, goodThomas(renumbered(Renumbered::What::Samples, 17), 3)},
            {52, goodThomas(13, 4)},
            {53, rader({.cycle = goodThomas(4, 13),
                        .even = goodThomas(2, inverseRader({.even = goodThomas(3, 2),
                                                            .odd = cooleyTukey(2, 3),
                                                            .cycle = goodThomas(3, 4)})),
                        // both parts of frequency 13
                        .odd = cooleyTukey(
                            2, splitInverseRader({.even = goodThomas(3, 2),
                                                  .odd = goodThomas(2, 3),
                                                  .cycleEven = goodThomas(3, 2),
                                                  .cycleOdd = cooleyTukey(2, 3, conjugateRows),
                                                  .unrounded = kHead}))})},
            {54, goodThomas(2, 27)},
            {55, goodThomas(11, 5)},
            {56, goodThomas(7, 8)},
            {57, goodThomas(19, 3)},
            {58, goodThomas(2, 29)},
            {59,
             rader({.cycle = goodThomas(29, 2), .even = twentyNineBack, .odd = twentyNineBack})},
            {60, goodThomas(goodThomas(3, 5), 4)},
            {61, rader({.cycle = goodThomas(3, goodThomas(5, 4)),
                        .even = goodThomas(3, goodThomas(5, 2)),
                        .odd = cooleyTukey(2, goodThomas(3, 5))})},
            {62, goodThomas(factor(31).at(0, thirtyOne(threeWithHead)), 2)},
            {63, goodThomas(7, 9)},
            {64, cooleyTukey(16, four)},
        }};
}

}  // namespace

const Table& forwardPlans() {
    static const Table plans = table();
    return plans;
}

}  // namespace orvgen::realdft
