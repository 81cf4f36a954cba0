// SPDX-License-Identifier: MIT
// Complex numbers in lanes: the split form in which the binary32 kernels keep their data.
//
// A vector of four lanes carries the same position of four sub-transforms, real parts in one
// vector and imaginary parts in another, so that a butterfly is written once and runs for four.
// Between two stages a number is known by where its parts stand; which numbers share a vector is
// chosen anew when the next stage gathers them.
#pragma once

#include <vector>

#include "flows/direction.h"
#include "kernelgen/graph.h"
#include "kernelgen/value.h"

namespace orvgen::dft {

using flows::Direction;
using kernelgen::Complex;
using kernelgen::Constant;
using kernelgen::Graph;
using kernelgen::Lane;
using kernelgen::Value;

// Up to four complex numbers, one per lane.
using Vector = Complex<Value>;
using Vectors = std::vector<Vector>;

// One complex number: the lanes that its parts stand in. An absent one is a zero that takes no
// part.
struct Point {
    Lane re, im;
    bool isAbsent() const { return re.node == kernelgen::kNone; }
};
using Points = std::vector<Point>;

class Lanes {
  public:
    explicit Lanes(Graph& graph) : graph_(&graph) {}

    Graph& graph() const { return *graph_; }

    // The elements of src, and of dst.
    Points load(std::size_t length);
    void store(const Points& results);

    // One to four numbers in the lanes from 0 up; the lanes behind them are zero.
    Vector gather(const Points& numbers);
    Point at(const Vector& vector, std::size_t lane) const;
    // The first `count` lanes.
    Points scatter(const Vector& vector, std::size_t count) const;

    // Four lanes of any values. Lanes that stand so in a vector already are that vector.
    Value pack(const std::vector<Lane>& lanes);
    // A lane that holds zero whatever the input.
    bool isZero(const Lane& lane) const;

  private:
    Graph* graph_;
};

// The lane of a value that carries no pending sign.
Lane laneOf(const Value& value, std::size_t lane);

}  // namespace orvgen::dft
