// SPDX-License-Identifier: MIT
#include "single_lengths.h"

#include <algorithm>

#include "plan/table.h"

namespace orvgen::dft {

namespace {

using namespace plan;
using enum ComplexRader::Form;

struct Row {
    int length;
    Term plan;
    bool halvesOnly = false, registersOnly = false;
};

// Which factor runs first is fixed for every length, for it decides the rounding. At 18, 50 and 54
// column c begins with x[2 c], so that the two-point stage stands inside the odd part and the
// twiddles have the denominator 9, 25 and 27.
//
// A number stands for the row of that length. Primes from 7 up are made in another way inside a
// composite length than alone.
std::vector<Row> rows() {
    const Term thirteen = laneRader(13, {.offset = 1, .sineFolds = {2, 4}});
    const Term seventeen = laneRader(17);
    const Term nineteen = laneRader(19, {.sineFolds = {3, 6}});
    const Term twentyThree = laneRader(23);
    const Term twentyNine = laneRader(29);
    const Term thirtyOne = laneRader(31);
    const TwiddledJoin inColumns{.twiddleLanes = TwiddleLanes::Columns};
    return {
        {.length = 2, .plan = block(2), .registersOnly = true},
        {.length = 3, .plan = block(3), .registersOnly = true},
        {.length = 4, .plan = block(4), .registersOnly = true},
        {.length = 5, .plan = block(5)},
        {.length = 6, .plan = goodThomas(2, 3), .halvesOnly = true, .registersOnly = true},
        {.length = 7,
         .plan = complexRader(goodThomas(2, 3), Packed),
         .halvesOnly = true,
         .registersOnly = true},
        {.length = 8, .plan = cooleyTukey(4, 2), .registersOnly = true},
        {.length = 9, .plan = cooleyTukey(3, 3), .registersOnly = true},
        {.length = 10, .plan = goodThomas(5, 2), .halvesOnly = true},
        {.length = 11, .plan = complexRader(goodThomas(5, 2), SplitWithLone), .halvesOnly = true},
        {.length = 12, .plan = goodThomas(4, 3), .halvesOnly = true, .registersOnly = true},
        {.length = 13,
         .plan = complexRader(goodThomas(4, 3)),
         .halvesOnly = true,
         .registersOnly = true},
        {.length = 14, .plan = goodThomas(2, block(7))},
        {.length = 15, .plan = goodThomas(5, 3), .halvesOnly = true},
        {.length = 16, .plan = cooleyTukey(4, 4), .registersOnly = true},
        {.length = 17,
         .plan = complexRader(cooleyTukey(4, 4)),
         .halvesOnly = true,
         .registersOnly = true},
        {.length = 18, .plan = cooleyTukey(goodThomas(3, 2), 3, {.columns = {0, 2, 4}})},
        {.length = 19,
         .plan =
             complexRader(cooleyTukey(goodThomas(3, 2), 3, {.columns = {0, 4, 2}}), SplitWithLone),
         .halvesOnly = true},
        {.length = 20, .plan = goodThomas(4, 5), .halvesOnly = true},
        {.length = 21, .plan = goodThomas(block(7), 3)},
        {.length = 22, .plan = goodThomas(2, block(11))},
        {.length = 23, .plan = complexRader(goodThomas(2, block(11)), Packed), .halvesOnly = true},
        {.length = 24, .plan = cooleyTukey(4, goodThomas(3, 2))},
        {.length = 25, .plan = cooleyTukey(5, 5)},
        {.length = 26, .plan = goodThomas(thirteen, 2)},
        {.length = 27, .plan = cooleyTukey(9, 3)},
        {.length = 28, .plan = goodThomas(4, block(7))},
        {.length = 29, .plan = complexRader(goodThomas(4, block(7))), .halvesOnly = true},
        {.length = 30, .plan = goodThomas(10, 3)},
        {.length = 31,
         .plan = complexRader(goodThomas(goodThomas(5, 2), 3), SplitWithLone),
         .halvesOnly = true},
        {.length = 32, .plan = cooleyTukey(4, 8)},
        {.length = 33, .plan = goodThomas(block(11), 3)},
        {.length = 34, .plan = goodThomas(2, seventeen)},
        {.length = 35, .plan = goodThomas(5, block(7))},
        {.length = 36, .plan = goodThomas(4, 9)},
        {.length = 37, .plan = complexRader(goodThomas(4, cooleyTukey(3, 3))), .halvesOnly = true},
        {.length = 38, .plan = goodThomas(2, nineteen)},
        {.length = 39, .plan = goodThomas(thirteen, 3)},
        {.length = 40, .plan = cooleyTukey(10, 4)},
        {.length = 41, .plan = complexRader(cooleyTukey(goodThomas(5, 2), 4)), .halvesOnly = true},
        {.length = 42, .plan = goodThomas(goodThomas(block(7), 2), 3)},
        {.length = 43,
         .plan = complexRader(goodThomas(goodThomas(block(7), 2), 3), SplitWithLone),
         .halvesOnly = true},
        {.length = 44, .plan = goodThomas(4, block(11))},
        {.length = 45, .plan = cooleyTukey(15, 3)},
        {.length = 46, .plan = goodThomas(twentyThree, 2)},
        {.length = 47,
         .plan = bluestein(47, cooleyTukey(goodThomas(3, 4), 8),
                           cooleyTukey(8, goodThomas(4, 3), inColumns))},
        {.length = 48, .plan = cooleyTukey(4, goodThomas(3, 4))},
        {.length = 49, .plan = cooleyTukey(block(7), block(7))},
        {.length = 50, .plan = cooleyTukey(10, 5, {.columns = {0, 2, 4, 6, 8}})},
        {.length = 51, .plan = goodThomas(seventeen, 3)},
        {.length = 52, .plan = goodThomas(4, thirteen)},
        {.length = 53,
         .plan = complexRader(goodThomas(4, laneRader(13, {.offset = 1, .sineFolds = {4}}))),
         .halvesOnly = true},
        {.length = 54, .plan = cooleyTukey(goodThomas(2, 9), 3, {.columns = {0, 2, 4}})},
        {.length = 55, .plan = goodThomas(5, block(11))},
        {.length = 56, .plan = cooleyTukey(goodThomas(block(7), 2), 4)},
        {.length = 57, .plan = goodThomas(nineteen, 3)},
        {.length = 58, .plan = goodThomas(2, twentyNine)},
        {.length = 59, .plan = bluestein(59, cooleyTukey(8, 16), cooleyTukey(16, 8, inColumns))},
        {.length = 60, .plan = cooleyTukey(4, 15)},
        {.length = 61, .plan = complexRader(goodThomas(4, cooleyTukey(5, 3))), .halvesOnly = true},
        {.length = 62, .plan = goodThomas(thirtyOne, 2)},
        {.length = 63, .plan = goodThomas(9, block(7))},
        {.length = 64, .plan = cooleyTukey(8, 8)},
    };
}

class Lengths {
  public:
    Lengths() : rows_(rows()), plans_(plan::Transform::Complex, terms(rows_)) {}

    SingleLength operator[](int length) const {
        const auto row = std::ranges::find(rows_, length, &Row::length);
        return {.plan = plans_.plan(length),
                .halvesOnly = row->halvesOnly,
                .registersOnly = row->registersOnly};
    }

  private:
    static std::vector<plan::Row> terms(const std::vector<Row>& rows) {
        std::vector<plan::Row> list;
        for (const Row& row : rows) list.push_back({row.length, row.plan});
        return list;
    }

    std::vector<Row> rows_;
    Table plans_;
};

}  // namespace

SingleLength singleLength(int length) {
    static const Lengths lengths;
    return lengths[length];
}

}  // namespace orvgen::dft
