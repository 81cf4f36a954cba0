// SPDX-License-Identifier: MIT
// The graph of a transform taken apart into real numbers: every lane of every value, once, with the
// operation that makes it. Batches compute these, each in a vector of its own.
//
// Signs move into the next sum or constant, and a product by 1 or -1 of a computed value is left
// out: both are exact in every rounding mode, and FTZ and DAZ treat the factor as they treat the
// product. Nothing else is simplified.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "graph.h"
#include "lower_wide.h"

namespace orvgen::kernelgen {

// One real number that the transform computes.
struct Scalar {
    enum class Kind : std::uint8_t { Input, Zero, Add, Sub, Mul, Scale, Negate, Widen, Narrow };
    Kind kind;
    bool isDouble = false;
    int a = -1, b = -1;
    int slot = 0;              // of an input
    double constant = 0;       // of a product
    std::string formula = {};  // of the constant
    int stage = 0;
};

// A number with a minus sign that is still to be taken.
struct Signed {
    int value = -1;
    bool negative = false;
    Signed operator-() const { return {value, !negative}; }
};

class Scalars {
  public:
    Scalars(const Graph& graph, const WideOptions& options);

    struct Output {
        int slot;
        int value;
        int stage;
    };
    const std::vector<Scalar>& list() const { return list_; }
    const std::vector<Output>& outputs() const { return outputs_; }

  private:
    using Kind = Scalar::Kind;
    using Key = std::tuple<Kind, bool, int, int, int, std::uint64_t>;

    const Scalar& at(int i) const { return list_[static_cast<std::size_t>(i)]; }
    int intern(Scalar s);
    int plain(Signed s);
    Signed input(int element, int lane, int lanes, bool isDouble);
    Signed zero(bool isDouble);
    Signed sum(Signed x, Signed y);
    Signed product(Signed x, double value, std::string formula, bool isDouble);
    int scaled(Signed x, bool isDouble);

    void expand(std::size_t i);
    Signed expandLane(const Node& n, int l);
    void output(const Node& n);
    bool isZero(Signed x) const { return at(x.value).kind == Kind::Zero; }
    bool isNeeded(Signed x) const {
        const auto i = static_cast<std::size_t>(x.value);
        return i < needed_.size() && needed_[i];
    }
    Signed laneResult(Signed computed, std::optional<Signed> exact);
    Signed laneSum(Signed x, Signed y);
    Signed laneProduct(Signed x, Signed computed);
    using Lanes = std::array<Signed, 4>;  // of a vector of the single kernel
    Lanes loadedLanes(const Instruction& i);
    void addIdleLanes();
    std::vector<bool> withOperands(const std::vector<int>& numbers) const;
    void dropUnused();

    const Graph& graph_;
    const WideOptions& options_;
    std::vector<std::vector<Signed>> values_;  // by node and lane
    std::vector<Scalar> list_;
    std::vector<Output> outputs_;
    std::vector<bool> needed_;  // for a result
    std::vector<int> kept_;     // for a result or for the exceptions that they may raise
    std::map<Key, int> interned_;
    int stage_ = 0;
};

}  // namespace orvgen::kernelgen
