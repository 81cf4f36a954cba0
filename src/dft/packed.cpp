#include "packed.h"

#include <stdexcept>

#include "butterflies.h"
#include "embedded_rader.h"

namespace orvgen::dft {

namespace {

using FourConstants = std::array<Constant, 4>;

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

Points PackedJoins::product(const ComplexConstants& w, const Points& z) {
    if (z.size() == 4) return Joins::product(w, z);
    if (z.size() != 2) throw std::logic_error("two numbers fill a packed vector");
    const Value v = lanes().pack({z[0].re, z[0].im, z[1].re, z[1].im});
    const Value exchanged = lanes().pack({z[0].im, z[0].re, z[1].im, z[1].re});
    const Value y = FourConstants{w[0].re, w[0].re, w[1].re, w[1].re} * v +
                    FourConstants{-w[0].im, w[0].im, -w[1].im, w[1].im} * exchanged;
    return {{lane(y, 0), lane(y, 1)}, {lane(y, 2), lane(y, 3)}};
}

Vectors PackedJoins::runBlock(const Vectors& z) {
    return z.size() == 13 ? nestedRader13(direction(), z) : Joins::runBlock(z);
}

std::vector<Points> PackedJoins::runRemainder(const Part& part, const std::vector<Points>& inputs) {
    if (part->join != Join::None) return runSplit(*part, inputs);
    std::vector<Points> outputs;
    // A four-point butterfly needs a sign in pairs, and none by itself.
    const bool paired = part->length != 4 || isTwiddled();
    std::size_t done = 0;
    if (paired && inputs.size() >= 2) {
        outputs = runPair({inputs[0], inputs[1]});
        done = 2;
    }
    for (; done < inputs.size(); ++done) {
        if (part->length == 2)
            outputs.push_back(runLoneTwo(inputs[done]));
        else if (part->length == 4)
            outputs.push_back(runLoneFour(inputs[done]));
        else
            throw std::logic_error("no form for a lone transform of this length");
    }
    return outputs;
}

std::vector<Points> PackedJoins::runPair(const std::vector<Points>& inputs) {
    const std::size_t length = inputs[0].size();
    std::vector<Pair> z;
    for (std::size_t n = 0; n < length; ++n) {
        const Point &x = inputs[0][n], &y = inputs[1][n];
        z.emplace_back(lanes(), lanes().pack({x.re, x.im, y.re, y.im}), isTwiddled());
    }
    std::vector<Points> outputs(2);
    for (const Pair& y : butterfly(direction(), z)) {
        outputs[0].push_back({lane(y.value(), 0), lane(y.value(), 1)});
        outputs[1].push_back({lane(y.value(), 2), lane(y.value(), 3)});
    }
    return outputs;
}

Value PackedJoins::half(const Point& z, const Points& others, std::size_t which) {
    if (others.empty()) return lanes().pack({z.re, z.im});
    return lanes().pack({z.re, z.im, others[which].re, others[which].im});
}

Points PackedJoins::runLoneTwo(const Points& z) {
    const Value sum = half(z[0], companion_.sum, 0) + half(z[1], companion_.sum, 1);
    const Value difference =
        half(z[0], companion_.difference, 0) - half(z[1], companion_.difference, 1);
    if (companion_.sumResult != nullptr) *companion_.sumResult = {lane(sum, 2), lane(sum, 3)};
    if (companion_.differenceResult != nullptr)
        *companion_.differenceResult = {lane(difference, 2), lane(difference, 3)};
    return {{lane(sum, 0), lane(sum, 1)}, {lane(difference, 0), lane(difference, 1)}};
}

// (z0, z1) +- (z2, z3) give (a, b) and (c, d), and then (a, c) +- (b, d exchanged) all parts of the
// four outputs: the turn of d needs no sign, because the parts of outputs 1 and 3 trade places.
Points PackedJoins::runLoneFour(const Points& z) {
    const Value x = lanes().pack({z[0].re, z[0].im, z[1].re, z[1].im});
    const Value y = lanes().pack({z[2].re, z[2].im, z[3].re, z[3].im});
    const Value ab = x + y, cd = x - y;
    const Value ac = lanes().pack({lane(ab, 0), lane(ab, 1), lane(cd, 0), lane(cd, 1)});
    const Value bd = lanes().pack({lane(ab, 2), lane(ab, 3), lane(cd, 3), lane(cd, 2)});
    const Value plus = ac + bd, minus = ac - bd;
    const Point cMinusId{lane(plus, 2), lane(minus, 3)};
    const Point cPlusId{lane(minus, 2), lane(plus, 3)};
    const bool forward = direction() == Direction::Forward;
    return {{lane(plus, 0), lane(plus, 1)},
            forward ? cMinusId : cPlusId,
            {lane(minus, 0), lane(minus, 1)},
            forward ? cPlusId : cMinusId};
}

}  // namespace orvgen::dft
