// SPDX-License-Identifier: MIT
#include "double_plans.h"

#include "realdft/plans.h"

namespace orvgen::dft {

using namespace plan;

namespace {

Table table() {
    // Real rows of 5 and 7 points are Rader blocks at some lengths: as many additions for 5, four
    // more for 7, and two products fewer. Complex rows stay direct there.
    const Term raderFive = rader({.cycle = 4, .even = 2, .odd = 2});
    const Term raderSeven = rader({.cycle = goodThomas(2, 3), .even = 3, .odd = 3});
    const Factor fiveByRader = factor(raderFive).complexRows(5);
    const Factor sevenByRader = factor(raderSeven).complexRows(7);

    const TwiddledJoin conjugateRows{.conjugateRows = true};
    const Term nineBack = cooleyTukey(3, 3);
    const Term elevenBack = inverseRader({.even = 5, .odd = 5, .cycle = goodThomas(2, 5)});
    const Term twentyThreeBack =
        inverseRader({.even = 11, .odd = 11, .cycle = goodThomas(elevenBack, 2)});
    const Term twentyNineBack = inverseRader(
        {.even = goodThomas(2, 7), .odd = cooleyTukey(2, 7), .cycle = goodThomas(4, 7)});

    return {
        plan::Transform::Real,
        {
            {10, goodThomas(raderFive, 2)},
            {17, rader({.cycle = 16,
                        .even = cooleyTukey(2, 4),
                        .odd = cooleyTukey(2, cooleyTukey(2, 2, conjugateRows))})},
            {19, rader({.cycle = goodThomas(2, 9), .even = nineBack, .odd = nineBack})},
            {29,
             rader(
                 {.cycle = goodThomas(4, 7), .even = goodThomas(2, 7), .odd = cooleyTukey(2, 7)})},
            {34, goodThomas(2, 17)},
            {35, goodThomas(raderFive, sevenByRader)},
            {37, rader({.cycle = goodThomas(4, 9),
                        .even = goodThomas(nineBack, 2),
                        .odd = cooleyTukey(9, 2)})},
            {38, goodThomas(19, 2)},
            {41, rader({.cycle = goodThomas(raderFive, 8),
                        .even = goodThomas(4, inverseRader({.even = 2, .odd = 2, .cycle = 4})),
                        .odd = cooleyTukey(goodThomas(5, 2), 2)})},
            {43, rader({.cycle = goodThomas(goodThomas(2, 7), 3),
                        .even = goodThomas(7, 3),
                        .odd = cooleyTukey(3, 7)})},
            {47,
             rader({.cycle = goodThomas(23, 2), .even = twentyThreeBack, .odd = twentyThreeBack})},
            {50, goodThomas(cooleyTukey(raderFive, fiveByRader), 2)},
            {51, goodThomas(renumbered(Renumbered::What::Samples, 17), 3)},
            {53, rader({.cycle = goodThomas(13, 4),
                        .even = goodThomas(inverseRader({.even = goodThomas(3, 2),
                                                         .odd = cooleyTukey(2, 3),
                                                         .cycle = goodThomas(4, 3)}),
                                           2),
                        .odd = cooleyTukey(13, 2)})},
            {57, goodThomas(19, 3)},
            {58, goodThomas(2, 29)},
            {59,
             rader({.cycle = goodThomas(29, 2), .even = twentyNineBack, .odd = twentyNineBack})},
            {60, goodThomas(goodThomas(3, fiveByRader), 4)},
            {61, rader({.cycle = goodThomas(3, goodThomas(5, 4)),
                        .even = goodThomas(5, goodThomas(3, 2)),
                        .odd = cooleyTukey(2, goodThomas(3, 5))})},
        },
        &realdft::forwardPlans()};
}

}  // namespace

const Table& doublePlans() {
    static const Table plans = table();
    return plans;
}

}  // namespace orvgen::dft
