// SPDX-License-Identifier: MIT
#include "rader.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "flows/number_theory.h"
#include "kernelgen/real.h"
#include "packed.h"
#include "plan/notation.h"

namespace orvgen::dft {

namespace {

using kernelgen::ExactReal;
using kernelgen::Real;

// g^exponent modulo p, g the smallest primitive root.
std::size_t power(std::size_t p, std::size_t exponent) {
    const long g = flows::smallestRoot(static_cast<long>(p));
    return static_cast<std::size_t>(
        flows::powerModulo(g, static_cast<long>(exponent % (p - 1)), static_cast<long>(p)));
}

}  // namespace

ComplexConstants raderConstants(Direction direction, std::size_t p) {
    const std::size_t L = p - 1;
    ComplexConstants B;
    for (std::size_t k = 0; k < L; ++k) {
        Real re = 0, im = 0;
        for (std::size_t r = 0; r < L; ++r) {
            const ComplexConstant c = unitRoot(direction, power(p, r), p);
            const ComplexConstant e = unitRoot(Direction::Forward, k * r % L, L);
            re += c.re.exact().value * e.re.exact().value - c.im.exact().value * e.im.exact().value;
            im += c.re.exact().value * e.im.exact().value + c.im.exact().value * e.re.exact().value;
        }
        const std::string name = "B" + std::to_string(p) + "[" + std::to_string(k) + "]";
        ComplexConstant b{{ExactReal{re / L}, "re " + name}, {ExactReal{im / L}, "im " + name}};
        // B[0] is real; B[L/2] is real where p = 1 modulo 4, and imaginary otherwise.
        if (k == 0) b.re = -kernelgen::ratio(1, static_cast<long>(L));
        if (k == 0 || (2 * k == L && p % 4 == 1)) b.im = 0;
        if (2 * k == L && p % 4 == 3) b.re = 0;
        B.push_back(b);
    }
    return B;
}

namespace {

using Form = plan::ComplexRader::Form;

// The flow of one kernel. In the split form four numbers of the cycle's spectrum stand in a pair of
// vectors. In the packed form (7 and 23, whose cycle ends in two transforms) two numbers stand in
// one vector.
//
// x[0] takes part in the first two numbers only, A[0] and C[0], which share their vectors with
// others: both are brought into vectors of their own by products with 1 and 0.
//
// A cycle of 2 (2 j + 1) points has a lone two-point transform in both halves, with half a vector
// to spare. There x[0] is brought along (packed form, first half), and x[0] + A[0] is formed
// (second half).
class Rader {
  public:
    Rader(Lanes& lanes, const plan::ComplexRader& plan, Direction direction, const Points& x)
        : lanes_(lanes), plan_(plan), direction_(direction), x_(x), L_(x.size() - 1) {}

    Points run();

  private:
    Points forwardCycle();
    void isolate(const Points& A);
    Points multiply(const Points& A);
    Points inverseCycle(const Points& C);
    std::vector<std::vector<std::size_t>> groups(const Points& A) const;
    Vector x0InFirstLane();
    Points packedFirstProduct(const Points& A, const ComplexConstants& B);

    bool isPacked() const { return plan_.form == Form::Packed; }
    Lane lane(const Value& v, std::size_t i) const { return laneOf(v, i); }

