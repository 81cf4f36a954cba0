// SPDX-License-Identifier: MIT
#include "small_flows.h"

namespace orvgen::test {

using kernelgen::Complex;
using kernelgen::Graph;
using kernelgen::Lane;
using kernelgen::NodeId;
using kernelgen::Value;

// 8 = 4 T 2: two four-point butterflies in two live lanes, a twiddle vector, a two-point butterfly.
kernelgen::Kernel smallLaneKernel(const std::string& name) {
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

}  // namespace orvgen::test
