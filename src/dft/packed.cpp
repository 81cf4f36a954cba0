// SPDX-License-Identifier: MIT
#include "packed.h"

#include <stdexcept>

#include "butterflies.h"

namespace orvgen::dft {

namespace {

Lane lane(const Value& v, int i) { return laneOf(v, static_cast<std::size_t>(i)); }

Pair turnedByProduct(const Pair& a, int sign) {
    const FourConstants signs{sign, -sign, sign, -sign};
    return a.with(signs * a.exchanged());
}

}  // namespace

Value Pair::exchanged() const {
    return lanes_->pack({lane(value_, 1), lane(value_, 0), lane(value_, 3), lane(value_, 2)});
}

// i (re, im) = (-im, re)
Pair timesI(const Pair& a) { return turnedByProduct(a, -1); }
Pair timesMinusI(const Pair& a) { return turnedByProduct(a, 1); }

Pair turnedSum(Direction direction, const std::vector<Constant>& c, const std::vector<Pair>& d) {
    if (d[0].turnsByProduct()) {
        Pair sum = c[0] * d[0];
        for (std::size_t j = 1; j < d.size(); ++j) sum = sum + c[j] * d[j];
        return turned(direction, sum);
    }
    Value sum;
    for (std::size_t j = 0; j < d.size(); ++j) {
        const Constant re = direction == Direction::Forward ? c[j] : -c[j];
        const Value term = FourConstants{re, -re, re, -re} * d[j].exchanged();
        sum = j == 0 ? term : sum + term;
    }
    return d[0].with(sum);
}

// Real and imaginary parts in the order of their own signs: term t of the sum takes the t-th of
// each order.
Pair turnedDirectSum(Direction direction, const std::vector<Constant>& c,
                     const std::vector<Pair>& d) {
    std::vector<Constant> re, im;
    for (const Constant& value : c) {
        re.push_back(direction == Direction::Forward ? value : -value);
        im.push_back(-re.back());
    }
    const std::vector<std::size_t> a = firstPositiveFirst(re), b = firstPositiveFirst(im);
    Value sum;
    for (std::size_t t = 0; t < d.size(); ++t) {
        const Value x = d[a[t]].value(), y = d[b[t]].value();
        const Value exchanged = d[0].lanes().pack({lane(x, 1), lane(y, 0), lane(x, 3), lane(y, 2)});
        const Value term = FourConstants{re[a[t]], im[b[t]], re[a[t]], im[b[t]]} * exchanged;
        sum = t == 0 ? term : sum + term;
    }
    return d[0].with(sum);
}

Points PackedPairs::product(const ComplexConstants& w, const Points& z) {
    if (z.size() != 2) throw std::logic_error("two numbers fill a packed vector");
    const Value v = lanes_.pack({z[0].re, z[0].im, z[1].re, z[1].im});
    const Value exchanged = lanes_.pack({z[0].im, z[0].re, z[1].im, z[1].re});
    const Value y = FourConstants{w[0].re, w[0].re, w[1].re, w[1].re} * v +
                    FourConstants{-w[0].im, w[0].im, -w[1].im, w[1].im} * exchanged;
    return {{lane(y, 0), lane(y, 1)}, {lane(y, 2), lane(y, 3)}};
}

std::vector<Points> PackedPairs::run(const plan::PlanPtr& plan, const std::vector<Points>& inputs,
                                     Standing standing) {
    std::vector<Points> outputs;
    // A four-point butterfly needs a sign in pairs, and none by itself.
    const bool paired = plan->length != 4 || standing == Standing::BesideTwiddles;
    std::size_t done = 0;
    if (paired && inputs.size() >= 2) {
        outputs = runPair({inputs[0], inputs[1]}, standing);
        done = 2;
    }
    for (; done < inputs.size(); ++done) {
        if (plan->length == 2)
            outputs.push_back(runLoneTwo(inputs[done]));
        else if (plan->length == 4)
            outputs.push_back(runLoneFour(inputs[done]));
        else
            throw std::logic_error("no form for a lone transform of this length");
    }
    return outputs;
}

std::vector<Points> PackedPairs::runPair(const std::vector<Points>& inputs, Standing standing) {
    const std::size_t length = inputs[0].size();
    std::vector<Pair> z;
    for (std::size_t n = 0; n < length; ++n) {
        const Point &x = inputs[0][n], &y = inputs[1][n];
        z.emplace_back(lanes_, lanes_.pack({x.re, x.im, y.re, y.im}),
                       standing == Standing::BesideTwiddles);
    }
    std::vector<Points> outputs(2);
    for (const Pair& y : butterfly(direction_, z)) {
        outputs[0].push_back({lane(y.value(), 0), lane(y.value(), 1)});
        outputs[1].push_back({lane(y.value(), 2), lane(y.value(), 3)});
    }
    return outputs;
}

Points PackedPairs::runLoneTwo(const Points& z) {
    const auto operand = [&](std::size_t i, const auto& passengers) {
        if (!passengers) return lanes_.pack({z[i].re, z[i].im});
        return lanes_.pack({z[i].re, z[i].im, (*passengers)[i].re, (*passengers)[i].im});
    };
    const Value sum = operand(0, passengers_.ofSum) + operand(1, passengers_.ofSum);
    const Value difference =
        operand(0, passengers_.ofDifference) - operand(1, passengers_.ofDifference);
    sum_ = {lane(sum, 2), lane(sum, 3)};
    difference_ = {lane(difference, 2), lane(difference, 3)};
    return {{lane(sum, 0), lane(sum, 1)}, {lane(difference, 0), lane(difference, 1)}};
}

// (z0, z1) +- (z2, z3) give (a, b) and (c, d), and then (a, c) +- (b, d exchanged) all parts of the
// four outputs: the turn of d needs no sign, because the parts of outputs 1 and 3 trade places.
Points PackedPairs::runLoneFour(const Points& z) {
    const Value x = lanes_.pack({z[0].re, z[0].im, z[1].re, z[1].im});
    const Value y = lanes_.pack({z[2].re, z[2].im, z[3].re, z[3].im});
    const Value ab = x + y, cd = x - y;
    const Value ac = lanes_.pack({lane(ab, 0), lane(ab, 1), lane(cd, 0), lane(cd, 1)});
    const Value bd = lanes_.pack({lane(ab, 2), lane(ab, 3), lane(cd, 3), lane(cd, 2)});
    const Value plus = ac + bd, minus = ac - bd;
    const Point cMinusId{lane(plus, 2), lane(minus, 3)};
    const Point cPlusId{lane(minus, 2), lane(plus, 3)};
    const bool forward = direction_ == Direction::Forward;
    return {{lane(plus, 0), lane(plus, 1)},
            forward ? cMinusId : cPlusId,
            {lane(minus, 0), lane(minus, 1)},
            forward ? cPlusId : cMinusId};
}

}  // namespace orvgen::dft