    Lanes& lanes_;
    const plan::ComplexRader& plan_;
    Direction direction_;
    const Points& x_;
    std::size_t L_;
    Point x0At_;  // x[0] in two lanes of a vector of its own
    Point a0At_;  // A[0] likewise, or its parts in the first lanes of two vectors
    Point X0_;
};

Points Rader::forwardCycle() {
    Points a;
    for (std::size_t q = 0; q < L_; ++q) a.push_back(x_[power(x_.size(), L_ - q)]);
    lanes_.graph().stage("cycle of " + std::to_string(L_) +
                         " points: " + plan::notation(*plan_.cycle));
    PackedPairs leftovers(lanes_, Direction::Forward);
    LaneWalk walk(lanes_, Direction::Forward, leftovers);
    if (!isPacked()) {
        const Points A = walk.run(plan_.cycle, a);
        // x[0] comes into the registers with x[1].
        const Value x0 =
            FourConstants{1, 1, 0, 0} * lanes_.pack({x_[0].re, x_[0].im, x_[1].re, x_[1].im});
        x0At_ = {lane(x0, 0), lane(x0, 1)};
        return A;
    }
    const Value none(lanes_.graph(), lanes_.graph().zero(kernelgen::Type::F32x4));
    const std::array<Point, 2> x0AndZero{x_[0], {lane(none, 2), lane(none, 3)}};
    leftovers.takeAlong({.ofSum = x0AndZero, .ofDifference = x0AndZero});
    const Points A = walk.run(plan_.cycle, a);
    const Value x0 =
        FourConstants{0, 0, 1, 1} * Value(lanes_.graph(), leftovers.difference().re.node);
    x0At_ = {lane(x0, 2), lane(x0, 3)};
    return A;
}

Vector Rader::x0InFirstLane() { return lanes_.gather({x0At_}); }

void Rader::isolate(const Points& A) {
    lanes_.graph().stage("X[0]");
    if (A[0].re.lane != 0) throw std::logic_error("A[0] stands in the first lane");
    const Value re(lanes_.graph(), A[0].re.node), im(lanes_.graph(), A[0].im.node);
    if (isPacked()) {
        const Value a0 = FourConstants{1, 1, 0, 0} * re;
        a0At_ = {lane(a0, 0), lane(a0, 1)};
        return;
    }
    const FourConstants first{1, 0, 0, 0};
    const Vector a0{first * re, first * im};
    a0At_ = lanes_.at(a0, 0);
    if (plan_.form == Form::Split) X0_ = lanes_.at(x0InFirstLane() + a0, 0);
}

// C[0] and C[L/2], one vector: the imaginary part of B[0] is zero, and x[0] takes the place of the
// product with it.
Points Rader::packedFirstProduct(const Points& A, const ComplexConstants& B) {
    const std::size_t m = L_ / 2;
    const Value v = lanes_.pack({A[0].re, A[0].im, A[m].re, A[m].im});
    const Value exchanged = lanes_.pack({A[0].im, A[0].re, A[m].im, A[m].re});
    const Value real = FourConstants{B[0].re, B[0].re, B[m].re, B[m].re} * v;
    const Value imaginary = FourConstants{0, 0, -B[m].im, B[m].im} * exchanged;
    const Value C =
        real + lanes_.pack({x0At_.re, x0At_.im, lane(imaginary, 2), lane(imaginary, 3)});
    return {{lane(C, 0), lane(C, 1)}, {lane(C, 2), lane(C, 3)}};
}

// The numbers of the spectrum, four or two at a time as they stand together in vectors, in the
// order of their lanes; numbers that stand alone pair up.
std::vector<std::vector<std::size_t>> Rader::groups(const Points& A) const {
    std::map<std::pair<kernelgen::NodeId, kernelgen::NodeId>, std::vector<std::size_t>> byVector;
    for (std::size_t k = 0; k < L_; ++k) byVector[{A[k].re.node, A[k].im.node}].push_back(k);
    std::vector<std::vector<std::size_t>> result;
    std::vector<std::size_t> alone;
    for (auto& [vector, group] : byVector) {
        std::ranges::sort(group, {}, [&](std::size_t k) { return A[k].re.lane; });
        if (group.size() == 1)
            alone.push_back(group[0]);
        else
            result.push_back(group);
    }
    for (std::size_t i = 0; i < alone.size(); i += 2) result.push_back({alone[i], alone.at(i + 1)});
    return result;
}

Points Rader::multiply(const Points& A) {
    lanes_.graph().stage("products by the spectrum of the roots");
    const ComplexConstants B = raderConstants(direction_, x_.size());
    PackedPairs leftovers(lanes_, Direction::Forward);
    LaneWalk walk(lanes_, Direction::Forward, leftovers);
    Points C(L_);
    for (const std::vector<std::size_t>& group : groups(A)) {
        ComplexConstants w;
        Points z;
        for (const std::size_t k : group) {
            w.push_back(B[k]);
            z.push_back(A[k]);
        }
        const bool hasFirst = group[0] == 0;
        const Points c = hasFirst && isPacked() ? packedFirstProduct(A, B) : walk.product(w, z);
        // In the split form x[0] is added to the vectors that C[0] stands in.
        Points sum = c;
        if (hasFirst && !isPacked()) sum = lanes_.scatter(lanes_.gather(c) + x0InFirstLane(), 4);
        for (std::size_t i = 0; i < group.size(); ++i) C[group[i]] = sum[i];
    }
    return C;
}

Points Rader::inverseCycle(const Points& C) {
    lanes_.graph().stage("back: " + plan::notation(*plan_.back));
    PackedPairs leftovers(lanes_, Direction::Inverse);
    LaneWalk walk(lanes_, Direction::Inverse, leftovers);
    if (plan_.form == Form::Split) return walk.run(plan_.back, C);
    leftovers.takeAlong({.ofSum = {{x0At_, a0At_}}});
    const Points z = walk.run(plan_.back, C);
    X0_ = leftovers.sum();
    return z;
}

Points Rader::run() {
    const Points A = forwardCycle();
    isolate(A);
    const Points z = inverseCycle(multiply(A));
    Points X(x_.size());
    X[0] = X0_;
    for (std::size_t r = 0; r < L_; ++r) X[power(x_.size(), r)] = z[r];
    return X;
}

}  // namespace

Points rader(Lanes& lanes, const plan::ComplexRader& plan, Direction direction, const Points& x) {
    return Rader(lanes, plan, direction, x).run();
}

}  // namespace orvgen::dft
