// SPDX-License-Identifier: MIT
#include "plans.h"

namespace orvgen::realdft {

using namespace plan;

namespace {

// Parts of several lengths. A prime's own transform runs forward transforms of the real and of the
// imaginary parts of its bins first: eight, nine .. are these.

constexpr Unrounded kHead = Unrounded::Head;

Term withHead(int length) { return block(length, {.unrounded = kHead}); }
const Term direct11 = block(11);

const Factor fourWithOddRow = factor(4).oddRow(cooleyTukey(2, 2));
const Term eight = cooleyTukey(2, fourWithOddRow);
const Term complexNine = cooleyTukey(3, 3);
const Factor nineWithComplexRows = factor(9).complexRows(complexNine);

// The row of the real and of the imaginary parts: which head of its blocks goes on unrounded.
Term nine(const Term& re, const Term& im) { return cooleyTukey(3, factor(3).at(1, lanes(re, im))); }
const Term nineWithReHead = nine(withHead(3), 3);
const Term nineWithBothHeads = nine(withHead(3), withHead(3));

Term thirteen(const Term& threeOfTheFirstRow) {
    return inverseRader({.even = goodThomas(3, 2),
                         .odd = cooleyTukey(2, 3),
                         .cycle = goodThomas(factor(3).at(0, threeOfTheFirstRow), 4)});
}

Term nineteen(const Term& even) {
    return inverseRader({.even = even, .odd = nineWithReHead, .cycle = 18});
}

Term twentyThree(const Term& firstEleven, Unrounded head = Unrounded::None) {
    return inverseRader({.even = 11,
                         .odd = 11,
                         .cycle = goodThomas(factor(direct11).at(0, firstEleven), 2),
                         .unrounded = head});
}

Term twentyNine(const Term& firstSeven) {
    return inverseRader({.even = goodThomas(2, 7),
                         .odd = cooleyTukey(7, 2),
                         .cycle = goodThomas(factor(7).at(0, firstSeven), 4)});
}

Term thirtyOne(const Term& even) {
    return inverseRader({.even = even, .odd = goodThomas(3, 5), .cycle = goodThomas(2, 15)});
}

// The first factor runs first, on the half spectrum; the last one gives the samples. What is not
// named is a block.
Table commonTable() {
    const Term oddSixteen = cooleyTukey(eight, 2);
    const Term realPartOfThree = block(3, {.unrounded = Unrounded::RealPart});
    const Factor columnsOf27 = factor(3).at(1, realPartOfThree);

    // complex rows of thirteen points, in lanes
    const Term sixBackWithHead = goodThomas(factor(3).at(0, withHead(3)), 2);
    const Term thirteenInLanes =
        rader({.cycle = goodThomas(3, 4), .even = sixBackWithHead, .odd = goodThomas(3, 2)});
    const Term forwardThirteen =
        rader({.cycle = goodThomas(3, 4), .even = goodThomas(2, 3), .odd = cooleyTukey(2, 3)});
    const auto elevenBack = [](Unrounded head) {
        return inverseRader({.even = 5, .odd = 5, .cycle = goodThomas(2, 5), .unrounded = head});
    };
    const auto forwardTwentyThree = [&](Unrounded oddHead) {
        return rader(
            {.cycle = goodThomas(2, 11), .even = elevenBack(kHead), .odd = elevenBack(oddHead)});
    };
    const Term forwardTwentyNine =
        rader({.cycle = goodThomas(4, 7), .even = goodThomas(2, 7), .odd = cooleyTukey(2, 7)});
    const auto elevenOf22 = [](const Term& firstFive) {
        return inverseRader(
            {.even = 5, .odd = 5, .cycle = goodThomas(factor(5).at(0, firstFive), 2)});
    };

    return {
        plan::Transform::InverseReal,
        {
            {6, goodThomas(2, 3)},
            {8, cooleyTukey(fourWithOddRow, 2)},
            {9, cooleyTukey(3, 3)},
            {10, goodThomas(2, 5)},
            {11, elevenBack(Unrounded::None)},
            {12, goodThomas(3, 4)},
            {13, thirteen(3)},
            {14, goodThomas(2, 7)},
            {15, goodThomas(3, 5)},
            {16, cooleyTukey(factor(8).oddRow(cooleyTukey(4, 2)), 2)},
            {17, inverseRader({.even = eight, .odd = cooleyTukey(2, 4), .cycle = 16})},
            {18, goodThomas(2, 9)},
            {19, inverseRader({.even = nineWithReHead, .odd = nineWithReHead, .cycle = 18})},
            {20, goodThomas(5, 4)},
            {21, goodThomas(3, 7)},
            {22, goodThomas(factor(elevenOf22(5)).at(0, elevenOf22(withHead(5))), 2)},
            {23, twentyThree(direct11)},
            {24, goodThomas(factor(8).complexRows(lanes(eight)), 3)},
            {25, cooleyTukey(5, 5)},
            {26, goodThomas(2, 13)},
            {27, cooleyTukey(nineWithComplexRows, columnsOf27)},
            {28, goodThomas(4, 7)},
            {29, twentyNine(7)},
            {30, goodThomas(15, 2)},
            {31, thirtyOne(goodThomas(3, 5))},
            {32, cooleyTukey(factor(16).oddRow(oddSixteen), 2)},
            {33, goodThomas(3, 11)},
            {34, goodThomas(17, 2)},
            {35, goodThomas(5, 7)},
            {36, goodThomas(4, 9)},
            {37, inverseRader(
                     {.even = goodThomas(2, nineWithReHead),
                      .odd = cooleyTukey(3, factor(goodThomas(3, 2)).oddRow(cooleyTukey(2, 3))),
                      .cycle = goodThomas(nineWithComplexRows, 4)})},
            {38,
             goodThomas(2, factor(nineteen(nineWithBothHeads)).at(1, nineteen(nineWithReHead)))},
            {39, goodThomas(factor(thirteen(withHead(3))).complexRows(lanes(thirteenInLanes)), 3)},
            {40, goodThomas(5, 8)},
            {41, inverseRader({.even = goodThomas(4, 5),
                               .odd = cooleyTukey(5, fourWithOddRow),
                               .cycle = goodThomas(5, 8)})},
            {42, goodThomas(2, 21)},
            {43, inverseRader({.even = goodThomas(7, 3),
                               .odd = goodThomas(7, 3),
                               .cycle = goodThomas(goodThomas(3, 2), 7)})},
            {44, goodThomas(4, 11)},
            {45, goodThomas(5, 9)},
            {46, goodThomas(factor(23).at(0, twentyThree(withHead(11))), 2)},
            {47, inverseRader({.even = forwardTwentyThree(kHead),
                               .odd = forwardTwentyThree(Unrounded::None),
                               .cycle = goodThomas(twentyThree(direct11, kHead), 2)})},
            {48, goodThomas(factor(16).complexRows(cooleyTukey(2, lanes(eight))), 3)},
            {49, cooleyTukey(7, 7)},
            {50, goodThomas(25, 2)},
            {51, goodThomas(3, 17)},
            {52, goodThomas(factor(13).complexRows(lanes(thirteenInLanes)), 4)},
            {53, inverseRader(
                     {.even = goodThomas(forwardThirteen, 2),
                      .odd = cooleyTukey(forwardThirteen, 2),
                      .cycle = goodThomas(factor(13).complexRows(lanes(thirteenInLanes)), 4)})},
            {54, goodThomas(factor(27).at(0, cooleyTukey(nineWithComplexRows,
                                                         columnsOf27.at(2, realPartOfThree))),
                            2)},
            {55, goodThomas(5, 11)},
            {56, goodThomas(factor(8).complexRows(lanes(eight)), 7)},
            {57,
             goodThomas(3, factor(nineteen(nineWithBothHeads)).at(2, nineteen(nineWithReHead)))},
            {58, goodThomas(factor(29).at(0, twentyNine(withHead(7))), 2)},
            {59, inverseRader({.even = forwardTwentyNine,
                               .odd = forwardTwentyNine,
                               .cycle = goodThomas(2, twentyNine(withHead(7)))})},
            {60, goodThomas(factor(goodThomas(4, 3)).complexRows(goodThomas(4, 3)), 5)},
            {61, inverseRader({.even = goodThomas(3, goodThomas(2, 5)),
                               .odd = cooleyTukey(goodThomas(3, 5), 2),
                               .cycle = goodThomas(goodThomas(4, 3), 5)})},
            {62, goodThomas(factor(31).at(0, thirtyOne(goodThomas(
                                                 3, factor(5).at(1, lanes(withHead(5), 5))))),
                            2)},
            {63, goodThomas(nineWithComplexRows, 7)},
            {64, cooleyTukey(factor(32).oddRow(cooleyTukey(2, oddSixteen)), 2)},
        }};
}

}  // namespace

const Table& inversePlans(PackedFormat format) {
    static const Table common = commonTable();
    // From CCS the real terms of these two are summed in another order.
    const SumOrder byRoot{.cosinePairs = SumOrder::Pairs::PowersOfRoot};
    static const Table fromCcs(plan::Transform::InverseReal,
                               {{7, block(7, {.sums = byRoot})}, {49, cooleyTukey(7, 7)}}, &common);
    return format == PackedFormat::Ccs ? fromCcs : common;
}

}  // namespace orvgen::realdft
