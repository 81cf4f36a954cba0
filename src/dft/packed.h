// SPDX-License-Identifier: MIT
// The packed form of the Rader kernels: what is left over of a stage, without empty lanes.
//
// Two sub-transforms share one vector (re, im, re', im'). A sum takes one operation where the split
// form takes two on half empty vectors. A turn by a quarter exchanges neighbours and wants a sign
// on every other lane; there are no sign masks, so the sign stands in the constants of the products
// that the turn belongs to. Beside twiddles, where stages of any radix meet, it is a product by
// (1, -1, 1, -1).
#pragma once

#include <optional>

#include "lane_walk.h"

namespace orvgen::dft {

class Pair {
  public:
    Pair() = default;
    Pair(Lanes& lanes, const Value& value, bool turnsByProduct)
        : lanes_(&lanes), value_(value), turnsByProduct_(turnsByProduct) {}

    const Value& value() const { return value_; }
    Lanes& lanes() const { return *lanes_; }
    bool turnsByProduct() const { return turnsByProduct_; }
    Pair with(const Value& v) const { return {*lanes_, v, turnsByProduct_}; }
    // (im, re, im', re')
    Value exchanged() const;

    friend Pair operator+(const Pair& a, const Pair& b) { return a.with(a.value_ + b.value_); }
    friend Pair operator-(const Pair& a, const Pair& b) { return a.with(a.value_ - b.value_); }
    friend Pair operator*(const Constant& c, const Pair& a) { return a.with(c * a.value_); }

  private:
    Lanes* lanes_ = nullptr;
    Value value_;
    bool turnsByProduct_ = false;
};

inline Pair narrow(const Pair& a) { return a; }
Pair timesI(const Pair& a);
Pair timesMinusI(const Pair& a);
Pair turnedSum(Direction direction, const std::vector<Constant>& c, const std::vector<Pair>& d);
Pair turnedDirectSum(Direction direction, const std::vector<Constant>& c,
                     const std::vector<Pair>& d);

// Leftovers that leave no lane empty, but for one lone two-point transform. Transforms of several
// stages come apart, those of one stage pair up.
class PackedPairs final : public Leftovers {
  public:
    PackedPairs(Lanes& lanes, Direction direction) : lanes_(lanes), direction_(direction) {}

    bool comeApart(std::size_t /*count*/) const override { return true; }
    std::vector<Points> run(const plan::PlanPtr& plan, const std::vector<Points>& inputs,
                            Standing standing) override;
    Points product(const ComplexConstants& w, const Points& z) override;

    // What a lone two-point transform (z0, z1) takes along in the other half of its vectors:
    // (z0, a) + (z1, b) and (z0, a) - (z1, b), each with numbers of its own or with zeros.
    struct Passengers {
        std::optional<std::array<Point, 2>> ofSum = {}, ofDifference = {};
    };
    void takeAlong(const Passengers& passengers) { passengers_ = passengers; }
    // a + b and a - b, once the transform has run.
    const Point& sum() const { return sum_.value(); }
    const Point& difference() const { return difference_.value(); }

  private:
    std::vector<Points> runPair(const std::vector<Points>& inputs, Standing standing);
    Points runLoneTwo(const Points& z);
    Points runLoneFour(const Points& z);

    Lanes& lanes_;
    Direction direction_;
    Passengers passengers_;
    std::optional<Point> sum_, difference_;
};

}  // namespace orvgen::dft
