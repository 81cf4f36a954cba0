// SPDX-License-Identifier: MIT
#include "reach.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace orvgen::test {
namespace {

using kernelgen::Graph;
using kernelgen::Node;
using kernelgen::NodeId;
using kernelgen::Op;

// Every input but those that are never read, with the results that `isReached` says yes to.
template <class Find>
Reached forInputs(const ListedKernel& k, const Find& isReached) {
    Reached reached(k.srcCount, std::vector<bool>(k.dstCount, false));
    for (std::size_t i = 0; i < k.srcCount; ++i) {
        if (std::ranges::count(k.neverRead, i)) continue;
        isReached(i, reached[i]);
    }
    return reached;
}

template <class R>
std::vector<R> answer(const ListedKernel& k, const std::vector<R>& x) {
    std::vector<R> y(k.dstCount);
    if (k.call(x.data(), y.data(), 8) != 0) throw std::runtime_error(k.name + " refuses");
    return y;
}

template <class R>
Reached definitionOf(const ListedKernel& k) {
    constexpr R error = static_cast<R>(1e-3);
    return forInputs(k, [&](std::size_t i, std::vector<bool>& reached) {
        std::vector<R> x(k.srcCount + k.srcBeyond, R(0));
        x[i] = 1;
        const std::vector<R> y = answer(k, x);
        for (std::size_t o = 0; o < y.size(); ++o) reached[o] = std::abs(y[o]) > error;
    });
}

template <class R>
Reach kernelOf(const ListedKernel& k) {
    std::mt19937 engine(static_cast<unsigned>(k.length));
    std::uniform_real_distribution<R> between(R(0.5), R(1));
    std::vector<R> x(k.srcCount + k.srcBeyond);
    for (R& v : x) v = between(engine);
    const auto with = [&](R special, const auto& isOne) {
        return forInputs(k, [&](std::size_t i, std::vector<bool>& reached) {
            std::vector<R> one = x;
            one[i] = special;
            const std::vector<R> y = answer(k, one);
            for (std::size_t o = 0; o < y.size(); ++o) reached[o] = isOne(y[o]);
        });
    };
    const auto isNan = [](R v) { return std::isnan(v); };
    const auto isInfinite = [](R v) { return std::isinf(v); };
    constexpr R infinity = std::numeric_limits<R>::infinity();
    return {.nan = with(std::numeric_limits<R>::quiet_NaN(), isNan),
            .infinite = with(infinity, isInfinite),
            .undefined = with(infinity, isNan)};
}

// The inputs that each lane of each value is made of.
class Supports {
  public:
    Supports(const Graph& graph, std::size_t inputs) : graph_(graph), inputs_(inputs) {
        for (const Node& n : graph.nodes()) values_.push_back(lanesOf(n));
    }

    using Support = std::vector<bool>;
    const Support& of(NodeId id, int lane) const {
        return values_[static_cast<std::size_t>(id)][static_cast<std::size_t>(lane)];
    }

  private:
    using Value = std::vector<Support>;

    Value lanesOf(const Node& n) const {
        const int lanes = kernelgen::lanesOf(n.type);
        Value v(static_cast<std::size_t>(lanes), Support(inputs_, false));
        if (n.op == Op::Output) return v;
        for (int l = 0; l < lanes; ++l) {
            Support& support = v[static_cast<std::size_t>(l)];
            if (n.op == Op::Input) {
                const int at = n.index * lanes + l;
                if (at < static_cast<int>(inputs_)) support[static_cast<std::size_t>(at)] = true;
            } else if (n.op == Op::Pack) {
                const kernelgen::Lane& lane = graph_.lanes(n)[static_cast<std::size_t>(l)];
                support = of(lane.node, lane.lane);
            } else if (n.op != Op::Scale && n.op != Op::Zero) {
                support = of(n.a, n.op == Op::Swap ? 1 - l : l);
                if (n.op != Op::Add && n.op != Op::Sub) continue;
                const Support& other = of(n.b, l);
                for (std::size_t i = 0; i < inputs_; ++i) support[i] = support[i] || other[i];
            }
        }
        return v;
    }

    const Graph& graph_;
    std::size_t inputs_;
    std::vector<Value> values_;
};

}  // namespace

Reached reachByDefinition(const ListedKernel& k) {
    return k.single ? definitionOf<float>(k) : definitionOf<double>(k);
}

Reach reachOf(const ListedKernel& k) { return k.single ? kernelOf<float>(k) : kernelOf<double>(k); }

Reached reachByFlow(const ListedKernel& k) {
    const Graph graph = k.kernel().flow;
    const Supports supports(graph, k.srcCount);
    Reached reached(k.srcCount, std::vector<bool>(k.dstCount, false));
    const auto take = [&](int output, NodeId id, int lane) {
        for (std::size_t i = 0; i < k.srcCount; ++i)
            if (supports.of(id, lane)[i]) reached[i][static_cast<std::size_t>(output)] = true;
    };
    for (const Node& n : graph.nodes()) {
        if (n.op != Op::Output) continue;
        if (n.type == kernelgen::Type::F32Pair) {
            const auto& [element, re, im] = graph.pairOutput(n);
            take(2 * element, re.node, re.lane);
            take(2 * element + 1, im.node, im.lane);
            continue;
        }
        const int lanes = kernelgen::lanesOf(graph.node(n.a).type);
        for (int l = 0; l < lanes; ++l) take(n.index * lanes + l, n.a, l);
    }
    return reached;
}

long pairsIn(const Reached& reached) {
    long sum = 0;
    for (const auto& row : reached) sum += std::ranges::count(row, true);
    return sum;
}

}  // namespace orvgen::test
