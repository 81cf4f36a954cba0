// SPDX-License-Identifier: MIT
#include "small_flows.h"

namespace orvgen::test {

using kernelgen::Complex;
using kernelgen::Graph;
using kernelgen::Lane;
using kernelgen::NodeId;
using kernelgen::Value;

// 8 = 4 T 2: two four-point butterflies in two live lanes, a twiddle vector, a two-point butterfly.
kernelgen::Kernel smallLaneKernel(const kernelgen::KernelName& name) {
    Graph g(kernelgen::Arithmetic::SingleLanes);
    const NodeId zero = g.zero(kernelgen::Type::F32x4);
    const Lane empty{zero, 0};
    const auto packed = [&](const std::array<Lane, 4>& lanes) { return Value(g, g.pack(lanes)); };
    std::array<Complex<Value>, 4> z;
    for (int t = 0; t < 4; ++t) {
        const NodeId even = g.input(2 * t);
        const NodeId odd = g.input(2 * t + 1);
        z[static_cast<std::size_t>(t)] = {packed({Lane{even, 0}, Lane{odd, 0}, empty, empty}),
                                          packed({Lane{even, 1}, Lane{odd, 1}, empty, empty})};
    }
    g.stage("four-point butterflies");
    const auto a = z[0] + z[2];
    const auto b = z[1] + z[3];
    const auto c = z[0] - z[2];
    const auto d = z[1] - z[3];
    const std::array<Complex<Value>, 4> u{a + b, c + timesMinusI(d), a - b, c - timesMinusI(d)};
    std::array<Complex<Value>, 2> v;
    for (int l = 0; l < 2; ++l) {
        std::array<Lane, 4> re, im;
        for (std::size_t k = 0; k < 4; ++k) {
            re[k] = {u[k].re.id(), l};
            im[k] = {u[k].im.id(), l};
        }
        v[static_cast<std::size_t>(l)] = {packed(re), packed(im)};
    }
    g.stage("twiddles of order 8");
    std::array<kernelgen::Constant, 4> wr, wi;
    for (int k = 0; k < 4; ++k) {
        wr[static_cast<std::size_t>(k)] = kernelgen::cosTurn(k, 8);
        wi[static_cast<std::size_t>(k)] = -kernelgen::sinTurn(k, 8);
    }
    v[1] = {wr * v[1].re - wi * v[1].im, wi * v[1].re + wr * v[1].im};
    g.stage("two-point butterflies");
    const auto low = v[0] + v[1];
    const auto high = v[0] - v[1];
    for (int k = 0; k < 4; ++k) {
        g.output(k, Lane{low.re.id(), k}, Lane{low.im.id(), k});
        g.output(k + 4, Lane{high.re.id(), k}, Lane{high.im.id(), k});
    }
    return {name,  8,    "4 T 2",     kernelgen::ScaleRule::ForwardByN, kernelgen::Alignment::Twin,
            false, true, std::move(g)};
}

namespace {

std::size_t at(int i) { return static_cast<std::size_t>(i); }

// All values, beginning with number `first`; what comes at an odd place is taken off.
Value chain(const std::vector<Value>& values, int first) {
    const int n = static_cast<int>(values.size());
    Value sum = values[at(first)];
    for (int i = 1; i < n; ++i) {
        const Value& v = values[at((first + i) % n)];
        sum = i % 2 ? sum - v : sum + v;
    }
    return sum;
}

// Every result takes all values, and all of what was made of all of them: the first ones are wanted
// again when the second ones need registers.
std::vector<Value> crowded(const std::vector<Value>& values) {
    std::vector<Value> middle, results;
    const int n = static_cast<int>(values.size());
    for (int k = 0; k < n; ++k) middle.push_back(chain(values, k));
    for (int k = 0; k < n; ++k)
        results.push_back(chain(middle, k) + chain(values, (k + n / 2) % n));
    return results;
}

}  // namespace

kernelgen::Kernel crowdedRealKernel(const kernelgen::KernelName& name,
                                    kernelgen::Arithmetic arithmetic) {
    Graph g(arithmetic);
    std::vector<Value> x;
    for (int i = 0; i < 2 * kCrowd; ++i) x.emplace_back(g, g.input(i));
    std::vector<Value> sums, products;
    for (int i = 0; i < kCrowd; ++i) {
        sums.push_back(x[at(2 * i)] + x[at(2 * i + 1)]);
        products.push_back(kernelgen::cosTurn(i + 1, 128) * (x[at(2 * i)] - x[at(2 * i + 1)]));
    }
    const std::vector<Value> ofSums = crowded(sums), ofProducts = crowded(products);
    for (int k = 0; k < kCrowd; ++k) {
        g.output(2 * k, narrow(signStep(scaled(ofSums[at(k)]))).id());
        g.output(2 * k + 1, narrow(signStep(scaled(ofProducts[at(k)]))).id());
    }
    return {.name = name,
            .length = 2 * kCrowd,
            .method = "test flow",
            .scale = kernelgen::ScaleRule::InverseByN,
            .flow = std::move(g)};
}

namespace {

// Vectors of two complex elements, and results made of all of them.
template <class Results>
kernelgen::Kernel laneKernel(const kernelgen::KernelName& name, const Results& results) {
    Graph g(kernelgen::Arithmetic::SingleLanes);
    std::vector<Value> x;
    for (int i = 0; i < kLaneCrowd; ++i) {
        const NodeId a = g.input(2 * i), b = g.input(2 * i + 1);
        x.emplace_back(g, g.pack({Lane{a, 0}, Lane{a, 1}, Lane{b, 0}, Lane{b, 1}}));
    }
    std::vector<Value> sums;
    for (int i = 0; i < kLaneCrowd; ++i) sums.push_back(x[at(i)] + x[at((i + 3) % kLaneCrowd)]);
    const std::vector<Value> all = results(sums);
    for (int k = 0; k < kLaneCrowd; ++k) {
        const Value& y = all[at(k)];
        g.output(2 * k, Lane{y.id(), 0}, Lane{y.id(), 1});
        g.output(2 * k + 1, Lane{y.id(), 2}, Lane{y.id(), 3});
    }
    return {.name = name,
            .length = 2 * kLaneCrowd,
            .method = "test flow",
            .scale = kernelgen::ScaleRule::BothByN,
            .alignment = kernelgen::Alignment::Twin,
            .readsAllFirst = true,
            .flow = std::move(g)};
}

}  // namespace

kernelgen::Kernel crowdedLaneKernel(const kernelgen::KernelName& name) {
    return laneKernel(name, crowded);
}

kernelgen::Kernel streamingLaneKernel(const kernelgen::KernelName& name) {
    return laneKernel(name, [](const std::vector<Value>& sums) { return sums; });
}

kernelgen::Kernel zeroFirstKernel(const kernelgen::KernelName& name,
                                  kernelgen::Arithmetic arithmetic) {
    Graph g(arithmetic);
    std::vector<Value> x;
    for (int i = 0; i < 8; ++i) x.emplace_back(g, g.input(i));
    g.output(1, g.zero(g.elementType()));
    for (const int i : {0, 2, 3, 4, 5, 6, 7}) g.output(i, narrow(scaled(x[at(i)] + x[1])).id());
    return {.name = name, .length = 8, .method = "test flow", .flow = std::move(g)};
}

}  // namespace orvgen::test
